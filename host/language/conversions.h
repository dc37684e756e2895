// Which values may stand where which type is wanted, and how they become it.
#pragma once

#include <string>

#include "language/node.h"
#include "runtime/class.h"

namespace host {

// What Array(…) gives: an array of its elements' type, or of any other one that they all fit.
class ArrayOfElements final : public Expression {
 public:
  ArrayOfElements(Type element, Exprs values) : Expression(element.arrayOf()), elements(std::move(values)) {}
  Ref<Heap> reference(Frame& frame) const override;
  Exprs elements;
};

// Distances from here on lead through a class's Operator_Convert.
inline constexpr int throughClass = 1000;

// How far a value is from a type: 0 the same, more the less alike; negative: it does not fit.
int distance(const Expression& from, Type to);

// The Operator_Convert through which objects of a class take on a value of another type, if there is one.
struct ObjectConversion {
  const Method* method = nullptr;
  int distance = throughClass;
};
ObjectConversion conversionInto(const Class& objectClass, const Expression& from);

// The value as the type. Throws ProgramError, in which `what` names the value: "expected Integer as the
// index, found String".
Expr convertTo(Expr value, Type type, const std::string& what);

// An object where arithmetic needs a plain value: what its class converts to.
Expr plainValue(Expr operand);

// The text that Print shows.
Expr displayed(Expr value);

}  // namespace host
