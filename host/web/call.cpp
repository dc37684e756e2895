// Makes calls in WebAssembly, which checks at each that the function has just the types it is called with. So
// there is a caller for every shape of function that is registered, and no other can be.
#include "runtime/call.h"

#include <map>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

namespace host {

namespace {

using Direct = Slot (*)(REALproc function, const Slot* arguments);

template <typename Value>
Value in(Slot slot) {
  if constexpr (std::is_same_v<Value, double>) return slot.number;
  if constexpr (std::is_same_v<Value, float>) return slot.single;
  if constexpr (std::is_pointer_v<Value>) return slot.pointer;
  if constexpr (std::is_integral_v<Value>) return static_cast<Value>(slot.integer);
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
    } else if constexpr (std::is_same_v<Result, float>) {
      slot.single = typed(in<Arguments>(arguments[i])...);
    } else if constexpr (std::is_pointer_v<Result>) {
      slot.pointer = typed(in<Arguments>(arguments[i])...);
    } else {
      slot.integer = static_cast<std::int64_t>(typed(in<Arguments>(arguments[i])...));
    }
    return slot;
  }
  (std::index_sequence_for<Arguments...>());
}

// The letters of C++ types, as they travel: results by their own type, arguments by what they are handed in.
template <typename Value>
constexpr char letterOf = '?';
template <>
constexpr char letterOf<void> = 'v';
template <>
constexpr char letterOf<bool> = 'b';
template <>
constexpr char letterOf<std::int8_t> = '1';
template <>
constexpr char letterOf<std::uint8_t> = '8';
template <>
constexpr char letterOf<std::int16_t> = '2';
template <>
constexpr char letterOf<std::uint16_t> = 'w';
template <>
constexpr char letterOf<std::int32_t> = 'i';
template <>
constexpr char letterOf<std::uint32_t> = 'u';
template <>
constexpr char letterOf<std::int64_t> = 'l';
template <>
constexpr char letterOf<float> = 'f';
template <>
constexpr char letterOf<double> = 'd';
template <>
constexpr char letterOf<void*> = 'p';

char letterOfResult(Type type) {
  if (type.isReference()) return 'p';
  switch (type.kind) {
    case Kind::None:
      return 'v';
    case Kind::Boolean:
      return 'b';
    case Kind::Int8:
      return '1';
    case Kind::UInt8:
      return '8';
    case Kind::Int16:
      return '2';
    case Kind::UInt16:
      return 'w';
    case Kind::Int32:
      return 'i';
    case Kind::UInt32:
      return 'u';
    case Kind::Single:
      return 'f';
    case Kind::Double:
      return 'd';
    case Kind::Pointer:
      return 'p';
    default:
      return 'l';
  }
}

// Whatever is narrower travels as 32 bits.
char letterOfArgument(const Passing& argument) {
  if (argument.byRef) return 'p';
  const char letter = letterOfResult(argument.type);
  return std::string_view("b182wu").find(letter) == std::string_view::npos ? letter : 'i';
}

template <typename Result, typename... Arguments>
std::pair<const std::string, Direct> shape() {
  return {std::string{letterOf<Result>, letterOf<Arguments>...}, &callDirectly<Result, Arguments...>};
}

const std::map<std::string, Direct>& shapes() {
  using Thing = void*;
  using Integer = std::int64_t;
  using Int32 = std::int32_t;
  static const std::map<std::string, Direct> all = {
      shape<std::int8_t, Thing, Integer>(),
      shape<std::int16_t, Thing, Integer>(),
      shape<std::uint8_t, Thing, Integer>(),
      shape<bool>(),
      shape<bool, double>(),
      shape<bool, Integer, Integer>(),
      shape<bool, Thing>(),
      shape<bool, Thing, Integer>(),
      shape<bool, Thing, Thing>(),
      shape<bool, Thing, Thing, Integer>(),
      shape<double>(),
      shape<double, double>(),
      shape<double, double, double>(),
      shape<double, double, double, double>(),
      shape<double, double, Integer>(),
      shape<double, double, Thing>(),
      shape<double, Integer>(),
      shape<double, Thing>(),
      shape<double, Thing, double>(),
      shape<double, Thing, Integer>(),
      shape<float, Int32>(),
      shape<float, Thing>(),
      shape<float, Thing, Integer>(),
      shape<Int32, Thing>(),
      shape<Int32, Thing, Integer>(),
      shape<Integer>(),
      shape<Integer, double>(),
      shape<Integer, Integer>(),
      shape<Integer, Integer, Integer>(),
      shape<Integer, Integer, Integer, Integer, Integer>(),
      shape<Integer, Integer, Thing, Thing>(),
      shape<Integer, Thing>(),
      shape<Integer, Thing, Integer>(),
      shape<Integer, Thing, Integer, Integer>(),
      shape<Integer, Thing, Integer, Thing>(),
      shape<Integer, Thing, Thing>(),
      shape<Integer, Thing, Thing, Integer>(),
      shape<Thing>(),
      shape<Thing, double>(),
      shape<Thing, double, Thing>(),
      shape<Thing, Integer>(),
      shape<Thing, Integer, Thing>(),
      shape<Thing, Thing>(),
      shape<Thing, Thing, Integer>(),
      shape<Thing, Thing, Integer, Integer>(),
      shape<Thing, Thing, Thing>(),
      shape<Thing, Thing, Thing, Integer>(),
      shape<Thing, Thing, Thing, Thing>(),
      shape<std::uint32_t, Thing>(),
      shape<std::uint32_t, Thing, Integer>(),
      shape<void>(),
      shape<void, Int32>(),
      shape<void, Integer>(),
      shape<void, Thing>(),
      shape<void, Thing, Int32>(),
      shape<void, Thing, Integer>(),
      shape<void, Thing, Integer, double>(),
      shape<void, Thing, Integer, float>(),
      shape<void, Thing, Integer, Int32>(),
      shape<void, Thing, Integer, Integer>(),
      shape<void, Thing, Integer, Integer, Thing>(),
      shape<void, Thing, Integer, Thing>(),
      shape<void, Thing, Thing>(),
      shape<void, Thing, Thing, Integer>(),
      shape<void, Thing, Thing, Integer, Int32>(),
      shape<void, Thing, Thing, Thing>(),
      shape<std::uint16_t, float>(),
      shape<std::uint16_t, Thing, Integer>(),
  };
  return all;
}

}  // namespace

struct Call::Prepared {};

Call::Call(REALproc callee, const std::vector<Passing>& arguments, Type result) : function_(callee) {
  if (!callee) return;
  std::string key(1, letterOfResult(result));
  for (const Passing& each : arguments) {
    key += letterOfArgument(each);
    readsReferences_ = readsReferences_ || (each.type.array && each.type.element().isReference());
  }
  const auto found = shapes().find(key);
  if (found == shapes().end()) throw std::runtime_error("there is no caller of functions of shape " + key);
  direct_ = found->second;
  returnsThing_ = result.isReference();
}

Slot Call::whileReading(std::span<const Slot> arguments) const { return checked(arguments); }

Slot Call::indirectly(std::span<const Slot> arguments) const { return run_(own_, arguments.data()); }

}  // namespace host
