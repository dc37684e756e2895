// The check digit of credit card numbers.
#pragma once

#include <string_view>

#include "frame/digit_words.h"

namespace qtx {

// What sixteen digits add to a Luhn sum, modulo 10. The last one is not doubled, and every second from there
// is.
constexpr std::uint64_t luhnSum(digitWords::Word high, digitWords::Word low) {
  using digitWords::everyByte, digitWords::Word;
  constexpr Word everySecond = 0x00FF00FF00FF00FF;
  const auto terms = [](Word word) {
    const Word doubled = word & everySecond;
    // Where doubling gives two digits, their sum is 2d − 9, which is 2d + 1 modulo 10.
    const Word carries = (doubled + everyByte(0x80 - 5)) >> 7 & everyByte(1);
    return word + doubled + carries;
  };
  const Word sums = terms(high) + terms(low);
  return ((sums & everySecond) + (sums >> 8 & everySecond)) * 0x0001000100010001 >> 48;
}

// Whether the text is all digits and its Luhn sum (ISO/IEC 7812-1, annex B) is divisible by ten. The empty
// text passes; separators do not.
inline bool passesLuhn(std::string_view text) {
  using digitWords::areDigits, digitWords::first, digitWords::load, digitWords::Word;
  const char* const digits = text.data();
  std::size_t left = text.size();
  std::uint64_t sum = 0;
  for (; left > 16; left -= 16) {
    const Word high = load(digits + left - 16), low = load(digits + left - 8);
    if (!areDigits(high) || !areDigits(low)) return false;
    sum += luhnSum(high, low);
  }
  // The first up to sixteen; zeros in front of them add nothing.
  Word high = 0, low = 0;
  if (left >= 8) {
    high = first(load(digits), left - 8);
    low = load(digits + left - 8);
  } else if (text.size() >= 8) {
    low = first(load(digits), left);
  } else {
    for (const char c : text) low = low >> 8 | Word{digitWords::digitOf(c)} << 56;
  }
  return areDigits(high) && areDigits(low) && (sum + luhnSum(high, low)) % 10 == 0;
}

}  // namespace qtx
