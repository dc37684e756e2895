// Assignments and declarations with a value.
#pragma once

#include <functional>

#include "language/node.h"
#include "language/operator.h"

namespace host {

// Both throw ProgramError where the target is no place, or the value does not fit it.

// An assignment to an object from something else changes the object that is there, through its
// Operator_Convert, or makes one where there is Nil.
Stmt assignment(Position position, Expr target, Expr value);

// Where an object takes on what an operator on it has computed, and the operator, or another thread, may have
// changed the object itself.
void warnOfOverwriting(Position position, Operator op, Type target, Type computed);

// target += value and the like; what the target's indices compute is computed once. `hidden` makes a variable
// for what is there before.
using MakeHidden = std::function<std::unique_ptr<Place>(Type)>;
Stmt compoundAssignment(Position position, Operator op, Expr target, Expr value, const MakeHidden& hidden);

}  // namespace host
