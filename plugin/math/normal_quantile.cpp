// The quantile: a rational approximation, and one step that refines it.
#include "math/normal_quantile.h"

#include <cmath>

namespace qtx {

namespace {

// Horner's scheme, the coefficient of the highest power first.
template <typename... Coefficients>
double polynomial(double x, double first, Coefficients... rest) {
  double sum = first;
  ((sum = sum * x + rest), ...);
  return sum;
}

double centralRegion(double r) {
  const double s = r * r;
  return polynomial(s, -39.69683028665376, 220.9460984245205, -275.9285104469687, 138.3577518672690,
                    -30.66479806614716, 2.506628277459239) *
         r /
         polynomial(s, -54.47609879822406, 161.5858368580409, -155.6989798598866, 66.80131188771972,
                    -13.28068155288572, 1.0);
}

double lowerTail(double p) {
  const double t = std::sqrt(-2 * std::log(p));
  return polynomial(t, -0.007784894002430293, -0.3223964580411365, -2.400758277161838, -2.549732539343734,
                    4.374664141464968, 2.938163982698783) /
         polynomial(t, 0.007784695709041462, 0.3224671290700398, 2.445134137142996, 3.754408661907416, 1.0);
}

double approximation(double p) {
  constexpr double lower = 0.02425, upper = 0.97575;
  if (p >= lower && p <= upper) return centralRegion(p - 0.5);
  if (p > 0 && p < lower) return lowerTail(p);
  if (p > upper && p < 1) return -lowerTail(1 - p);
  return 0;  // 0, 1 and NaN
}

}  // namespace

double normalQuantile(double p) {
  constexpr double sqrt2 = 1.4142135623730951, sqrt2Pi = 2.5066282746310002;
  const double q = approximation(p);
  const double e = 0.5 * std::erfc(-q / sqrt2) - p;
  const double halfSquare = q * q / 2;
  // Where p is below the normal numbers, the exponential overflows while its product with the error does not.
  const double u = halfSquare < 709 ? e * sqrt2Pi * std::exp(halfSquare)
                                    : e * std::exp(halfSquare / 2) * (sqrt2Pi * std::exp(halfSquare / 2));
  return q - u / (1 + q * u / 2);
}

}  // namespace qtx
