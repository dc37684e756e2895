// The functions of the language that take or give any type: Str, Ubound, VarType, Array.
#pragma once

#include "language/calls.h"

namespace host {

// Null where there is none of that name, and then the arguments stay. Throws ProgramError.
Expr callIntrinsic(const Callee& callee, Exprs& arguments);

}  // namespace host
