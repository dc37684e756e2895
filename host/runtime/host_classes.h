// The host's own classes: registered through the same records and functions as a library's.
#pragma once

#include <cstdint>
#include <new>
#include <span>

#include "runtime/class.h"
#include "runtime/exception.h"
#include "runtime/text.h"

namespace host {

// Instance data of RuntimeException; subclasses add none.
struct ExceptionData {
  Text* message;  // owned
  std::int64_t errorNumber;
};

// Instance data of Date and DateTime.
struct DateData {
  double seconds;
};

// Instance data of every box of a variant.
struct BoxData {
  Slot value;  // a text is owned
};

// The hidden class of a variant's box for a plain type; null for the types that need none.
const Class* boxClassOf(Type type);

// Called once, by registry().
void registerHostClasses(Registry& registry, HostClasses& classes);
void registerMemoryBlock(Registry& registry);
void registerThread(Registry& registry);

// Runs the body of a function that the language calls: a HostException that leaves it becomes the pending
// one.
template <typename Body>
auto asPending(Body body) noexcept -> decltype(body()) {
  try {
    return body();
  } catch (const HostException& exception) {
    setPending(exception.exception);
  } catch (const std::bad_alloc&) {
    setPending(HostException("OutOfMemoryException", "There is not enough memory.").exception);
  }
  return decltype(body())();
}

// One record of a host class's table.
template <typename Result, typename... Arguments>
REALmethodDefinition hostMethod(const char* declaration, Result (*function)(Arguments...)) {
  return {reinterpret_cast<REALproc>(function), nullptr, declaration, recordFlags::console, nullptr, 0};
}
template <typename Getter, typename Setter>
REALproperty hostProperty(const char* name, const char* type, Getter getter, Setter setter) {
  REALproperty record = {};
  record.name = name;
  record.type = type;
  record.getter = reinterpret_cast<REALproc>(getter);
  record.setter = reinterpret_cast<REALproc>(setter);
  return record;
}

// The record of a host class; its parts stay where they are.
template <typename Data>
REALclassDefinition hostClass(const char* name, std::span<REALproperty> properties,
                              std::span<REALmethodDefinition> methods = {},
                              void (*destructor)(REALobject) = nullptr,
                              void (*constructor)(REALobject) = nullptr) {
  REALclassDefinition record = {};
  record.name = name;
  record.dataSize = sizeof(Data);
  record.constructor = reinterpret_cast<REALproc>(constructor);
  record.destructor = reinterpret_cast<REALproc>(destructor);
  record.properties = properties.data();
  record.propertyCount = properties.size();
  record.methods = methods.data();
  record.methodCount = methods.size();
  return record;
}

// The instance data that a class declares, in an object of it or of a subclass.
template <typename Data>
Data& dataIn(REALobject self, const Class& declaring) {
  return *reinterpret_cast<Data*>(reinterpret_cast<Object*>(self)->dataOf(declaring));
}

}  // namespace host
