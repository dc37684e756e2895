// The host's one-dimensional arrays: elements of eight bytes, upper bound -1 when empty.
#pragma once

#include "runtime/heap.h"
#include "runtime/value.h"

namespace host {

// Reference elements (strings, variants, objects) are owned by the array. Bytes 56 to 88 look as libraries
// that read arrays directly expect of a host of this version (frame/host_interface.h), unless the settings
// ask for another shape.
struct Array : Heap {
  Type elementType;
  std::int64_t capacity;
  std::byte published[40];  // from byte 56 on

  // Where the host itself keeps what the published bytes repeat.
  Slot* elements;
  std::int64_t elementCount;

  std::int64_t count() const { return elementCount; }
  // Throw HostException OutOfBoundsException / OutOfMemoryException.
  Slot at(std::int64_t index) const;            // borrowed
  void set(std::int64_t index, Slot value);     // shares a reference value, drops the old one
  void insert(std::int64_t index, Slot value);  // 0..count(); shares a reference value
  void remove(std::int64_t index);
  void resize(std::int64_t newCount);  // new elements are zero; negative: none

 private:
  void publish();
  void reserve(std::int64_t wanted);
  void check(std::int64_t index) const;
};

// Throws HostException OutOfMemoryException where count is more than memory holds.
Ref<Array> makeArray(Type elementType, std::int64_t count);

// Gives back the elements; what the class of arrays carries.
void finalizeArray(Heap& array);

}  // namespace host
