// Roots, rounding, splitting, factorials, conversions and classes of doubles.
#include "math/elementary.h"

#include <bit>
#include <cmath>

namespace qtx {

double root(double x, double y) noexcept { return std::exp(std::log(x) / y); }

double roundTo(double x, std::int64_t decimals) noexcept {
  if (decimals == 0) return std::round(x);
  // Kept from compilers, which would call exp10 for the constant: it does not round like pow.
  const volatile double base = 10.0;
  const double scale = std::pow(base, -static_cast<double>(decimals));
  return std::round(x / scale) * scale;
}

double splitBinary(double x, std::int64_t* exponent) noexcept {
  int e = 0;
  const double significand = std::frexp(x, &e);
  *exponent = isFinite(x) ? e : 0;  // the C library leaves it open
  return significand;
}

double factorial(std::int64_t x) noexcept {
  constexpr std::int64_t largest = 58;
  if (x < 0 || x > largest) return 0.0;
  double product = 1.0;
  for (std::int64_t factor = 1; factor <= x; ++factor) product *= static_cast<double>(factor);
  return product;
}

std::int64_t toInt64(double value) noexcept {
  if (value >= 0x1p63) return INT64_MAX;
  if (value <= -0x1p63) return INT64_MIN;
  return isNaN(value) ? 0 : static_cast<std::int64_t>(value);
}

std::uint64_t toUInt64(double value) noexcept {
  if (value >= 0x1p64) return UINT64_MAX;
  return value > 0 ? static_cast<std::uint64_t>(value) : 0;  // NaN too
}

double toDouble(std::int64_t value) noexcept { return static_cast<double>(value); }
double toDouble(std::uint64_t value) noexcept { return static_cast<double>(value); }

namespace {
constexpr std::uint64_t infinity = 0x7FF0000000000000;
std::uint64_t magnitudeOf(double x) { return std::bit_cast<std::uint64_t>(x) & ~(std::uint64_t{1} << 63); }
}  // namespace

bool isNaN(double x) noexcept { return magnitudeOf(x) > infinity; }
bool isFinite(double x) noexcept { return magnitudeOf(x) < infinity; }
bool isInfinite(double x) noexcept { return magnitudeOf(x) == infinity; }

}  // namespace qtx
