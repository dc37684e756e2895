// Half-precision numbers (IEEE 754 binary16) as bit patterns: truncating from Single, exact to Single.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace qtx {

// Truncates toward zero: 1.0009 gives 0x3C00. Magnitudes above 65504 become infinity, those below 2^−24 zero;
// the sign is always kept. A NaN keeps the top ten bits of its fraction, or gets 1 where they are zero, so
// that it stays a NaN.
//
// In whole numbers, so that neither the rounding mode nor the handling of subnormal numbers that a program
// may have set changes the result.
constexpr std::uint16_t toHalf(float x) noexcept {
  constexpr std::uint32_t smallestNormal = 0x38800000, largest = 0x477FE000, infinity = 0x7F800000;
  const auto bits = std::bit_cast<std::uint32_t>(x);
  const std::uint32_t sign = (bits >> 16) & 0x8000, magnitude = bits & 0x7FFFFFFF;
  if (magnitude > largest) [[unlikely]] {
    const std::uint32_t payload = (magnitude >> 13) & 0x3FF;
    return static_cast<std::uint16_t>(sign | 0x7C00 |
                                      (magnitude <= infinity ? 0 : std::max<std::uint32_t>(payload, 1)));
  }
  const std::uint32_t normal = (magnitude >> 13) - 0x1C000;  // the exponent's bias goes from 127 to 15
  const std::uint32_t significand = (magnitude & 0x7FFFFF) | 0x800000, exponent = magnitude >> 23;
  const std::uint32_t subnormal = significand >> std::min<std::uint32_t>(126 - exponent, 31);  // in 2^−24
  return static_cast<std::uint16_t>(sign | (magnitude < smallestNormal ? subnormal : normal));
}

// Exact: every half number is a Single. Payloads of NaNs are kept.
constexpr float fromHalf(std::uint16_t half) noexcept {
  const std::uint32_t sign = std::uint32_t{half & 0x8000u} << 16, magnitude = half & 0x7FFF;
  std::uint32_t bits = (magnitude + 0x1C000) << 13;
  bits += magnitude >= 0x7C00 ? 0x1C000 << 13 : 0;  // all ones in the wider exponent, too
  // A subnormal number gets the smallest normal exponent and its leading one, which is then taken away again.
  // Rounding downwards would give −0 for 0.
  const float subnormal = std::bit_cast<float>(0x38800000 | (magnitude & 0x3FF) << 13) - 0x1p-14f;
  if (magnitude < 0x400) bits = std::bit_cast<std::uint32_t>(subnormal) & 0x7FFFFFFF;
  return std::bit_cast<float>(bits | sign);
}

// Forms for processors that have instructions for it (frame/processor.h). The instructions give the same but
// for rare numbers, which fall to the forms above: what is truncated never becomes infinite, and a NaN
// becomes a quiet one or loses its payload. Functions this short take no longer than an empty one while their
// code lies in one line of the cache.
namespace tuned {
#if defined(__x86_64__)
__attribute__((target("f16c"), aligned(64))) inline std::uint16_t toHalf(float x) noexcept {
  const auto half = static_cast<std::uint16_t>(_cvtss_sh(x, _MM_FROUND_TO_ZERO));
  if ((half & 0x7FFF) >= 0x7BFF) [[unlikely]] {  // 65504 and above, or NaN
    return qtx::toHalf(x);
  }
  return half;
}
__attribute__((target("f16c"), aligned(64))) inline float fromHalf(std::uint16_t half) noexcept {
  if ((half & 0x7FFF) >= 0x7C00) [[unlikely]] {
    return qtx::fromHalf(half);
  }
  return _cvtsh_ss(half);
}
#elif defined(__aarch64__)
using qtx::toHalf;  // the instruction rounds by the mode that is set
inline float fromHalf(std::uint16_t half) noexcept {
  if ((half & 0x7FFF) >= 0x7C00) [[unlikely]] {  // infinities too: a mode that programs may set has none
    return qtx::fromHalf(half);
  }
  return std::bit_cast<__fp16>(half);
}
#else
using qtx::fromHalf;
using qtx::toHalf;
#endif
}  // namespace tuned

}  // namespace qtx
