// Calls by the arguments that stand in a program: which declaration fits them best, and how they become what
// it takes.
#pragma once

#include <string>

#include "language/node.h"
#include "language/program.h"
#include "runtime/class.h"

namespace host {

// What is called, as written: for messages.
struct Callee {
  std::string name;
  Position position;
  std::string member = {};  // with what it is a member of
};

// Whether one of them can be called with the arguments.
bool anyTakes(const std::vector<const Method*>& candidates, const Exprs& arguments);

// All below throw ProgramError where the arguments do not fit.

// The candidate nearest to the arguments. One without a result is preferred where nothing is done with a
// result, and only there.
Expr callMethod(const std::vector<const Method*>& candidates, const Callee& callee, Expr self,
                Exprs arguments, bool resultUnused = false);

// A call through a delegate of the class.
Expr callDelegate(const Class& made, const Callee& callee, Expr delegate, Exprs arguments);

// With the arguments converted to the method's parameters; distance() has found them to fit.
Expr callExactly(const Method& method, Expr self, Exprs arguments, const std::string& member = "");

// New made(arguments).
Expr newObject(const Class& made, Position position, Exprs arguments);

}  // namespace host
