// Digits out of 128-bit integers and into them.
#include "int128/decimal_text.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "frame/digit_words.h"

namespace qtx {

namespace {

constexpr std::uint64_t tenTo8 = 100'000'000;
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

// The digits of a value below 10^8 as the bytes of a word, leading zeros included, the first one lowest. The
// value is divided into two halves of the word by 10^4, both into quarters by 100 and all four into bytes by
// 10. Each time the quotients stay and the remainders, x − q · base, go above them: x << w less q times
// (base << w) − 1. The factors are reciprocals, rounded up, that give the quotients exactly.
std::uint64_t digitsOf(std::uint64_t value) {
  const std::uint64_t by10000 = value * 109951163 >> 40;
  const std::uint64_t halves = (value << 32) - by10000 * ((std::uint64_t{10000} << 32) - 1);
  const std::uint64_t by100 = halves * 5243 >> 19 & 0x0000'007F'0000'007F;
  const std::uint64_t quarters = (halves << 16) - by100 * ((100 << 16) - 1);
  const std::uint64_t by10 = quarters * 103 >> 10 & 0x000F'000F'000F'000F;
  return (quarters << 8) - by10 * ((10 << 8) - 1);
}

constexpr std::uint64_t zeroCharacters = 0x3030'3030'3030'3030;
void store8(std::uint64_t bytes, char* out) { std::memcpy(out, &bytes, sizeof bytes); }

// A value below 10^8 without leading zeros; gives where the text ends. It takes one store of eight
// characters, whose rest is overwritten later: a copy of the text made right after it need not wait for
// several. The digits are counted by branches, which are foreseen where numbers are of like length: so what
// is done with the text, such as allocating memory for it, need not wait for the digits.
char* writeUpTo8Digits(std::uint64_t value, char* out) {
  int count = 1;
  for (std::uint64_t power = 10; power <= value; power *= 10) ++count;
  store8((digitsOf(value) + zeroCharacters) >> (64 - 8 * count), out);
  return out + count;
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

__attribute__((noinline)) std::string_view longText(UInt128 value, const char* begin, char* out) {
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

// The text from `begin` on, with the digits from `out` on.
std::string_view textOf(UInt128 value, const char* begin, char* out) {
  if (value.high == 0 && value.low < tenTo8) return between(begin, writeUpTo8Digits(value.low, out));
  return longText(value, begin, out);
}

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

std::string_view uint128_to_string(UInt128 value, DecimalBuffer& buffer) {
  return textOf(value, buffer, buffer);
}

std::string_view int128_to_string(Int128 value, DecimalBuffer& buffer) {
  *buffer = '-';  // overwritten where it is not wanted
  return textOf(magnitude(value), buffer, buffer + value.isNegative());
}

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
