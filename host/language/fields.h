// What the objects of a program's own classes hold: a slot for each field, which threads share as they do
// variables at module level.
#pragma once

#include "language/node.h"
#include "runtime/class.h"

namespace host {

// The object whose method runs, which its caller holds.
Expr selfObject(Type type);

// A field of an object: a place. `member`: how the program writes it, for the message where the object is
// Nil.
Expr field(const Property& property, Expr object, const std::string& member = "");

// The slot itself, and what is in it; a reference is owned by the caller, and given where it is stored.
inline Slot& slotIn(Heap& object, const Property& property) {
  return *reinterpret_cast<Slot*>(reinterpret_cast<std::byte*>(&object) + property.offset);
}
Slot loadField(const Slot& slot, Type type);
void storeField(Slot& slot, Type type, Slot owned);

// The object whose member is used; throws the host's NilObjectException for Nil, which names the member as
// the program writes it, where that is known.
[[noreturn]] void failForNil(const std::string& member);
inline Slot notNil(Slot object, const std::string& member) {
  if (!object.heap) [[unlikely]]
    failForNil(member);
  return object;
}

}  // namespace host
