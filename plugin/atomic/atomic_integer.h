// AtomicIntegerQTX: a signed 64-bit counter that several host threads may change at once without a lock.
#pragma once

#include "frame/host_interface.h"

namespace qtx {

extern REALclassDefinition atomicIntegerClass;

}  // namespace qtx
