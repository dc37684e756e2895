// Currency amounts: a signed 64-bit count of ten-thousandths, its arithmetic and its exact decimal text.
#pragma once

#include <cstdint>
#include <string_view>

namespace qtx {

// Sums, differences and products with a plain integer wrap around.
constexpr std::int64_t addCurrency(std::int64_t a, std::int64_t b) noexcept {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
}
constexpr std::int64_t subtractCurrency(std::int64_t a, std::int64_t b) noexcept {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) - static_cast<std::uint64_t>(b));
}
constexpr std::int64_t multiplyCurrency(std::int64_t amount, std::int64_t factor) noexcept {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(amount) * static_cast<std::uint64_t>(factor));
}

// Truncates toward zero: −0.0003 by 2 is −0.0001. −2^63 by −1 wraps to −2^63; the divisor is not 0.
constexpr std::int64_t divideCurrency(std::int64_t amount, std::int64_t divisor) noexcept {
  return divisor == -1 ? subtractCurrency(0, amount) : amount / divisor;
}

enum class CurrencyError : std::uint8_t { none, tooLong, tooBig, invalidCharacter };

struct ParsedCurrency {
  std::int64_t count;  // 0 where there is an error
  CurrencyError error = CurrencyError::none;
  char offending = 0;  // the invalid character; 0 where there is none
};

// Reads "-12.5" as −125000, without going through a binary fraction. The text ends at its first NUL. In this
// order:
// - A '-', then a '+'; a '+' behind a '-' cancels it.
// - What remains may have 21 characters (tooLong).
// - Digits and points, of which only the first counts. Everything behind the fourth decimal is cut off
// unseen.
//   A magnitude above 2^63 − 1 is tooBig.
// Text without digits is 0.
ParsedCurrency parseCurrency(std::string_view text);

}  // namespace qtx
