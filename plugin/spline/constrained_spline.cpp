// The curve's coefficients, from its points.
#include "spline/constrained_spline.h"

#include <algorithm>
#include <limits>

namespace qtx {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

}  // namespace

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
