#include "spline/constrained_spline.h"

#include <limits>

namespace qtx {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

std::size_t roundUp(std::size_t value, std::size_t unit) { return (value + unit - 1) / unit * unit; }

// A NaN behind or before another value makes this false.
bool isAscending(const double* values, std::size_t count) {
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
  if (leafSize() == 1) {
    for (std::size_t i = 0; i < entries; ++i) {
      if (!(knots[i] <= running)) running = knots[i] == knots[i] ? knots[i] : infinity;
      level[i] = running;
    }
  } else {
    ascending_ = true;  // so far
    for (std::size_t i = 0; i < entries; ++i) {
      const double* const leaf = knots + i * fanout;
      const std::size_t count = std::min(fanout, knots_ - i * fanout);
      ascending_ = ascending_ && running <= leaf[0] && isAscending(leaf, count);
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

ConstrainedSpline::ConstrainedSpline(const double* x, const double* y, std::size_t n)
    : x_(x), index_(n), storage_(new double[index_.size() + stride * n + alignment]) {
  // Both parts begin at a cache line: the index's size is a multiple of it.
  void* start = storage_.get();
  std::size_t room = (index_.size() + stride * n + alignment) * sizeof(double);
  double* const aligned = static_cast<double*>(std::align(alignment * sizeof(double), 1, start, room));
  double* const coefficients = aligned + index_.size();
  coefficients_ = coefficients;
  index_.fill(x, aligned);

  std::fill(coefficients, coefficients + stride, 0.0);

  // Block by block, so that the intermediate values stay in the first-level cache, and loop by loop, so that
  // the many divisions become vector code.
  constexpr std::size_t block = 128;
  double dx[block + 1], dy[block + 1], ratio[block + 1];
  double slope[block + 1];  // at the left end of the block's first interval, then at the right end of each
  for (std::size_t first = 1; first < n; first += block) {
    const std::size_t intervals = std::min(block, n - first);
    const bool isLast = first + intervals == n;
    // The slope at the right end of the last interval needs the interval behind it.
    const std::size_t differences = isLast ? intervals : intervals + 1;
    const double *left = x + first - 1, *right = x + first;
    const double *bottom = y + first - 1, *top = y + first;

    for (std::size_t i = 0; i < differences; ++i) {
      dx[i] = right[i] - left[i];
      dy[i] = top[i] - bottom[i];
      // A secant that does not rise gets an infinite ratio or NaN, either of which makes the slopes beside it
      // 0.
      const double rise = dy[i] > 0 ? dy[i] : 0.0;
      ratio[i] = dx[i] / rise;
    }
    // Two loops, because the compiler makes one into a branch per point.
    for (std::size_t i = 0; i + 1 < differences; ++i) {
      const double q = ratio[i] + ratio[i + 1];
      slope[i + 1] = q > 0 ? q : infinity;
    }
    for (std::size_t i = 0; i + 1 < differences; ++i) slope[i + 1] = 2.0 / slope[i + 1];
    if (first == 1) slope[0] = 1.5 * dy[0] / dx[0] - 0.5 * slope[1];
    if (isLast) {
      const std::size_t i = intervals - 1;
      slope[i + 1] = 1.5 * dy[i] / dx[i] - 0.5 * slope[i];
    }

    double* const cubic = coefficients + stride * first;
    for (std::size_t i = 0; i < intervals; ++i) {
      const double x0 = left[i], x1 = right[i];
      // Second derivatives at both ends.
      const double curvature = 6 * dy[i] / (dx[i] * dx[i]);
      const double l = curvature - 2 * (slope[i + 1] + 2 * slope[i]) / dx[i];
      const double r = 2 * (2 * slope[i + 1] + slope[i]) / dx[i] - curvature;

      const double d = (r - l) / (6 * dx[i]);
      const double c = (x1 * l - x0 * r) / (2 * dx[i]);
      const double b = (dy[i] - c * (x1 * x1 - x0 * x0) - d * (x1 * x1 * x1 - x0 * x0 * x0)) / dx[i];
      const double a = bottom[i] - b * x0 - c * (x0 * x0) - d * (x0 * x0 * x0);
      cubic[stride * i + 0] = a;
      cubic[stride * i + 1] = b;
      cubic[stride * i + 2] = c;
      cubic[stride * i + 3] = d;
    }
    slope[0] = slope[intervals];
  }
}

}  // namespace qtx
