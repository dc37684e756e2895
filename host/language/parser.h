// Turns the text of a host program into a tree.
#pragma once

#include <string_view>

#include "language/syntax.h"

namespace host {

// What cannot be read is left out. Interactively a minus after a name subtracts; elsewhere it starts the
// argument of a call.
syntax::Program parse(std::string_view text, bool interactive, Problems& problems);

}  // namespace host
