// The search for an interval against a plain scan.
#include "spline/knot_index.h"

#include <gtest/gtest.h>

#include <memory>

#include "knots.h"

namespace qtx {
namespace {

std::size_t scan(const Values& x, double at) {
  for (std::size_t i = 1; i < x.size(); ++i) {
    if (!(at > x[i])) return i;
  }
  return x.size() - 1;
}

void expectSameIntervals(const Values& x, const Values& coordinates) {
  KnotIndex index(x.size());
  std::unique_ptr<double[]> maxima(new double[index.size()]);
  index.fill(x.data(), maxima.get());
  for (const double at : coordinates) {
    ASSERT_EQ(index.find(x.data(), at), scan(x, at)) << "of " << x.size() << " at " << at;
  }
}

// Every size up to where the index has three levels, then the sizes at which a level fills up.
TEST(KnotIndex, FindsWhatTheScanFinds) {
  Generator generator(1);
  std::vector<std::size_t> sizes;
  for (std::size_t n = 2; n < 700; ++n) sizes.push_back(n);
  for (const std::size_t full : {16 * 16 * 16, 16 * 16 * 16 * 16}) {
    for (const std::size_t n : {full - 1, full, full + 1, full + 2}) sizes.push_back(n);
  }
  for (const std::size_t n : sizes) {
    for (int kind = 0; kind < Generator::kinds; ++kind) {
      const Values x = generator.knots(static_cast<Generator::Kind>(kind), n);
      ASSERT_NO_FATAL_FAILURE(expectSameIntervals(x, coordinatesAround(x, generator))) << "kind " << kind;
    }
  }
}

TEST(KnotIndex, FindsWhatTheScanFindsAmongHardKnots) {
  Generator generator(4);
  for (const std::size_t n : {3, 17, 18, 100, 1000, 4099}) {
    for (int kind = 0; kind < hardKinds; ++kind) {
      const Values x = hardKnots(static_cast<Hard>(kind), n, generator);
      ASSERT_NO_FATAL_FAILURE(expectSameIntervals(x, bordersOf(x, generator, std::min<std::size_t>(n, 200))))
          << "kind " << kind;
    }
  }
}

// What only a search among ascending knots may rely on.
TEST(KnotIndex, KnowsWhetherTheKnotsAscend) {
  const auto ascends = [](const Values& x) {
    KnotIndex index(x.size());
    std::unique_ptr<double[]> maxima(new double[index.size()]);
    index.fill(x.data(), maxima.get());
    return index.isAscending();
  };
  for (const std::size_t n : {3, 9, 17, 18, 33, 34, 300}) {
    Values x(n);
    for (const std::size_t shift : {1, 0}) {  // equal knots in places odd and even
      for (std::size_t i = 0; i < n; ++i) x[i] = static_cast<double>((i + shift) / 2);
      EXPECT_TRUE(ascends(x)) << n;
    }
    for (std::size_t place = 1; place < n; ++place) {
      Values odd = x;
      odd[place] = nan;
      EXPECT_FALSE(ascends(odd)) << "NaN at " << place << " of " << n;
      if (place == 1) continue;
      odd[place] = x[place - 1] - 0.5;
      EXPECT_FALSE(ascends(odd)) << "a step down to " << place << " of " << n;
    }
    x[0] = nan;
    EXPECT_TRUE(ascends(x)) << "the first point ends no interval";
  }
}

TEST(KnotIndex, KnowsAnewWhetherTheKnotsAscend) {
  for (const std::size_t n : {10, 100}) {
    Values up(n), down(n);
    for (std::size_t i = 0; i < n; ++i) down[n - 1 - i] = up[i] = static_cast<double>(i);
    KnotIndex index(n);
    std::unique_ptr<double[]> maxima(new double[index.size()]);
    for (const bool ascends : {true, false, true}) {
      index.fill((ascends ? up : down).data(), maxima.get());
      EXPECT_EQ(index.isAscending(), ascends) << n;
    }
  }
}

// One odd knot at each place in turn, among knots in order.
TEST(KnotIndex, FindsAroundASingleOddKnot) {
  for (const std::size_t n : {3, 17, 18, 40, 300}) {
    for (const double odd : {nan, infinity, -infinity, 1e9, -1e9}) {
      for (std::size_t place = 0; place < n; ++place) {
        Values x(n);
        for (std::size_t i = 0; i < n; ++i) x[i] = static_cast<double>(i);
        x[place] = odd;
        Values coordinates{infinity, -infinity, nan};
        for (std::size_t i = 0; i <= n; ++i) coordinates.push_back(static_cast<double>(i) - 0.5);
        coordinates.insert(coordinates.end(), x.begin(), x.end());
        ASSERT_NO_FATAL_FAILURE(expectSameIntervals(x, coordinates)) << odd << " at " << place;
      }
    }
  }
}

// No memory to speak of: a fifteenth of the knots' own, and a node per level.
TEST(KnotIndex, NeedsAFifteenthOfTheKnots) {
  for (const std::size_t n : {2u, 17u, 1000u, 1000000u, 100000000u}) {
    EXPECT_LE(KnotIndex(n).size(), n / 15 + 16 * 8) << n;
  }
}

TEST(KnotIndex, HasANodeOfSixteenForSixteenOfTheLevelBelow) {
  EXPECT_EQ(KnotIndex(2).size(), 16) << "the knots themselves";
  EXPECT_EQ(KnotIndex(17).size(), 16);
  EXPECT_EQ(KnotIndex(18).size(), 16) << "two leaves";
  EXPECT_EQ(KnotIndex(257).size(), 16) << "a root full of leaves";
  EXPECT_EQ(KnotIndex(258).size(), 16 + 32);
  EXPECT_EQ(KnotIndex(513).size(), 16 + 32);
  EXPECT_EQ(KnotIndex(514).size(), 16 + 48);
  EXPECT_EQ(KnotIndex(4097).size(), 16 + 256);
  EXPECT_EQ(KnotIndex(4098).size(), 16 + 32 + 272);
}

TEST(KnotIndex, KnowsHowManyPointsAreLookedAtAtOnce) {
  EXPECT_TRUE(KnotIndex::isOneNode(2));
  EXPECT_TRUE(KnotIndex::isOneNode(17));
  EXPECT_FALSE(KnotIndex::isOneNode(18));
}

}  // namespace
}  // namespace qtx
