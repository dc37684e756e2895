// Turns records into classes, modules and functions.
#include "runtime/registry.h"

#include <cstring>
#include <stdexcept>

#include "runtime/object.h"

namespace host {

namespace {

Method methodOf(const REALmethodDefinition& record, ClassNames& classes, const Class* self,
                const std::string& owner) {
  try {
    if (!record.function || !record.declaration)
      throw std::runtime_error("a method without function or declaration");
    Method method;
    method.declaration = parseDeclaration(record.declaration, classes);
    std::vector<Passing> arguments;
    if (self) arguments.push_back({{Kind::Object, false, self}});
    for (const Parameter& parameter : method.declaration.parameters)
      arguments.push_back({parameter.type, parameter.byRef});
    method.call = Call(record.function, arguments, method.declaration.result);
    if (record.setterFunction) {
      arguments.push_back({method.declaration.result});
      method.setter = Call(record.setterFunction, arguments, Type{});
    }
    return method;
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(owner + ": " + error.what());
  }
}

Property propertyOf(const REALproperty& record, ClassNames& classes, const Class* self,
                    const std::string& owner) {
  Property property;
  property.name = record.name ? record.name : "";
  property.declaredType = record.type ? record.type : "";
  const std::optional<Type> type = typeNamed(property.declaredType, classes);
  property.type = type ? *type : Type{Kind::Object, false, &classes.expectClass(record.type)};
  property.parameter = record.parameter;
  property.owner = self;
  for (std::size_t i = 0; i < record.attributeCount; ++i) {
    property.hidden = property.hidden || std::strcmp(record.attributes[i].name, "Hidden") == 0;
  }
  if (!record.getter) throw std::runtime_error(owner + ": the property " + property.name + " cannot be read");
  if (record.getter == reinterpret_cast<REALproc>(~std::uintptr_t{0})) {
    property.field = true;
    return property;
  }
  std::vector<Passing> arguments;
  if (self) arguments = {{{Kind::Object, false, self}}, {{Kind::Int64}}};
  property.getter = Call(record.getter, arguments, property.type);
  arguments.push_back({property.type});
  if (record.setter) property.setter = Call(record.setter, arguments, Type{});
  return property;
}

}  // namespace

const Class* Registry::findClass(std::string_view name) const {
  const auto found = classesByName_.find(name);
  return found == classesByName_.end() ? nullptr : found->second;
}
const Module* Registry::findModule(std::string_view name) const {
  for (const Module& each : modules) {
    if (sameName(each.name, name)) return &each;
  }
  return nullptr;
}

std::vector<const Method*> Registry::findFunctions(std::string_view name) const {
  std::vector<const Method*> found;
  for (const Module& module : modules) collectNamed(module.methods, name, found);
  collectNamed(functions, name, found);
  return found;
}

const Property* Registry::findSharedProperty(std::string_view name) const {
  for (const Module& module : modules) {
    if (const Property* found = findNamed(module.properties, name)) return found;
  }
  return nullptr;
}

Class& Registry::expectClass(std::string_view name) {
  if (const Class* found = findClass(name)) return const_cast<Class&>(*found);
  Class& mentioned = classes.emplace_back();
  mentioned.name = name;
  classesByName_.emplace(mentioned.name, &mentioned);
  return mentioned;
}

void Registry::checkComplete() const {
  for (const Class& each : classes) {
    if (!each.defined)
      throw std::runtime_error("the class " + each.name + " is used in a declaration but not registered");
  }
}

Class& Registry::addClass(REALclassDefinition& record, bool fromLibrary) {
  if (!record.name || !*record.name) throw std::runtime_error("a class without a name");
  Class& added = expectClass(record.name);
  if (added.defined) throw std::runtime_error("the class " + added.name + " is registered already");
  added.defined = true;
  added.fromLibrary = fromLibrary;
  if (record.superName && *record.superName) {
    added.super = findClass(record.superName);
    if (!added.super || !added.super->defined) {
      throw std::runtime_error(added.name + ": the superclass " + record.superName + " is not registered");
    }
  }
  const std::size_t start = added.super ? added.super->instanceSize : sizeof(Heap);
  added.dataOffset = (start + 15) / 16 * 16;
  added.instanceSize = (added.dataOffset + record.dataSize + 15) / 16 * 16;
  record.dataOffset = added.dataOffset;

  const std::vector<Passing> self = {{{Kind::Object, false, &added}}};
  added.initializer = Call(record.constructor, self, Type{});
  added.destructor = Call(record.destructor, self, Type{});
  if (added.destructor || (added.super && added.super->finalize)) added.finalize = &finalizeObject;
  for (std::size_t i = 0; i < record.propertyCount; ++i) {
    added.properties.push_back(propertyOf(record.properties[i], *this, &added, added.name));
  }
  for (std::size_t i = 0; i < record.methodCount; ++i) {
    added.methods.push_back(methodOf(record.methods[i], *this, &added, added.name));
  }
  for (std::size_t i = 0; i < record.sharedPropertyCount; ++i) {
    added.sharedProperties.push_back(propertyOf(record.sharedProperties[i], *this, nullptr, added.name));
  }
  for (std::size_t i = 0; i < record.sharedMethodCount; ++i) {
    added.sharedMethods.push_back(methodOf(record.sharedMethods[i], *this, nullptr, added.name));
  }
  return added;
}

void Registry::addModule(REALmoduleDefinition& record, bool fromLibrary) {
  if (!record.name || !*record.name) throw std::runtime_error("a module without a name");
  if (findModule(record.name))
    throw std::runtime_error(std::string("the module ") + record.name + " is registered already");
  Module& added = modules.emplace_back();
  added.name = record.name;
  added.fromLibrary = fromLibrary;
  for (std::size_t i = 0; i < record.methodCount; ++i) {
    added.methods.push_back(methodOf(record.methods[i], *this, nullptr, added.name));
  }
  for (std::size_t i = 0; i < record.propertyCount; ++i) {
    added.properties.push_back(propertyOf(record.properties[i], *this, nullptr, added.name));
  }
}

void Registry::addFunction(REALmethodDefinition& record, bool fromLibrary) {
  functions.push_back(methodOf(record, *this, nullptr, "a global function"));
  functions.back().fromLibrary = fromLibrary;
}

// Leaked on purpose: things that threads still hold at the end of the process refer to it.
Registry& registry() {
  static Registry* const all = new Registry;
  return *all;
}

}  // namespace host
