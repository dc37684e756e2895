// The functions of the language that take or give any type: Str, Ubound, VarType, Array.
#pragma once

#include "language/calls.h"

namespace host {

// Null where there is none of that name, and then the arguments stay. Throws ProgramError.
Expr callIntrinsic(const Callee& callee, Exprs& arguments);

// What there is to call on a value of the type as a member of it, the language's own functions among it.
std::vector<std::string> membersOfValue(Type type);

}  // namespace host
