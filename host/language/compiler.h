// From a program's text to what runs: parse all of it, declare its names, compile its bodies.
#pragma once

#include <string_view>

#include "language/names.h"

namespace host {

// Adds the text to the module and gives what is to be run at module level. Throws ProgramError.
// `interactive`: an expression that is not assigned is printed, and names may be declared anew.
Main compile(ModuleNames& module, std::string_view text, bool interactive = false);

}  // namespace host
