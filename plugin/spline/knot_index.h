// KnotIndex: which of a curve's intervals holds a coordinate, in O(log n).
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace qtx {

inline std::size_t roundUp(std::size_t value, std::size_t unit) { return (value + unit - 1) / unit * unit; }

// Two doubles compared at once, in the compilers' own notation for every processor: their optimizers leave
// these loops scalar.
using Pair __attribute__((vector_size(16))) = double;
using PairOfFlags __attribute__((vector_size(16))) = long long;
inline Pair loadPair(const double* values) {
  Pair pair;
  std::memcpy(&pair, values, sizeof pair);
  return pair;
}

// Of `count` values, an even number, how many are below `at`; none for a NaN. A comparison of pairs gives −1
// where it holds.
template <std::size_t count>
inline std::size_t countBelow(const double* values, double at) {
  const Pair limit = {at, at};
  PairOfFlags below = {0, 0};
  for (std::size_t i = 0; i < count; i += 2) below -= limit > loadPair(values + i);
  return static_cast<std::size_t>(below[0] + below[1]);
}

// Finds the interval of a curve that holds a coordinate. The knots may come in any order and may be infinite
// or NaN: the interval is the one that a scan from the left would stop at, however they lie.
//
// A tree over running maxima, 16 to a node; a NaN knot, at which every scan stops, counts as +infinity. Its
// leaves are the knots themselves, so that it costs one fifteenth of their memory. Half of a binary search's
// steps go the wrong way before the processor knows; counting in a node takes no branch.
class KnotIndex {
 public:
  // For n ≥ 2 points.
  explicit KnotIndex(std::size_t n);

  // So few knots that they are all counted at once, which is as fast as any search.
  static bool isOneNode(std::size_t n) { return n - 1 <= fanout; }

  // The doubles that fill wants to write, a multiple of 16.
  std::size_t size() const { return size_; }

  // x: the n knots, which find wants to see again. maxima: room for size() doubles, which is kept in use.
  void fill(const double* x, double* maxima);

  // Whether the knots ascend, and so none of them is NaN.
  bool isAscending() const { return ascending_; }

  // The first i from 1 to n − 1 with not (at > x[i]), so 1 for a NaN `at`; n − 1 where there is none.
  std::size_t find(const double* x, double at) const {
    std::size_t node = 0;
    const double* level = maxima_;
    for (std::size_t depth = 0; depth < depth_; ++depth) {
      node = node * fanout + countBelow<fanout>(level + node * fanout, at);
      level += levelSizes_[depth];
    }
    if (knots_ <= fanout) return std::min(node + 1, knots_);
    // The last leaf may begin inside the one before it: the knots that it repeats lie below `at`.
    const std::size_t start = std::min(node * fanout, knots_ - fanout);
    const double* leaf = x + 1 + start;
    const std::size_t skipped = ascending_ ? countBelow<fanout>(leaf, at) : skip(leaf, at);
    return std::min(1 + start + skipped, knots_);
  }

 private:
  static constexpr std::size_t fanout = 16;
  static constexpr std::size_t maxDepth = 16;  // fanout^16 = 2^64

  std::size_t leafSize() const { return knots_ <= fanout ? 1 : fanout; }

  // Of `fanout` values, how many come before the first that is not below `at`.
  static std::size_t skip(const double* values, double at) {
    std::size_t count = 0;
    while (count < fanout && at > values[count]) ++count;
    return count;
  }

  std::size_t knots_;  // n − 1: the first is the end of no interval
  bool ascending_ = true;
  std::size_t size_ = 0;
  std::size_t depth_ = 0;
  std::size_t levelSizes_[maxDepth];  // from the root down, multiples of the fanout
  const double* maxima_ = nullptr;    // the levels, from the root down
};

}  // namespace qtx
