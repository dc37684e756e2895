// Objects of the two 128-bit classes: their values, and making them.
#pragma once

#include "frame/host_operations.h"
#include "frame/records.h"
#include "int128/int128_classes.h"
#include "int128/wide_integer.h"

namespace qtx {

// The host class that holds values of a type.
template <typename Value>
struct ClassOf;
template <>
struct ClassOf<Int128> {
  static constexpr const char* name = "Int128QTX";
  static constexpr const REALclassDefinition& record = int128Class;
};
template <>
struct ClassOf<UInt128> {
  static constexpr const char* name = "UInt128QTX";
  static constexpr const REALclassDefinition& record = uint128Class;
};

// The instance data is the value itself. Its words are read and written one by one, without tearing either:
// threads of a host program that share an object may find the words of two values, never less.
template <typename Value>
Value& dataOf(REALobject instance) {
  return instanceData<Value>(instance, ClassOf<Value>::record);
}
template <typename Word>
Word loadWord(const Word& word) {
  return __atomic_load_n(&word, __ATOMIC_RELAXED);
}
template <typename Word>
void storeWord(Word& word, Word value) {
  __atomic_store_n(&word, value, __ATOMIC_RELAXED);
}
template <typename Value>
Value valueOf(REALobject instance) {
  const Value& data = dataOf<Value>(instance);
  return {loadWord(data.low), loadWord(data.high)};
}
template <typename Value>
void setValueOf(REALobject instance, Value value) {
  Value& data = dataOf<Value>(instance);
  storeWord(data.low, value.low);
  storeWord(data.high, value.high);
}

// An object of its own, with one reference for the caller; nil where the host cannot make one.
template <typename Value>
__attribute__((noinline)) REALobject makeInstance(Value value) noexcept {
  const REALobject instance = REALnewInstance(ClassOf<Value>::name);
  if (instance) setValueOf(instance, value);
  return instance;
}

}  // namespace qtx
