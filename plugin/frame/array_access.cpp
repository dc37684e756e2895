// The self-test of array memory, and reading elements by its outcome.
#include "frame/array_access.h"

#include <atomic>
#include <cstring>
#include <utility>

#include "frame/debug_log.h"
#include "frame/raise.h"
#include "frame/reference.h"

namespace qtx {

namespace {

template <typename Field>
Field fieldAt(const void* array, std::size_t offset) {
  Field field;
  std::memcpy(&field, static_cast<const char*>(array) + offset, sizeof field);
  return field;
}

// Traces what was found where it is not what was expected.
bool matches(const char* failure, long long found, long long expected) {
  if (found == expected) return true;
  Trace(failure, found);
  return false;
}

constexpr RBInteger testUpperBound = 1234;
constexpr std::int64_t testValue0 = 12345;
constexpr std::int64_t testValue9 = 123456;

// Whether a new Integer array with the upper bound above works as arrays do, and looks in memory as expected.
bool TestArray(REALarrayInteger array) {
  const auto handle = reinterpret_cast<REALarray>(array);
  if (!matches("ubound failed", REALGetArrayUBound(handle), testUpperBound)) return false;

  const IntegerSetter set = REALSetArrayValueInteger(array);
  if (set) {
    set(array, testValue0, 0);
    set(array, testValue9, 9);
  }
  const IntegerGetter get = REALGetArrayValueInteger(array);
  const auto valueAt = [&](RBInteger index) { return get ? get(array, index) : 0; };
  if (!matches("Index 0 failed", valueAt(0), testValue0) || !matches("Index 1 failed", valueAt(1), 0) ||
      !matches("Index 9 failed", valueAt(9), testValue9)) {
    return false;
  }

  const bool wider = hostState.version >= arrayShape::widerSinceHostVersion;
  const long long dimensions = wider ? fieldAt<std::int64_t>(array, arrayShape::dimensions)
                                     : fieldAt<std::int32_t>(array, arrayShape::dimensions);
  const auto upperBound = fieldAt<std::int32_t>(
      array, wider ? arrayShape::upperBoundSince2021 : arrayShape::upperBoundBefore2021);
  if (!matches("refCount wrong", fieldAt<std::int64_t>(array, arrayShape::referenceCount), 1) ||
      !matches("DimensionCount wrong", dimensions, 1) ||
      !matches("ubound wrong", upperBound, testUpperBound)) {
    return false;
  }
  const void* elements = detail::storageOf(array);
  if (!elements) {
    Trace("data is nil");
    return false;
  }
  return matches("Index 0 failed", fieldAt<std::int64_t>(elements, 0), testValue0) &&
         matches("Index 9 failed", fieldAt<std::int64_t>(elements, 9 * sizeof(std::int64_t)), testValue9);
}

void raiseOutOfBounds(long long index, RBInteger upperBound) {
  const auto count =
      static_cast<unsigned long long>(upperBound) + 1;  // the bound may be the greatest there is
  RaiseOutOfBoundsException(index, static_cast<long long>(count), "index", "");
}

// Stores an element that lies within the bounds.
void readElement(REALarrayDouble array, long long index, double* out) {
  if (const void* elements = directElements(reinterpret_cast<REALarray>(array))) {
    *out = fieldAt<double>(elements, static_cast<std::size_t>(index) * sizeof(double));
  } else if (const DoubleGetter get = REALGetArrayValueDouble(array)) {
    *out = get(array, index);
  }
}

// What the test has shown; once it is known, asking costs a load. No other memory depends on it.
enum class Outcome : signed char { unknown, failed, passed };
constinit std::atomic<Outcome> outcome{Outcome::unknown};

// The test runs once; a thread that comes while it runs waits for the outcome instead of taking it for a
// failure. Called from within the test itself, as by a host operation that runs a program's code, it has run
// and has not passed.
bool testOnce() {
  static thread_local bool running = false;
  if (running) return false;
  static const bool success = [] {
    const struct Running {
      Running() { running = true; }
      ~Running() { running = false; }
    } here;
    Trace("TestArray", hostState.version);
    const Reference array(REALCreateArray(arrayElement::integer, testUpperBound));
    if (!array) {
      Trace("Failed to allocate array");
      return false;
    }
    return TestArray(reinterpret_cast<REALarrayInteger>(array.borrow()));
  }();
  outcome.store(success ? Outcome::passed : Outcome::failed, std::memory_order_relaxed);
  return success;
}

bool mayReadDirectly() {
  const Outcome known = outcome.load(std::memory_order_relaxed);
  return known == Outcome::unknown ? testOnce() : known == Outcome::passed;
}

}  // namespace

const void* directElements(REALarray array) { return mayReadDirectly() ? detail::storageOf(array) : nullptr; }

void REALGetArrayValue(REALarrayDouble array, long long index, double* out) {
  if (!array) {
    Trace("REALGetArrayValue", "Array is nil");
    return;
  }
  const RBInteger upperBound = REALGetArrayUBound(reinterpret_cast<REALarray>(array));
  if (index < 0 || index > upperBound) {
    raiseOutOfBounds(index, upperBound);
  } else {
    readElement(array, index, out);
  }
}

double ElementReader::readOtherwise(REALarrayDouble array, long long index, RBInteger upperBound) {
  double value = 0.0;
  if (index <= upperBound) {
    readElement(array, index, &value);
    if (mayReadDirectly()) upperBoundOf_ = REALGetArrayUBound.resolve();
  } else if (!std::exchange(hasRaised_, true)) {
    raiseOutOfBounds(index, upperBound);
  }
  return value;
}

}  // namespace qtx
