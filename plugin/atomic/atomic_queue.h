// AtomicQueueQTX: a sequence of Variants that host threads share as a queue or a stack.
#pragma once

#include "frame/host_interface.h"

namespace qtx {

extern REALclassDefinition atomicQueueClass;

}  // namespace qtx
