// Parses the declarations that libraries register: "CompareExchange(byref expected as Int64, desired as
// Int64) as Boolean", "NormInvQTX(p as Double, mu as double = 0.0) as double", "Values as Variant()".
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "runtime/name.h"
#include "runtime/value.h"

namespace host {

struct Parameter {
  std::string name;
  Type type;
  bool byRef = false;
  std::optional<Slot> defaultValue;  // numbers and Booleans; Nil and "" as null
  bool rest = false;                 // of a program: an array of this and all further arguments
};

struct Declaration {
  std::string text;  // as registered
  std::string name;
  std::vector<Parameter> parameters;
  Type result;  // Kind::None: a Sub

  std::size_t requiredCount() const;  // leading parameters without a default
};

// The classes that a declaration may name.
class ClassNames {
 public:
  virtual const Class* findClass(std::string_view name) const = 0;  // null where there is none
  // The class of that name, which may be mentioned before it is registered.
  virtual Class& expectClass(std::string_view name) = 0;

 protected:
  ~ClassNames() = default;
};

// Throws std::runtime_error that quotes the text and names what is wrong at which column.
Declaration parseDeclaration(std::string_view text, ClassNames& classes);

// The type of a name such as "Integer", "double", "Int128QTX", "Variant()"; nothing where there is none.
std::optional<Type> typeNamed(std::string_view name, const ClassNames& classes);

// The kind of one of the language's own types, such as "Integer"; Kind::None for another name.
constexpr Kind kindNamed(std::string_view name) {
  constexpr std::pair<std::string_view, Kind> kinds[] = {
      {"Integer", Kind::Int64}, {"Int64", Kind::Int64},       {"Int8", Kind::Int8},
      {"Int16", Kind::Int16},   {"Int32", Kind::Int32},       {"UInteger", Kind::UInt64},
      {"UInt64", Kind::UInt64}, {"UInt8", Kind::UInt8},       {"Byte", Kind::UInt8},
      {"UInt16", Kind::UInt16}, {"UInt32", Kind::UInt32},     {"Single", Kind::Single},
      {"Double", Kind::Double}, {"Currency", Kind::Currency}, {"Boolean", Kind::Boolean},
      {"String", Kind::String}, {"Variant", Kind::Variant},   {"Ptr", Kind::Pointer},
      {"Object", Kind::Object}};
  for (const auto& [known, kind] : kinds) {
    if (sameName(name, known)) return kind;
  }
  return Kind::None;
}

}  // namespace host
