// What is wrong with a program's text, and where.
#pragma once

#include <stdexcept>
#include <string>

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

[[noreturn]] inline void fail(Position position, const std::string& message) {
  throw ProgramError(position, message);
}

}  // namespace host
