// Operands for the tests of 128-bit integers: corners, and random values of every width.
#pragma once

#include <random>
#include <set>
#include <string>
#include <vector>

#include "int128/wide_integer.h"

namespace qtx {

inline std::string hex(NativeUInt128 bits) {
  std::string text(32, '0');
  for (std::size_t i = 32; i-- > 0; bits >>= 4) text[i] = "0123456789abcdef"[static_cast<int>(bits & 15)];
  return "0x" + text;
}

// 0, ±1, the border of the shared small values, powers of two, the words' borders and both ends, each with
// its neighbours.
inline const std::vector<NativeUInt128>& corners() {
  static const std::vector<NativeUInt128> values = [] {
    std::set<NativeUInt128> found;
    const auto around = [&](NativeUInt128 centre) {
      for (int offset = -1; offset <= 1; ++offset) {
        found.insert(centre + static_cast<NativeUInt128>(offset));
        found.insert(-centre + static_cast<NativeUInt128>(offset));
      }
    };
    around(0);
    around(15);
    for (const int bit : {1, 2, 3, 7, 15, 31, 32, 33, 52, 53, 54, 62, 63, 64, 65, 96, 100, 126, 127}) {
      around(NativeUInt128{1} << bit);
      around((NativeUInt128{1} << bit) * 3);
    }
    around(static_cast<NativeUInt128>(10'000'000'000'000'000'000u));  // 10^19
    return std::vector<NativeUInt128>(found.begin(), found.end());
  }();
  return values;
}

class RandomBits {
 public:
  std::uint64_t word() { return engine_(); }
  NativeUInt128 bits() { return NativeUInt128{engine_()} << 64 | engine_(); }
  // Short values as often as long ones, and every other one negated.
  NativeUInt128 ofAnyWidth() {
    const std::uint64_t shape = engine_();
    const NativeUInt128 value = bits() >> (shape & 127);
    return shape & 128 ? -value : value;
  }

 private:
  std::mt19937_64 engine_{20130401};
};

}  // namespace qtx
