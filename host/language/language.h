// The host's language: all of it that others need.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "language/documentation.h"
#include "language/problem.h"
#include "language/source.h"
#include "language/spelling.h"

namespace host {

// The language's own global functions, registered like a library's.
void registerBuiltins();

// A host program, checked as a whole. What it has started, such as threads, ends before it.
class Program {
 public:
  // `file` names it in messages. `steps`: how many rounds of loops and calls of Subs it may take in all,
  // where there is a limit. Throws ProgramError.
  Program(const std::string& file, std::string_view text, std::optional<std::int64_t> steps = {});
  ~Program();
  void run() const;  // throws HostException, ProgramEnd
  const std::vector<Problem>& warnings() const;

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

// How a line's last name may go on.
struct Completions {
  std::size_t typed = 0;  // how much of the name is there
  std::vector<std::string> names;
};

// A program that is entered piece by piece: each knows what the earlier ones declared, and prints an
// expression that nothing is done with.
class Session {
 public:
  explicit Session(const std::string& file);
  ~Session();
  // Throws ProgramError before anything of the piece runs (its atEnd: more text may complete it),
  // HostException, ProgramEnd.
  void run(std::string_view piece);
  const std::vector<Problem>& warnings() const;  // of the last piece
  void stop() noexcept;  // ends what runs, with OutOfSteps; a signal's handler may call it

  bool knows(std::string_view name) const;  // whether something was declared so
  Completions completions(std::string_view line) const;
  // A name as the documentation has it: a variable's class in the place of the variable.
  std::string asDocumented(std::string_view name) const;

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

// The interactive mode: reads standard input to its end, with line editing and a history on a terminal.
// Whether nothing was wrong.
bool repl();

}  // namespace host
