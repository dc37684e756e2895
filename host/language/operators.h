// The language's operators on typed operands: of plain values, and those that classes bring as Operator_…
// members.
#pragma once

#include <compare>

#include "language/node.h"
#include "language/operator.h"
#include "runtime/class.h"

namespace host {

// All throw ProgramError where there is no such operator for the operands.

Expr binary(Operator op, Expr left, Expr right, Position position);  // any of them
Expr arithmetic(Operator op, Expr left, Expr right, Position position);
Expr comparison(Operator op, Expr left, Expr right, Position position);
Expr logical(Operator op, Expr left, Expr right, Position position);
Expr negation(Expr operand, Position position);
Expr inversion(Expr operand, Position position);                       // Not
Expr identity(Expr left, Expr right, Position position);               // Is
Expr instanceTest(Expr object, const Class& type, Position position);  // IsA

// Two Variants, by value: as numbers where both are numbers, as text where one is text; objects are
// unordered. Throws HostException where one is text and the other no plain value.
std::partial_ordering compareVariants(const Heap* left, const Heap* right);

// A computed value, as a condition. Throws ProgramError where it is no Boolean and cannot become one.
Expr condition(Expr value, Position position, const std::string& what);

}  // namespace host
