// Reading tokens, and the messages about those that do not fit.
#include "language/token_reader.h"
#include "language/absent_words.h"
#include "language/spelling.h"

#include <algorithm>

#include "runtime/value.h"

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

void TokenReader::skipStatement(std::size_t from, bool declares) {
  while (peek().kind != TokenKind::endOfLine && peek().kind != TokenKind::endOfText) take();
  static constexpr Keyword declaring[] = {
      Keyword::dimWord,       Keyword::varWord,     Keyword::constWord,     Keyword::forWord,
      Keyword::catchWord,     Keyword::subWord,     Keyword::functionWord,  Keyword::classWord,
      Keyword::interfaceWord, Keyword::moduleWord,  Keyword::enumWord,      Keyword::delegateWord,
      Keyword::propertyWord,  Keyword::privateWord, Keyword::protectedWord, Keyword::publicWord,
      Keyword::globalWord,    Keyword::sharedWord,  Keyword::staticWord};
  const auto opens = [&](const Token& word) {
    return std::find(std::begin(declaring), std::end(declaring), word.keyword) != std::end(declaring);
  };
  if (!declares && !opens(tokens_[from]) && !(from > 0 && opens(tokens_[from - 1]))) return;
  for (; from < at_; ++from) {
    const Token& token = tokens_[from];
    if (token.kind == TokenKind::word && !isReserved(token.keyword)) problems.expectUnknown(token.text);
  }
}

bool TokenReader::atDeclaration() const {
  static constexpr Keyword modifiers[] = {Keyword::privateWord, Keyword::protectedWord, Keyword::publicWord,
                                          Keyword::globalWord, Keyword::sharedWord};
  std::size_t ahead = 0;
  const auto isModifier = [&] {
    return std::any_of(std::begin(modifiers), std::end(modifiers),
                       [&](Keyword each) { return is(each, ahead); }) &&
           peek(ahead + 1).kind == TokenKind::word;
  };
  while (isModifier()) ++ahead;
  if (ahead > 0 || is(Keyword::subWord) || is(Keyword::functionWord)) return true;
  if (is(Keyword::delegateWord)) return is(Keyword::subWord, 1) || is(Keyword::functionWord, 1);
  if (peek(1).kind != TokenKind::word) return false;
  if (is(Keyword::propertyWord)) return is(Keyword::asWord, 2) || is(Symbol::open, 2);
  const bool opens = is(Keyword::classWord) || is(Keyword::interfaceWord) || is(Keyword::moduleWord) ||
                     is(Keyword::enumWord);
  return opens && (peek(2).kind == TokenKind::endOfLine || is(Keyword::inheritsWord, 2) ||
                   is(Keyword::implementsWord, 2) || is(Keyword::asWord, 2));
}

bool TokenReader::isEndedFurtherDown(Keyword opener) const {
  int inside = 0;
  bool startsLine = atLineStart();
  for (std::size_t i = at_; i + 1 < tokens_.size(); ++i) {
    const Token& next = tokens_[i + 1];
    if (startsLine && tokens_[i].keyword == Keyword::endWord && next.keyword == opener && inside-- == 0) {
      return true;
    }
    if (startsLine && tokens_[i].keyword == opener && next.kind == TokenKind::word) ++inside;
    startsLine = tokens_[i].kind == TokenKind::endOfLine;
  }
  return false;
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
    if (++type.dimensions > mostDimensions) failHere("an array has too many dimensions");
  }
  expect(Symbol::close, "after the dimensions");
}

void TokenReader::failHere(const std::string& message) const {
  throw ProgramError(peek().position, message, peek().kind == TokenKind::endOfText);
}

// &cFF0000
bool TokenReader::isColour() const {
  return peek(1).kind == TokenKind::word && peek(1).position.column == peek().position.column + 1 &&
         peek(1).text.size() > 6 && lowerCase(peek(1).text)[0] == 'c';
}

// 3,5 or 1,000, which ends before its comma, or is read on behind it.
bool TokenReader::isNumberWithComma() const {
  const std::size_t comma = is(Symbol::comma) || at_ == 0 ? at_ : at_ - 1;
  if (comma == 0 || tokens_[comma].symbol != Symbol::comma) return false;
  const Token& before = tokens_[comma - 1];
  const Token& behind = tokens_[comma + 1];
  const auto isNumber = [](const Token& token) {
    return token.kind == TokenKind::integer || token.kind == TokenKind::real;
  };
  const auto width = behind.position.column - before.position.column;
  return isNumber(before) && isNumber(behind) && behind.position.line == before.position.line &&
         width == static_cast<int>(before.text.size()) + 1;
}

void TokenReader::failExpecting(const std::string& what, const std::string& advice) const {
  std::string message = "expected " + what + ", found " + describe(peek());
  const bool mayGoOn = peek().kind == TokenKind::endOfLine && peek(1).kind != TokenKind::endOfText &&
                       at_ > 0 && tokens_[at_ - 1].kind == TokenKind::symbol &&
                       tokens_[at_ - 1].symbol != Symbol::close;
  if (mayGoOn) message += "; a line goes on in the next one after ' _'";
  if (is(Symbol::ampersand)) message += isColour() ? absent("Color") : "; texts are joined with '+'";
  if (peek().kind == TokenKind::word && !isReserved(peek().keyword)) message += absent(peek().text);
  if (isNumberWithComma()) message += "; a number has no commas, and a point before its fraction";
  failHere(message + advice);
}

}  // namespace host
