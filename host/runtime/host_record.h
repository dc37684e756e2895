// The records of the host's own classes and functions, which are registered as a library's are.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

#include "frame/host_interface.h"
#include "runtime/checked_declaration.h"
#include "runtime/object.h"

namespace host {

// A method, shared method or global function.
template <typename Result, typename... Arguments>
REALmethodDefinition hostMethod(
    std::type_identity_t<CheckedDeclaration<Result (*)(Arguments...)>> declaration,
    Result (*function)(Arguments...)) {
  return {reinterpret_cast<REALproc>(function), nullptr, declaration.text, recordFlags::console, nullptr, 0};
}

// A method that can be assigned to: the setter takes what the getter does, and then the value.
template <typename Value, typename... Arguments>
REALmethodDefinition hostMethod(std::type_identity_t<CheckedDeclaration<Value (*)(Arguments...)>> declaration,
                                Value (*getter)(Arguments...),
                                std::type_identity_t<void (*)(Arguments..., Value)> setter) {
  REALmethodDefinition record = hostMethod(declaration, getter);
  record.setterFunction = reinterpret_cast<REALproc>(setter);
  return record;
}

// A property of instances; read-only without a setter.
template <typename Value>
REALproperty hostProperty(const char* name, std::type_identity_t<CheckedType<Value>> type,
                          Value (*getter)(REALobject, RBInteger),
                          std::type_identity_t<void (*)(REALobject, RBInteger, Value)> setter = nullptr) {
  REALproperty record = {};
  record.name = name;
  record.type = type.text;
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
