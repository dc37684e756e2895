// The program's standard output: whole lines, in large pieces, and soon. To a terminal each line goes at
// once; elsewhere what has been printed waits no longer than some milliseconds, whatever the program does
// then.
#pragma once

#include <string_view>

#include "runtime/throwing.h"

namespace host {

// The output has failed, as on a full disk.
class OutputFailed final : public ProgramEnd {
 public:
  const char* what() const noexcept override { return "standard output cannot be written"; }
};

// Printed in one piece, so that lines of several threads never mix. Throws OutputFailed when what was printed
// before could not be written.
void print(std::string_view text);

// Writes what waits.
void flushOutput();
// Why it could not be written, as errno says; 0: it could.
int outputFailure();

// Writes what waits, while a signal is handled.
void flushOutputInSignal();

}  // namespace host
