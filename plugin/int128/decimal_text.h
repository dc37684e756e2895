// Decimal text of 128-bit integers: formatting, and a lenient parser.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

#include "frame/digit_words.h"
#include "int128/wide_integer.h"

namespace qtx {

// Room for the longest text, that of −2^127: a minus sign and 39 digits.
using DecimalBuffer = char[40];

// The digits without leading zeros, "-" in front of a negative value; "0" for 0. The text lies in the buffer
// and is not terminated.
std::string_view uint128_to_string(UInt128 value, DecimalBuffer& buffer);
std::string_view int128_to_string(Int128 value, DecimalBuffer& buffer);

// Reads blanks, at most one sign and the digits that follow, modulo 2^128; whatever else ends the number.
// "  -42xyz" is −42, and "", "abc" and "- 5" are 0. Read as unsigned, a "-" is skipped: "-5" is 5.
template <typename Value>
Value parseDecimal(std::string_view text);

namespace detail {

constexpr std::uint64_t tenTo8 = 100'000'000;

// The digits of a value below 10^8 as the bytes of a word, leading zeros included, the first one lowest. The
// value is divided into two halves of the word by 10^4, both into quarters by 100 and all four into bytes by
// 10. Each time the quotients stay and the remainders, x − q · base, go above them: x << w less q times
// (base << w) − 1. The factors are reciprocals, rounded up, that give the quotients exactly.
constexpr std::uint64_t digitsOf(std::uint64_t value) {
  const std::uint64_t by10000 = value * 109951163 >> 40;
  const std::uint64_t halves = (value << 32) - by10000 * ((std::uint64_t{10000} << 32) - 1);
  const std::uint64_t by100 = halves * 5243 >> 19 & 0x0000'007F'0000'007F;
  const std::uint64_t quarters = (halves << 16) - by100 * ((100 << 16) - 1);
  const std::uint64_t by10 = quarters * 103 >> 10 & 0x000F'000F'000F'000F;
  return (quarters << 8) - by10 * ((10 << 8) - 1);
}

constexpr std::uint64_t zeroCharacters = 0x3030'3030'3030'3030;
inline void store8(std::uint64_t bytes, char* out) { std::memcpy(out, &bytes, sizeof bytes); }

// A value below 10^8 without leading zeros; gives where the text ends. It takes one store of eight
// characters, whose rest is overwritten later: a copy of the text made right after it need not wait for
// several. The digits are counted by branches, which are foreseen where numbers are of like length: so what
// is done with the text, such as allocating memory for it, need not wait for the digits.
inline char* writeUpTo8Digits(std::uint64_t value, char* out) {
  int count = 1;
  for (std::uint64_t power = 10; power <= value; power *= 10) ++count;
  store8((digitsOf(value) + zeroCharacters) >> (64 - 8 * count), out);
  return out + count;
}

// The text from `begin` on, with the digits from `out` on.
std::string_view longText(UInt128 value, char* begin, char* out);
inline std::string_view textOf(UInt128 value, char* begin, char* out) {
  if (value.high == 0 && value.low < tenTo8) {
    return {begin, static_cast<std::size_t>(writeUpTo8Digits(value.low, out) - begin)};
  }
  return longText(value, begin, out);
}

// Of any length but none, with any prefix.
template <typename Value>
Value parseAnyDecimal(std::string_view text);
extern template UInt128 parseAnyDecimal<UInt128>(std::string_view);
extern template Int128 parseAnyDecimal<Int128>(std::string_view);

// Takes digits from `at`, of which there are fewer than eight until `end`.
inline std::uint32_t takeShort(const char*& at, const char* end) {
  std::uint32_t value = 0;
  for (; at != end && digitWords::digitOf(*at) <= 9; ++at) value = value * 10 + digitWords::digitOf(*at);
  return value;
}

}  // namespace detail

// Short numbers, the most frequent, are written and read where they are wanted.
inline std::string_view uint128_to_string(UInt128 value, DecimalBuffer& buffer) {
  return detail::textOf(value, buffer, buffer);
}

inline std::string_view int128_to_string(Int128 value, DecimalBuffer& buffer) {
  *buffer = '-';  // overwritten where it is not wanted
  return detail::textOf(magnitude(value), buffer, buffer + value.isNegative());
}

template <typename Value>
Value parseDecimal(std::string_view text) {
  if (text.size() < 8) {
    const char* at = text.data();
    const char* const end = at + text.size();
    const std::uint32_t value = detail::takeShort(at, end);
    if (at == end) return Value::fromBits(value);
  }
  return detail::parseAnyDecimal<Value>(text);
}

}  // namespace qtx
