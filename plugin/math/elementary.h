// The elementary functions that are more than a call of the C library.
#pragma once

#include <cstdint>

namespace qtx {

// The y-th root as exp(log(x) / y): root(8, 3) is 2 within rounding. NaN for every negative x, odd y
// included.
double root(double x, double y) noexcept;

// To so many decimals, halves away from zero: roundTo(1234.5678, 2) → 1234.57, roundTo(1250, -2) → 1300.
// Through the power of ten as a double and no decimal correction.
double roundTo(double x, std::int64_t decimals) noexcept;

// x = significand · 2^exponent, with a significand in [0.5, 1) or 0: 8 → 0.5 and 4. For an infinity or NaN
// the exponent is 0.
double splitBinary(double x, std::int64_t* exponent) noexcept;

// 0! … 58! in ascending order of multiplication; 0 for every other number. No double needs a cut-off there;
// it is the range that the function has.
double factorial(std::int64_t x) noexcept;

// Toward zero; what is out of range gives the nearest limit, NaN gives 0: the same on every processor.
std::int64_t toInt64(double value) noexcept;
std::uint64_t toUInt64(double value) noexcept;

// To the nearest double, ties to even.
double toDouble(std::int64_t value) noexcept;
double toDouble(std::uint64_t value) noexcept;

// By bit pattern, so that no compiler option for floating point can take them away.
bool isNaN(double x) noexcept;
bool isFinite(double x) noexcept;
bool isInfinite(double x) noexcept;

}  // namespace qtx
