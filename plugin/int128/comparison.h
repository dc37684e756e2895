// Comparison of 128-bit integers, of one signedness and of both.
#pragma once

#include "int128/wide_integer.h"

namespace qtx {

// −1, 0 or 1.
template <typename High>
constexpr int compareValues(Wide<High> a, Wide<High> b) {
  return (a.native() > b.native()) - (a.native() < b.native());
}

// Across the classes, an unsigned value of 2^127 or more reads as a negative one, below all signed values
// from 0 on; host programs have come to rely on it. 5 and 2^127 compare as 1, 2^127 and 5 as −1.
constexpr int compareValues(Int128 a, UInt128 b) {
  if (a.isNegative()) return -1;
  if (b.topBit()) return 1;
  return compareValues(UInt128(a), b);
}
constexpr int compareValues(UInt128 a, Int128 b) { return -compareValues(b, a); }

template <typename High>
constexpr bool equalValues(Wide<High> a, Wide<High> b) {
  return a == b;
}
// Across the classes only the values that both can hold are equal to anything: −1 is not 2^128 − 1.
constexpr bool equalValues(Int128 a, UInt128 b) { return !a.isNegative() && UInt128(a) == b; }
constexpr bool equalValues(UInt128 a, Int128 b) { return equalValues(b, a); }

}  // namespace qtx
