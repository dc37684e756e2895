// What is wrong with a program: with its text, and where; and that it takes too long.
#pragma once

#include <stdexcept>
#include <string>

#include "runtime/throwing.h"

namespace host {

struct Position {
  int line = 0, column = 0;  // from 1; columns count bytes
};

// A program that cannot be run. what() is the message alone.
class ProgramError : public std::runtime_error {
 public:
  ProgramError(Position where, const std::string& message, bool endsTooEarly = false)
      : std::runtime_error(message), position(where), atEnd(endsTooEarly) {}
  Position position;
  bool atEnd;  // the text is right as far as it goes; more lines may complete it
};

// Ends a program that has taken all the steps that it may.
class OutOfSteps final : public ProgramEnd {
 public:
  const char* what() const noexcept override { return "the program has taken all the steps that it may"; }
};

[[noreturn]] inline void fail(Position position, const std::string& message) {
  throw ProgramError(position, message);
}

}  // namespace host
