// Half-precision conversion, slow and obvious, for comparison.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

namespace qtx {

// The largest half whose value is not above |x|, found by arithmetic alone.
inline std::uint16_t modelToHalf(float x) {
  const auto bits = std::bit_cast<std::uint32_t>(x);
  const int sign = bits >> 31 ? 0x8000 : 0;
  const double magnitude = std::fabs(static_cast<double>(x));
  int half = 0;
  if (std::isnan(x)) {
    const int payload = static_cast<int>((bits & 0x7FFFFF) >> 13);
    half = 0x7C00 + (payload == 0 ? 1 : payload);
  } else if (magnitude > 65504) {
    half = 0x7C00;
  } else if (magnitude < 0x1p-14) {
    half = static_cast<int>(std::floor(magnitude / 0x1p-24));
  } else {
    const int exponent = std::ilogb(magnitude);
    const double fraction = std::floor((magnitude / std::ldexp(1.0, exponent) - 1) * 1024);
    half = (exponent + 15) * 1024 + static_cast<int>(fraction);
  }
  return static_cast<std::uint16_t>(sign + half);
}

inline double modelFromHalf(std::uint16_t half) {
  const int exponent = half / 1024 % 32, fraction = half % 1024;
  double magnitude = 0;
  if (exponent == 31) {
    magnitude = fraction == 0 ? INFINITY : NAN;
  } else if (exponent == 0) {
    magnitude = std::ldexp(fraction, -24);
  } else {
    magnitude = std::ldexp(1024 + fraction, exponent - 25);
  }
  return std::copysign(magnitude, half >= 0x8000 ? -1.0 : 1.0);
}

}  // namespace qtx
