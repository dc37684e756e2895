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

// Shifts by up to 63 bits. What is carried between the words is what a rotation brings in and a shift does
// not, which takes fewer steps than shifting it by itself.
inline UInt128 shiftedLeft(UInt128 value, int count) {
  const std::uint64_t low = value.low << count;
  return {low, value.high << count | (std::rotl(value.low, count) ^ low)};
}
inline UInt128 shiftedRight(UInt128 value, int count) {
  const std::uint64_t high = value.high >> count;
  return {value.low >> count | (std::rotr(value.high, count) ^ high), high};
}

// Divides high · 2^64 + low by a divisor greater than high, so that the quotient fits one word. Knuth, "The
// Art of Computer Programming" 4.3.1, algorithm D on two digits of 32 bits. Whether an estimated digit is too
// big cannot be predicted, so it is corrected without a branch.
inline WordDivision divideTwoWordsPortably(std::uint64_t high, std::uint64_t low, std::uint64_t divisor) {
  if (high == 0) return {low / divisor, low % divisor};
  constexpr std::uint64_t lowHalf = 0xFFFFFFFF;
  const int shift = std::countl_zero(divisor);
  const auto [bottom, top] = shiftedLeft({low, high}, shift);
  divisor <<= shift;
  const std::uint64_t divisorHigh = divisor >> 32, divisorLow = divisor & lowHalf;

  // One digit of the quotient from three of the dividend, estimated by the divisor's high digit: at most two
  // too big, and so at most 2^32 + 1.
  const auto nextDigit = [&](std::uint64_t above, std::uint64_t digit) -> WordDivision {
    const std::uint64_t estimate = above / divisorHigh;
    const std::uint64_t product = estimate * divisorLow;
    const std::uint64_t rest = above % divisorHigh << 32 | digit;
    const bool tooBig = rest < product;
    const std::uint64_t more = rest + divisor;
    const bool stillTooBig = tooBig & (more >= divisor) & (more < product);  // what wraps around is enough
    return {estimate - tooBig - stillTooBig,
            rest + (tooBig ? divisor : 0) + (stillTooBig ? divisor : 0) - product};
  };
  const WordDivision first = nextDigit(top, bottom >> 32);
  const WordDivision second = nextDigit(first.remainder, bottom & lowHalf);
  return {first.quotient << 32 | second.quotient, second.remainder >> shift};
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
  if (dividend.high < divisor.high) return {0, dividend};
  // Algorithm D again, with digits of 64 bits: both are shifted until the divisor's top bit is set, and the
  // quotient is one digit. Its estimate by the divisor's high word is at most one too big, since the
  // dividend's third word is below 2^shift.
  const int shift = std::countl_zero(divisor.high);
  const UInt128 normalized = shiftedLeft(divisor, shift), shifted = shiftedLeft(dividend, shift);
  const std::uint64_t third = std::rotl(dividend.high, shift) ^ dividend.high << shift;
  const auto [estimate, restHigh] = divideTwoWords(third, shifted.high, normalized.high);
  const NativeUInt128 rest = UInt128(shifted.low, restHigh).bits();
  const NativeUInt128 subtrahend = static_cast<NativeUInt128>(estimate) * normalized.low;
  const bool tooBig = rest < subtrahend;
  NativeUInt128 remainder = rest - subtrahend;
  // Only a quotient of nearly 64 bits is often too big; its correction takes no branch.
  if (tooBig) [[unlikely]] {
    remainder += normalized.bits();
  }
  return {estimate - tooBig, shiftedRight(UInt128::fromBits(remainder), shift)};
}

// The value, or its negative where the word is −1 instead of 0: the signs of numbers seldom follow a pattern
// that a branch could be predicted by.
inline NativeUInt128 negatedIf(std::int64_t minusOne, NativeUInt128 value) {
  const auto mask = static_cast<NativeUInt128>(NativeInt128{minusOne});
  return (value ^ mask) - mask;
}

inline Division<Int128> divide(Int128 dividend, Int128 divisor) {
  const std::int64_t dividendSign = dividend.high >> 63, divisorSign = divisor.high >> 63;
  const auto [quotient, remainder] = divide(UInt128::fromBits(negatedIf(dividendSign, dividend.bits())),
                                            UInt128::fromBits(negatedIf(divisorSign, divisor.bits())));
  return {Int128::fromBits(negatedIf(dividendSign ^ divisorSign, quotient.bits())),
          Int128::fromBits(negatedIf(dividendSign, remainder.bits()))};
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
