// Half-precision numbers (IEEE 754 binary16) as bit patterns: truncating from Single, exact to Single.
#pragma once

#include <bit>
#include <cstdint>

namespace qtx {

// Truncates toward zero: 1.0009 gives 0x3C00. Magnitudes above 65504 become infinity, those below 2^−24 zero;
// the sign is always kept. A NaN keeps the top ten bits of its fraction, or gets 1 where they are zero, so
// that it stays a NaN.
constexpr std::uint16_t toHalf(float x) noexcept {
  constexpr std::uint32_t smallestNormal = 0x38800000, largest = 0x477FE000, infinity = 0x7F800000;
  const auto bits = std::bit_cast<std::uint32_t>(x);
  const std::uint32_t sign = (bits >> 16) & 0x8000, magnitude = bits & 0x7FFFFFFF;
  std::uint32_t half = 0;
  if (magnitude - smallestNormal <= largest - smallestNormal) [[likely]] {
    half = (magnitude >> 13) - 0x1C000;  // the exponent's bias goes from 127 to 15
  } else if (magnitude < smallestNormal) {
    half = static_cast<std::uint32_t>(static_cast<std::int32_t>(std::bit_cast<float>(magnitude) * 0x1p24f));
  } else if (magnitude <= infinity) {
    half = 0x7C00;
  } else {
    const std::uint32_t payload = (magnitude >> 13) & 0x3FF;
    half = 0x7C00 | (payload ? payload : 1);
  }
  return static_cast<std::uint16_t>(sign | half);
}

// Exact: every half number is a Single. Payloads of NaNs are kept.
constexpr float fromHalf(std::uint16_t half) noexcept {
  const std::uint32_t sign = std::uint32_t{half & 0x8000u} << 16, magnitude = half & 0x7FFF;
  std::uint32_t bits = (magnitude + 0x1C000) << 13;
  if (magnitude >= 0x7C00) {
    bits += 0x1C000 << 13;  // all ones in the wider exponent, too
  } else if (magnitude < 0x400) {
    bits = std::bit_cast<std::uint32_t>(static_cast<float>(static_cast<std::int32_t>(magnitude)) * 0x1p-24f);
  }
  return std::bit_cast<float>(bits | sign);
}

}  // namespace qtx
