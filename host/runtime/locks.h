// The language's CriticalSection, Mutex and Semaphore.
#pragma once

#include "runtime/registry.h"

namespace host {

void registerLocks(Registry& registry);

}  // namespace host
