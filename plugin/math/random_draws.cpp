// The generator and its lock.
#include "math/random_draws.h"

#include <thread>

#include "math/draw_methods.h"

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
