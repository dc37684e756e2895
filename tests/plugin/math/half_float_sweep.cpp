// Narrows every Single there is, in both forms, and compares with the model: half_float_sweep. Ends with 1 at
// a difference.
#include <atomic>
#include <cstdio>
#include <thread>
#include <vector>

#include "frame/processor.h"
#include "half_float_model.h"
#include "math/half_float.h"

int main() {
  std::atomic<unsigned> nextBlock{0};
  std::atomic<bool> differs{false};
  const bool canTune = qtx::thisProcessor().convertsHalfFloats;
  const auto work = [&] {
    for (unsigned block = nextBlock++; block < 0x10000; block = nextBlock++) {
      for (unsigned low = 0; low < 0x10000; ++low) {
        const std::uint32_t bits = block << 16 | low;
        const auto x = std::bit_cast<float>(bits);
        const unsigned expected = qtx::modelToHalf(x);
        for (const unsigned got : {qtx::toHalf(x), canTune ? qtx::tuned::toHalf(x) : qtx::toHalf(x)}) {
          if (got == expected) continue;
          std::printf("0x%08X gives 0x%04X instead of 0x%04X\n", bits, got, expected);
          differs = true;
        }
      }
    }
  };
  std::vector<std::thread> threads;
  for (unsigned i = 0; i < std::max(1u, std::thread::hardware_concurrency()); ++i) threads.emplace_back(work);
  for (auto& thread : threads) thread.join();
  std::puts(differs ? "different" : "all 4294967296 Singles agree");
  return differs;
}
