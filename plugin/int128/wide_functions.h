// Functions of one 128-bit integer: bit queries, square root, power, conversion to double.
#pragma once

#include <cmath>

#include "int128/comparison.h"

namespace qtx {

// Bit queries look at the pattern: −1 has 128 ones and no leading zeros.
template <typename High>
constexpr int popCount(Wide<High> value) {
  return std::popcount(value.low) + std::popcount(static_cast<std::uint64_t>(value.high));
}
template <typename High>
constexpr int countLeftZeros(Wide<High> value) {
  return value.high == 0 ? 64 + std::countl_zero(value.low)
                         : std::countl_zero(static_cast<std::uint64_t>(value.high));
}
template <typename High>
constexpr int countRightZeros(Wide<High> value) {
  return value.low == 0 ? 64 + std::countr_zero(static_cast<std::uint64_t>(value.high))
                        : std::countr_zero(value.low);
}
template <typename High>
constexpr int bitWidth(Wide<High> value) {
  return 128 - countLeftZeros(value);
}

// 1, 0 or −1.
constexpr int sign(Int128 value) { return compareValues(value, Int128(0)); }

// Rounds each word and then their sum, so that the last place may differ from a conversion rounded once:
// 2^64 + 1 gives 2^64. The same bits on every processor.
inline double toDouble(UInt128 value) {
  return static_cast<double>(value.high) * 18446744073709551616.0 + static_cast<double>(value.low);
}
inline double toDouble(Int128 value) {
  const double distance = toDouble(magnitude(value));
  return value.isNegative() ? -distance : distance;
}

// The greatest integer whose square is not above the value; exact for every value: 2^128 − 1 gives 2^64 − 1.
//
// The square root of the value as a double is off by less than 2^12, and one Newton step, of which only the
// small correction is computed in doubles, brings it within one of the result.
inline std::uint64_t squareRoot(UInt128 value) {
  const NativeUInt128 bits = value.bits();
  const double estimate = std::sqrt(toDouble(value));
  constexpr std::uint64_t greatest = ~std::uint64_t{0};
  std::uint64_t root = estimate < 18446744073709551616.0 ? static_cast<std::uint64_t>(estimate) : greatest;
  const auto square = [](std::uint64_t r) { return static_cast<NativeUInt128>(r) * r; };
  if (value.high != 0) {
    // Without its last 16 bits the difference fits a word, and by 2 · root ≥ 2^33 they do not matter.
    const auto difference = static_cast<std::int64_t>(static_cast<NativeInt128>(bits - square(root)) >> 16);
    const auto quotient = static_cast<std::int64_t>(static_cast<double>(difference) * 0x1p15 / estimate);
    const std::int64_t correction = quotient - (difference < 0);  // rounded down
    // Stays within the word. Where the estimate is 2^64, the difference is below twice that, and nothing is
    // added. Every other estimate is at most 2^64 − 2^11, and what is added at most 2^10 for the rounding of
    // the square root and 2^9 + 1 for that of the value.
    root += static_cast<std::uint64_t>(correction);
  }
  if (square(root) > bits) {
    --root;
  } else if (bits - square(root) > static_cast<NativeUInt128>(root) * 2) {
    ++root;  // (r + 1)² = r² + 2r + 1 is not above the value either
  }
  return root;
}

// base to the power exponent, modulo 2^128, by repeated squaring; 1 for the exponent 0.
template <typename High>
constexpr Wide<High> power(Wide<High> base, std::uint64_t exponent) {
  Wide<High> result = 1;
  while (true) {
    if (exponent & 1) result = result * base;
    exponent >>= 1;
    if (exponent == 0) return result;
    base = base * base;
  }
}

}  // namespace qtx
