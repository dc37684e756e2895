// Keeps the elements of arrays, and publishes where they are.
#include "runtime/array.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <string>

#include "frame/host_interface.h"
#include "runtime/class.h"
#include "runtime/settings.h"
#include "runtime/throwing.h"

namespace host {

namespace {
constexpr std::size_t publishedAt = arrayShape::storage;
constexpr std::int64_t mostElements = std::int64_t{1} << 27;  // 1 GiB
}  // namespace

void Array::publish() {
  static_assert(sizeof(Heap) + sizeof(elementType) + sizeof(capacity) == publishedAt);
  if (settings().otherArrayShape) return;
  const auto put = [this](std::size_t offset, auto value) {
    std::memcpy(published + (offset - publishedAt), &value, sizeof value);
  };
  const auto upperBound = static_cast<std::int32_t>(elementCount - 1);
  put(arrayShape::storage, elements);
  if (settings().version >= arrayShape::widerSinceHostVersion) {
    put(arrayShape::dimensions, std::int64_t{1});
    put(arrayShape::upperBoundSince2021, upperBound);
  } else {
    put(arrayShape::dimensions, std::int32_t{1});
    put(arrayShape::upperBoundBefore2021, upperBound);
  }
}

void Array::check(std::int64_t index) const {
  if (index < 0 || index >= elementCount) {
    throwException("OutOfBoundsException", "The index " + std::to_string(index) +
                                               " is outside of the array, whose upper bound is " +
                                               std::to_string(elementCount - 1) + ".");
  }
}

void Array::reserve(std::int64_t wanted) {
  if (wanted <= capacity) return;
  const std::int64_t larger = wanted > 2 * capacity ? wanted : 2 * capacity;
  const bool isTooLarge =
      wanted > mostElements || static_cast<std::size_t>(wanted) > settings().mostBytes / sizeof(Slot);
  void* memory =
      isTooLarge ? nullptr : std::realloc(elements, static_cast<std::size_t>(larger) * sizeof(Slot));
  if (!memory) {
    throwException("OutOfMemoryException",
                   "There is no memory for an array of " + std::to_string(wanted) + " elements.");
  }
  elements = static_cast<Slot*>(memory);
  capacity = larger;
}

Slot Array::at(std::int64_t index) const {
  check(index);
  return elements[index];
}

void Array::set(std::int64_t index, Slot value) {
  check(index);
  const Slot old = elements[index];
  if (elementType.isReference()) retain(value.heap);
  elements[index] = value;
  if (elementType.isReference()) release(old.heap);
}

void Array::insert(std::int64_t index, Slot value) {
  if (index != elementCount) check(index);
  reserve(elementCount + 1);
  if (elementType.isReference()) retain(value.heap);
  std::memmove(elements + index + 1, elements + index,
               static_cast<std::size_t>(elementCount - index) * sizeof(Slot));
  elements[index] = value;
  ++elementCount;
  publish();
}

void Array::remove(std::int64_t index) {
  check(index);
  const Slot old = elements[index];
  std::memmove(elements + index, elements + index + 1,
               static_cast<std::size_t>(elementCount - index - 1) * sizeof(Slot));
  --elementCount;
  publish();
  if (elementType.isReference()) release(old.heap);
}

void Array::resize(std::int64_t newCount) {
  while (elementType.isReference() && elementCount > newCount) {
    release(elements[--elementCount].heap);
  }
  reserve(newCount);
  if (newCount > elementCount) {
    std::memset(static_cast<void*>(elements + elementCount), 0,
                static_cast<std::size_t>(newCount - elementCount) * sizeof(Slot));
  }
  elementCount = newCount;
  publish();
}

Ref<Array> makeArray(Type elementType, std::int64_t count) {
  Heap* thing = allocate(*hostClasses().array, sizeof(Array));
  if (!thing) throwException("OutOfMemoryException", "There is no memory for an array.");
  std::memset(static_cast<void*>(thing + 1), 0, sizeof(Array) - sizeof(Heap));
  auto* array = static_cast<Array*>(thing);
  array->elementType = elementType;
  Ref<Array> made = Ref<Array>::adopt(array);
  array->resize(count);
  return made;
}

void finalizeArray(Heap& thing) {
  auto& array = static_cast<Array&>(thing);
  array.resize(0);
  std::free(array.elements);
}

}  // namespace host
