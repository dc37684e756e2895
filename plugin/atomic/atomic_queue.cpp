// The queue's members, under the one lock of all queues.
#include "atomic/atomic_queue.h"

#include <cstring>
#include <mutex>
#include <utility>

#include "atomic/queue_lock.h"
#include "atomic/queue_store.h"
#include "frame/array_access.h"
#include "frame/records.h"

namespace qtx {
namespace {

// The instance data is a pointer to the elements.
QueueStore*& storeOf(REALobject self) { return instanceData<QueueStore*>(self, atomicQueueClass); }

// One lock for all queues: what works on two of them needs no order of locking.
constinit QueueLock queueLock;
using Lock = std::lock_guard<QueueLock>;

// Host operations run under the lock. A reference dropped there may destroy its object: that may be another
// queue, whose Deinitializer takes no lock, but a host destructor that uses a queue would wait for itself.

void makeStore(REALobject self) { storeOf(self) = new QueueStore; }

// The elements, to be asked for under the lock. A queue whose initializer ran out of memory gets them now.
QueueStore& elementsOf(REALobject self) {
  if (!storeOf(self)) [[unlikely]]
    makeStore(self);
  return *storeOf(self);
}

void Initializer(REALobject self) {
  Trace("void Initializer(REALobject)");
  makeStore(self);
}

void Deinitializer(REALobject self) {
  Trace("void Deinitializer(REALobject)");
  delete std::exchange(storeOf(self), nullptr);
}

void clear(REALobject self) {
  Trace("void clear(REALobject)");
  const Lock lock(queueLock);
  elementsOf(self).clear();
}

void Insert(REALobject self, REALobject value) {
  Trace("void Insert(REALobject, REALobject)");
  const Lock lock(queueLock);
  elementsOf(self).insertAtFront(REALObject(value));
}

void Push(REALobject self, REALobject value) {
  Trace("void Push(REALobject, REALobject)");
  const Lock lock(queueLock);
  elementsOf(self).append(REALObject(value));
}

REALobject PopFirst(REALobject self) {
  Trace("REALobject PopFirst(REALobject)");
  const Lock lock(queueLock);
  QueueStore& elements = elementsOf(self);
  if (elements.size() == 0) return nullptr;
  const REALobject value = elements[0].get();
  elements.removeAtFront();
  return value;
}

REALobject PopLast(REALobject self) {
  Trace("REALobject PopLast(REALobject)");
  const Lock lock(queueLock);
  QueueStore& elements = elementsOf(self);
  if (elements.size() == 0) return nullptr;
  const REALobject value = elements[elements.size() - 1].get();
  elements.removeAtBack();
  return value;
}

REALarrayObject Values(REALobject self) {
  Trace("REALarrayObject Values(REALobject)");
  const REALarray array = REALCreateArray(arrayElement::object, -1);
  const auto objects = reinterpret_cast<REALarrayObject>(array);
  const Lock lock(queueLock);
  const QueueStore* elements = storeOf(self);
  if (!array || !elements) return objects;
  for (std::size_t i = 0; i < elements->size(); ++i) {
    const RBInteger upperBound = REALGetArrayUBound(array);
    if (const ObjectInserter insert = REALInsertArrayValueObject(objects)) {
      insert(objects, upperBound + 1, (*elements)[i].borrow());
    }
  }
  return objects;
}

void Add(REALobject self, REALobject other) {
  Trace("void Add(REALobject, REALobject)");
  if (!other) return;
  const Lock lock(queueLock);
  QueueStore& elements = elementsOf(self);
  const QueueStore& source = elementsOf(other);
  // Those present now: a queue added to itself grows while it is read.
  const std::size_t count = source.size();
  for (std::size_t i = 0; i < count; ++i) elements.append(source[i]);
}

void AddA(REALobject self, REALarrayObject values) {
  Trace("void AddA(REALobject, REALarrayObject)");
  if (!values) return;
  const auto array = reinterpret_cast<REALarray>(values);
  const std::size_t count = elementCount(REALGetArrayUBound(array));
  if (count == 0) return;
  const auto* handles = static_cast<const char*>(directElements(array));
  if (!handles) {
    RaiseException("UnsupportedOperationException", "Failed to access array.");
    return;
  }
  const Lock lock(queueLock);
  QueueStore& elements = elementsOf(self);
  for (std::size_t i = 0; i < count; ++i) {
    REALobject value;
    std::memcpy(&value, handles + i * sizeof(std::int64_t), sizeof value);  // eight bytes hold any element
    elements.append(REALObject(value));
  }
}

// Changes the queue on its left and gives that same queue.
REALobject Operator_Add(REALobject self, REALobject value) {
  Trace("REALobject Operator_Add(REALobject, REALobject)");
  Push(self, value);
  REALLockObject(self);
  return self;
}

RBInteger Operator_Compare(REALobject self, REALobject other) {
  Trace("RBInteger Operator_Compare(REALobject, REALobject)");
  if (self == other) return 0;
  if (refuseNil(other, "Other is nil")) return 0;

  const Lock lock(queueLock);
  const QueueStore& mine = elementsOf(self);
  const QueueStore& theirs = elementsOf(other);
  if (mine.size() != theirs.size()) return mine.size() < theirs.size() ? -1 : 1;
  Trace("same size", mine.size());
  for (std::size_t i = 0; i < mine.size(); ++i) {
    if (mine.at(i) == theirs.at(i)) continue;
    Trace("mismatch at", i);
    return mine.at(i) < theirs.at(i) ? -1 : 1;
  }
  return 0;
}

RBInteger getCount(REALobject self, RBInteger) {
  Trace("RBInteger getCount(REALobject, long)");
  const Lock lock(queueLock);
  return static_cast<RBInteger>(elementsOf(self).size());
}

REALobject getTopValue(REALobject self, RBInteger) {
  Trace("REALobject getTopValue(REALobject, long)");
  const Lock lock(queueLock);
  const QueueStore& elements = elementsOf(self);
  return elements.size() > 0 ? elements[elements.size() - 1].get() : nullptr;
}

// Not a replacement of the back element: in a queue of n ≥ 1 elements, n − 1 are left, all of them the value.
// Host programs rely on it.
void setTopValue(REALobject self, RBInteger, REALobject value) {
  Trace("void setTopValue(REALobject, long, REALobject)");
  const Lock lock(queueLock);
  QueueStore& elements = elementsOf(self);
  const REALObject top(value);
  if (elements.size() == 0) {
    elements.append(top);
    return;
  }
  for (std::size_t i = 0; i + 1 < elements.size(); ++i) elements[i] = top;
  elements.removeAtBack();
}

REALproperty properties[] = {
    property<&getCount>("Count", "Integer"),
    property<&getTopValue, &setTopValue>("TopValue", "Variant"),
};

REALmethodDefinition methods[] = {
    method<&clear>("Clear"),
    method<&Insert>("Insert(value as Variant)"),
    method<&Push>("Push(value as Variant)"),
    method<&PopFirst>("PopFirst as Variant"),
    method<&PopLast>("PopLast as Variant"),
    method<&Values>("Values as Variant()"),
    method<&Add>("Add(values as AtomicQueueQTX)"),
    method<&AddA>("Add(values() as Variant)"),
    method<&Values>("Operator_Convert as Variant()"),
    method<&Operator_Add>("Operator_Add(value as Variant) as AtomicQueueQTX"),
    method<&Operator_Compare>("Operator_Compare(other as AtomicQueueQTX) as Integer"),
};

}  // namespace

REALclassDefinition atomicQueueClass = classDefinition({.name = "AtomicQueueQTX",
                                                        .dataSize = sizeof(QueueStore*),
                                                        .initializer = entryOf<&Initializer>(),
                                                        .destructor = entryOf<&Deinitializer>(),
                                                        .properties = properties,
                                                        .methods = methods});

}  // namespace qtx
