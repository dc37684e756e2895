// A reference that threads read and replace at once.
#pragma once

#include "runtime/heap.h"
#include "runtime/value.h"

namespace host {

// Gives a reference of the caller's own to what the slot holds. Readers never wait, neither for each other
// nor for a writer.
Ref<Heap> loadShared(const Slot& slot);

// Puts what the caller owns in the slot, and gives back what was there, once no thread is about to take a
// reference to it.
void storeShared(Slot& slot, Heap* owned);

}  // namespace host
