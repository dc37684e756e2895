// The class MemoryBlock: bytes that a program reads and writes by type, and hands to libraries as a Ptr.
#pragma once

#include "runtime/registry.h"

namespace host {

const Class& registerMemoryBlock(Registry& registry);

}  // namespace host
