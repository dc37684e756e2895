// The records of the host's own classes and functions, which are registered as a library's are.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "frame/host_interface.h"
#include "runtime/object.h"

namespace host {

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
