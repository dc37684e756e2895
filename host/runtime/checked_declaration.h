// Checks, while compiling, that what the host's own tables declare fits the C++ functions behind it: calls
// are made by what is declared, so a mismatch would be a wrong call.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>

#include "frame/host_interface.h"
#include "runtime/declaration.h"

namespace host {

namespace detail {

// "Integer", "String()", "Date": the type it names, the class and the element's class aside.
constexpr Type declaredType(std::string_view name) {
  const bool array = name.ends_with("()");
  const Kind kind = kindNamed(array ? name.substr(0, name.size() - 2) : name);
  return {kind == Kind::None ? Kind::Object : kind, array};
}

// "x as Integer", "x() as Integer", "x as Integer = 7".
constexpr Type parameterType(std::string_view text) {
  const std::size_t as = text.find(" as ");
  if (as == std::string_view::npos) throw "a parameter has no type";
  const std::string_view type = text.substr(as + 4);
  const Type found = declaredType(type.substr(0, type.find(" =")));
  return {found.kind, found.array || text.substr(0, as).ends_with("()")};
}

// Whether values of the declared type are such C++ values where the host calls.
template <typename Value>
constexpr bool carries(Type type) {
  if (type.array) return std::is_same_v<Value, REALarray>;
  switch (type.kind) {
    case Kind::None:
      return std::is_void_v<Value>;
    case Kind::Boolean:
      return std::is_same_v<Value, bool>;
    case Kind::Int8:
      return std::is_same_v<Value, std::int8_t>;
    case Kind::Int16:
      return std::is_same_v<Value, std::int16_t>;
    case Kind::Int32:
      return std::is_same_v<Value, std::int32_t>;
    case Kind::Int64:
    case Kind::Currency:
      return std::is_same_v<Value, std::int64_t>;
    case Kind::UInt8:
      return std::is_same_v<Value, std::uint8_t>;
    case Kind::UInt16:
      return std::is_same_v<Value, std::uint16_t>;
    case Kind::UInt32:
      return std::is_same_v<Value, std::uint32_t>;
    case Kind::UInt64:
      return std::is_same_v<Value, std::uint64_t>;
    case Kind::Single:
      return std::is_same_v<Value, float>;
    case Kind::Double:
      return std::is_same_v<Value, double>;
    case Kind::Pointer:
      return std::is_same_v<Value, void*>;
    case Kind::String:
      return std::is_same_v<Value, REALstring>;
    default:
      return std::is_same_v<Value, REALobject>;
  }
}

// Walks the declared parameters and the result along the function's own. A member's function takes its object
// first.
template <typename Signature>
struct Fit;
template <typename Result, typename... Arguments>
struct Fit<Result (*)(Arguments...)> {
  static constexpr bool check(std::string_view text) {
    constexpr std::size_t taken = sizeof...(Arguments);
    std::array<Type, taken + 1> declared{};
    std::size_t count = 0;
    std::size_t at = text.find_first_of(" (");
    if (at != std::string_view::npos && text[at] == '(') {
      if (text.substr(at, 2) == "()") ++at;
      while (text[at] != ')') {
        if (count == taken) return false;
        const std::size_t start = at + 1;
        at = text.find_first_of(",)", start);
        if (at != std::string_view::npos && text[at - 1] == '(')
          at = text.find_first_of(",)", at + 1);  // "x()"
        if (at == std::string_view::npos) throw "a parenthesis is not closed";
        declared[count++] = parameterType(text.substr(start, at - start));
      }
      ++at;
    }
    const std::string_view rest = at < text.size() ? text.substr(at) : "";
    if (!rest.empty() && !rest.starts_with(" as ")) throw "expected the result's type";
    if (!carries<Result>(rest.empty() ? Type{} : declaredType(rest.substr(4)))) return false;

    const std::size_t self = taken - count;
    std::size_t index = 0;
    [[maybe_unused]] const auto fits = [&]<typename Argument>(std::type_identity<Argument>) {
      const std::size_t i = index++;
      return i < self ? std::is_same_v<Argument, REALobject> : carries<Argument>(declared[i - self]);
    };
    return self <= 1 && (fits(std::type_identity<Arguments>()) && ...);
  }
};

}  // namespace detail

// Whether the declaration fits the function type.
template <typename Signature>
constexpr bool declarationFits(std::string_view text) {
  return detail::Fit<Signature>::check(text);
}

// A declaration of a method or function that fits the function type; does not compile where it does not.
template <typename Signature>
struct CheckedDeclaration {
  consteval CheckedDeclaration(const char* declaration) : text(declaration) {
    if (!declarationFits<Signature>(declaration)) throw "the declaration does not fit its function";
  }
  const char* text;
};

// The type of a property whose accessors give and take such C++ values; does not compile where they do not.
template <typename Value>
struct CheckedType {
  consteval CheckedType(const char* type) : text(type) {
    if (!detail::carries<Value>(detail::declaredType(type))) throw "the type does not fit the accessors";
  }
  const char* text;
};

}  // namespace host
