// Random numbers from three distributions, all from one generator that any thread may use.
#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace qtx {

// The number in [0, 1) of two of the generator's outputs g1, g2: (g2 · 2^32 + g1) · 2^−64, kept below 1 where
// it rounds to 1.
inline double uniformFrom(std::uint32_t g1, std::uint32_t g2) {
  constexpr double belowOne = 0x1.fffffffffffffp-1;
  const double low = g1, high = g2;
  return std::min((high * 0x1p32 + low) * 0x1p-64, belowOne);
}

// Doubles in [0, 1) from the MT19937 generator (M. Matsumoto, T. Nishimura: "Mersenne Twister", ACM TOMACS 8,
// 1998): uniformFrom of each two outputs. The sequence is that of std::mt19937 with the same seed; the state
// and its numbers are made a block at a time, in loops that compilers turn into vector code.
class UniformSequence {
 public:
  explicit UniformSequence(std::uint32_t seed);

  double next() {
    if (used_ == uniforms_.size()) refill();
    return uniforms_[used_++];
  }

 private:
  static constexpr std::size_t stateSize = 624;

  void refill();

  std::array<std::uint32_t, stateSize> state_;
  std::array<double, stateSize / 2> uniforms_;
  std::size_t used_ = stateSize / 2;
};

// Each draw takes its numbers in one piece: concurrent draws wait for each other, and nothing but the
// generator's state is left behind by one. The lock is a flag to spin on, since it is held for some
// nanoseconds.
class RandomDraws {
 public:
  explicit RandomDraws(std::uint32_t seed) : uniforms_(seed) {}

  // Marsaglia's polar method; the second number of the pair is dropped.
  double normal(double mean, double standardDeviation);

  // −log(1 − u) / lambda: never negative for a positive lambda, which is not checked.
  double exponential(double lambda);

  // For a mean below 10 the number of uniform factors that it takes to bring a product down to e^−mean
  // (D. E. Knuth), from 10 on algorithm PD (J. H. Ahrens, U. Dieter: "Computer Generation of Poisson Deviates
  // from Modified Normal Distributions", ACM TOMS 8, 1982). At most 2^31 − 1; 0 for a mean of 0 or less.
  std::int32_t poisson(std::int32_t mean);

 private:
  class Lock;

  UniformSequence uniforms_;
  std::atomic_flag busy_;
};

}  // namespace qtx
