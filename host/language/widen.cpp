// From the narrow integers to 64 bits.
#include "language/widen.h"

#include <cstring>

namespace host {

Slot widened(Slot slot, Type type) {
  Slot wide = {};
  const auto read = [&](auto value) {
    std::memcpy(&value, &slot, sizeof value);
    wide.integer = static_cast<std::int64_t>(value);
  };
  switch (type.isReference() ? Kind::None : type.kind) {
    case Kind::Boolean:
      read(std::uint8_t{});
      wide.integer = wide.integer != 0;
      break;
    case Kind::Int8:
      read(std::int8_t{});
      break;
    case Kind::Int16:
      read(std::int16_t{});
      break;
    case Kind::Int32:
      read(std::int32_t{});
      break;
    case Kind::UInt8:
      read(std::uint8_t{});
      break;
    case Kind::UInt16:
      read(std::uint16_t{});
      break;
    case Kind::UInt32:
      read(std::uint32_t{});
      break;
    default:
      return slot;
  }
  return wide;
}

}  // namespace host
