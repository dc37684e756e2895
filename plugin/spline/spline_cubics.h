// The coefficients of a constrained cubic spline, all at once. Where the formulas come from is told in
// spline/constrained_spline.h.
#pragma once

#include <cstddef>

namespace qtx {

// x, y: the n ≥ 3 points. cubics: room for a, b, c and d of each of the n − 1 intervals, the first one's
// first. In the form that is quickest for that many points on this processor.
void computeCubics(const double* x, const double* y, std::size_t n, double* cubics);

// The forms, by how many intervals they compute at once; all give the same bits. What four want, the
// processor tells as hasWideVectors; what eight want, as hasWidestVectors (frame/processor.h).
void computeCubicsByTwos(const double* x, const double* y, std::size_t n, double* cubics);
#if defined(__x86_64__)
void computeCubicsByFours(const double* x, const double* y, std::size_t n, double* cubics);
void computeCubicsByEights(const double* x, const double* y, std::size_t n, double* cubics);
#endif

}  // namespace qtx
