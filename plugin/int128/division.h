// Division of 128-bit integers: truncated towards zero, the remainder with the sign of the dividend.
//
// Division by zero gives the quotient 0 and the dividend as remainder, as the Arm processor's division does;
// −2^127 by −1 wraps around to −2^127. Nothing faults.
#pragma once

#include "int128/wide_integer.h"

namespace qtx {

struct WordDivision {
  std::uint64_t quotient, remainder;
};

// Divides high · 2^64 + low by a divisor greater than high, so that the quotient fits one word. Knuth, "The
// Art of Computer Programming" 4.3.1, algorithm D on two digits of 32 bits, in the form of Warren, "Hacker's
// Delight" 9-5.
inline WordDivision divideTwoWordsPortably(std::uint64_t high, std::uint64_t low, std::uint64_t divisor) {
  if (high == 0) return {low / divisor, low % divisor};
  constexpr std::uint64_t base = std::uint64_t{1} << 32;
  const int shift = std::countl_zero(divisor);
  const NativeUInt128 dividend = (static_cast<NativeUInt128>(high) << 64 | low) << shift;
  divisor <<= shift;
  const std::uint64_t divisorHigh = divisor >> 32, divisorLow = divisor & (base - 1);

  // One digit of the quotient from three of the dividend, estimated by the divisor's high digit: at most two
  // too big.
  const auto nextDigit = [&](std::uint64_t above, std::uint64_t digit) {
    std::uint64_t estimate = above / divisorHigh;
    std::uint64_t rest = above % divisorHigh;
    while (estimate >= base || estimate * divisorLow > (rest << 32 | digit)) {
      --estimate;
      rest += divisorHigh;
      if (rest >= base) break;
    }
    return estimate;
  };
  const auto top = static_cast<std::uint64_t>(dividend >> 64);
  const auto bottom = static_cast<std::uint64_t>(dividend);
  const std::uint64_t first = nextDigit(top, bottom >> 32);
  const std::uint64_t middle = (top << 32 | bottom >> 32) - first * divisor;
  const std::uint64_t second = nextDigit(middle, bottom & (base - 1));
  const std::uint64_t rest = (middle << 32 | (bottom & (base - 1))) - second * divisor;
  return {first << 32 | second, rest >> shift};
}

// The same by the processor's own instruction where it has one.
inline WordDivision divideTwoWords(std::uint64_t high, std::uint64_t low, std::uint64_t divisor) {
#if defined(__x86_64__)
  WordDivision result;
  __asm__("divq %4"
          : "=a"(result.quotient), "=d"(result.remainder)
          : "0"(low), "1"(high), "r"(divisor)
          : "cc");
  return result;
#else
  return divideTwoWordsPortably(high, low, divisor);
#endif
}

template <typename Value>
struct Division {
  Value quotient, remainder;
};

inline Division<UInt128> divide(UInt128 dividend, UInt128 divisor) {
  if (divisor.high == 0) {
    std::uint64_t quotientHigh = 0, above = dividend.high;
    if (above >= divisor.low) {
      if (divisor.low == 0) return {0, dividend};
      quotientHigh = above / divisor.low;
      above %= divisor.low;
    }
    const WordDivision low = divideTwoWords(above, dividend.low, divisor.low);
    return {{low.quotient, quotientHigh}, {low.remainder, 0}};
  }
  if (dividend < divisor) return {0, dividend};
  // Algorithm D again, with digits of 64 bits: both are shifted until the divisor's top bit is set, and the
  // quotient is one digit. Its estimate by the divisor's high word is at most one too big, since the
  // dividend's third word is below 2^shift.
  const int shift = std::countl_zero(divisor.high);
  const auto shiftedHigh = [shift](std::uint64_t high, std::uint64_t low) {
    return high << shift | low >> 1 >> (63 - shift);
  };
  const std::uint64_t divisorHigh = shiftedHigh(divisor.high, divisor.low);
  const std::uint64_t divisorLow = divisor.low << shift;
  auto [quotient, restHigh] =
      divideTwoWords(shiftedHigh(0, dividend.high), shiftedHigh(dividend.high, dividend.low), divisorHigh);
  const UInt128 rest(dividend.low << shift, restHigh);
  NativeUInt128 subtrahend = static_cast<NativeUInt128>(quotient) * divisorLow;
  if (subtrahend > rest.bits()) {
    --quotient;
    subtrahend -= UInt128(divisorLow, divisorHigh).bits();
  }
  return {quotient, UInt128::fromBits(rest.bits() - subtrahend) >> UInt128(shift)};
}

inline Division<Int128> divide(Int128 dividend, Int128 divisor) {
  const auto [quotient, remainder] = divide(magnitude(dividend), magnitude(divisor));
  const bool negative = dividend.isNegative() != divisor.isNegative();
  return {Int128(negative ? -quotient : quotient), Int128(dividend.isNegative() ? -remainder : remainder)};
}

template <typename High>
Wide<High> operator/(Wide<High> dividend, Wide<High> divisor) {
  return divide(dividend, divisor).quotient;
}
template <typename High>
Wide<High> operator%(Wide<High> dividend, Wide<High> divisor) {
  return divide(dividend, divisor).remainder;
}

}  // namespace qtx
