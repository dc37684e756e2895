// The elementary functions that the plug-in defines itself.
#include "math/elementary.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace qtx {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
const double nan = std::numeric_limits<double>::quiet_NaN();

TEST(Root, GoesByTheLogarithm) {
  EXPECT_NEAR(root(8, 3), 2, 1e-15);
  EXPECT_NEAR(root(27, 3), 3, 1e-14);
  EXPECT_NEAR(root(2, 2), std::sqrt(2.0), 1e-15);
  EXPECT_NEAR(root(2, -1), 0.5, 1e-15);
  EXPECT_EQ(root(0, 2), 0);
  EXPECT_TRUE(std::isnan(root(-8, 3)));
  EXPECT_EQ(root(2, 0), infinity);
  EXPECT_EQ(root(0.5, 0), 0);
  EXPECT_TRUE(std::isnan(root(1, 0)));
}

// Contracted into one operation, as Arm has it, this would be the 2^-104 that the product loses by rounding.
TEST(Compiler, RoundsAProductBeforeItSubtracts) {
  const volatile double factor = 1 + 0x1p-52;
  const volatile double rounded = factor * factor;
  EXPECT_EQ(factor * factor - rounded, 0);
}

TEST(Round, GoesAwayFromZeroAtHalves) {
  EXPECT_EQ(roundTo(2.5, 0), 3);
  EXPECT_EQ(roundTo(-2.5, 0), -3);
  EXPECT_EQ(roundTo(0.49999999999999994, 0), 0);
  EXPECT_EQ(roundTo(1250, -2), 1300);
  EXPECT_EQ(roundTo(1234, -2), 1200);
  EXPECT_NEAR(roundTo(1234.5678, 2), 1234.57, 1e-12);
  EXPECT_EQ(roundTo(nan, 0) == roundTo(nan, 0), false);
  EXPECT_EQ(roundTo(infinity, 0), infinity);
}

TEST(Round, ScalesByThePowerWithoutCorrection) {
  for (const double x : {2.675, 1.005, 0.1 + 0.2, -7.45, 1e15 + 0.3}) {
    for (const int decimals : {-3, -1, 1, 2, 5, 12}) {
      const double scale = std::pow(10.0, static_cast<double>(-decimals));
      EXPECT_EQ(roundTo(x, decimals), std::round(x / scale) * scale) << x << " " << decimals;
    }
  }
}

// Where some C libraries' exp10, which compilers like to call instead, differs in the last bit.
TEST(Round, ScalesByPowAndNotByExp10) {
  const volatile double ten = 10.0;
  for (const int decimals : {-230, 284, 296, 298, 300, 305, 307}) {
    const double scale = std::pow(ten, static_cast<double>(-decimals));
    EXPECT_EQ(roundTo(123.456 * scale, decimals), 123 * scale) << decimals;
  }
}

TEST(Round, IsDefinedForEveryNumberOfDecimals) {
  EXPECT_EQ(roundTo(5, 300), 5);
  EXPECT_TRUE(std::isnan(roundTo(5, -400)));  // 5 / ∞ · ∞
  EXPECT_TRUE(std::isnan(roundTo(5, 400)));   // 5 / 0 · 0
  EXPECT_TRUE(std::isnan(roundTo(5, INT64_MIN)));
  EXPECT_TRUE(std::isnan(roundTo(5, INT64_MAX)));
}

TEST(SplitBinary, GivesSignificandAndExponent) {
  const struct {
    double x, significand;
    std::int64_t exponent;
  } rows[] = {{8, 0.5, 4},
              {0, 0, 0},
              {-0.0, -0.0, 0},
              {1, 0.5, 1},
              {-3, -0.75, 2},
              {0x1p-1074, 0.5, -1073},
              {0x1.8p1023, 0.75, 1024},
              {infinity, infinity, 0}};
  for (const auto& row : rows) {
    std::int64_t exponent = 77;
    EXPECT_EQ(splitBinary(row.x, &exponent), row.significand) << row.x;
    EXPECT_EQ(exponent, row.exponent) << row.x;
  }
  std::int64_t exponent = 77;
  EXPECT_TRUE(std::isnan(splitBinary(nan, &exponent)));
  EXPECT_EQ(exponent, 0);
}

TEST(Factorial, MultipliesInAscendingOrder) {
  EXPECT_EQ(factorial(0), 1);
  EXPECT_EQ(factorial(1), 1);
  double product = 1;
  for (int x = 1; x <= 58; ++x) {
    product *= x;
    EXPECT_EQ(factorial(x), product) << x;
  }
  EXPECT_EQ(factorial(20), 2432902008176640000.0);
}

TEST(Factorial, IsZeroBeyond58) {
  for (const std::int64_t x : {std::int64_t{59}, std::int64_t{60}, std::int64_t{-1}, INT64_MIN, INT64_MAX}) {
    EXPECT_EQ(factorial(x), 0) << x;
  }
}

TEST(Conversion, TruncatesAndSaturates) {
  const struct {
    double value;
    std::int64_t asSigned;
    std::uint64_t asUnsigned;
  } rows[] = {
      {0, 0, 0},
      {-0.0, 0, 0},
      {1.9, 1, 1},
      {-1.9, -1, 0},
      {-0.9, 0, 0},
      {0x1p53, 1LL << 53, 1ULL << 53},
      {9223372036854774784.0, 9223372036854774784, 9223372036854774784u},
      {0x1p63, INT64_MAX, 1ULL << 63},
      {-0x1p63, INT64_MIN, 0},
      {-9223372036854777856.0, INT64_MIN, 0},
      {18446744073709549568.0, INT64_MAX, 18446744073709549568u},
      {0x1p64, INT64_MAX, UINT64_MAX},
      {1e300, INT64_MAX, UINT64_MAX},
      {-1e300, INT64_MIN, 0},
      {infinity, INT64_MAX, UINT64_MAX},
      {-infinity, INT64_MIN, 0},
      {nan, 0, 0},
      {-nan, 0, 0},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(toInt64(row.value), row.asSigned) << row.value;
    EXPECT_EQ(toUInt64(row.value), row.asUnsigned) << row.value;
  }
}

TEST(Classification, GoesByTheBitPattern) {
  const struct {
    double x;
    bool isNaN, isFinite, isInfinite;
  } rows[] = {
      {0, false, true, false},
      {-0.0, false, true, false},
      {0x1p-1074, false, true, false},
      {std::numeric_limits<double>::max(), false, true, false},
      {-std::numeric_limits<double>::max(), false, true, false},
      {infinity, false, false, true},
      {-infinity, false, false, true},
      {nan, true, false, false},
      {-nan, true, false, false},
      {std::numeric_limits<double>::signaling_NaN(), true, false, false},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(isNaN(row.x), row.isNaN) << row.x;
    EXPECT_EQ(isFinite(row.x), row.isFinite) << row.x;
    EXPECT_EQ(isInfinite(row.x), row.isInfinite) << row.x;
  }
}

}  // namespace
}  // namespace qtx
