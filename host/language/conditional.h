// If(condition, first, second): a value by a condition.
#pragma once

#include "language/node.h"

namespace host {

// Of the type that both values have, or that both become: of integers Integer, of other numbers Double, of
// objects the nearest class of both, else Variant. Throws ProgramError where one of them has no value.
Expr conditional(Expr condition, Expr first, Expr second, Position position);

}  // namespace host
