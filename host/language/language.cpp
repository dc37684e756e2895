// A program from its text to its run.
#include "language/language.h"

#include "language/compiler.h"

namespace host {

struct Program::Parts {
  ModuleNames names;
  Main main;
};

Program::Program(const std::string& file, std::string_view text) : parts_(std::make_unique<Parts>()) {
  parts_->names.file = file;
  parts_->main = compile(parts_->names, text);
}

Program::~Program() = default;

void Program::run() const { runMain(parts_->main); }

}  // namespace host
