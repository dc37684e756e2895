// The quantile of the normal distribution: the x that a standard normal deviate stays below with probability
// p.
#pragma once

namespace qtx {

// P. J. Acklam, "An algorithm for computing the inverse normal cumulative distribution function" (2003), with
// one step of Halley's method: normalQuantile(0.975) is 1.959963984540054. For p in [0, 1]; NaN gives NaN.
// The ends give no infinities: the step starts from 0 there and ends at ∓√(π/2).
double normalQuantile(double p);

}  // namespace qtx
