// Random numbers: the same numbers from the same seed everywhere.
#pragma once

#include <atomic>
#include <cstdint>

#include "runtime/object.h"
#include "runtime/registry.h"

namespace host {

// SplitMix64 of G. L. Steele, D. Lea and C. H. Flood, "Fast Splittable Pseudorandom Number Generators"
// (2014). Its state is a counter, so that threads draw from it at once and each gets numbers of its own.
class Generator {
 public:
  explicit Generator(std::uint64_t from) : seed_(from), state_(from) {}
  std::uint64_t seed() const { return seed_.load(std::memory_order_relaxed); }
  void beginWith(std::uint64_t from) {
    seed_.store(from, std::memory_order_relaxed);
    state_.store(from, std::memory_order_relaxed);
  }

  std::uint64_t word();
  std::uint64_t below(std::uint64_t limit);  // 0 to limit - 1, each as likely; 0: any word
  double fraction() { return static_cast<double>(word() >> 11) * 0x1p-53; }  // from 0 to less than 1

 private:
  std::atomic<std::uint64_t> seed_, state_;
};

// What Rnd, System.Random and the arrays' Shuffle draw from. It begins anew with every process.
Generator& sharedGenerator();

// The class Random.
void registerRandom(Registry& registry);

// A new object of it, which draws from the shared generator.
Ref<Object> makeSharedRandom();

}  // namespace host
