// Reads elements of host arrays: straight from their memory where a one-time self-test has shown that arrays
// look as expected, through the host otherwise.
#pragma once

#include "frame/host_interface.h"

namespace qtx {

// How many elements an array of that upper bound has: 2^63 of them for 2^63 − 1, none below 0.
constexpr std::size_t elementCount(RBInteger upperBound) {
  return upperBound < 0 ? 0 : static_cast<std::size_t>(upperBound) + 1;
}

// Stores element `index` of the array in *out. A nil array leaves *out as it is; an index outside 0 … upper
// bound raises "OutOfBoundsException" and does too, and is the one case in which the result is false. A
// caller that reads on after one exception wants no second: `raises` is false then.
bool REALGetArrayValue(REALarrayDouble array, long long index, double* out, bool raises = true);

// The array's elements, eight bytes each; null where memory may not be read directly or the array has none.
// Runs the self-test if it has not run.
const void* directElements(REALarray array);

}  // namespace qtx
