// Arrays: elements, the methods of arrays, and the functions of the language that take or give any type.
#pragma once

#include "language/calls.h"
#include "language/node.h"

namespace host {

// a(i): a place. Throws ProgramError where there is not just one index.
Expr element(Expr array, Position position, Exprs indices);

std::vector<std::string> arrayMembers();  // their names

// A method of arrays, such as Append. Throws ProgramError.
Expr callArrayMethod(const Callee& callee, Expr array, Exprs arguments);

// The array that a Dim with those upper bounds makes; without bounds an empty one.
Expr newArray(Type type, Exprs upperBounds);

// Throws ProgramError where there are more or fewer bounds than dimensions.
Stmt reDim(Position position, Expr array, Exprs upperBounds);

}  // namespace host
