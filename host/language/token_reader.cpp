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

void TokenReader::skipStatement(std::size_t from) {
  while (peek().kind != TokenKind::endOfLine && peek().kind != TokenKind::endOfText) take();
  static constexpr Keyword declaring[] = {Keyword::dimWord,     Keyword::varWord,   Keyword::constWord,
                                          Keyword::forWord,     Keyword::catchWord, Keyword::subWord,
                                          Keyword::functionWord};
  const auto declares = [&](const Token& word) {
    return std::find(std::begin(declaring), std::end(declaring), word.keyword) != std::end(declaring);
  };
  if (!declares(tokens_[from]) && !(from > 0 && declares(tokens_[from - 1]))) return;
  for (; from < at_; ++from) {
    const Token& token = tokens_[from];
    if (token.kind == TokenKind::word && token.keyword == Keyword::none) problems.expectUnknown(token.text);
  }
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
  std::string message = "expected " + what + ", found " + describe(peek());
  const bool mayGoOn = peek().kind == TokenKind::endOfLine && peek(1).kind != TokenKind::endOfText &&
                       at_ > 0 && tokens_[at_ - 1].kind == TokenKind::symbol &&
                       tokens_[at_ - 1].symbol != Symbol::close;
  if (mayGoOn) message += "; a line goes on in the next one after ' _'";
  if (is(Symbol::ampersand)) message += "; texts are joined with '+'";
  failHere(message);
}

}  // namespace host
