// The curve's coefficients, from its points.
#include "spline/constrained_spline.h"

#include <algorithm>
#include <limits>
#include <new>

#include "frame/processor.h"

namespace qtx {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

constexpr std::size_t stride = ConstrainedSpline::stride;

// Four coefficients for each interval, those of interval 1 first. Always inlined, so that it becomes code for
// the vectors that the calling function may use; the results are the same bits.
__attribute__((always_inline)) inline void computeCubics(const double* x, const double* y, std::size_t n,
                                                         double* __restrict cubics) {
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

    double* const cubic = cubics + stride * (first - 1);
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

#if defined(__x86_64__)
// Twice as many divisions at once as the processor's smallest models have.
__attribute__((target("avx"))) void computeCubicsWide(const double* x, const double* y, std::size_t n,
                                                      double* cubics) {
  computeCubics(x, y, n, cubics);
}
#endif

}  // namespace

std::size_t ConstrainedSpline::size(std::size_t n) {
  return line + KnotIndex(n).size() + guideSize(n) + line + stride * n;
}

std::size_t ConstrainedSpline::guideSize(std::size_t n) {
  if (KnotIndex::isOneNode(n)) return 0;
  return roundUp(GuideTable::size(n - 1) * sizeof(std::uint32_t), line * sizeof(double)) / sizeof(double);
}

ConstrainedSpline::ConstrainedSpline(const double* x, const double* y, std::size_t n, double* storage)
    : x_(x), index_(n), owned_(storage ? nullptr : new double[size(n)]) {
  // Index, table and the first interval's cubic begin at a cache line.
  const auto start = reinterpret_cast<std::uintptr_t>(storage ? storage : owned_.get());
  double* const maxima = reinterpret_cast<double*>(roundUp(start, line * sizeof(double)));
  double* const table = maxima + index_.size();
  double* const cubics = table + guideSize(n) + line;
  coefficients_ = cubics - stride;

  index_.fill(x, maxima);
  if (guideSize(n) > 0 && index_.isAscending()) {
    const std::size_t entries = GuideTable::size(n - 1);
    guide_.fill(x + 1, n - 1, new (table) std::uint32_t[entries]);
  }
  std::fill(cubics - stride, cubics, 0.0);
#if defined(__x86_64__)
  if (thisProcessor().hasWideVectors) {
    computeCubicsWide(x, y, n, cubics);
    return;
  }
#endif
  computeCubics(x, y, n, cubics);
}

}  // namespace qtx
