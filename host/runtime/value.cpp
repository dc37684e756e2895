// How wide values are.
#include "runtime/value.h"

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

}  // namespace host
