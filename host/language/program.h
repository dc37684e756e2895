// What a compiled program consists of, and how it is run.
#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "language/node.h"
#include "runtime/class.h"
#include "runtime/exception.h"

namespace host {

// A Sub or Function. Its parameters are its first locals, after the object where it has one; a ByRef one's
// slot points to a slot of the caller's. The object stays the caller's.
struct Sub {
  std::string name;
  std::string file;  // that it stands in
  Position position;
  std::vector<Parameter> parameters;  // what a default refers to is the Sub's
  Type result;
  bool hasSelf = false;
  std::vector<Type> locals;  // Kind::None where a slot owns nothing to give back
  Block body;
  ~Sub();
};

// A module-level variable: seen by every Sub and thread.
struct Global {
  std::string name;
  Type type;
  Slot slot = {};
};

// A piece of program to run at module level.
struct Main {
  std::string file;
  std::vector<Type> locals;
  Block body;
};

// How many rounds of loops and calls of Subs are left to a program, on all of its threads together. Each body
// of one that has such a limit is compiled with a statement in front that counts; the others have none, and
// pay nothing.
using StepsLeft = std::atomic<std::int64_t>;
Stmt countStep(StepsLeft& left);  // throws OutOfSteps

// Runs on a thread with a deep stack; throws HostException, ProgramEnd.
void runMain(const Main& main);
// The same on this thread.
void runHere(const Main& main);
// `arguments`, after the object where there is one, become the parameters' slots (owned, but for ByRef ones).
// The result is owned by the caller.
Slot callSub(const Sub& sub, const Slot* arguments);

// A call of the Sub by what borrows its arguments: through a table of methods, or by the host itself.
Call callOf(const Method& method);

// Throws the host's StackOverflowException when little of this thread's stack is left.
void checkStack();

}  // namespace host
