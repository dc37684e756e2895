// Checks, while compiling, that a declaration in the host's language fits the C++ function behind it, and a
// property's type its getter, setter or field: the host calls and reads by what is declared, so a mismatch
// would be a wrong call.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>
#include <type_traits>
#include <utility>

#include "frame/host_interface.h"

namespace qtx {

namespace detail {

// How a value travels. Types of the host's language that travel alike are the same here.
enum class Travel { none, int64, uint64, uint16, real64, real32, boolean, string, object, array, pointer };

struct Passed {
  Travel travel = Travel::none;
  bool byReference = false;
  friend constexpr bool operator==(Passed, Passed) = default;
};

template <typename Type>
consteval Passed passedAs() {
  if constexpr (std::is_void_v<Type>) return {Travel::none};
  if constexpr (std::is_same_v<Type, std::int64_t>) return {Travel::int64};
  if constexpr (std::is_same_v<Type, std::uint64_t>) return {Travel::uint64};
  if constexpr (std::is_same_v<Type, std::uint16_t>) return {Travel::uint16};
  if constexpr (std::is_same_v<Type, double>) return {Travel::real64};
  if constexpr (std::is_same_v<Type, float>) return {Travel::real32};
  // A Boolean argument may be taken as the byte that it is.
  if constexpr (std::is_same_v<Type, bool> || std::is_same_v<Type, std::uint8_t>) return {Travel::boolean};
  if constexpr (std::is_same_v<Type, REALstring>) return {Travel::string};
  if constexpr (std::is_same_v<Type, REALobject>) return {Travel::object};
  if constexpr (std::is_same_v<Type, REALarrayInteger> || std::is_same_v<Type, REALarrayDouble> ||
                std::is_same_v<Type, REALarrayObject>) {
    return {Travel::array};
  }
  if constexpr (std::is_same_v<Type, void*> || std::is_same_v<Type, const void*>) return {Travel::pointer};
  if constexpr (std::is_pointer_v<Type> && std::is_arithmetic_v<std::remove_pointer_t<Type>>) {
    return {passedAs<std::remove_pointer_t<Type>>().travel, true};
  }
}

constexpr char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

constexpr bool same(std::string_view left, std::string_view right) {
  if (left.size() != right.size()) return false;
  for (std::size_t i = 0; i < left.size(); ++i) {
    if (lower(left[i]) != lower(right[i])) return false;
  }
  return true;
}

constexpr std::string_view trimmed(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

// Where a word with blanks around it starts; npos if nowhere.
constexpr std::size_t findWord(std::string_view text, std::string_view word) {
  for (std::size_t i = 0; i + word.size() <= text.size(); ++i) {
    if (same(text.substr(i, word.size()), word)) return i;
  }
  return std::string_view::npos;
}

constexpr Travel travelOf(std::string_view type) {
  if (type.ends_with("()")) return Travel::array;
  constexpr std::pair<std::string_view, Travel> names[] = {
      {"Integer", Travel::int64}, {"Int64", Travel::int64},     {"Currency", Travel::int64},
      {"UInt64", Travel::uint64}, {"UInt16", Travel::uint16},   {"Double", Travel::real64},
      {"Single", Travel::real32}, {"Boolean", Travel::boolean}, {"String", Travel::string},
      {"Ptr", Travel::pointer}};
  for (const auto& [name, travel] : names) {
    if (same(type, name)) return travel;
  }
  return Travel::object;  // Variant or a class
}

struct ParsedDeclaration {
  static constexpr std::size_t most = 8;
  std::array<Passed, most> parameters{};
  std::size_t count = 0;
  Passed result;
};

// "x() as T = default" or "byref x as T".
constexpr Passed parseParameter(std::string_view text) {
  text = trimmed(text);
  const bool byReference = findWord(text, "byref ") == 0;
  const std::size_t as = findWord(text, " as ");
  if (as == std::string_view::npos) throw "a parameter has no type";
  const bool array = trimmed(text.substr(0, as)).ends_with("()");
  std::string_view type = text.substr(as + 4);
  type = trimmed(type.substr(0, type.find('=')));
  return {array ? Travel::array : travelOf(type), byReference};
}

constexpr ParsedDeclaration parseDeclaration(std::string_view text) {
  ParsedDeclaration parsed;
  std::size_t end = text.find_first_of(" (");
  if (end != std::string_view::npos && text[end] == '(') {
    int depth = 0;
    std::size_t start = end + 1;
    for (;; ++end) {
      if (end == text.size()) throw "a parenthesis is not closed";
      if (text[end] == '(') ++depth;
      if (text[end] == ')') --depth;
      if (depth == 0 || (depth == 1 && text[end] == ',')) {
        parsed.parameters[parsed.count++] = parseParameter(text.substr(start, end - start));
        start = end + 1;
      }
      if (depth == 0) break;
    }
    ++end;
  }
  if (end < text.size()) {
    const std::string_view rest = text.substr(end);
    if (findWord(rest, " as ") != 0) throw "expected the result's type";
    parsed.result = {travelOf(trimmed(rest.substr(4)))};
  }
  return parsed;
}

// A method's function has its object in front of the declared parameters; a global function's or shared
// method's has not.
template <typename Result, typename... Arguments>
constexpr bool fits(const ParsedDeclaration& declared) {
  constexpr std::array<Passed, sizeof...(Arguments)> taken{passedAs<Arguments>()...};
  if (!(declared.result == passedAs<Result>())) return false;
  if (taken.size() < declared.count) return false;
  const std::size_t self = taken.size() - declared.count;
  if (self > 1 || (self == 1 && !(taken[0] == Passed{Travel::object}))) return false;
  for (std::size_t i = 0; i < declared.count; ++i) {
    if (!(taken[i + self] == declared.parameters[i])) return false;
  }
  return true;
}

template <typename Signature>
struct Fit;
template <typename Result, typename... Arguments>
struct Fit<Result (*)(Arguments...)> {
  static constexpr bool check(std::string_view text) {
    return fits<Result, Arguments...>(parseDeclaration(text));
  }
};
template <typename Result, typename... Arguments>
struct Fit<Result (*)(Arguments...) noexcept> : Fit<Result (*)(Arguments...)> {};

// The value that a getter gives and a setter takes. An instance property's have the object and the record's
// parameter in front, a shared property's nothing.
enum class PropertyKind { instance, shared };

template <typename Value>
consteval Passed given(Value (*)(REALobject, RBInteger), PropertyKind kind) {
  return kind == PropertyKind::instance ? passedAs<Value>() : Passed{};
}
template <typename Value>
consteval Passed given(Value (*)(), PropertyKind kind) {
  return kind == PropertyKind::shared ? passedAs<Value>() : Passed{};
}
template <typename Value>
consteval Passed taken(void (*)(REALobject, RBInteger, Value), PropertyKind kind) {
  return kind == PropertyKind::instance ? passedAs<Value>() : Passed{};
}
template <typename Value>
consteval Passed taken(void (*)(Value), PropertyKind kind) {
  return kind == PropertyKind::shared ? passedAs<Value>() : Passed{};
}

template <PropertyKind kind, auto getter, auto setter>
struct PropertyFit {
  static consteval bool check(std::string_view type) {
    const Passed declared{travelOf(type)};
    if constexpr (requires { given(getter, kind); }) {
      if (!(given(getter, kind) == declared)) return false;
      if constexpr (std::is_null_pointer_v<decltype(setter)>) return true;
      if constexpr (requires { taken(setter, kind); }) return taken(setter, kind) == declared;
    }
    return false;
  }
};

template <typename Field>
struct FieldFit {
  static consteval bool check(std::string_view type) { return passedAs<Field>() == Passed{travelOf(type)}; }
};

}  // namespace detail

// A property's type that has been found to fit. Does not compile where it does not.
template <typename Fit>
class CheckedType {
 public:
  consteval CheckedType(const char* text) : text_(text) {
    if (!Fit::check(text)) throw "the property's type does not fit what is behind it";
  }
  constexpr const char* text() const { return text_; }

 private:
  const char* text_;
};

// A declaration that has been found to fit the function type. Does not compile where it does not.
template <typename Signature>
class CheckedDeclaration {
 public:
  consteval CheckedDeclaration(const char* text) : text_(text) {
    if (!detail::Fit<Signature>::check(text)) throw "the declaration does not fit its function";
  }
  constexpr const char* text() const { return text_; }

 private:
  const char* text_;
};

}  // namespace qtx
