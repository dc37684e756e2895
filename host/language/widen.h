// Values between slots, in which integers are kept in 64 bits, and memory that holds exactly their type.
#pragma once

#include "runtime/sharing.h"
#include "runtime/value.h"

namespace host {

// A variable of exactly the type, as a function called by reference leaves it in the first bytes, as a slot.
Slot widened(Slot slot, Type type);

// Memory that threads may share.
inline Slot readMemory(const void* from, Type type) {
  Slot slot = {};
  copyFromShared(&slot, from, sizeOf(type));
  return widened(slot, type);
}
inline void writeMemory(void* to, Slot value, Type type) { copyToShared(to, &value, sizeOf(type)); }

}  // namespace host
