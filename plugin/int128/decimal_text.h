// Decimal text of 128-bit integers: formatting, and a lenient parser.
#pragma once

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

// Short numbers, the most frequent, are read where they are wanted.
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
