// A program from its text to its run.
#include "language/language.h"

#include <vector>

#include "language/compiler.h"

namespace host {

struct Program::Parts {
  ModuleNames names;
  Main main;
};

Program::Program(const std::string& file, std::string_view text, std::optional<std::int64_t> steps)
    : parts_(std::make_unique<Parts>()) {
  parts_->names.file = file;
  if (steps) parts_->names.stepsLeft = std::make_unique<StepsLeft>(*steps);
  parts_->main = compile(parts_->names, text);
}

Program::~Program() = default;

void Program::run() const { runMain(parts_->main); }

struct Session::Parts {
  ModuleNames names;
  std::vector<Main> pieces;  // Subs and handlers refer to what they were compiled with
};

Session::Session(const std::string& file) : parts_(std::make_unique<Parts>()) { parts_->names.file = file; }

Session::~Session() = default;

void Session::run(std::string_view piece) {
  parts_->pieces.push_back(compile(parts_->names, piece, true));
  runMain(parts_->pieces.back());
}

}  // namespace host
