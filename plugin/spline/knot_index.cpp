// The tree of running maxima: its sizes and how it is filled.
#include "spline/knot_index.h"

#include <limits>

namespace qtx {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

// A NaN behind or before another value makes this false.
bool ascend(const double* values, std::size_t count) {
  PairOfFlags ascending = {-1, -1};
  std::size_t i = 1;
  for (; i + 1 < count; i += 2) ascending &= loadPair(values + i - 1) <= loadPair(values + i);
  return ascending[0] && ascending[1] && (i >= count || values[i - 1] <= values[i]);
}

// The largest of the values and `start`; +infinity where one is NaN.
double maximum(const double* values, std::size_t count, double start) {
  Pair largest = {start, start};
  PairOfFlags hasNaN = {0, 0};
  std::size_t i = 0;
  for (; i + 1 < count; i += 2) {
    const Pair next = loadPair(values + i);
    largest = next > largest ? next : largest;
    hasNaN |= next != next;
  }
  if (hasNaN[0] || hasNaN[1] || (i < count && values[i] != values[i])) return infinity;
  const double ofPairs = std::max(largest[0], largest[1]);
  return i < count ? std::max(ofPairs, values[i]) : ofPairs;
}

}  // namespace

KnotIndex::KnotIndex(std::size_t n) : knots_(n - 1) {
  // The lowest level has one maximum per leaf, or, where one leaf would do, one per knot: then no leaf is
  // looked at. Sizes are found from the lowest level up and turned round.
  std::size_t entries = (knots_ + leafSize() - 1) / leafSize();
  for (;; entries = (entries + fanout - 1) / fanout) {
    size_ += levelSizes_[depth_++] = roundUp(entries, fanout);
    if (entries <= fanout) break;
  }
  std::reverse(levelSizes_, levelSizes_ + depth_);
}

void KnotIndex::fill(const double* x, double* maxima) {
  const double* const knots = x + 1;
  maxima_ = maxima;

  double* level = maxima + (size_ - levelSizes_[depth_ - 1]);
  std::size_t entries = (knots_ + leafSize() - 1) / leafSize();
  double running = -infinity;
  ascending_ = true;  // so far
  if (leafSize() == 1) {
    for (std::size_t i = 0; i < entries; ++i) {
      if (knots[i] >= running) {
        running = knots[i];
      } else {
        ascending_ = false;
        if (knots[i] != knots[i]) running = infinity;
      }
      level[i] = running;
    }
  } else {
    for (std::size_t i = 0; i < entries; ++i) {
      const double* const leaf = knots + i * fanout;
      const std::size_t count = std::min(fanout, knots_ - i * fanout);
      ascending_ = ascending_ && running <= leaf[0] && ascend(leaf, count);
      level[i] = running = ascending_ ? leaf[count - 1] : maximum(leaf, count, running);
    }
    // Whatever lies behind all knots belongs to the last of them: no search runs off the end of a level.
    level[entries - 1] = infinity;
  }
  for (std::size_t depth = depth_ - 1;; --depth) {
    std::fill(level + entries, level + levelSizes_[depth], infinity);
    if (depth == 0) break;
    double* const above = level - levelSizes_[depth - 1];
    const std::size_t nodes = (entries + fanout - 1) / fanout;
    for (std::size_t i = 0; i < nodes; ++i) above[i] = level[i * fanout + fanout - 1];
    level = above;
    entries = nodes;
  }
}

}  // namespace qtx
