#include "runtime/class.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <mutex>
#include <stdexcept>

#include "runtime/host_classes.h"

namespace host {

bool sameName(std::string_view left, std::string_view right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(), [](char a, char b) {
    return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
  });
}

namespace {

HostClasses theHostClasses = {};

template <typename Named>
const Named* findNamed(const std::deque<Named>& all, std::string_view name) {
  for (const Named& each : all) {
    if (sameName(each.name, name)) return &each;
  }
  return nullptr;
}

void collect(const std::deque<Method>& methods, std::string_view name, std::vector<const Method*>& found) {
  for (const Method& method : methods) {
    if (sameName(method.declaration.name, name)) found.push_back(&method);
  }
}

Method methodOf(const REALmethodDefinition& record, const Class* self, const std::string& owner) {
  try {
    if (!record.function || !record.declaration)
      throw std::runtime_error("a method without function or declaration");
    Method method;
    method.record = &record;
    method.declaration = parseDeclaration(record.declaration);
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

Property propertyOf(const REALproperty& record, const Class* self, const std::string& owner) {
  Property property;
  property.record = &record;
  property.name = record.name ? record.name : "";
  const std::optional<Type> type = typeNamed(record.type ? record.type : "");
  property.type = type ? *type : Type{Kind::Object, false, &registry().expectClass(record.type)};
  property.parameter = record.parameter;
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

bool Class::isA(const Class& other) const {
  for (const Class* each = this; each; each = each->super) {
    if (each == &other) return true;
  }
  return false;
}

const Property* Class::findProperty(std::string_view propertyName) const {
  for (const Class* each = this; each; each = each->super) {
    if (const Property* found = findNamed(each->properties, propertyName)) return found;
  }
  return nullptr;
}
const Property* Class::findSharedProperty(std::string_view propertyName) const {
  for (const Class* each = this; each; each = each->super) {
    if (const Property* found = findNamed(each->sharedProperties, propertyName)) return found;
  }
  return nullptr;
}
std::vector<const Method*> Class::findMethods(std::string_view methodName) const {
  std::vector<const Method*> found;
  for (const Class* each = this; each; each = each->super) collect(each->methods, methodName, found);
  return found;
}
std::vector<const Method*> Class::findSharedMethods(std::string_view methodName) const {
  std::vector<const Method*> found;
  for (const Class* each = this; each; each = each->super) collect(each->sharedMethods, methodName, found);
  return found;
}

const Class* Registry::findClass(std::string_view name) const { return findNamed(classes, name); }
const Module* Registry::findModule(std::string_view name) const { return findNamed(modules, name); }

std::vector<const Method*> Registry::findFunctions(std::string_view name) const {
  std::vector<const Method*> found;
  for (const Module& module : modules) collect(module.methods, name, found);
  collect(functions, name, found);
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
  added.dataSize = record.dataSize;
  added.instanceSize = (added.dataOffset + record.dataSize + 15) / 16 * 16;
  record.dataOffset = added.dataOffset;

  const std::vector<Passing> self = {{{Kind::Object, false, &added}}};
  added.initializer = Call(record.constructor, self, Type{});
  added.destructor = Call(record.destructor, self, Type{});
  for (std::size_t i = 0; i < record.propertyCount; ++i) {
    added.properties.push_back(propertyOf(record.properties[i], &added, added.name));
  }
  for (std::size_t i = 0; i < record.methodCount; ++i) {
    added.methods.push_back(methodOf(record.methods[i], &added, added.name));
  }
  for (std::size_t i = 0; i < record.sharedPropertyCount; ++i) {
    added.sharedProperties.push_back(propertyOf(record.sharedProperties[i], nullptr, added.name));
  }
  for (std::size_t i = 0; i < record.sharedMethodCount; ++i) {
    added.sharedMethods.push_back(methodOf(record.sharedMethods[i], nullptr, added.name));
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
    added.methods.push_back(methodOf(record.methods[i], nullptr, added.name));
  }
  for (std::size_t i = 0; i < record.propertyCount; ++i) {
    added.properties.push_back(propertyOf(record.properties[i], nullptr, added.name));
  }
}

void Registry::addFunction(REALmethodDefinition& record, bool fromLibrary) {
  functions.push_back(methodOf(record, nullptr, "a global function"));
  functions.back().fromLibrary = fromLibrary;
}

// Leaked on purpose: things that threads still hold at the end of the process refer to it.
Registry& registry() {
  static Registry* const all = new Registry;
  static thread_local bool entered = false;  // by the registration below, which comes back here
  static std::once_flag once;
  if (!entered) {
    std::call_once(once, [] {
      entered = true;
      registerHostClasses(*all, theHostClasses);
      entered = false;
    });
  }
  return *all;
}

const HostClasses& hostClasses() { return theHostClasses; }

}  // namespace host
