// A reference that threads read and replace at once.
#pragma once

#include "runtime/heap.h"
#include "runtime/sharing.h"
#include "runtime/text.h"
#include "runtime/value.h"

namespace host {

// Gives a reference of the caller's own to what the slot holds.
inline Ref<Heap> loadShared(const Slot& slot) {
  const Using use(&slot);
  return Ref<Heap>::share(slot.heap);
}

// Puts what the caller owns in the slot, and gives back what was there.
inline void storeShared(Slot& slot, Heap* owned) {
  Ref<Heap> old;  // goes when this thread is no longer alone with the slot
  const Changing change(&slot);
  old = Ref<Heap>::adopt(std::exchange(slot.heap, owned));
}

// Whether a text could grow in the slot, where it stays.
inline bool growShared(Slot& slot, const Growth& growth) {
  const Changing change(&slot);
  return growth.happensIn(slot.heap);
}

}  // namespace host
