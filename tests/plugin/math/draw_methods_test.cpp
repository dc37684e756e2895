// The methods against references that go step by step, on numbers that are chosen: both sides of every place
// where the outcome changes. A test of fit sees a wrong digit of a constant only in millions of draws.
#include "math/draw_methods.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <vector>

namespace qtx {
namespace {

using Numbers = std::vector<double>;
constexpr double belowOne = 1 - std::numeric_limits<double>::epsilon() / 2;

// Gives the numbers of a list, one after another.
class Given {
 public:
  struct NoneLeft {};
  explicit Given(const Numbers& numbers) : at_(numbers.data()), end_(at_ + numbers.size()) {}
  double next() { return at_ < end_ ? *at_++ : throw NoneLeft(); }
  bool isUsedUp() const { return at_ == end_; }

 private:
  const double *at_, *end_;
};

// What the numbers lead to; nothing where more of them are wanted. Which of them were taken is part of it.
struct Outcome {
  std::optional<double> value;
  bool isUsedUp = false;
  bool operator==(const Outcome&) const = default;
};

template <typename Draw>
Outcome outcomeOf(Draw draw, const Numbers& numbers) {
  Given given(numbers);
  try {
    const double value = draw(given);
    return {value, given.isUsedUp()};
  } catch (Given::NoneLeft) {
    return {};
  }
}

// Lets one of the numbers go from 0 to 1, and looks closely where the reference's outcome changes on the way.
template <typename Draw, typename Reference>
void expectSameBorders(Draw draw, Reference reference, Numbers numbers, std::size_t moving) {
  const auto at = [&](double number) -> const Numbers& {
    numbers[moving] = number;
    return numbers;
  };
  const auto compare = [&](double number) {
    const Outcome expected = outcomeOf(reference, at(number));
    const Outcome found = outcomeOf(draw, numbers);
    EXPECT_EQ(found.value, expected.value) << testing::PrintToString(numbers);
    EXPECT_EQ(found.isUsedUp, expected.isUsedUp) << testing::PrintToString(numbers);
    return expected;
  };
  constexpr int steps = 40;
  double before = 0;
  Outcome outcome = compare(before);
  for (int i = 1; i <= steps && !testing::Test::HasFailure(); ++i) {
    const double next = std::min(static_cast<double>(i) / steps, belowOne);
    const Outcome after = compare(next);
    if (after != outcome) {
      double left = before, right = next;
      for (;;) {
        const double middle = left + (right - left) / 2;
        if (middle <= left || middle >= right) break;
        (outcomeOf(reference, at(middle)) == outcome ? left : right) = middle;
      }
      compare(left);
      compare(right);
    }
    before = next;
    outcome = after;
  }
}

TEST(PolarPoint, LiesInTheUnitCircleButForItsCentre) {
  const auto draw = [](auto& given) { return polarPoint(given).y; };
  const auto reference = [](auto& given) {
    while (true) {
      const double x = given.next() * 2 - 1;
      const double y = given.next() * 2 - 1;
      const double r = x * x + y * y;
      if (r > 0 && r <= 1) return y;
    }
  };
  for (const double other : {0.0, 0.0625, 0.3, 0.5, 0.8, 0.9375, belowOne}) {
    expectSameBorders(draw, reference, {other, 0}, 1);
    expectSameBorders(draw, reference, {0, other}, 0);
  }
  for (const Numbers& numbers : {Numbers{0.5, 0.0}, Numbers{0.0, 0.5}}) {
    EXPECT_TRUE(outcomeOf(draw, numbers).value) << "on the circle";
  }
  EXPECT_FALSE(outcomeOf(draw, {0.5, 0.5}).value) << "its centre";
  EXPECT_EQ(outcomeOf(draw, {0.5, 0.5, 0.5, 0.25}).value, -0.5) << "the point after it";
}

TEST(PolarPoint, IsSpreadLikeANormalDeviate) {
  const Numbers numbers = {0.25, 0.625};  // -0.5 and 0.25
  Given given(numbers);
  const PolarPoint point = polarPoint(given);
  EXPECT_EQ(point.squaredRadius, 0.3125);
  EXPECT_DOUBLE_EQ(point.deviate(), 0.25 * std::sqrt(2 * std::log(3.2) * 3.2));
  EXPECT_EQ((PolarPoint{1, 1}).deviate(), 0);
}

TEST(StandardExponential, IsTheLogarithm) {
  EXPECT_DOUBLE_EQ(standardExponential(0.5), std::log(2.0));
  EXPECT_DOUBLE_EQ(standardExponential(0.75), std::log(4.0));
  EXPECT_EQ(standardExponential(0), 0);
  EXPECT_FALSE(std::signbit(standardExponential(0)));
}

TEST(ProductOfUniforms, CountsTheFactorsDownToTheThreshold) {
  const auto draw = [](auto& given) { return productOfUniforms(given, 3); };
  const double threshold = std::exp(-3.0), above = std::nextafter(threshold, 1);
  EXPECT_EQ(outcomeOf(draw, {threshold}).value, 0);
  EXPECT_EQ(outcomeOf(draw, {above}).value, std::nullopt);
  EXPECT_EQ(outcomeOf(draw, {above, 0.5}).value, 1);
  EXPECT_EQ(outcomeOf(draw, {0.5, 0.5, 0.5, 0.5}).value, std::nullopt) << "1/16 is more";
  EXPECT_EQ(outcomeOf(draw, {0.5, 0.5, 0.5, 0.5, 0.5}).value, 4);
}

// Algorithm PD, one function for each of its steps.
struct AlgorithmPD {
  double mu;
  double s = std::sqrt(mu);

  bool isImmediate(double k) const { return k >= std::floor(mu - 1.1484); }

  bool isSqueezed(double k, double u) const { return 6 * mu * mu * u >= (mu - k) * (mu - k) * (mu - k); }

  struct Densities {
    double px, py, fx, fy;
  };
  Densities procedureF(double k) const {
    Densities f{};
    if (k < 10) {
      double factorial = 1;
      for (int i = 2; i <= static_cast<int>(k); ++i) factorial *= i;
      f.px = -mu;
      f.py = std::pow(mu, k) / factorial;
    } else {
      const double twelfth = 1 / (12 * k);
      const double delta = twelfth - 4.8 * twelfth * twelfth * twelfth;
      const double v = (mu - k) / k;
      if (v < -0.25 || v > 0.25) {
        f.px = k * std::log(1 + v) - (mu - k) - delta;
      } else {
        double sum = 0.1250060;
        for (const double a : {-0.1384794, 0.1421878, -0.1661269, 0.2000118, -0.2500068, 0.3333333, -0.5}) {
          sum = sum * v + a;
        }
        f.px = k * v * v * sum - delta;
      }
      f.py = 0.3989422804014327 / std::sqrt(k);
    }
    const double b1 = 1 / (24 * mu), b2 = 0.3 * b1 * b1, c3 = b1 * b2 / 7;
    const double c2 = b2 - 15 * c3, c1 = b1 - 6 * b2 + 45 * c3, c0 = 1 - b1 + 3 * b2 - 15 * c3;
    const double x = (0.5 - (mu - k)) / s;
    f.fx = -0.5 * (x * x);
    f.fy = 0.3989422804014327 / s * (((c3 * (x * x) + c2) * (x * x) + c1) * (x * x) + c0);
    return f;
  }

  bool isAccepted(double k, double u) const {
    const Densities f = procedureF(k);
    return f.fy * (1 - u) <= f.py * std::exp(f.px - f.fx);
  }

  // Of a double exponential deviate t = 1.8 ± e.
  bool isAcceptedUnderTheHat(double k, double u, double e) const {
    const Densities f = procedureF(k);
    return 0.1069 / mu * std::fabs(u) <= f.py * std::exp(f.px + e) - f.fy * std::exp(f.fx + e);
  }

  double operator()(Given& given) const {
    const double g = mu + s * polarPoint(given).deviate();
    if (g >= 0) {
      const double k = std::floor(g);
      if (isImmediate(k)) return k;
      const double u = given.next();
      if (isSqueezed(k, u) || isAccepted(k, u)) return k;
    }
    while (true) {
      const double e = -std::log(1 - given.next());
      const double u = given.next() * 2 - 1;
      const double t = u < 0 ? 1.8 - e : 1.8 + e;
      if (t > -0.6744) {
        const double k = std::floor(mu + s * t);
        if (isAcceptedUnderTheHat(k, u, e)) return k;
      }
    }
  }
};

const std::vector<double> means = {10, 11, 12, 13, 16, 20, 37, 100, 1000, 1e6, 2147483647};

// The two numbers that step N makes a deviate of: on the line through the centre.
Numbers normalDeviate(double t) { return {0.5, (1 + std::copysign(std::exp(-t * t / 4), t)) / 2}; }

TEST(ModifiedNormal, IsAlgorithmPDAtEveryBorderOfItsFirstSteps) {
  for (const double mu : means) {
    const AlgorithmPD reference{mu};
    const auto draw = [&](auto& given) { return modifiedNormal(given, mu); };
    for (const double x : {0.5, 0.3, 0.75}) expectSameBorders(draw, reference, {x, 0}, 1);
    for (double t = -4; t < 0; t += 0.0625) {
      Numbers numbers = normalDeviate(t);
      numbers.push_back(0);
      expectSameBorders(draw, reference, numbers, 2);
    }
  }
}

// Hardly any point of the circle leads to 0 exactly: it is looked for.
TEST(ModifiedNormal, CountsADeviateThatComesToNothing) {
  const double mu = 16, s = 4;
  const auto g = [&](const Numbers& numbers) {
    Given given(numbers);
    return mu + s * polarPoint(given).deviate();
  };
  int found = 0;
  for (double x = 0.5; x < 0.5004; x += 1e-6) {
    double left = 0.47, right = 0.4925;  // on both sides
    for (;;) {
      const double middle = left + (right - left) / 2;
      if (middle <= left || middle >= right) break;
      (g({x, middle}) > 0 ? left : right) = middle;
    }
    if (g({x, right}) != 0) continue;
    ++found;
    EXPECT_EQ(outcomeOf([&](auto& given) { return modifiedNormal(given, mu); }, {x, right, belowOne}).value,
              0);
  }
  EXPECT_GT(found, 0);
}

// So step S decides nothing but how soon a number is accepted, and may accept fewer.
TEST(ModifiedNormal, AcceptsInStepQWhatStepSAccepts) {
  for (const double mu : means) {
    const AlgorithmPD reference{mu};
    const double most = std::floor(mu - 1.1484);
    for (double t = -6; t < 0; t += 0.001) {
      const double k = std::floor(mu + reference.s * t);
      if (k < 0 || k >= most) continue;
      const double u = (mu - k) * (mu - k) * (mu - k) / (6 * mu * mu);
      if (u < 1) {
        ASSERT_TRUE(reference.isAccepted(k, u)) << mu << " " << k;
      }
    }
  }
}

TEST(ModifiedNormal, IsAlgorithmPDAtEveryBorderOfItsLastSteps) {
  for (const double mu : means) {
    const AlgorithmPD reference{mu};
    const auto draw = [&](auto& given) { return modifiedNormal(given, mu); };
    // One that step Q refuses, if there is one.
    Numbers first = normalDeviate(-2);
    for (double t = -4; t < 0; t += 0.03125) {
      Numbers numbers = normalDeviate(t);
      numbers.push_back(0);
      if (!outcomeOf(reference, numbers).value) first = numbers;
    }
    ASSERT_FALSE(outcomeOf(reference, first).value) << mu;
    std::vector<Numbers> beginnings = {first};
    if (mu < 25) beginnings.push_back(normalDeviate(-5));  // leads below 0
    for (const Numbers& beginning : beginnings) {
      for (double e = 0; e < 8; e += 0.125) {
        Numbers numbers = beginning;
        numbers.insert(numbers.end(), {1 - std::exp(-e), 0});
        expectSameBorders(draw, reference, numbers, numbers.size() - 1);
      }
      for (double u = 0; u < 1; u += 0.03125) {
        Numbers numbers = beginning;
        numbers.insert(numbers.end(), {0, u});
        expectSameBorders(draw, reference, numbers, numbers.size() - 2);
      }
    }
  }
}

}  // namespace
}  // namespace qtx
