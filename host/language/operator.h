// The language's binary operators, as the syntax tree and the typed code call them.
#pragma once

#include <cstdint>

namespace host {

enum class Operator : std::uint8_t {
  add,
  subtract,
  multiply,
  divide,
  integerDivide,
  modulo,
  power,
  equal,
  unequal,
  less,
  lessOrEqual,
  greater,
  greaterOrEqual,
  is,
  both,    // And
  either,  // Or
  differ,  // Xor
};

inline bool isComparison(Operator op) { return op >= Operator::equal && op <= Operator::greaterOrEqual; }

// As messages write it.
const char* nameOf(Operator op);

}  // namespace host
