// Where a curve's parts lie.
#include "spline/constrained_spline.h"

#include <algorithm>
#include <new>

#include "spline/spline_cubics.h"

namespace qtx {

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
  computeCubics(x, y, n, cubics);
}

}  // namespace qtx
