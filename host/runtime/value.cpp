#include "runtime/value.h"

#include "runtime/class.h"

namespace host {

std::size_t sizeOf(Type type) {
  switch (type.isReference() ? Kind::Object : type.kind) {
    case Kind::Boolean:
    case Kind::Int8:
    case Kind::UInt8:
      return 1;
    case Kind::Int16:
    case Kind::UInt16:
      return 2;
    case Kind::Int32:
    case Kind::UInt32:
    case Kind::Single:
      return 4;
    default:
      return 8;
  }
}

std::string nameOf(Type type) {
  if (type.array) return nameOf(type.element()) + "()";
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
