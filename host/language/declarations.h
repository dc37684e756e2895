// Enters what a program declares outside of every Sub, and compiles it.
#pragma once

#include <memory>

#include "language/names.h"

namespace host {

class Declarer {
 public:
  // `mayRedeclare`: what an earlier piece of the program has declared.
  Declarer(ModuleNames& module, bool mayRedeclare, Problems& problems);
  ~Declarer();
  Declarer(const Declarer&) = delete;
  Declarer& operator=(const Declarer&) = delete;

  // What is wrong goes to the problems, and the rest is declared and compiled.

  // Everything is known afterwards, but for the bodies. The tree has to stay until they are compiled.
  void declare(const syntax::Members& members);
  // What gives the variables of modules and classes their first values, to run before the program's own
  // statements and in its frame.
  void compileStart(std::vector<Type>& locals, Block& block);
  void compileBodies();

 private:
  class Work;
  std::unique_ptr<Work> work_;
};

}  // namespace host
