// Reads elements of host arrays: straight from their memory where a one-time self-test has shown that arrays
// look as expected, through the host otherwise.
#pragma once

#include <cstring>

#include "frame/host_operations.h"

namespace qtx {

// How many elements an array of that upper bound has: 2^63 of them for 2^63 − 1, none below 0.
constexpr std::size_t elementCount(RBInteger upperBound) {
  return upperBound < 0 ? 0 : static_cast<std::size_t>(upperBound) + 1;
}

// The array's elements, eight bytes each; null where memory may not be read directly or the array has none.
// Runs the self-test if it has not run.
const void* directElements(REALarray array);

// Stores element `index` of the array in *out. A nil array leaves *out as it is; an index outside 0 … upper
// bound raises "OutOfBoundsException" and does too.
void REALGetArrayValue(REALarrayDouble array, long long index, double* out);

namespace detail {

// Where the array object points to its elements: read anew for each, because the host may move them.
inline const void* storageOf(const void* array) {
  const void* elements;
  std::memcpy(&elements, static_cast<const char*>(array) + arrayShape::storage, sizeof elements);
  return elements;
}

}  // namespace detail

// Reads many elements as REALGetArrayValue reads one, the upper bound asked for each time. Only what cannot
// change meanwhile is found out once: whether memory may be read directly.
class ElementReader {
 public:
  // The element, or 0 where it cannot be read. Other code of the program may shorten the array while it is
  // read; of all indexes that are outside, the first raises. The array is not nil, the index not negative.
  double operator()(REALarrayDouble array, long long index) {
    const auto handle = reinterpret_cast<REALarray>(array);
    if (!upperBoundOf_) [[unlikely]]
      return readOtherwise(array, index, REALGetArrayUBound(handle));
    const RBInteger upperBound = upperBoundOf_(handle);
    const void* const elements = detail::storageOf(array);
    if (index > upperBound || !elements) [[unlikely]]
      return readOtherwise(array, index, upperBound);
    double value;
    std::memcpy(&value, static_cast<const double*>(elements) + index, sizeof value);
    return value;
  }

 private:
  double readOtherwise(REALarrayDouble array, long long index, RBInteger upperBound);

  // Null until an element within the bounds has shown that memory may be read directly.
  RBInteger (*upperBoundOf_)(REALarray) = nullptr;
  bool hasRaised_ = false;
};

}  // namespace qtx
