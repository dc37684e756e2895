// Currency amounts out of decimal text.
#include "math/currency.h"

#include <bit>
#include <cstring>

#include "frame/digit_words.h"

namespace qtx {

namespace {

using digitWords::areDigits, digitWords::digitOf, digitWords::everyByte, digitWords::first, digitWords::load,
    digitWords::valueOf, digitWords::Word;

constexpr std::uint64_t largest = INT64_MAX;
constexpr std::size_t mostCharacters = 21;

// By how much an amount without decimals is multiplied, with one decimal, and so on.
constexpr std::uint64_t scales[] = {10000, 1000, 100, 10, 1};

// Any text, a character at a time.
ParsedCurrency parseAny(std::string_view text) {
  bool negative = false;
  if (text.starts_with('-')) {
    negative = true;
    text.remove_prefix(1);
  }
  if (text.starts_with('+')) {
    negative = false;
    text.remove_prefix(1);
  }
  if (text.size() > mostCharacters && text.substr(0, mostCharacters + 1).find('\0') == text.npos) {
    return {0, CurrencyError::tooLong};
  }

  std::uint64_t value = 0;
  unsigned decimals = 0;
  bool pointSeen = false;
  for (const char c : text) {
    if (c == 0 || decimals == 4) break;
    const std::uint64_t digit = digitOf(c);
    if (digit <= 9) {
      if (value > (largest - digit) / 10) return {0, CurrencyError::tooBig};
      value = value * 10 + digit;
      decimals += pointSeen;
    } else if (c == '.') {
      pointSeen = true;
    } else {
      return {0, CurrencyError::invalidCharacter, c};
    }
  }

  if (value > largest / scales[decimals]) return {0, CurrencyError::tooBig};
  const auto count = static_cast<std::int64_t>(value * scales[decimals]);
  return {negative ? -count : count};
}

// Four to seven characters, behind zeros.
Word loadShort(const char* at, std::size_t length) {
  std::uint32_t first4, last4;  // which overlap
  std::memcpy(&first4, at, sizeof first4);
  std::memcpy(&last4, at + length - 4, sizeof last4);
  const std::size_t zeros = 8 * (8 - length);
  return (Word{last4} << 32 | Word{first4} << zeros) ^ everyByte('0') << zeros;
}

// The last eight characters of an amount, or fewer behind zeros, without their point.
struct Tail {
  Word digits;
  std::uint64_t scale;       // what their number is multiplied by; 0 where there are more than four decimals
  std::uint64_t frontScale;  // the same for the number in front of them
};
Tail withoutPoint(Word word) {
  // Marks the first byte that is a point, and perhaps some that come after it.
  const Word difference = word ^ everyByte(digitOf('.'));
  const Word marks = (difference - everyByte(1)) & ~difference & everyByte(0x80);
  if (marks == 0) return {word, 10000, 10000 * 100'000'000ULL};
  const Word mark = marks & -marks;
  const Word front = (mark >> 7) - 1, back = -(mark << 1);
  const int decimals = 7 - std::countr_zero(mark) / 8;
  const std::uint64_t scale = decimals <= 4 ? scales[decimals] : 0;
  return {(word & front) << 8 | (word & back), scale, scale * 10'000'000};
}

}  // namespace

// Numbers of 4 to 21 characters, with up to four decimals, are read eight characters at a time; all others
// are left to parseAny.
ParsedCurrency parseCurrency(std::string_view text) {
  const char* at = text.data();
  const char* const end = at + text.size();
  const bool negative = at != end && *at == '-';
  at += negative;
  const auto length = static_cast<std::size_t>(end - at);
  if (length < 4 || length > mostCharacters) return parseAny(text);

  Word high = 0, middle = 0, low;
  if (length < 8) {
    low = loadShort(at, length);
  } else {
    low = load(end - 8);
    if (length > 16) {
      high = first(load(at), length - 16);
      middle = load(end - 16);
    } else {
      middle = first(load(at), length - 8);
    }
  }
  const auto [digits, scale, frontScale] = withoutPoint(low);
  if (!areDigits(high) || !areDigits(middle) || !areDigits(digits) || scale == 0) return parseAny(text);
  const std::uint64_t front = valueOf(high) * 100'000'000 + valueOf(middle);
  const auto count = static_cast<unsigned __int128>(front) * frontScale + valueOf(digits) * scale;
  if (count > largest) return parseAny(text);
  return {negative ? -static_cast<std::int64_t>(count) : static_cast<std::int64_t>(count)};
}

}  // namespace qtx
