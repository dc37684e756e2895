// Constrained cubic spline: coefficients of a curve through points, and its evaluation in O(log n).
//
// After C. J. C. Kruger, "Constrained Cubic Spline Interpolation for Chemical Engineering Applications"
// (2002): the slope at an inner point is the harmonic mean of the two neighbouring secants instead of the
// solution of a tridiagonal system, which keeps the curve from overshooting between points. Kruger takes 0
// only where the secants differ in sign. Here the slope is 0 unless both secants rise, so between two falling
// secants too: a falling curve runs level at each inner point.
//
// Results are the same bits on every processor, given a build without contraction into fused multiply-adds.
#pragma once

#include <cstddef>
#include <memory>

#include "spline/guide_table.h"
#include "spline/knot_index.h"

namespace qtx {

// A curve through n ≥ 3 points. Interval i, from 1 to n − 1, ends at x[i]; on it the curve is
// a + b·x + c·x² + d·x³ with x the absolute coordinate. The curve keeps no copy of the points' x: they must
// outlive it. Zero-width intervals have infinite or NaN coefficients.
class ConstrainedSpline {
 public:
  // How many doubles a curve through n points is stored in: about 4.3 a point.
  static std::size_t size(std::size_t n);

  // storage: room for size(n) doubles, which is kept in use. Without one, the curve allocates it.
  ConstrainedSpline(const double* x, const double* y, std::size_t n, double* storage = nullptr);

  // Left of x[1] the first interval's cubic, right of x[n − 1] the last one's.
  double operator()(double at) const {
    const double* cubic = coefficients_ + stride * intervalOf(at);
    const double a = cubic[0], b = cubic[1], c = cubic[2], d = cubic[3];
    return d * at * at * at + (c * at * at + (b * at + a));
  }

  // a, b, c and d of interval 0 (a placeholder, all 0), then of interval 1 and so on: one interval's lie
  // together, because they are used together.
  static constexpr std::size_t stride = 4;
  const double* coefficients() const { return coefficients_; }

 private:
  static constexpr std::size_t line = 8;  // doubles in a cache line
  static std::size_t guideSize(std::size_t n);

  // Most searches end where the guide table leads; the index finds what lies elsewhere, and what no table
  // covers.
  std::size_t intervalOf(double at) const {
    if (guide_.isFilled()) {
      const std::size_t start = guide_.start(at);
      // The cubics of most of the window, while its knots are fetched and compared.
      const double* const cubics = coefficients_ + stride * (1 + start);
      for (std::size_t i = 0; i < 3; ++i) __builtin_prefetch(cubics + line * i);
      const std::size_t below = countBelow<GuideTable::window>(x_ + 1 + start, at);
      if (below < GuideTable::window) [[likely]]
        return 1 + start + below;
    }
    return index_.find(x_, at);
  }

  const double* x_;
  const double* coefficients_;
  GuideTable guide_;
  KnotIndex index_;
  std::unique_ptr<double[]> owned_;
};

}  // namespace qtx
