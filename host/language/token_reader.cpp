// Reading tokens, and the messages about those that do not fit.
#include "language/token_reader.h"

#include <algorithm>

namespace host {

namespace {

std::string describe(const Token& token) {
  switch (token.kind) {
    case TokenKind::endOfLine:
      return "the end of the line";
    case TokenKind::endOfText:
      return "the end of the program";
    case TokenKind::text:
      return "a text";
    default:
      return "'" + token.text + "'";
  }
}

}  // namespace

const Token& TokenReader::peek(std::size_t ahead) const {
  return tokens_[std::min(at_ + ahead, tokens_.size() - 1)];
}

const Token& TokenReader::take() {
  const Token& token = peek();
  if (at_ + 1 < tokens_.size()) ++at_;
  return token;
}

bool TokenReader::atLineEnd() const {
  return peek().kind == TokenKind::endOfLine;  // a text that has a token ends its last line
}

void TokenReader::expectLineEnd(const std::string& after) {
  if (peek().kind != TokenKind::endOfLine) failExpecting("the end of the line " + after);
  take();
}

void TokenReader::skipLineEnds() {
  while (peek().kind == TokenKind::endOfLine) take();
}

syntax::Name TokenReader::takeName(const std::string& what) {
  if (peek().kind != TokenKind::word) failExpecting(what);
  if (isReserved(peek().keyword)) {
    failHere("expected " + what + ", found the reserved word '" + peek().text + "'");
  }
  const Token& token = take();
  return {token.text, token.position};
}

syntax::TypeName TokenReader::takeType() {
  syntax::TypeName type{takeName("a type")};
  while (is(Symbol::dot) && peek(1).kind == TokenKind::word) {
    take();
    type.text += "." + take().text;
  }
  if (is(Symbol::open) && (is(Symbol::close, 1) || is(Symbol::comma, 1))) takeDimensions(type);
  return type;
}

void TokenReader::takeDimensions(syntax::TypeName& type) {
  type.array = true;
  type.dimensions = 1;
  expect(Symbol::open, "before the dimensions");
  while (accept(Symbol::comma)) {
    if (++type.dimensions > syntax::mostDimensions) failHere("an array has too many dimensions");
  }
  expect(Symbol::close, "after the dimensions");
}

void TokenReader::failHere(const std::string& message) const {
  throw ProgramError(peek().position, message, peek().kind == TokenKind::endOfText);
}

void TokenReader::failExpecting(const std::string& what) const {
  failHere("expected " + what + ", found " + describe(peek()));
}

}  // namespace host
