// Builds the records that are registered with the host: declaration and property tables read like
// documentation, and every function that could throw gets its guard here.
#pragma once

#include <concepts>
#include <cstddef>
#include <span>

#include "frame/checked_declaration.h"
#include "frame/host_interface.h"
#include "frame/raise.h"

namespace qtx {

namespace detail {

template <auto function, typename Signature = decltype(function)>
struct Entry;

// A function that may throw is entered through a guard.
template <auto function, typename Result, typename... Arguments>
struct Entry<function, Result (*)(Arguments...)> {
  static Result call(Arguments... arguments) noexcept {
    return guard([&] { return function(arguments...); });
  }
  static REALproc address() { return reinterpret_cast<REALproc>(&call); }
};

// One that never does is entered directly.
template <auto function, typename Result, typename... Arguments>
struct Entry<function, Result (*)(Arguments...) noexcept> {
  static REALproc address() { return reinterpret_cast<REALproc>(function); }
};

template <auto function>
struct Entry<function, std::nullptr_t> {  // no setter
  static REALproc address() { return nullptr; }
};

}  // namespace detail

// What the host calls for the function. No exception leaves it.
template <auto function>
REALproc entryOf() {
  return detail::Entry<function>::address();
}

// A declaration of what `function` can be called as.
template <auto function>
using DeclarationOf = CheckedDeclaration<std::remove_const_t<decltype(function)>>;

// A method, shared method or global function, by its entry.
template <auto function>
REALmethodDefinition methodRecord(REALproc entry, DeclarationOf<function> declaration) {
  return {entry, nullptr, declaration.text(), recordFlags::console, nullptr, 0};
}
template <auto function>
REALmethodDefinition method(DeclarationOf<function> declaration) {
  return methodRecord<function>(entryOf<function>(), declaration);
}

// One of two functions of the same type that do the same: the first where the processor can run it.
template <auto tuned, auto portable>
requires std::same_as<decltype(tuned), decltype(portable)> REALmethodDefinition
method(bool canRun, DeclarationOf<portable> declaration) {
  return methodRecord<portable>(canRun ? entryOf<tuned>() : entryOf<portable>(), declaration);
}

namespace detail {

inline REALproperty propertyRecord(const char* name, const char* type, REALproc getter, REALproc setter) {
  return {.group = nullptr,
          .name = name,
          .type = type,
          .flags = recordFlags::console | recordFlags::property,
          .getter = getter,
          .setter = setter,
          .parameter = 0,
          .editorCount = 0,
          .editors = nullptr,
          .attributes = nullptr,
          .attributeCount = 0};
}

// Not deduced from, so that the setter may be left out.
template <PropertyKind kind, auto getter, auto setter>
using PropertyType = std::type_identity_t<CheckedType<PropertyFit<kind, getter, setter>>>;

// Where a field lies in its structure, and its type.
template <typename Data, typename Field>
std::ptrdiff_t offsetOf(Field Data::*field) {
  const Data data{};
  return reinterpret_cast<const char*>(&(data.*field)) - reinterpret_cast<const char*>(&data);
}
template <typename Data, typename Field>
Field fieldOf(Field Data::*field);

}  // namespace detail

// An instance property; read-only without a setter.
template <auto getter, auto setter = nullptr>
REALproperty property(const char* name,
                      detail::PropertyType<detail::PropertyKind::instance, getter, setter> type) {
  return detail::propertyRecord(name, type.text(), entryOf<getter>(), entryOf<setter>());
}

// A property of the module.
template <auto getter, auto setter = nullptr>
REALproperty sharedProperty(const char* name,
                            detail::PropertyType<detail::PropertyKind::shared, getter, setter> type) {
  REALproperty record = detail::propertyRecord(name, type.text(), entryOf<getter>(), entryOf<setter>());
  record.flags |= recordFlags::scopeShared;
  return record;
}

// An instance property that the host reads and writes itself: a field of the instance data.
template <auto field>
REALproperty fieldProperty(const char* name,
                           CheckedType<detail::FieldFit<decltype(detail::fieldOf(field))>> type) {
  const auto byHost = reinterpret_cast<REALproc>(~std::uintptr_t{0});
  REALproperty record = detail::propertyRecord(name, type.text(), byHost, byHost);
  record.parameter = detail::offsetOf(field);
  return record;
}

// A class without superclass, events or constants. The record and its tables must outlive the process's use
// of them: the host keeps pointers.
struct ClassTables {
  const char* name;
  std::size_t dataSize;
  REALproc initializer = nullptr;
  REALproc destructor = nullptr;
  std::span<REALproperty> properties;
  std::span<REALmethodDefinition> methods;
  std::span<REALmethodDefinition> sharedMethods = {};
};
inline REALclassDefinition classDefinition(const ClassTables& tables) {
  REALclassDefinition record = {};
  record.version = 15;  // replaced by the control version at registration
  record.name = tables.name;
  record.dataSize = tables.dataSize;
  record.constructor = tables.initializer;
  record.destructor = tables.destructor;
  record.properties = tables.properties.data();
  record.propertyCount = tables.properties.size();
  record.methods = tables.methods.data();
  record.methodCount = tables.methods.size();
  record.flags = recordFlags::console;
  record.sharedMethods = tables.sharedMethods.data();
  record.sharedMethodCount = tables.sharedMethods.size();
  return record;
}

// The instance data of an object of the class, which the host has put `dataOffset` bytes behind the handle.
template <typename Data>
Data& instanceData(REALobject object, const REALclassDefinition& record) {
  return *reinterpret_cast<Data*>(reinterpret_cast<char*>(object) + record.dataOffset);
}

}  // namespace qtx
