// Arrays: elements, the methods of arrays, and the functions of the language that take or give any type.
#pragma once

#include "language/calls.h"
#include "language/node.h"

namespace host {

// a(i), a(i, j): a place. Throws ProgramError where there are more or fewer indices than dimensions.
Expr element(Expr array, Position position, Exprs indices);

std::vector<std::string> arrayMembers(Type type);  // their names

// A method of arrays, such as Append. Throws ProgramError.
Expr callArrayMethod(const Callee& callee, Expr array, Exprs arguments);

// The array that a Dim with those upper bounds makes, one for each dimension; without bounds an empty one.
Expr newArray(Type type, Exprs upperBounds);

// Throws ProgramError where there are more or fewer bounds than dimensions.
Stmt reDim(Position position, Expr array, Exprs upperBounds);

}  // namespace host
