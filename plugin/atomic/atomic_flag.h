// AtomicFlagQTX: a lock-free Boolean that host threads set, test and clear.
#pragma once

#include "frame/host_interface.h"

namespace qtx {

extern REALclassDefinition atomicFlagClass;

}  // namespace qtx
