// Reads tokens one after the other, and says what was expected where another one stands.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "language/lexer.h"
#include "language/mistyped.h"
#include "language/syntax.h"

namespace host {

class TokenReader {
 public:
  // `mends`: the whole program is there, so that words are known that mean nothing in it.
  TokenReader(std::string_view text, bool mends, Problems& found)
      : problems(found), tokens_(tokenize(text, found)) {
    if (mends) mendWords(tokens_, problems);
    problems.startPass();
  }

  Problems& problems;

  const Token& peek(std::size_t ahead = 0) const;
  const Token& take();
  bool is(Keyword keyword, std::size_t ahead = 0) const { return peek(ahead).keyword == keyword; }
  bool is(Symbol symbol, std::size_t ahead = 0) const { return peek(ahead).symbol == symbol; }
  template <typename Spelled>
  bool accept(Spelled spelled) {
    if (!is(spelled)) return false;
    take();
    return true;
  }
  template <typename Spelled>
  void expect(Spelled spelled, const std::string& where) {
    if (!accept(spelled)) failExpecting("'" + std::string(spellingOf(spelled)) + "' " + where);
  }
  bool atLineEnd() const;
  bool atLineStart() const { return at_ == 0 || tokens_[at_ - 1].kind == TokenKind::endOfLine; }
  bool atStatementEnd() const { return atLineEnd() || is(Keyword::elseWord); }
  void expectLineEnd(const std::string& after);
  void skipLineEnds();
  std::size_t place() const { return at_; }
  // Past what is left of a statement that cannot be read, which begins at that place. What it would have
  // declared is expected to be unknown.
  void skipStatement(std::size_t from, bool declares = false);
  // Reads a part of the text with `read`; whether it can be read. What cannot be is skipped.
  template <typename Read>
  bool part(Read read, bool declares = false) {
    const std::size_t start = at_;
    if (problems.attempt(read)) return true;
    skipStatement(start, declares);
    return false;
  }
  // Whether what stands here is declared outside of every Sub, or in a class.
  bool atDeclaration() const;
  // Whether what the word has opened is ended further down, by End and the word again; others that it opens
  // there have ends of their own.
  bool isEndedFurtherDown(Keyword opener) const;
  syntax::Name takeName(const std::string& what);
  syntax::TypeName takeType();
  void takeDimensions(syntax::TypeName& type);  // "()", "(,)", …

  [[noreturn]] void failHere(const std::string& message) const;
  bool isColour() const;
  bool isNumberWithComma() const;
  [[noreturn]] void failExpecting(const std::string& what,
                                  const std::string& advice = "") const;  // "expected WHAT, found …"

 private:
  std::vector<Token> tokens_;
  std::size_t at_ = 0;
};

// Bounds how deeply blocks and expressions may be nested, so that no program exhausts the stack of what reads
// it, compiles it or runs it.
class Nesting {
 public:
  Nesting(int& depth, const TokenReader& tokens) : depth_(depth) {
    if (depth_ >= 200) tokens.failHere("blocks or parentheses are nested too deeply");
    ++depth_;
  }
  ~Nesting() { --depth_; }
  Nesting(const Nesting&) = delete;
  Nesting& operator=(const Nesting&) = delete;

 private:
  int& depth_;
};

}  // namespace host
