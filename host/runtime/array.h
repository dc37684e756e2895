// The host's one-dimensional arrays: elements of eight bytes, upper bound -1 when empty.
#pragma once

#include <atomic>
#include <functional>
#include <vector>

#include "runtime/heap.h"
#include "runtime/value.h"

namespace host {

// Reference elements (strings, variants, objects) are owned by the array. Bytes 56 to 88 look as libraries
// that read arrays directly expect of a host of this version (frame/host_interface.h), unless the settings
// ask for another shape.
//
// Threads may share an array: each member below is one step to all others. Plain elements are read without
// any lock, by libraries as well, who ask for the number of elements first: so memory that elements have
// been in is kept until the array goes, and the number grows after the memory.
struct Array : Heap {
  Type elementType;
  std::int64_t capacity;
  std::byte published[40];  // from byte 56 on

  // Where the host itself keeps what the published bytes repeat.
  std::atomic<Slot*> elements;
  std::atomic<std::int64_t> elementCount;

  std::int64_t count() const { return elementCount.load(std::memory_order_acquire); }
  // Throw HostException OutOfBoundsException / OutOfMemoryException.
  Slot get(std::int64_t index) const;           // of a reference element the caller owns one
  void set(std::int64_t index, Slot value);     // shares a reference value, drops the old one
  void insert(std::int64_t index, Slot value);  // 0..count(); shares a reference value
  void append(Slot value);                      // shares a reference value
  Slot pop();                                   // removes the last one; the caller owns it
  void remove(std::int64_t index);
  void resize(std::int64_t newCount);  // new elements are zero; negative: none
  // Puts them in the order that `arrange` gives them; where that throws, they stay as they are.
  void rearrange(const std::function<void(std::vector<Slot>&)>& arrange);
  // Where the first one is, from that index on, for which `matches` gives true; none: -1.
  std::int64_t find(std::int64_t from, const std::function<bool(Slot)>& matches) const;

 private:
  Slot* memory() const { return elements.load(std::memory_order_acquire); }
  void setCount(std::int64_t newCount);
  void reserve(std::int64_t wanted);
  void check(std::int64_t index) const;
  Slot take(std::int64_t index);
};

// Throws HostException OutOfMemoryException where count is more than memory holds.
Ref<Array> makeArray(Type elementType, std::int64_t count);

// Gives back the elements; what the class of arrays carries.
void finalizeArray(Heap& array);

}  // namespace host
