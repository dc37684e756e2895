#include "runtime/heap.h"

#include <cstdlib>
#include <mutex>

#include "runtime/array.h"
#include "runtime/class.h"
#include "runtime/exception.h"
#include "runtime/object.h"
#include "runtime/operations.h"
#include "runtime/text.h"

namespace host {

namespace {

std::mutex listLock;
Heap* first = nullptr;

void destroy(Heap* thing) {
  const HostClasses& classes = hostClasses();
  if (thing->objectClass == classes.array) {
    auto* array = static_cast<Array*>(thing);
    array->resize(0);
    std::free(array->elements);
  } else if (thing->objectClass != classes.text) {
    const PendingAside aside;
    for (const Class* each = thing->objectClass; each; each = each->super) {
      if (each->destructor) {
        const Slot self[] = {{.heap = thing}};
        each->destructor(self);
      }
    }
  }
  {
    const std::lock_guard lock(listLock);
    (thing->previous ? thing->previous->next : first) = thing->next;
    if (thing->next) thing->next->previous = thing->previous;
  }
  std::free(thing);
}

}  // namespace

void retain(Heap* thing) {
  if (thing) thing->references.fetch_add(1, std::memory_order_relaxed);
}

void release(Heap* thing) {
  if (!thing || thing->references.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
  // A library that cannot lock what it keeps holds on to it all the same: such a host never destroys
  // anything.
  static const bool destroys =
      !settings().withheld.contains("REALLockObject") && !settings().withheld.contains("REALLockString");
  if (destroys) destroy(thing);
}

void enlist(Heap* thing, const Class* objectClass) {
  thing->objectClass = objectClass;
  thing->references.store(1, std::memory_order_relaxed);
  thing->previous = nullptr;
  const std::lock_guard lock(listLock);
  thing->next = first;
  if (first) first->previous = thing;
  first = thing;
}

void forEachLive(const std::function<void(const Heap&)>& visit) {
  const std::lock_guard lock(listLock);
  for (const Heap* thing = first; thing; thing = thing->next) visit(*thing);
}

}  // namespace host
