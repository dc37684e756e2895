#include "runtime/object.h"

#include <cstdlib>

#include "runtime/exception.h"

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
  void* memory = std::calloc(1, objectClass.instanceSize);
  if (!memory)
    throw HostException("OutOfMemoryException", "There is no memory for a " + objectClass.name + ".");
  auto* object = static_cast<Object*>(memory);
  enlist(object, &objectClass);
  Ref<Object> made = Ref<Object>::adopt(object);
  const PendingAside aside;
  initialize(objectClass, object);
  return made;
}

bool isInstance(const Heap* thing, const Class& objectClass) {
  return thing && thing->objectClass->isA(objectClass);
}

}  // namespace host
