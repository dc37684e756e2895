// The normal quantile against reference values to 30 digits.
#include "math/normal_quantile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace qtx {
namespace {

struct Reference {
  double p;
  long double quantile;
};
// Computed by normal_quantile_reference.py with mpmath 1.3.0.
const Reference references[] = {
#include "normal_quantile_reference.inc"
};

// What the refinement can give: its error term carries the rounding of a number as large as p, which the
// slope of the quantile then magnifies.
TEST(NormalQuantile, IsAsExactAsItsRefinementAllows) {
  for (const auto& [p, quantile] : references) {
    if (p < std::numeric_limits<double>::min()) continue;
    const long double density = std::exp(-quantile * quantile / 2) / 2.5066282746310005024L;
    const long double ulp = std::numeric_limits<double>::epsilon();
    const long double bound = ulp * (static_cast<long double>(p) / density + std::fabs(quantile));
    EXPECT_LE(std::fabs(static_cast<long double>(normalQuantile(p)) - quantile), bound) << p;
  }
}

TEST(NormalQuantile, KeepsFifteenDigitsInTheLowerTail) {
  for (const auto& [p, quantile] : references) {
    if (p < std::numeric_limits<double>::min() || p >= 0.02425) continue;
    EXPECT_LE(std::fabs(static_cast<long double>(normalQuantile(p)) / quantile - 1), 5e-16L) << p;
  }
}

// Numbers below the normal ones have fewer digits, and so has the error that is taken from their difference.
TEST(NormalQuantile, KeepsTheDigitsThatThereAreBelowTheNormalNumbers) {
  int seen = 0;
  for (const auto& [p, quantile] : references) {
    if (p >= std::numeric_limits<double>::min()) continue;
    ++seen;
    const long double step = std::numeric_limits<double>::denorm_min() / static_cast<long double>(p);
    const long double bound = 2 * step / std::fabs(quantile) + 1e-15L * std::fabs(quantile);
    EXPECT_LE(std::fabs(static_cast<long double>(normalQuantile(p)) - quantile), bound) << p;
  }
  EXPECT_GE(seen, 2);
}

TEST(NormalQuantile, NeverIsWorseThanTheApproximation) {
  for (const auto& [p, quantile] : references) {
    EXPECT_LE(std::fabs(static_cast<long double>(normalQuantile(p)) - quantile), 2e-9L * std::fabs(quantile))
        << p;
  }
}

TEST(NormalQuantile, HasKnownValues) {
  EXPECT_NEAR(normalQuantile(0.5), 0, 1e-15);
  EXPECT_DOUBLE_EQ(normalQuantile(0.975), 1.959963984540054);
  EXPECT_DOUBLE_EQ(normalQuantile(0.025), -1.959963984540054);
}

TEST(NormalQuantile, EndsAtTheRootOfHalfPi) {
  EXPECT_EQ(normalQuantile(0), -1.2533141373155001);
  EXPECT_EQ(normalQuantile(-0.0), -1.2533141373155001);
  EXPECT_EQ(normalQuantile(1), 1.2533141373155001);
}

TEST(NormalQuantile, PassesNaNOn) {
  EXPECT_TRUE(std::isnan(normalQuantile(std::numeric_limits<double>::quiet_NaN())));
}

TEST(NormalQuantile, RisesAcrossTheBordersOfItsRegions) {
  for (const double border : {0.02425, 0.97575}) {
    double previous = normalQuantile(border * (1 - 1e-12));
    for (int i = -9; i <= 10; ++i) {
      const double next = normalQuantile(border * (1 + i * 1e-13));
      EXPECT_GT(next, previous) << border << " " << i;
      previous = next;
    }
  }
}

}  // namespace
}  // namespace qtx
