// The host's arrays: elements of eight bytes, upper bound -1 when empty.
#pragma once

#include <atomic>
#include <functional>
#include <span>
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
  std::int64_t dimensions;  // of a Grid more than one

  std::int64_t count() const { return elementCount.load(std::memory_order_acquire); }
  // Throw HostException OutOfBoundsException / OutOfMemoryException. Those that change how many elements
  // there are, or rearrange them, are for arrays of one dimension alone.
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
  std::int64_t upperBound(std::int64_t dimension) const;  // dimensions are numbered from 1

 protected:
  Slot* memory() const { return elements.load(std::memory_order_acquire); }
  void setCount(std::int64_t newCount);
  void reserve(std::int64_t wanted);
  // Puts a value where `locate` says, which throws where that is nowhere.
  template <typename Locate>
  void put(Locate locate, Slot value);

 private:
  void check(std::int64_t index) const;
  Slot take(std::int64_t index);
};

// An array of several dimensions. Its elements lie in one row, in which the last index counts fastest; as the
// elements of an Array they are read one after the other.
struct Grid : Array {
  std::int64_t counts[mostDimensions];  // how many indices each dimension has; changed by resize alone

  // As many indices as there are dimensions. Both are one step to all other threads, as resize is.
  Slot get(const Slot* indices) const;        // of a reference element the caller owns one
  void set(const Slot* indices, Slot value);  // shares a reference value, drops the old one
  // What has the same indices before and after stays; new elements are zero.
  void resize(std::span<const std::int64_t> newCounts);

 private:
  std::int64_t locate(const Slot* indices) const;
  bool isWithin(std::int64_t at, const std::int64_t* of, const std::int64_t* others) const;
};

// Throws HostException OutOfMemoryException where count is more than memory holds.
Ref<Array> makeArray(Type elementType, std::int64_t count);
Ref<Grid> makeGrid(Type elementType, std::span<const std::int64_t> counts);

// Of its elements, with the number of dimensions.
inline Type typeOf(const Array& array) {
  return array.elementType.arrayOf(static_cast<std::uint8_t>(array.dimensions));
}

// Gives back the elements; what the class of arrays carries.
void finalizeArray(Heap& array);

}  // namespace host
