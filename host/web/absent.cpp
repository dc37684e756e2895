// What needs a terminal or processes of its own, and so is not there in a page.
#include <stdexcept>

#include "language/language.h"
#include "validation/validation_text.h"

namespace host {

namespace {
[[noreturn]] void refuse(const char* command) {
  throw std::runtime_error(std::string(command) + ": there is no such command in WebAssembly");
}
}  // namespace

bool repl() { refuse("repl"); }

const std::vector<CheckDescription>& checkDescriptions() {
  static const std::vector<CheckDescription> none;
  return none;
}
Validation validate(const ValidationOptions&) { refuse("validate"); }
std::string textOf(const Validation&, const ValidationOptions&) { refuse("validate"); }
std::string jsonOf(const Validation&, const ValidationOptions&) { refuse("validate"); }

}  // namespace host
