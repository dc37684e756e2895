// Currency amounts out of decimal text.
#include "math/currency.h"

#include <algorithm>
#include <cstring>

namespace qtx {

namespace {

constexpr std::uint64_t largest = INT64_MAX;
constexpr std::size_t mostCharacters = 21;

bool isDigit(unsigned digit) { return digit <= 9; }
unsigned digitOf(char c) { return static_cast<unsigned char>(c) - unsigned{'0'}; }

// Takes the digits at `at` into `value`, stopping in front of the first that would lift it above `largest`.
const char* takeDigits(const char* at, const char* end, std::uint64_t& value) {
  // Eighteen digits always fit.
  for (const char* safe = at + std::min<std::ptrdiff_t>(end - at, 18); at != safe; ++at) {
    const unsigned digit = digitOf(*at);
    if (!isDigit(digit)) return at;
    value = value * 10 + digit;
  }
  for (; at != end; ++at) {
    const unsigned digit = digitOf(*at);
    if (!isDigit(digit) || value > (largest - digit) / 10) return at;
    value = value * 10 + digit;
  }
  return at;
}

}  // namespace

ParsedCurrency parseCurrency(std::string_view text) {
  const char* at = text.data();
  const char* end = at + text.size();
  bool negative = false;
  if (at != end && *at == '-') {
    negative = true;
    ++at;
  }
  if (at != end && *at == '+') {
    negative = false;
    ++at;
  }
  const auto seen = std::min(static_cast<std::size_t>(end - at), mostCharacters + 1);
  const auto* terminator = seen ? static_cast<const char*>(std::memchr(at, 0, seen)) : nullptr;
  if (terminator) {
    end = terminator;
  } else if (seen > mostCharacters) {
    return {0, CurrencyError::tooLong};
  }

  std::uint64_t value = 0;
  at = takeDigits(at, end, value);
  int decimals = 0;
  bool pointSeen = false;
  for (; at != end && decimals < 4; ++at) {
    const unsigned digit = digitOf(*at);
    if (isDigit(digit)) {
      if (value > (largest - digit) / 10) return {0, CurrencyError::tooBig};
      value = value * 10 + digit;
      decimals += pointSeen;
    } else if (*at == '.') {
      pointSeen = true;
    } else {
      return {0, CurrencyError::invalidCharacter, *at};
    }
  }

  constexpr std::uint64_t scales[] = {10000, 1000, 100, 10, 1};
  if (value > largest / scales[decimals]) return {0, CurrencyError::tooBig};
  value *= scales[decimals];
  const auto count = static_cast<std::int64_t>(value);
  return {negative ? -count : count};
}

}  // namespace qtx
