// Splits the text of a host program into tokens.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct Position {
  int line = 0, column = 0;  // from 1; columns count bytes
};

// A program that cannot be run: where and why. what() is the message alone.
class ProgramError : public std::runtime_error {
 public:
  ProgramError(Position where, const std::string& message) : std::runtime_error(message), position(where) {}
  Position position;
};

// A line of the interactive mode that needs more lines to be a program.
class UnfinishedProgram : public ProgramError {
 public:
  using ProgramError::ProgramError;
};

enum class TokenKind { word, integer, real, text, symbol, endOfLine, endOfText };

struct Token {
  TokenKind kind;
  std::string text;  // as written; of a text literal, what it means
  Position position;
  std::uint64_t integer = 0;  // of an integer literal
  double real = 0;
};

// Throws ProgramError. Lines joined by a trailing underscore make one; a colon ends a statement as a line's
// end does.
std::vector<Token> tokenize(std::string_view text);

}  // namespace host
