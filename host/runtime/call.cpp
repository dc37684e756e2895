// Prepares calls, and makes those of rare shapes through libffi.
#include "runtime/call.h"

#include <ffi.h>

#include <array>
#include <cstring>
#include <type_traits>
#include <utility>

#include "runtime/foreign_reads.h"

namespace host {

namespace {

ffi_type* ffiTypeOf(Type type) {
  if (type.isReference()) return &ffi_type_pointer;
  switch (type.kind) {
    case Kind::None:
      return &ffi_type_void;
    case Kind::Boolean:
    case Kind::UInt8:
      return &ffi_type_uint8;
    case Kind::Int8:
      return &ffi_type_sint8;
    case Kind::Int16:
      return &ffi_type_sint16;
    case Kind::UInt16:
      return &ffi_type_uint16;
    case Kind::Int32:
      return &ffi_type_sint32;
    case Kind::UInt32:
      return &ffi_type_uint32;
    case Kind::UInt64:
      return &ffi_type_uint64;
    case Kind::Single:
      return &ffi_type_float;
    case Kind::Double:
      return &ffi_type_double;
    case Kind::Pointer:
      return &ffi_type_pointer;
    default:
      return &ffi_type_sint64;
  }
}

// libffi hands integers that are narrower than a register back in a whole one, of which only the low part
// counts.
Slot resultOf(const void* returned, Type type) {
  Slot slot = {};
  ffi_arg word;
  std::memcpy(&word, returned, sizeof word);
  switch (type.isReference() ? Kind::Object : type.kind) {
    case Kind::None:
      break;
    case Kind::Boolean:
      slot.integer = static_cast<std::uint8_t>(word) != 0;
      break;
    case Kind::Int8:
      slot.integer = static_cast<std::int8_t>(word);
      break;
    case Kind::UInt8:
      slot.integer = static_cast<std::uint8_t>(word);
      break;
    case Kind::Int16:
      slot.integer = static_cast<std::int16_t>(word);
      break;
    case Kind::UInt16:
      slot.integer = static_cast<std::uint16_t>(word);
      break;
    case Kind::Int32:
      slot.integer = static_cast<std::int32_t>(word);
      break;
    case Kind::UInt32:
      slot.integer = static_cast<std::uint32_t>(word);
      break;
    case Kind::Single:
      std::memcpy(&slot.single, returned, sizeof slot.single);
      break;
    default:
      std::memcpy(&slot, returned, sizeof slot);
      break;
  }
  return slot;
}

// Most functions take up to three arguments that are words or Doubles. For them there is a caller of every
// shape, which costs a fraction of libffi's time. Signed and unsigned words and pointers travel alike, as
// libffi relies on as well.
using Direct = Slot (*)(REALproc function, const Slot* arguments);
constexpr std::size_t mostDirectArguments = 3;

template <typename Value>
Value in(Slot slot) {
  if constexpr (std::is_same_v<Value, double>) return slot.number;
  return static_cast<Value>(slot.integer);
}

template <typename Result, typename... Arguments>
Slot callDirectly(REALproc function, const Slot* arguments) {
  const auto typed = reinterpret_cast<Result (*)(Arguments...)>(function);
  return [&]<std::size_t... i>(std::index_sequence<i...>) {
    Slot slot = {};
    if constexpr (std::is_void_v<Result>) {
      typed(in<Arguments>(arguments[i])...);
    } else if constexpr (std::is_same_v<Result, double>) {
      slot.number = typed(in<Arguments>(arguments[i])...);
    } else if constexpr (std::is_same_v<Result, std::uint8_t>) {
      slot.integer = typed(in<Arguments>(arguments[i])...) != 0;  // a Boolean may be any byte
    } else {
      slot.integer = typed(in<Arguments>(arguments[i])...);
    }
    return slot;
  }
  (std::index_sequence_for<Arguments...>());
}

bool isWord(const ffi_type* type) {
  return type == &ffi_type_sint64 || type == &ffi_type_uint64 || type == &ffi_type_pointer;
}

// The caller of functions that take the arguments known so far and then the rest; null where there is none.
template <typename Result, typename... Known>
Direct directFor(std::span<ffi_type* const> rest) {
  if (rest.empty()) return &callDirectly<Result, Known...>;
  if constexpr (sizeof...(Known) < mostDirectArguments) {
    if (isWord(rest[0])) return directFor<Result, Known..., std::int64_t>(rest.subspan(1));
    if (rest[0] == &ffi_type_double) return directFor<Result, Known..., double>(rest.subspan(1));
  }
  return nullptr;
}

Direct directFor(const ffi_type* result, bool isBoolean, std::span<ffi_type* const> arguments) {
  if (result == &ffi_type_void) return directFor<void>(arguments);
  if (result == &ffi_type_double) return directFor<double>(arguments);
  if (isBoolean) return directFor<std::uint8_t>(arguments);
  return isWord(result) ? directFor<std::int64_t>(arguments) : nullptr;
}

}  // namespace

struct Call::Prepared {
  ffi_cif interface = {};
  std::vector<ffi_type*> types;
  Type result;
};

Call::Call(REALproc callee, const std::vector<Passing>& arguments, Type result) : function_(callee) {
  if (!callee) return;
  auto prepared = std::make_shared<Prepared>();
  for (const Passing& each : arguments) {
    prepared->types.push_back(each.byRef ? &ffi_type_pointer : ffiTypeOf(each.type));
    readsReferences_ = readsReferences_ || (each.type.array && each.type.element().isReference());
  }
  prepared->result = result;
  ffi_prep_cif(&prepared->interface, FFI_DEFAULT_ABI, static_cast<unsigned>(prepared->types.size()),
               ffiTypeOf(result), prepared->types.data());
  direct_ = directFor(ffiTypeOf(result), result == Type{Kind::Boolean}, prepared->types);
  returnsThing_ = result.isReference();
  prepared_ = std::move(prepared);
}

Slot Call::whileReading(std::span<const Slot> arguments) const {
  const ForeignReads reads;
  return checked(arguments);
}

Slot Call::indirectly(std::span<const Slot> arguments) const {
  if (run_) return run_(own_, arguments.data());
  // The low bytes of a slot are the narrower value itself, on the little-endian processors there are.
  std::array<void*, 32> values;
  for (std::size_t i = 0; i < arguments.size(); ++i) values[i] = const_cast<Slot*>(&arguments[i]);
  alignas(16) std::byte returned[16] = {};
  // libffi asks for a writable description but does not change it in a call.
  ffi_call(const_cast<ffi_cif*>(&prepared_->interface), function_, returned, values.data());
  return resultOf(returned, prepared_->result);
}

}  // namespace host
