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
  syntax::TypeName type{takeName("a type"), false};
  if (is(Symbol::open) && is(Symbol::close, 1)) {
    take();
    take();
    type.array = true;
  }
  return type;
}

void TokenReader::failHere(const std::string& message) const {
  throw ProgramError(peek().position, message, peek().kind == TokenKind::endOfText);
}

void TokenReader::failExpecting(const std::string& what) const {
  failHere("expected " + what + ", found " + describe(peek()));
}

}  // namespace host
