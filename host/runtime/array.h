// The host's one-dimensional arrays: elements of eight bytes, upper bound -1 when empty.
#pragma once

#include "runtime/heap.h"
#include "runtime/value.h"

namespace host {

// Reference elements (strings, variants, objects) are owned by the array.
struct Array : Heap {
  Type elementType;
  std::int64_t count() const;
  Slot* data();              // count() slots; valid until the array grows
  const Slot* data() const;
  // Throw HostException OutOfBoundsException / OutOfMemoryException.
  Slot at(std::int64_t index) const;                 // borrowed
  void set(std::int64_t index, Slot value);          // shares a reference value, drops the old one
  void insert(std::int64_t index, Slot value);       // 0..count(); shares a reference value
  void remove(std::int64_t index);
  void resize(std::int64_t newCount);                // new elements are zero; negative: none
};

// Throws HostException OutOfMemoryException where count is more than memory holds.
Ref<Array> makeArray(Type elementType, std::int64_t count);

}  // namespace host
