// The process's one generator and the draws from it.
#include "math/random_draws_functions.h"

#include <chrono>
#include <random>

#include "math/random_draws.h"

namespace qtx {

namespace {

// Nothing may be thrown while the library is loaded: where the device cannot be had, the time has to do.
std::uint32_t seed() noexcept {
  try {
    return std::random_device("/dev/urandom")();
  } catch (...) {
    return static_cast<std::uint32_t>(std::chrono::steady_clock::now().time_since_epoch().count());
  }
}

RandomDraws draws(seed());

}  // namespace

double Random_NormalDistribution(double mean, double standardDeviation) noexcept {
  return draws.normal(mean, standardDeviation);
}

RBInteger Random_PoissonDistribution(RBInteger mean) noexcept {
  return draws.poisson(static_cast<std::int32_t>(mean));
}

double Random_ExponentialDistribution(double lambda) noexcept { return draws.exponential(lambda); }

}  // namespace qtx
