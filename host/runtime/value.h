// Types of the host's language and the eight-byte slot that any of its values fits in.
#pragma once

#include <cstddef>
#include <cstdint>

namespace host {

class Class;
struct Heap;

enum class Kind : std::uint8_t {
  None,  // a Sub's result
  Nil,   // the literal; fits every Object, Array and Variant
  Boolean,
  Int8,
  Int16,
  Int32,
  Int64,
  UInt8,
  UInt16,
  UInt32,
  UInt64,
  Currency,  // 64-bit count of ten-thousandths
  Single,
  Double,
  Pointer,  // Ptr
  String,
  Variant,
  Object,  // of a class
};

inline constexpr std::uint8_t mostDimensions = 8;  // of an array

// A declared type: a kind, the class where the kind is Object, and whether it is an array of such elements.
struct Type {
  Kind kind = Kind::None;
  std::uint8_t array = 0;  // how many dimensions
  alignas(8) const Class* objectClass = nullptr;

  friend bool operator==(const Type&, const Type&) = default;

  // Held as a counted handle: strings, variants, objects, arrays (and Nil).
  bool isReference() const { return array || kind == Kind::Nil || kind >= Kind::String; }
  bool isInteger() const { return !array && kind >= Kind::Int8 && kind <= Kind::UInt64; }
  bool isUnsigned() const { return !array && kind >= Kind::UInt8 && kind <= Kind::UInt64; }
  bool isFloating() const { return !array && (kind == Kind::Single || kind == Kind::Double); }
  bool isNumber() const { return isInteger() || isFloating() || (!array && kind == Kind::Currency); }
  Type element() const { return {kind, false, objectClass}; }
  Type arrayOf(std::uint8_t dimensions = 1) const { return {kind, dimensions, objectClass}; }
};

// Bytes that a value of the (non-array) kind takes at the binary interface: 1, 2, 4 or 8.
std::size_t sizeOf(Type type);

// One value. Integers, Boolean and Currency are kept widened to 64 bits (sign- or zero-extended by their
// type); a Single stays a float, so that no NaN pattern is lost; handles are borrowed or owned as the holder
// says.
union Slot {
  std::int64_t integer;
  std::uint64_t word;
  double number;
  float single;
  void* pointer;
  Heap* heap;
};
static_assert(sizeof(Slot) == 8);

}  // namespace host
