// The interactive mode: statements and expressions, each run as it is entered.
#pragma once

namespace host {

// Reads standard input to its end; with line editing and a history on a terminal.
void repl();

}  // namespace host
