// The generator against the standard's, and the draws against their distributions. Every seed is fixed, so
// that a test of fit always sees the same numbers.
#include "math/random_draws.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <latch>
#include <limits>
#include <map>
#include <random>
#include <thread>
#include <vector>

namespace qtx {
namespace {

TEST(UniformSequence, IsThatOfTheStandardsGenerator) {
  for (const std::uint32_t seed : {0u, 1u, 5489u, 123456789u, 0xFFFFFFFFu}) {
    UniformSequence uniforms(seed);
    std::mt19937 generator(seed);
    for (int i = 0; i < 200000; ++i) {
      const auto first = static_cast<std::uint32_t>(generator()),
                 second = static_cast<std::uint32_t>(generator());
      ASSERT_EQ(uniforms.next(), uniformFrom(first, second)) << seed << " " << i;
    }
  }
}

TEST(UniformSequence, MakesEachNumberOfTwoOutputs) {
  EXPECT_EQ(uniformFrom(0, 0), 0);
  EXPECT_EQ(uniformFrom(1, 0), 0x1p-64);
  EXPECT_EQ(uniformFrom(0, 1), 0x1p-32);
  EXPECT_EQ(uniformFrom(0, 0x80000000), 0.5);
  EXPECT_EQ(uniformFrom(0xFFFFFFFF, 0x7FFFFFFF), 0.5) << "rounds";
  EXPECT_LT(uniformFrom(0xFFFFFFFF, 0xFFFFFFFF), 1);
  EXPECT_LT(uniformFrom(0xFFFFFC00, 0xFFFFFFFF), 1);
}

constexpr int sampleSize = 400000;

template <typename Draw>
std::vector<double> sample(Draw draw) {
  std::vector<double> values(sampleSize);
  for (double& value : values) value = static_cast<double>(draw());
  return values;
}

struct Moments {
  double mean = 0, variance = 0, skewness = 0;
};
Moments momentsOf(const std::vector<double>& values) {
  const auto n = static_cast<double>(values.size());
  Moments m;
  for (const double x : values) m.mean += x / n;
  double third = 0;
  for (const double x : values) {
    const double d = x - m.mean;
    m.variance += d * d / n;
    third += d * d * d / n;
  }
  m.skewness = third / std::pow(m.variance, 1.5);
  return m;
}

// The largest distance between the sample's distribution and the true one, by Kolmogorov and Smirnov, scaled
// so that 1.95 is exceeded by one sample in a thousand.
template <typename Cumulative>
double distance(std::vector<double> values, Cumulative cumulative) {
  std::sort(values.begin(), values.end());
  const auto n = static_cast<double>(values.size());
  double largest = 0;
  for (std::size_t i = 0; i < values.size(); ++i) {
    const double expected = cumulative(values[i]);
    largest =
        std::max({largest, expected - static_cast<double>(i) / n, static_cast<double>(i + 1) / n - expected});
  }
  return largest * std::sqrt(n);
}

TEST(NormalDraw, FitsItsDistribution) {
  RandomDraws draws(101);
  const auto values = sample([&] { return draws.normal(10, 2); });
  const Moments m = momentsOf(values);
  EXPECT_NEAR(m.mean, 10, 2 * 4 / std::sqrt(sampleSize));
  EXPECT_NEAR(m.variance, 4, 4 * 4 * std::sqrt(2.0 / sampleSize));
  EXPECT_NEAR(m.skewness, 0, 4 * std::sqrt(6.0 / sampleSize));
  EXPECT_LT(distance(values, [](double x) { return std::erfc((10 - x) / 2 / std::sqrt(2.0)) / 2; }), 1.95);
}

TEST(NormalDraw, TakesOddDeviations) {
  RandomDraws draws(102), same(102);
  EXPECT_EQ(draws.normal(3, 0), 3);
  same.normal(0, 1);
  const double standard = same.normal(0, 1);
  EXPECT_EQ(draws.normal(0, -1), -standard);
  EXPECT_TRUE(std::isnan(draws.normal(std::nan(""), 1)));
}

TEST(ExponentialDraw, FitsItsDistribution) {
  RandomDraws draws(103);
  const auto values = sample([&] { return draws.exponential(0.5); });
  const Moments m = momentsOf(values);
  EXPECT_NEAR(m.mean, 2, 2 * 4 / std::sqrt(sampleSize));
  EXPECT_NEAR(m.variance, 4, 4 * 4 * std::sqrt(8.0 / sampleSize));
  EXPECT_NEAR(m.skewness, 2, 0.1);
  EXPECT_LT(distance(values, [](double x) { return 1 - std::exp(-x / 2); }), 1.95);
  EXPECT_GE(*std::min_element(values.begin(), values.end()), 0);
}

TEST(ExponentialDraw, TakesOddRates) {
  RandomDraws draws(104);
  EXPECT_EQ(draws.exponential(0), std::numeric_limits<double>::infinity());
  EXPECT_LT(draws.exponential(-1), 0);
  EXPECT_EQ(draws.exponential(std::numeric_limits<double>::infinity()), 0);
}

// Pearson's statistic over the values, those expected less than ten times taken together, as the distance
// from its mean in standard deviations.
double misfit(const std::vector<double>& values, double mean) {
  std::map<double, double> counts;
  for (const double x : values) ++counts[x];
  const double n = sampleSize, spread = 12 * std::sqrt(mean) + 30;
  double statistic = 0, expectedRest = n, countedRest = n;
  int bins = 0;
  for (double k = std::max(0.0, std::floor(mean - spread)); k <= mean + spread; ++k) {
    const double expected = n * std::exp(k * std::log(mean) - mean - std::lgamma(k + 1));
    if (expected < 10) continue;
    const double counted = counts[k];
    statistic += (counted - expected) * (counted - expected) / expected;
    expectedRest -= expected;
    countedRest -= counted;
    ++bins;
  }
  if (expectedRest > 1) {
    statistic += (countedRest - expectedRest) * (countedRest - expectedRest) / expectedRest;
    ++bins;
  }
  const double freedom = bins - 1;
  return (statistic - freedom) / std::sqrt(2 * freedom);
}

TEST(PoissonDraw, FitsItsDistributionOnBothSidesOfTen) {
  RandomDraws draws(105);
  for (const int mean : {1, 2, 5, 9, 10, 11, 12, 15, 20, 37, 100, 250, 1000, 5000}) {
    const auto values = sample([&] { return draws.poisson(mean); });
    const Moments m = momentsOf(values);
    EXPECT_NEAR(m.mean, mean, 4 * std::sqrt(static_cast<double>(mean) / sampleSize)) << mean;
    EXPECT_NEAR(m.variance, mean, 4 * std::sqrt((2.0 * mean * mean + mean) / sampleSize)) << mean;
    EXPECT_NEAR(m.skewness, 1 / std::sqrt(mean), 0.05) << mean;
    EXPECT_LT(misfit(values, mean), 4) << mean;
  }
}

int factorsDownTo(UniformSequence& uniforms, double threshold) {
  int factors = 1;
  for (double product = uniforms.next(); product > threshold; product *= uniforms.next()) ++factors;
  return factors;
}

TEST(PoissonDraw, MultipliesUniformsForMeansBelowTenAlone) {
  for (int mean = 1; mean <= 12; ++mean) {
    RandomDraws draws(111);
    UniformSequence uniforms(111);
    int different = 0;
    for (int i = 0; i < 1000; ++i) {
      different += draws.poisson(mean) != factorsDownTo(uniforms, std::exp(-mean)) - 1;
    }
    EXPECT_EQ(different == 0, mean < 10) << mean << ": " << different << " of 1000 differ";
  }
}

TEST(PoissonDraw, FitsTheNormalDistributionForLargeMeans) {
  RandomDraws draws(106);
  for (const int mean : {1000000, 2000000000}) {
    const double deviation = std::sqrt(mean);
    const auto values = sample([&] { return (draws.poisson(mean) - static_cast<double>(mean)) / deviation; });
    EXPECT_LT(distance(values, [](double x) { return std::erfc(-x / std::sqrt(2.0)) / 2; }), 2.5) << mean;
  }
}

TEST(PoissonDraw, NeverLeavesThe32Bits) {
  RandomDraws draws(107);
  int atTheLimit = 0;
  for (int i = 0; i < 10000; ++i) {
    const std::int32_t value = draws.poisson(INT32_MAX);
    EXPECT_GT(value, INT32_MAX - 400000);
    atTheLimit += value == INT32_MAX;
  }
  EXPECT_NEAR(atTheLimit, 5000, 300);
}

TEST(PoissonDraw, IsZeroForAMeanOfZeroOrLess) {
  RandomDraws draws(108);
  for (const std::int32_t mean : {0, -1, -10, INT32_MIN}) EXPECT_EQ(draws.poisson(mean), 0) << mean;
  EXPECT_EQ(draws.exponential(1), RandomDraws(108).exponential(1)) << "no number has been taken";
}

// Fresh distributions of the standard library are the same functions of the generator's outputs, as long as
// nothing is kept from one draw for the next.
#if defined(__GLIBCXX__)
TEST(Draws, LeaveNothingBehindButTheGeneratorsState) {
  RandomDraws draws(109);
  std::mt19937 generator(109);
  std::mt19937 order(1);
  for (int i = 0; i < 100000; ++i) {
    switch (order() % 3) {
      case 0:
        ASSERT_EQ(draws.normal(1, 3), std::normal_distribution<double>(1, 3)(generator)) << i;
        break;
      case 1:
        ASSERT_EQ(draws.exponential(2), std::exponential_distribution<double>(2)(generator)) << i;
        break;
      default:
        ASSERT_EQ(draws.poisson(4), std::poisson_distribution<int>(4)(generator)) << i;
    }
  }
}
#endif

// A sum over numbers that does not depend on their order, and hardly ever is the same for others.
struct Fingerprint {
  std::uint64_t sum = 0;
  void add(double value) {
    const auto bits = std::bit_cast<std::uint64_t>(value) * 0x9E3779B97F4A7C15;
    sum += (bits ^ bits >> 32) * 0xD6E8FEB86659FD93;
  }
};

// Whatever order the threads take their turns in, together they get what one gets alone.
template <typename Draw>
void expectThoseOfOneThread(const char* kind, Draw draw) {
  constexpr std::size_t threadCount = 4, each = 500000;
  RandomDraws draws(110);
  std::latch start(threadCount);
  std::vector<Fingerprint> parts(threadCount);
  std::vector<std::thread> threads;
  for (Fingerprint& part : parts) {
    threads.emplace_back([&] {
      Fingerprint own;
      start.arrive_and_wait();
      for (std::size_t i = 0; i < each; ++i) own.add(draw(draws));
      part = own;
    });
  }
  for (auto& thread : threads) thread.join();
  Fingerprint together, alone;
  for (const Fingerprint& part : parts) together.sum += part.sum;
  RandomDraws same(110);
  for (std::size_t i = 0; i < threadCount * each; ++i) alone.add(draw(same));
  EXPECT_EQ(together.sum, alone.sum) << kind;
}

TEST(Draws, FromManyThreadsAreThoseOfOne) {
  expectThoseOfOneThread("exponential", [](RandomDraws& draws) { return draws.exponential(1); });
  expectThoseOfOneThread("normal", [](RandomDraws& draws) { return draws.normal(0, 1); });
  expectThoseOfOneThread("Poisson by products", [](RandomDraws& draws) { return draws.poisson(5); });
  expectThoseOfOneThread("Poisson from ten on", [](RandomDraws& draws) { return draws.poisson(40); });
}

}  // namespace
}  // namespace qtx
