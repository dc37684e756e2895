// A compiled host program, and how it is run.
#pragma once

#include <atomic>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "language/node.h"
#include "runtime/exception.h"
#include "runtime/shared_reference.h"

namespace host {

struct SubParameter {
  std::string name;
  Type type;
  bool byRef = false;
  std::optional<Slot> defaultValue;  // owned by the Sub where it is a reference
};

// A Sub or Function. Its parameters are its first locals; a ByRef one's slot points to a slot of the
// caller's.
struct Sub {
  std::string name;
  Position position;
  std::vector<SubParameter> parameters;
  Type result;
  std::vector<Type> locals;  // Kind::None where a slot owns nothing to give back
  Block body;
  ~Sub();
};

// A module-level variable: seen by every Sub and thread.
struct Global {
  std::string name;
  Type type;

  Slot load() const;       // a reference is shared with the caller
  void store(Slot owned);  // what was there is given back

 private:
  std::atomic<std::uint64_t> word_ = 0;  // where the type is no reference
  SharedReference reference_;
};

struct Constant {
  Type type;
  Slot slot = {};  // text is kept alive by the program
  Ref<Heap> keep;
};

// What a program is made of. Grows in the interactive mode, where every input is one more piece of the same
// program.
struct Program {
  std::string name = "program";
  std::unordered_map<std::string, std::unique_ptr<Sub>> subs;  // keys in lower case
  std::unordered_map<std::string, Global*> globals;
  std::unordered_map<std::string, Constant> constants;
  std::deque<Global> globalStorage;

  ~Program() { releaseGlobals(); }
  void releaseGlobals();
};

// A piece of program to run at module level.
struct Main {
  std::vector<Type> locals;
  Block body;
};

// Run on a thread with a deep stack; throw HostException.
void runMain(const Program& program, const Main& main);
// `arguments` become the parameters' slots (owned, but for ByRef ones). The result is owned by the caller.
Slot callSub(const Program& program, const Sub& sub, const Slot* arguments);

// Throws the host's StackOverflowException when little of this thread's stack is left.
void checkStack();

}  // namespace host
