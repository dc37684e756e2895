// The spline's kernel against the formulas written out one by one.
#include "spline/constrained_spline.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "frame/processor.h"
#include "knots.h"
#include "spline/spline_cubics.h"

namespace qtx {
namespace {

// Equal bits, or both NaN: processors differ in the sign of the NaN they make.
testing::AssertionResult same(double actual, double expected) {
  if (std::isnan(actual) && std::isnan(expected)) return testing::AssertionSuccess();
  if (std::bit_cast<std::uint64_t>(actual) == std::bit_cast<std::uint64_t>(expected)) {
    return testing::AssertionSuccess();
  }
  return testing::AssertionFailure() << std::hexfloat << actual << " instead of " << expected;
}

// The formulas, each sequence with its placeholder at index 0.
struct Formulas {
  Values x, a{0.0}, b{0.0}, c{0.0}, d{0.0};

  Formulas(const Values& points, const Values& y) : x(points) {
    const std::size_t n = x.size();
    Values dx{0.0}, dy{0.0}, s(n), l{0.0}, r{0.0};
    for (std::size_t i = 1; i < n; ++i) {
      dx.push_back(x[i] - x[i - 1]);
      dy.push_back(y[i] - y[i - 1]);
    }
    for (std::size_t i = 1; i + 1 < n; ++i) {
      s[i] = 0;
      if (dy[i] > 0 && dy[i + 1] > 0) {
        const double q = dx[i] / dy[i] + dx[i + 1] / dy[i + 1];
        if (q > 0) s[i] = 2.0 / q;
      }
    }
    s[0] = 1.5 * dy[1] / dx[1] - 0.5 * s[1];
    s[n - 1] = 1.5 * dy[n - 1] / dx[n - 1] - 0.5 * s[n - 2];
    for (std::size_t i = 1; i < n; ++i) {
      l.push_back(6 * dy[i] / (dx[i] * dx[i]) - 2 * (s[i] + 2 * s[i - 1]) / dx[i]);
      r.push_back(2 * (2 * s[i] + s[i - 1]) / dx[i] - 6 * dy[i] / (dx[i] * dx[i]));
    }
    for (std::size_t i = 1; i < n; ++i) {
      d.push_back((r[i] - l[i]) / (6 * dx[i]));
      c.push_back((x[i] * l[i] - x[i - 1] * r[i]) / (2 * dx[i]));
      b.push_back((dy[i] - c[i] * (x[i] * x[i] - x[i - 1] * x[i - 1]) -
                   d[i] * (x[i] * x[i] * x[i] - x[i - 1] * x[i - 1] * x[i - 1])) /
                  dx[i]);
      a.push_back(y[i - 1] - b[i] * x[i - 1] - c[i] * (x[i - 1] * x[i - 1]) -
                  d[i] * (x[i - 1] * x[i - 1] * x[i - 1]));
    }
  }

  double operator()(double at) const {
    std::size_t k = 1;
    while (k < x.size() && at > x[k]) ++k;
    k = std::min(k, a.size() - 1);
    return d[k] * at * at * at + (c[k] * at * at + (b[k] * at + a[k]));
  }
};

// What a test asks of every form that this processor has.
std::vector<void (*)(const double*, const double*, std::size_t, double*)> formsOfCubics() {
  std::vector forms{&computeCubicsByTwos};
#if defined(__x86_64__)
  if (thisProcessor().hasWideVectors) forms.push_back(&computeCubicsByFours);
  if (thisProcessor().hasWidestVectors) forms.push_back(&computeCubicsByEights);
#endif
  return forms;
}

void expectSameCurves(const Values& x, const Values& y, const Values& coordinates) {
  const Formulas expected(x, y);
  const ConstrainedSpline actual(x.data(), y.data(), x.size());
  for (std::size_t i = 0; i < x.size(); ++i) {
    const double* cubic = actual.coefficients() + ConstrainedSpline::stride * i;
    ASSERT_TRUE(same(cubic[0], expected.a[i])) << "a(" << i << ")";
    ASSERT_TRUE(same(cubic[1], expected.b[i])) << "b(" << i << ")";
    ASSERT_TRUE(same(cubic[2], expected.c[i])) << "c(" << i << ")";
    ASSERT_TRUE(same(cubic[3], expected.d[i])) << "d(" << i << ")";
  }
  for (const double at : coordinates) ASSERT_TRUE(same(actual(at), expected(at))) << "at " << at;
}

TEST(ConstrainedSpline, HasTheFormulasBits) {
  Generator generator(2);
  std::vector<std::size_t> sizes;
  for (std::size_t n = 3; n < 400; ++n) sizes.push_back(n);  // several blocks, cut at every place
  sizes.push_back(10000);
  for (const std::size_t n : sizes) {
    for (int kind = 0; kind < Generator::kinds; ++kind) {
      const Values x = generator.knots(static_cast<Generator::Kind>(kind), n);
      const Values y = generator.knots(
          static_cast<Generator::Kind>(generator.below(static_cast<std::size_t>(Generator::kinds))), n);
      ASSERT_NO_FATAL_FAILURE(expectSameCurves(x, y, coordinatesAround(x, generator)))
          << n << " points, kind " << kind;
    }
  }
}

TEST(ConstrainedSpline, HasTheFormulasBitsInEveryForm) {
  Generator generator(12);
  for (std::size_t n = 3; n < 400; ++n) {
    for (int kind = 0; kind < Generator::kinds; ++kind) {
      const Values x = generator.knots(static_cast<Generator::Kind>(kind), n);
      const Values y = generator.knots(
          static_cast<Generator::Kind>(generator.below(static_cast<std::size_t>(Generator::kinds))), n);
      const Formulas expected(x, y);
      std::size_t form = 0;
      for (const auto compute : formsOfCubics()) {
        Values cubics(4 * (n - 1));
        compute(x.data(), y.data(), n, cubics.data());
        for (std::size_t i = 1; i < n; ++i) {
          const double* const cubic = cubics.data() + 4 * (i - 1);
          const bool areSame = same(cubic[0], expected.a[i]) && same(cubic[1], expected.b[i]) &&
                               same(cubic[2], expected.c[i]) && same(cubic[3], expected.d[i]);
          ASSERT_TRUE(areSame) << n << " points, kind " << kind << ", interval " << i << ", form " << form;
        }
        ++form;
      }
    }
  }
}

// Both ways to search, at the places where one hands over to the other.
TEST(ConstrainedSpline, HasTheFormulasBitsBetweenHardKnots) {
  Generator generator(10);
  std::vector<std::size_t> sizes{100, 1000, 4099};
  for (std::size_t n = 3; n < 40; ++n) sizes.push_back(n);
  for (const std::size_t n : sizes) {
    for (int kind = 0; kind < hardKinds; ++kind) {
      const Values x = hardKnots(static_cast<Hard>(kind), n, generator);
      const Values y = generator.knots(Generator::Kind::ascending, n);
      ASSERT_NO_FATAL_FAILURE(expectSameCurves(x, y, bordersOf(x, generator, std::min<std::size_t>(n, 400))))
          << n << " points, kind " << kind;
    }
  }
}

// One knot of many out of order, at each place.
TEST(ConstrainedSpline, HasTheFormulasBitsAroundASingleOddKnot) {
  Generator generator(11);
  for (const std::size_t n : {19, 40}) {
    for (const double odd : {nan, infinity, -infinity, 1e9, -1e9}) {
      for (std::size_t place = 0; place < n; ++place) {
        Values x = hardKnots(Hard::even, n, generator);
        x[place] = odd;
        const Values y = generator.knots(Generator::Kind::shuffled, n);
        ASSERT_NO_FATAL_FAILURE(expectSameCurves(x, y, bordersOf(x, generator, n))) << odd << " at " << place;
      }
    }
  }
}

// The hash is that of x86-64; every other processor, compiler and optimization has to arrive at it.
TEST(ConstrainedSpline, HasTheSameBitsOnEveryProcessor) {
  std::mt19937_64 engine(3);
  const auto fraction = [&] { return static_cast<double>(engine() >> 11) * 0x1p-53; };
  Values x, y;
  double lastX = -100, lastY = 0;
  for (int i = 0; i < 1000; ++i) {
    x.push_back(lastX += 0.125 + fraction());
    y.push_back(lastY += fraction() - 0.25);
  }
  std::uint64_t hash = 14695981039346656037u;  // FNV-1a, word by word
  const auto add = [&](double value) {
    hash = (hash ^ std::bit_cast<std::uint64_t>(value)) * 1099511628211u;
  };
  const ConstrainedSpline curve(x.data(), y.data(), x.size());
  for (std::size_t i = 0; i < ConstrainedSpline::stride * x.size(); ++i) add(curve.coefficients()[i]);
  for (int i = 0; i < 1000; ++i) add(curve(-110 + 700 * fraction()));
  EXPECT_EQ(hash, 5310292482501980753u);
}

struct SlopeRow {
  const char* name;
  Values x, y;
  double slopeAtFirst, slopeAtSecond, slopeAtThird;
};

double slopeOf(const double* cubic, double at) {
  return cubic[1] + 2 * cubic[2] * at + 3 * cubic[3] * at * at;
}

TEST(ConstrainedSpline, TakesSlopesFromSecants) {
  const SlopeRow rows[] = {
      {"both rise: harmonic mean", {0, 1, 2}, {0, 1, 4}, 0.75, 1.5, 3.75},
      {"both fall: level", {0, 1, 2}, {3, 2, 0}, -1.5, 0, -3},
      {"peak", {0, 1, 2}, {0, 1, 0}, 1.5, 0, -1.5},
      {"valley", {0, 1, 2}, {1, 0, 1}, -1.5, 0, 1.5},
      {"flat, then rising", {0, 1, 2}, {0, 0, 1}, 0, 0, 1.5},
      {"uneven knots", {0, 1, 3}, {0, 2, 4}, 7.0 / 3, 4.0 / 3, 5.0 / 6},
  };
  for (const SlopeRow& row : rows) {
    const ConstrainedSpline curve(row.x.data(), row.y.data(), 3);
    const double* cubic = curve.coefficients();
    const std::size_t stride = ConstrainedSpline::stride;
    EXPECT_NEAR(slopeOf(cubic + stride, row.x[0]), row.slopeAtFirst, 1e-12) << row.name;
    EXPECT_NEAR(slopeOf(cubic + stride, row.x[1]), row.slopeAtSecond, 1e-12) << row.name;
    EXPECT_NEAR(slopeOf(cubic + 2 * stride, row.x[1]), row.slopeAtSecond, 1e-12) << row.name;
    EXPECT_NEAR(slopeOf(cubic + 2 * stride, row.x[2]), row.slopeAtThird, 1e-12) << row.name;
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(curve(row.x[i]), row.y[i], 1e-12) << row.name;
  }
}

TEST(ConstrainedSpline, ExtendsTheOuterCubics) {
  const Values x{1, 2, 3, 4}, y{1, 3, 2, 5};
  const ConstrainedSpline curve(x.data(), y.data(), 4);
  const auto cubicAt = [&](std::size_t interval, double at) {
    const double* cubic = curve.coefficients() + ConstrainedSpline::stride * interval;
    return cubic[3] * at * at * at + (cubic[2] * at * at + (cubic[1] * at + cubic[0]));
  };
  EXPECT_EQ(curve(-7), cubicAt(1, -7));
  EXPECT_EQ(curve(2), cubicAt(1, 2));
  EXPECT_EQ(curve(std::nextafter(2, 3)), cubicAt(2, std::nextafter(2, 3)));
  EXPECT_EQ(curve(3), cubicAt(2, 3));
  EXPECT_EQ(curve(11), cubicAt(3, 11));
}

// Where the parts lie: a line to begin at, the index, the table where there are many points, a line, and four
// coefficients for each.
TEST(ConstrainedSpline, IsStoredInFourDoublesAPointAndALittleMore) {
  for (std::size_t n = 3; n < 600; ++n) {
    const std::size_t table = n < 18 ? 0 : (GuideTable::size(n - 1) * 4 + 63) / 64 * 8;
    ASSERT_EQ(ConstrainedSpline::size(n), 8 + KnotIndex(n).size() + table + 8 + 4 * n) << n;
  }
}

}  // namespace
}  // namespace qtx
