// The generator, and how its numbers become draws from three distributions.
#include "math/random_draws.h"

#include <cmath>
#include <thread>

namespace qtx {

UniformSequence::UniformSequence(std::uint32_t seed) {
  state_[0] = seed;
  for (std::uint32_t i = 1; i < stateSize; ++i) {
    const std::uint32_t previous = state_[i - 1];
    state_[i] = 1812433253 * (previous ^ (previous >> 30)) + i;
  }
}

namespace {

// Of one word's top bit and the next word's rest.
std::uint32_t twist(std::uint32_t upper, std::uint32_t lower) {
  return (((upper & 0x80000000) | (lower & 0x7FFFFFFF)) >> 1) ^ ((0 - (lower & 1)) & 0x9908B0DF);
}

std::uint32_t temper(std::uint32_t y) {
  y ^= y >> 11;
  y ^= (y << 7) & 0x9D2C5680;
  y ^= (y << 15) & 0xEFC60000;
  return y ^ (y >> 18);
}

}  // namespace

void UniformSequence::refill() {
  constexpr std::size_t distance = 397, rest = stateSize - distance;
  // A local copy lets the compiler see that nothing overlaps.
  std::array<std::uint32_t, stateSize> state = state_;
  for (std::size_t i = 0; i < rest; ++i) state[i] = state[i + distance] ^ twist(state[i], state[i + 1]);
  for (std::size_t i = rest; i < stateSize - 1; ++i) {
    state[i] = state[i - rest] ^ twist(state[i], state[i + 1]);
  }
  state[stateSize - 1] = state[distance - 1] ^ twist(state[stateSize - 1], state[0]);
  state_ = state;

  for (std::size_t i = 0; i < uniforms_.size(); ++i) {
    uniforms_[i] = uniformFrom(temper(state[2 * i]), temper(state[2 * i + 1]));
  }
  used_ = 0;
}

// Held while numbers are taken.
class RandomDraws::Lock {
 public:
  explicit Lock(std::atomic_flag& flag) : flag_(flag) {
    while (flag_.test_and_set(std::memory_order_acquire)) std::this_thread::yield();
  }
  ~Lock() { flag_.clear(std::memory_order_release); }
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;

 private:
  std::atomic_flag& flag_;
};

namespace {

// A point in the unit circle but for its centre.
struct PolarPoint {
  double y, squaredRadius;
  double deviate() const { return y * std::sqrt(-2 * std::log(squaredRadius) / squaredRadius); }
};

PolarPoint polarPoint(UniformSequence& uniforms) {
  for (;;) {
    const double x = 2 * uniforms.next() - 1, y = 2 * uniforms.next() - 1;
    const double squaredRadius = x * x + y * y;
    if (squaredRadius <= 1 && squaredRadius != 0) return {y, squaredRadius};
  }
}

// From 0 − log, so that u = 0 gives 0 and not −0.
double standardExponential(double u) { return 0 - std::log(1 - u); }

double productOfUniforms(UniformSequence& uniforms, double mean) {
  const double threshold = std::exp(-mean);
  double factors = 0, product = 1;
  do {
    product *= uniforms.next();
    ++factors;
  } while (product > threshold);
  return factors - 1;
}

// Algorithm PD, its steps and constants named as in the paper.
double modifiedNormal(UniformSequence& uniforms, double mu) {
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

}  // namespace

double RandomDraws::normal(double mean, double standardDeviation) {
  const PolarPoint point = [&] {
    const Lock lock(busy_);
    return polarPoint(uniforms_);
  }();
  return point.deviate() * standardDeviation + mean;
}

double RandomDraws::exponential(double lambda) {
  const double u = [&] {
    const Lock lock(busy_);
    return uniforms_.next();
  }();
  return standardExponential(u) / lambda;
}

std::int32_t RandomDraws::poisson(std::int32_t mean) {
  if (mean <= 0) return 0;
  const Lock lock(busy_);
  const double k = mean < 10 ? productOfUniforms(uniforms_, mean) : modifiedNormal(uniforms_, mean);
  return static_cast<std::int32_t>(std::min(k, 2147483647.0));
}

}  // namespace qtx
