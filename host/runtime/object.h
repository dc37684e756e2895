// Instances of classes: the 32-byte head, then the host's own fields or the plug-in's instance data.
#pragma once

#include <memory>

#include "runtime/class.h"
#include "runtime/heap.h"

namespace host {

struct Object : Heap {
  // The instance data of the class that declares it (a subclass's data follows its superclass's).
  std::byte* dataOf(const Class& declaring) {
    return reinterpret_cast<std::byte*>(this) + declaring.dataOffset;
  }
};

// Zero-filled, initializers run (superclass first), no Constructor called. Throws HostException
// OutOfMemoryException.
Ref<Object> makeObject(const Class& objectClass);

bool isInstance(const Heap* thing, const Class& objectClass);  // false for null

}  // namespace host
