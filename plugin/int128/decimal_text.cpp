// Digits out of 128-bit integers and into them.
#include "int128/decimal_text.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "frame/digit_words.h"

namespace qtx {

namespace {

using detail::digitsOf, detail::store8, detail::tenTo8, detail::writeUpTo8Digits, detail::zeroCharacters;
constexpr std::uint64_t tenTo16 = tenTo8 * tenTo8;
constexpr std::uint64_t tenTo19 = tenTo16 * 1000;
constexpr NativeUInt128 tenTo38 = static_cast<NativeUInt128>(tenTo19) * tenTo19;

constexpr std::array<std::uint64_t, 20> powersOf10 = [] {
  std::array<std::uint64_t, 20> powers{1};
  for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * 10;
  return powers;
}();

// "00" … "99".
constexpr std::array<char, 200> digitPairs = [] {
  std::array<char, 200> pairs{};
  for (std::size_t i = 0; i < 100; ++i) {
    pairs[2 * i] = static_cast<char>('0' + i / 10);
    pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
  }
  return pairs;
}();

void write2Digits(std::uint32_t value, char* out) { std::memcpy(out, &digitPairs[2 * value], 2); }
void write4Digits(std::uint32_t value, char* out) {
  write2Digits(value / 100, out);
  write2Digits(value % 100, out + 2);
}
void write8Digits(std::uint32_t value, char* out) {
  write4Digits(value / 10000, out);
  write4Digits(value % 10000, out + 4);
}

// All 19 digits of a value below 10^19, with leading zeros.
void write19Digits(std::uint64_t value, char* out) {
  const auto leading = static_cast<std::uint32_t>(value / tenTo16);  // three digits
  const std::uint64_t rest = value % tenTo16;
  out[0] = static_cast<char>('0' + leading / 100);
  write2Digits(leading % 100, out + 1);
  write8Digits(static_cast<std::uint32_t>(rest / tenTo8), out + 3);
  write8Digits(static_cast<std::uint32_t>(rest % tenTo8), out + 11);
}

// All eight digits.
char* writeWhole8Digits(std::uint64_t value, char* out) {
  store8(digitsOf(value) + zeroCharacters, out);
  return out + 8;
}

// A value below 10^19 without leading zeros. Kept out of its callers, which are fast by being short.
__attribute__((noinline)) char* writeUpTo19Digits(std::uint64_t value, char* out) {
  if (value < tenTo8) return writeUpTo8Digits(value, out);
  if (value < tenTo16) {
    out = writeUpTo8Digits(value / tenTo8, out);
    return writeWhole8Digits(value % tenTo8, out);
  }
  const std::uint64_t rest = value % tenTo16;
  out = writeUpTo8Digits(value / tenTo16, out);
  out = writeWhole8Digits(rest / tenTo8, out);
  return writeWhole8Digits(rest % tenTo8, out);
}

// Quotient and remainder of a value below 10^38 by 10^19: two multiplications with the divisor's reciprocal.
// Möller and Granlund, "Improved division by invariant integers", IEEE Transactions on Computers 60 (2011),
// algorithm 4, without its second adjustment. With β = 2^64, d the divisor, v the reciprocal, u₁ and u₀ the
// value's words, q₀ the estimate's low word and k = β² − (β + v)d, the first remainder is
// (k·u₁ + (β − d)·u₀ + d·q₀) / β − d. The second adjustment is for one of at least d and for one that is at
// least 0 and above q₀, and both take a k·u₁ of at least (2d − β)·β, which is never reached here.
struct Halves {
  std::uint64_t high, low;
};
Halves divideBy10To19(NativeUInt128 value) {
  static_assert(tenTo19 >> 63 == 1, "the algorithm wants the divisor's top bit set");
  // ⌊(2^128 − 1) / 10^19⌋ − 2^64.
  constexpr auto reciprocal = static_cast<std::uint64_t>(~NativeUInt128{0} / tenTo19);
  constexpr NativeUInt128 k = -((NativeUInt128{1} << 64 | reciprocal) * tenTo19);
  static_assert(k * (tenTo38 >> 64) < static_cast<NativeUInt128>(2 * tenTo19) << 64, "k · u₁ < (2d − β) · β");
  const NativeUInt128 estimate = (value >> 64) * reciprocal + value;
  std::uint64_t quotient = static_cast<std::uint64_t>(estimate >> 64) + 1;
  std::uint64_t remainder = static_cast<std::uint64_t>(value) - quotient * tenTo19;
  if (remainder > static_cast<std::uint64_t>(estimate)) {
    --quotient;
    remainder += tenTo19;
  }
  return {quotient, remainder};
}

std::string_view between(const char* begin, const char* end) {
  return {begin, static_cast<std::size_t>(end - begin)};
}

}  // namespace

std::string_view detail::longText(UInt128 value, char* begin, char* out) {
  if (value.high == 0 && value.low < tenTo19) return between(begin, writeUpTo19Digits(value.low, out));
  NativeUInt128 rest = value.bits();
  char first = '0';
  for (; rest >= tenTo38; rest -= tenTo38) ++first;  // up to '3'
  const auto [high, low] = divideBy10To19(rest);
  if (first == '0') {
    out = writeUpTo19Digits(high, out);
  } else {
    *out++ = first;
    write19Digits(high, out);
    out += 19;
  }
  write19Digits(low, out);
  return between(begin, out + 19);
}

namespace {

// What isspace holds for in the C locale, whatever the process's locale.
bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

NativeUInt128 parseDigits(std::string_view text);

// For texts that are not all digits.
[[gnu::noinline, gnu::cold]] NativeUInt128 parseLeadingDigits(std::string_view text) {
  return parseDigits(between(text.data(), std::find_if_not(text.data(), text.data() + text.size(), isDigit)));
}

// value · factor + addend. By words, for which compilers find better instructions.
NativeUInt128 multiplyAdd(NativeUInt128 value, std::uint64_t factor, std::uint64_t addend) {
  const NativeUInt128 product = static_cast<NativeUInt128>(static_cast<std::uint64_t>(value)) * factor;
  const std::uint64_t low = static_cast<std::uint64_t>(product) + addend;
  const std::uint64_t high = static_cast<std::uint64_t>(value >> 64) * factor +
                             static_cast<std::uint64_t>(product >> 64) + (low < addend);
  return static_cast<NativeUInt128>(high) << 64 | low;
}

// The number at the start of the text, modulo 2^128.
NativeUInt128 parseDigits(std::string_view text) {
  using digitWords::areDigits, digitWords::load, digitWords::valueOf, digitWords::Word;
  const char* at = text.data();
  const char* const end = at + text.size();
  if (text.size() < 8) return detail::takeShort(at, end);
  NativeUInt128 value = 0;
  for (; end - at >= 16; at += 16) {
    const Word high = load(at), low = load(at + 8);
    if (!areDigits(high) || !areDigits(low)) return parseLeadingDigits(text);
    value = multiplyAdd(value, tenTo16, valueOf(high) * tenTo8 + valueOf(low));
  }
  // Fewer than 16 digits are left: they fit one word. The last eight are loaded together, even if the first
  // of them have been counted.
  const auto left = static_cast<std::size_t>(end - at);
  Word high = 0, low = load(end - 8);
  if (left < 8) {
    low = digitWords::last(low, left);
  } else {
    high = digitWords::first(load(at), left - 8);
  }
  if (!areDigits(high) || !areDigits(low)) return parseLeadingDigits(text);
  return multiplyAdd(value, powersOf10[left], valueOf(high) * tenTo8 + valueOf(low));
}

// Takes blanks and one sign from the text; whether that is a minus.
bool removePrefix(std::string_view& text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  if (text.empty() || (text.front() != '-' && text.front() != '+')) return false;
  const bool negative = text.front() == '-';
  text.remove_prefix(1);
  return negative;
}

}  // namespace

template <typename Value>
Value detail::parseAnyDecimal(std::string_view text) {
  bool negative = false;
  if (!isDigit(text.front())) negative = removePrefix(text);
  const Value value = Value::fromBits(parseDigits(text));
  return negative && std::is_signed_v<typename Value::Word> ? -value : value;
}
template UInt128 detail::parseAnyDecimal<UInt128>(std::string_view);
template Int128 detail::parseAnyDecimal<Int128>(std::string_view);

}  // namespace qtx
