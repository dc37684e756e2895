// Instances of classes: the 32-byte head, then the host's own fields or the plug-in's instance data.
#pragma once

#include <cstddef>
#include <utility>

#include "runtime/class.h"
#include "runtime/heap.h"
#include "runtime/throwing.h"

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

// Runs the destructors, the superclass's last.
void finalizeObject(Heap& object);

// What runs where the method is called on the object.
const Method& targetOf(const Method& method, const Heap& object);

bool isInstance(const Heap* thing, const Class& objectClass);  // false for null

// Puts the pending exception aside for its lifetime: what the host calls on a library's behalf, while a
// function of the library is still running, must not take that function's exception for its own.
class PendingAside {
 public:
  PendingAside() : aside_(std::exchange(pendingException, nullptr)) {}
  ~PendingAside() { release(std::exchange(pendingException, aside_)); }
  PendingAside(const PendingAside&) = delete;
  PendingAside& operator=(const PendingAside&) = delete;

 private:
  Heap* aside_;
};

}  // namespace host
