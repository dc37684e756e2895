// If(condition, first, second): a value by a condition.
#pragma once

#include "language/node.h"

namespace host {

// The nearest class that objects of both are of; null where that is Object.
const Class* commonClass(const Class* one, const Class* other);

// Of the type that both values have, or that both become: of integers Integer, of other numbers Double, of
// objects the nearest class of both, else Variant. Throws ProgramError where one of them has no value.
Expr conditional(Expr condition, Expr first, Expr second, Position position);

}  // namespace host
