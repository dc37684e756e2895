// What the table promises: it passes over nothing but knots that lie below the coordinate, and over as many
// as its buckets tell.
#include "spline/guide_table.h"

#include <gtest/gtest.h>

#include "knots.h"

namespace qtx {
namespace {

struct Table {
  GuideTable guide;
  std::vector<std::uint32_t> entries;  // not one more than asked for

  explicit Table(const Values& knots) : entries(GuideTable::size(knots.size())) {
    guide.fill(knots.data(), knots.size(), entries.data());
  }
};

// Of ascending knots, how many are below.
std::size_t belowIn(const Values& knots, double at) {
  if (std::isnan(at)) return 0;
  return static_cast<std::size_t>(std::lower_bound(knots.begin(), knots.end(), at) - knots.begin());
}

// The buckets, one for every two knots, and where a search starts in each.
class Model {
 public:
  explicit Model(const Values& knots)
      : low_(knots.front()),
        last_(std::floor(static_cast<double>(knots.size()) / 2)),
        scale_((last_ + 1) / (knots.back() - low_)),
        mostPassed_(knots.size() - GuideTable::window) {
    for (std::size_t i = 3; i < knots.size(); i += 4) ofEveryFourth_.push_back(bucketOf(knots[i]));
  }

  // Of every four knots the last one is looked at: all four lie before the bucket if it does.
  std::size_t start(double at) const {
    const auto first = std::lower_bound(ofEveryFourth_.begin(), ofEveryFourth_.end(), bucketOf(at));
    return std::min(static_cast<std::size_t>(4 * (first - ofEveryFourth_.begin())), mostPassed_);
  }

 private:
  double bucketOf(double value) const {
    const double scaled = (value - low_) * scale_;
    return std::isnan(scaled) ? 0 : std::floor(std::clamp(scaled, 0.0, last_));
  }

  double low_, last_, scale_;
  std::size_t mostPassed_;
  std::vector<double> ofEveryFourth_;
};

void expectPromiseKept(const Values& knots, const Values& coordinates) {
  const Table table(knots);
  if (!table.guide.isFilled()) return;
  const Model model(knots);
  for (const double at : coordinates) {
    const std::size_t start = table.guide.start(at);
    ASSERT_EQ(start, model.start(at)) << std::hexfloat << at << " among " << knots.size();
    ASSERT_LE(start, belowIn(knots, at)) << std::hexfloat << at << " among " << knots.size();
    ASSERT_LE(start + GuideTable::window, knots.size()) << std::hexfloat << at;
  }
}

TEST(GuideTable, PassesOverLesserKnotsAlone) {
  Generator generator(5);
  std::vector<std::size_t> sizes{100, 1000, 4099};
  for (std::size_t n = GuideTable::window; n < 80; ++n) sizes.push_back(n);
  for (const std::size_t n : sizes) {
    for (int kind = 0; kind < hardKinds; ++kind) {
      const Values knots = hardKnots(static_cast<Hard>(kind), n, generator);
      ASSERT_NO_FATAL_FAILURE(expectPromiseKept(knots, bordersOf(knots, generator, n))) << "kind " << kind;
    }
  }
}

TEST(GuideTable, PassesOverLesserKnotsAmongAMillion) {
  Generator generator(6);
  for (int kind = 0; kind < hardKinds; ++kind) {
    const Values knots = hardKnots(static_cast<Hard>(kind), 1'000'000, generator);
    ASSERT_NO_FATAL_FAILURE(expectPromiseKept(knots, bordersOf(knots, generator, 20'000))) << "kind " << kind;
  }
}

// Knots at any places whatever, in small numbers many times over.
TEST(GuideTable, PassesOverLesserKnotsWhereverTheyLie) {
  Generator generator(7);
  for (int round = 0; round < 20'000; ++round) {
    Values knots(GuideTable::window + generator.below(40));
    const double width = std::ldexp(1.0, static_cast<int>(generator.below(2000)) - 1040);
    const double offset = generator.below(2) ? generator.anywhere() * width : 0;
    for (double& knot : knots) knot = offset + generator.anywhere() * width;
    std::sort(knots.begin(), knots.end());
    ASSERT_NO_FATAL_FAILURE(expectPromiseKept(knots, bordersOf(knots, generator, knots.size()))) << round;
  }
}

// A bucket's number would not fit what it is computed in. The knots themselves are not looked at.
TEST(GuideTable, IsNotFilledForMoreKnotsThanItCanCount) {
  GuideTable guide;
  guide.fill(nullptr, std::size_t{1} << 31, nullptr);
  EXPECT_FALSE(guide.isFilled());
}

TEST(GuideTable, IsNotFilledForLessThanAWindow) {
  Generator generator(9);
  EXPECT_FALSE(Table(hardKnots(Hard::even, GuideTable::window - 1, generator)).guide.isFilled());
  EXPECT_TRUE(Table(hardKnots(Hard::even, GuideTable::window, generator)).guide.isFilled());
}

// Where it pays: most coordinates among spread knots lie within a window of the start.
TEST(GuideTable, LeadsNearTheCoordinate) {
  Generator generator(8);
  const Values spread = hardKnots(Hard::even, 10'000, generator);
  Values random(10'000);
  for (double& knot : random) knot = generator.anywhere();
  std::sort(random.begin(), random.end());
  for (const Values& knots : {spread, random}) {
    const Table table(knots);
    ASSERT_TRUE(table.guide.isFilled());
    int found = 0;
    for (int i = 0; i < 10'000; ++i) {
      const double at = knots.front() + (knots.back() - knots.front()) * (generator.anywhere() + 100) / 200;
      found += belowIn(knots, at) - table.guide.start(at) < GuideTable::window;
    }
    EXPECT_GT(found, 9'000);
  }
}

TEST(GuideTable, RefusesRangesWithoutBuckets) {
  Generator generator(9);
  for (const Hard kind : {Hard::allEqual, Hard::wholeRange, Hard::infiniteEnds, Hard::denormal}) {
    EXPECT_FALSE(Table(hardKnots(kind, 100, generator)).guide.isFilled()) << static_cast<int>(kind);
  }
  EXPECT_FALSE(Table(Values(GuideTable::window - 1)).guide.isFilled()) << "too few knots";
  EXPECT_TRUE(Table(hardKnots(Hard::largestRange, 100, generator)).guide.isFilled());
}

TEST(GuideTable, NeedsTwoBytesAKnot) {
  EXPECT_EQ(GuideTable::size(8), 9) << "five buckets, and four entries behind the last";
  EXPECT_EQ(GuideTable::size(9), 9);
  EXPECT_EQ(GuideTable::size(1000), 505);
  for (const std::size_t knots : {8u, 1000u, 1000000u}) {
    EXPECT_LE(GuideTable::size(knots) * sizeof(std::uint32_t), 2 * knots + 24) << knots;
  }
}

}  // namespace
}  // namespace qtx
