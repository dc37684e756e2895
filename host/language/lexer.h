// Splits the text of a host program into tokens.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "language/problem.h"

namespace host {

// The words with a meaning of their own. The table in lexer.cpp spells them, in this order.
enum class Keyword : std::uint8_t {
  none,  // a name
  addHandlerWord,
  addressOfWord,
  andWord,
  asWord,
  assignsWord,
  byRefWord,
  byValWord,
  callWord,
  caseWord,
  catchWord,
  classWord,
  constWord,
  continueWord,
  delegateWord,
  dimWord,
  doWord,
  downToWord,
  eachWord,
  elseWord,
  elseIfWord,
  endWord,
  enumWord,
  exitWord,
  extendsWord,
  falseWord,
  finallyWord,
  forWord,
  functionWord,
  getWord,
  globalWord,
  ifWord,
  implementsWord,
  inWord,
  inheritsWord,
  interfaceWord,
  isWord,
  isAWord,
  loopWord,
  modWord,
  moduleWord,
  newWord,
  nextWord,
  nilWord,
  notWord,
  optionalWord,
  orWord,
  paramArrayWord,
  printWord,
  privateWord,
  propertyWord,
  protectedWord,
  publicWord,
  raiseWord,
  reDimWord,
  returnWord,
  selectWord,
  setWord,
  sharedWord,
  staticWord,
  stepWord,
  subWord,
  thenWord,
  toWord,
  trueWord,
  tryWord,
  untilWord,
  varWord,
  wendWord,
  whileWord,
  xorWord,
};
const char* spellingOf(Keyword keyword);
bool isReserved(Keyword keyword);  // no name may be spelled so

enum class Symbol : std::uint8_t {
  none,
  // Two characters; the table in lexer.cpp spells them all, in this order.
  lessOrEqual,
  greaterOrEqual,
  unequal,
  plusEqual,
  minusEqual,
  timesEqual,
  divideEqual,
  plus,
  minus,
  times,
  divide,
  backslash,
  caret,
  open,
  close,
  equal,
  less,
  greater,
  comma,
  dot,
  ampersand,
};
const char* spellingOf(Symbol symbol);

enum class TokenKind : std::uint8_t { word, integer, real, text, symbol, endOfLine, endOfText };

struct Token {
  TokenKind kind;
  std::string text;  // as written; of a text literal, what it means
  Position position;
  Keyword keyword = Keyword::none;  // of a word
  Symbol symbol = Symbol::none;
  std::uint64_t integer = 0;  // of an integer literal
  double real = 0;
};

// What is no token is left out, or read as what it may have meant. Lines joined by a trailing underscore make
// one; a colon ends a statement as a line's end does.
std::vector<Token> tokenize(std::string_view text, Problems& problems);

}  // namespace host
