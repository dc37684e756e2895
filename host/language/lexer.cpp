#include "language/lexer.h"

#include <cctype>
#include <charconv>
#include <cstdlib>

#include "runtime/class.h"

namespace host {

namespace {

bool isWordStart(char c) { return std::isalpha(static_cast<unsigned char>(c)) || c == '_' || (c & 0x80); }
bool isWordPart(char c) { return isWordStart(c) || std::isdigit(static_cast<unsigned char>(c)); }
bool isDigit(char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; }

class Lexer {
 public:
  explicit Lexer(std::string_view text) : text_(text) {
    if (text_.starts_with("\xEF\xBB\xBF")) at_ = 3;
  }

  std::vector<Token> run() {
    while (at_ < text_.size()) next();
    endLine();
    add(TokenKind::endOfText, "");
    return std::move(tokens_);
  }

 private:
  char peek(std::size_t ahead = 0) const { return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0'; }
  Position here() const { return {line_, static_cast<int>(at_ - lineStart_) + 1}; }

  void add(TokenKind kind, std::string text) { tokens_.push_back({kind, std::move(text), here()}); }
  void endLine() {
    if (!tokens_.empty() && tokens_.back().kind != TokenKind::endOfLine)
      add(TokenKind::endOfLine, "end of line");
  }
  void startLine() {
    ++line_;
    lineStart_ = at_;
  }
  void skipComment() {
    while (at_ < text_.size() && text_[at_] != '\n') ++at_;
  }

  void next() {
    const char c = peek();
    if (c == '\n') {
      endLine();
      ++at_;
      startLine();
    } else if (c == ' ' || c == '\t' || c == '\r') {
      ++at_;
    } else if (c == '\'' || (c == '/' && peek(1) == '/')) {
      skipComment();
    } else if (c == ':') {
      endLine();
      ++at_;
    } else if (c == '_' && !isWordPart(peek(1))) {
      joinLines();
    } else if (isWordStart(c)) {
      word();
    } else if (isDigit(c) || (c == '.' && isDigit(peek(1)))) {
      number();
    } else if (c == '&' && std::string_view("hHbBoO").find(peek(1)) != std::string_view::npos) {
      prefixedNumber();
    } else if (c == '"') {
      quoted();
    } else {
      symbol();
    }
  }

  void joinLines() {
    const Position start = here();
    ++at_;
    while (peek() == ' ' || peek() == '\t' || peek() == '\r') ++at_;
    if (peek() == '\'') skipComment();
    if (peek() != '\n')
      throw ProgramError(start, "expected the end of the line after the continuation mark _");
    ++at_;
    startLine();
  }

  void word() {
    const std::size_t start = at_;
    const Position position = here();
    while (isWordPart(peek())) ++at_;
    const std::string_view word = text_.substr(start, at_ - start);
    if (sameName(word, "Rem")) return skipComment();
    tokens_.push_back({TokenKind::word, std::string(word), position});
  }

  void number() {
    const std::size_t start = at_;
    Token token{TokenKind::integer, "", here()};
    while (isDigit(peek())) ++at_;
    if (peek() == '.' && isDigit(peek(1))) {
      token.kind = TokenKind::real;
      ++at_;
      while (isDigit(peek())) ++at_;
    }
    const std::size_t sign = peek(1) == '+' || peek(1) == '-' ? 2 : 1;
    if ((peek() == 'e' || peek() == 'E') && isDigit(peek(sign))) {
      token.kind = TokenKind::real;
      at_ += sign;
      while (isDigit(peek())) ++at_;
    }
    if (isWordStart(peek())) throw ProgramError(token.position, "a number is followed by a letter");
    token.text = text_.substr(start, at_ - start);
    if (token.kind == TokenKind::integer) {
      const auto parsed =
          std::from_chars(token.text.data(), token.text.data() + token.text.size(), token.integer);
      if (parsed.ec != std::errc())
        throw ProgramError(token.position, token.text + " is too big for an integer");
    } else {
      token.real = std::strtod(token.text.c_str(), nullptr);
    }
    tokens_.push_back(std::move(token));
  }

  void prefixedNumber() {
    const char prefix = static_cast<char>(std::tolower(static_cast<unsigned char>(peek(1))));
    const int base = prefix == 'h' ? 16 : prefix == 'o' ? 8 : 2;
    const std::size_t start = at_;
    Token token{TokenKind::integer, "", here()};
    at_ += 2;
    while (isWordPart(peek())) ++at_;
    token.text = text_.substr(start, at_ - start);
    const char* end = token.text.data() + token.text.size();
    const auto parsed = std::from_chars(token.text.data() + 2, end, token.integer, base);
    if (parsed.ec == std::errc::result_out_of_range) {
      throw ProgramError(token.position, token.text + " is too big for an integer");
    }
    if (parsed.ec != std::errc() || parsed.ptr != end) {
      throw ProgramError(token.position, token.text + " is not a number of base " + std::to_string(base));
    }
    tokens_.push_back(std::move(token));
  }

  void quoted() {
    Token token{TokenKind::text, "", here()};
    for (++at_;; ++at_) {
      if (peek() == '\n' || at_ >= text_.size())
        throw ProgramError(token.position, "the text is not closed by a quote");
      if (peek() == '"') {
        ++at_;
        if (peek() != '"') break;
      }
      token.text += peek();
    }
    tokens_.push_back(std::move(token));
  }

  void symbol() {
    const Position position = here();
    for (const std::string_view two : {"<=", ">=", "<>", "+=", "-=", "*=", "/="}) {
      if (text_.substr(at_, 2) == two) {
        at_ += 2;
        tokens_.push_back({TokenKind::symbol, std::string(two), position});
        return;
      }
    }
    if (std::string_view("+-*/\\^()=<>,.&").find(peek()) == std::string_view::npos) {
      throw ProgramError(position, std::string("unexpected character '") + peek() + "'");
    }
    tokens_.push_back({TokenKind::symbol, std::string(1, peek()), position});
    ++at_;
  }

  std::string_view text_;
  std::size_t at_ = 0, lineStart_ = 0;
  int line_ = 1;
  std::vector<Token> tokens_;
};

}  // namespace

std::vector<Token> tokenize(std::string_view text) { return Lexer(text).run(); }

}  // namespace host
