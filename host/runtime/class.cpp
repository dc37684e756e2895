// Finds members, of a class and those above it.
#include "runtime/class.h"

#include "runtime/name.h"

namespace host {

const Property* findNamed(const std::deque<Property>& properties, std::string_view name) {
  for (const Property& each : properties) {
    if (sameName(each.name, name)) return &each;
  }
  return nullptr;
}

void collectNamed(const std::deque<Method>& methods, std::string_view name,
                  std::vector<const Method*>& found) {
  for (const Method& method : methods) {
    if (sameName(method.declaration.name, name)) found.push_back(&method);
  }
}

bool Class::isA(const Class& other) const {
  for (const Class* each = this; each; each = each->super) {
    if (each == &other) return true;
  }
  for (const Implementation& each : implementations) {
    if (each.interface == &other) return true;
  }
  for (const Class* each : interfaces) {
    if (each->isA(other)) return true;
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
  for (const Class* each = this; each; each = each->super) collectNamed(each->methods, methodName, found);
  for (const Class* each : isInterface ? interfaces : std::vector<const Class*>()) {
    const std::vector<const Method*> more = each->findMethods(methodName);
    found.insert(found.end(), more.begin(), more.end());
  }
  return found;
}
std::vector<const Method*> Class::findSharedMethods(std::string_view methodName) const {
  std::vector<const Method*> found;
  for (const Class* each = this; each; each = each->super)
    collectNamed(each->sharedMethods, methodName, found);
  return found;
}

std::string nameOf(Type type) {
  if (type.array) return nameOf(type.element()) + "(" + std::string(type.array - 1U, ',') + ")";
  switch (type.kind) {
    case Kind::None:
      return "nothing";
    case Kind::Nil:
      return "Nil";
    case Kind::Boolean:
      return "Boolean";
    case Kind::Int8:
      return "Int8";
    case Kind::Int16:
      return "Int16";
    case Kind::Int32:
      return "Int32";
    case Kind::Int64:
      return "Integer";
    case Kind::UInt8:
      return "UInt8";
    case Kind::UInt16:
      return "UInt16";
    case Kind::UInt32:
      return "UInt32";
    case Kind::UInt64:
      return "UInt64";
    case Kind::Currency:
      return "Currency";
    case Kind::Single:
      return "Single";
    case Kind::Double:
      return "Double";
    case Kind::Pointer:
      return "Ptr";
    case Kind::String:
      return "String";
    case Kind::Variant:
      return "Variant";
    case Kind::Object:
      return type.objectClass ? type.objectClass->name : "Object";
  }
  return "";
}

}  // namespace host
