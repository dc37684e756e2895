// Makes objects, and takes leave of them.
#include "runtime/object.h"

#include <cstring>

#include "runtime/wording.h"

namespace host {

namespace {
void initialize(const Class& objectClass, Heap* object) {
  if (objectClass.super) initialize(*objectClass.super, object);
  if (objectClass.initializer) {
    const Slot self[] = {{.heap = object}};
    objectClass.initializer(self);
  }
}
}  // namespace

Ref<Object> makeObject(const Class& objectClass) {
  Heap* thing = allocate(objectClass, objectClass.instanceSize);
  if (!thing)
    throwException("OutOfMemoryException", "There is no memory for " + withArticle(objectClass.name) + ".");
  std::memset(static_cast<void*>(thing + 1), 0, objectClass.instanceSize - sizeof(Heap));
  Ref<Object> made = Ref<Object>::adopt(static_cast<Object*>(thing));
  const PendingAside aside;
  initialize(objectClass, thing);
  return made;
}

void finalizeObject(Heap& object) {
  const PendingAside aside;
  for (const Class* each = object.objectClass; each; each = each->super) {
    if (!each->destructor) continue;
    const Slot self[] = {{.heap = &object}};
    each->destructor(self);
    if (object.references.load(std::memory_order_relaxed) != 0) return;  // it is needed again
  }
}

const Method& targetOf(const Method& method, const Heap& object) {
  if (method.place < 0) return method;
  const auto place = static_cast<std::size_t>(method.place);
  if (!method.owner->isInterface) return *object.objectClass->table[place];
  const std::vector<Implementation>& all = object.objectClass->implementations;
  std::size_t i = 0;
  while (all[i].interface != method.owner) ++i;  // a class has what it is an instance of
  return *all[i].methods[place];
}

bool isInstance(const Heap* thing, const Class& objectClass) {
  return thing && thing->objectClass->isA(objectClass);
}

}  // namespace host
