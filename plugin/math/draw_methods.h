// How uniform numbers in [0, 1) become draws from three distributions. Where they come from is left open:
// uniforms.next() gives one after another.
#pragma once

#include <cmath>

namespace qtx {

// A point in the unit circle but for its centre.
struct PolarPoint {
  double y, squaredRadius;
  double deviate() const { return y * std::sqrt(-2 * std::log(squaredRadius) / squaredRadius); }
};

template <typename Uniforms>
PolarPoint polarPoint(Uniforms& uniforms) {
  for (;;) {
    const double x = 2 * uniforms.next() - 1, y = 2 * uniforms.next() - 1;
    const double squaredRadius = x * x + y * y;
    if (squaredRadius <= 1 && squaredRadius != 0) return {y, squaredRadius};
  }
}

// From 0 − log, so that u = 0 gives 0 and not −0.
inline double standardExponential(double u) { return 0 - std::log(1 - u); }

template <typename Uniforms>
double productOfUniforms(Uniforms& uniforms, double mean) {
  const double threshold = std::exp(-mean);
  double factors = 0, product = 1;
  do {
    product *= uniforms.next();
    ++factors;
  } while (product > threshold);
  return factors - 1;
}

// Algorithm PD, its steps and constants named as in the paper. There is one place that draws by it.
template <typename Uniforms>
[[gnu::always_inline]] inline double modifiedNormal(Uniforms& uniforms, double mu) {
  constexpr double inverseSqrt2Pi = 0.3989422804014327;
  const double s = std::sqrt(mu), d = 6 * mu * mu;

  const double g = mu + s * polarPoint(uniforms).deviate();  // step N
  const bool fromNormal = g >= 0;
  double u = 0;
  if (fromNormal) {
    const double k = std::floor(g);
    if (k >= std::floor(mu - 1.1484)) return k;  // step I
    u = uniforms.next();
    const double difference = mu - k;
    if (d * u >= difference * difference * difference) return k;  // step S
  }

  const double omega = inverseSqrt2Pi / s;  // step P
  const double b1 = 1 / (24 * mu), b2 = 0.3 * b1 * b1, c3 = b1 * b2 / 7;
  const double c2 = b2 - 15 * c3, c1 = b1 - 6 * b2 + 45 * c3, c0 = 1 - b1 + 3 * b2 - 15 * c3;

  // Procedure F: the Poisson probability of k as py · e^px, and the discrete normal one as fy · e^fx.
  struct Densities {
    double px, py, fx, fy;
  };
  const auto densities = [&](double k) {
    Densities f;
    const double difference = mu - k;
    if (k < 10) {
      constexpr double factorials[] = {1, 1, 2, 6, 24, 120, 720, 5040, 40320, 362880};
      f.px = -mu;
      f.py = std::pow(mu, k) / factorials[static_cast<int>(k)];
    } else {
      double delta = 1 / (12 * k);
      delta -= 4.8 * delta * delta * delta;
      const double v = difference / k;
      if (std::fabs(v) <= 0.25) {
        constexpr double a[] = {-0.5,       0.3333333, -0.2500068, 0.2000118,
                                -0.1661269, 0.1421878, -0.1384794, 0.1250060};
        double sum = 0;
        for (int i = 7; i >= 0; --i) sum = sum * v + a[i];
        f.px = k * v * v * sum - delta;
      } else {
        f.px = k * std::log(1 + v) - difference - delta;
      }
      f.py = inverseSqrt2Pi / std::sqrt(k);
    }
    const double x = (0.5 - difference) / s, xx = x * x;
    f.fx = -0.5 * xx;
    f.fy = omega * (((c3 * xx + c2) * xx + c1) * xx + c0);
    return f;
  };

  if (fromNormal) {
    const double k = std::floor(g);
    const Densities f = densities(k);
    if (f.fy * (1 - u) <= f.py * std::exp(f.px - f.fx)) return k;  // step Q
  }

  const double c = 0.1069 / mu;
  for (;;) {
    const double e = standardExponential(uniforms.next());  // step E
    u = 2 * uniforms.next() - 1;
    const double t = 1.8 + std::copysign(e, u);
    if (t <= -0.6744) continue;
    const double k = std::floor(mu + s * t);
    const Densities f = densities(k);
    if (c * std::fabs(u) <= f.py * std::exp(f.px + e) - f.fy * std::exp(f.fx + e)) return k;  // step H
  }
}

}  // namespace qtx
