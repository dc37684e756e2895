// Parses the declarations that libraries register: "CompareExchange(byref expected as Int64, desired as
// Int64) as Boolean", "NormInvQTX(p as Double, mu as double = 0.0) as double", "Values as Variant()".
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/value.h"

namespace host {

struct Parameter {
  std::string name;
  Type type;
  bool byRef = false;
  std::optional<Slot> defaultValue;  // numbers and Booleans; Nil and "" as null
};

struct Declaration {
  std::string text;  // as registered
  std::string name;
  std::vector<Parameter> parameters;
  Type result;  // Kind::None: a Sub

  std::size_t requiredCount() const;  // leading parameters without a default
};

// Throws std::runtime_error that quotes the text and names what is wrong at which column. A class may be
// named before it is registered: resolveClasses is called when all are.
Declaration parseDeclaration(std::string_view text);

// The type of a name such as "Integer", "double", "Int128QTX", "Variant()"; nothing where there is none.
std::optional<Type> typeNamed(std::string_view name);

}  // namespace host
