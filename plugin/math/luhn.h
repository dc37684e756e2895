// The check digit of credit card numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace qtx {

// Whether the text is all digits and its Luhn sum (ISO/IEC 7812-1, annex B) is divisible by ten. The empty
// text passes; separators do not.
constexpr bool passesLuhn(std::string_view text) {
  // Every second digit from the right, the last not among them, is doubled and its two digits added.
  constexpr std::uint8_t weights[2][10] = {{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, {0, 2, 4, 6, 8, 1, 3, 5, 7, 9}};
  std::size_t sum = 0, parity = 0;
  for (std::size_t i = text.size(); i-- > 0; parity ^= 1) {
    const unsigned digit = static_cast<unsigned char>(text[i]) - unsigned{'0'};
    if (digit > 9) return false;
    sum += weights[parity][digit];
  }
  return sum % 10 == 0;
}

}  // namespace qtx
