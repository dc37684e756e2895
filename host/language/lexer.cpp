// The words and symbols of the language, and how a text falls into them.
#include "language/lexer.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdlib>
#include <iterator>
#include <utility>

#include "language/absent_words.h"
#include "language/spelling.h"
#include "runtime/registry.h"

namespace host {

namespace {

// A word that is not reserved means something only where the grammar asks for it.
constexpr struct {
  Keyword keyword;
  const char* spelling;
  bool reserved;
} keywords[] = {
    {Keyword::addHandlerWord, "AddHandler", false},
    {Keyword::addressOfWord, "AddressOf", false},
    {Keyword::andWord, "And", true},
    {Keyword::asWord, "As", true},
    {Keyword::assignsWord, "Assigns", false},
    {Keyword::byRefWord, "ByRef", true},
    {Keyword::byValWord, "ByVal", true},
    {Keyword::callWord, "Call", false},
    {Keyword::caseWord, "Case", true},
    {Keyword::catchWord, "Catch", true},
    {Keyword::classWord, "Class", false},
    {Keyword::constWord, "Const", true},
    {Keyword::continueWord, "Continue", true},
    {Keyword::delegateWord, "Delegate", false},
    {Keyword::dimWord, "Dim", true},
    {Keyword::doWord, "Do", true},
    {Keyword::downToWord, "DownTo", true},
    {Keyword::eachWord, "Each", true},
    {Keyword::elseWord, "Else", true},
    {Keyword::elseIfWord, "ElseIf", true},
    {Keyword::endWord, "End", true},
    {Keyword::enumWord, "Enum", false},
    {Keyword::exitWord, "Exit", true},
    {Keyword::extendsWord, "Extends", false},
    {Keyword::falseWord, "False", true},
    {Keyword::finallyWord, "Finally", true},
    {Keyword::forWord, "For", true},
    {Keyword::functionWord, "Function", true},
    {Keyword::getWord, "Get", false},
    {Keyword::globalWord, "Global", false},
    {Keyword::ifWord, "If", true},
    {Keyword::implementsWord, "Implements", false},
    {Keyword::inWord, "In", false},
    {Keyword::inheritsWord, "Inherits", false},
    {Keyword::interfaceWord, "Interface", false},
    {Keyword::isWord, "Is", true},
    {Keyword::isAWord, "IsA", true},
    {Keyword::loopWord, "Loop", true},
    {Keyword::modWord, "Mod", true},
    {Keyword::moduleWord, "Module", false},
    {Keyword::newWord, "New", true},
    {Keyword::nextWord, "Next", true},
    {Keyword::nilWord, "Nil", true},
    {Keyword::notWord, "Not", true},
    {Keyword::optionalWord, "Optional", false},
    {Keyword::orWord, "Or", true},
    {Keyword::paramArrayWord, "ParamArray", false},
    {Keyword::printWord, "Print", true},
    {Keyword::privateWord, "Private", false},
    {Keyword::propertyWord, "Property", false},
    {Keyword::protectedWord, "Protected", false},
    {Keyword::publicWord, "Public", false},
    {Keyword::raiseWord, "Raise", true},
    {Keyword::reDimWord, "ReDim", false},
    {Keyword::returnWord, "Return", true},
    {Keyword::selectWord, "Select", true},
    {Keyword::setWord, "Set", false},
    {Keyword::sharedWord, "Shared", false},
    {Keyword::staticWord, "Static", false},
    {Keyword::stepWord, "Step", true},
    {Keyword::subWord, "Sub", true},
    {Keyword::thenWord, "Then", true},
    {Keyword::toWord, "To", true},
    {Keyword::trueWord, "True", true},
    {Keyword::tryWord, "Try", true},
    {Keyword::untilWord, "Until", true},
    {Keyword::varWord, "Var", true},
    {Keyword::wendWord, "Wend", true},
    {Keyword::whileWord, "While", true},
    {Keyword::xorWord, "Xor", true},
};

constexpr struct {
  Symbol symbol;
  std::string_view spelling;
} symbols[] = {
    {Symbol::lessOrEqual, "<="}, {Symbol::greaterOrEqual, ">="},
    {Symbol::unequal, "<>"},     {Symbol::plusEqual, "+="},
    {Symbol::minusEqual, "-="},  {Symbol::timesEqual, "*="},
    {Symbol::divideEqual, "/="}, {Symbol::plus, "+"},
    {Symbol::minus, "-"},        {Symbol::times, "*"},
    {Symbol::divide, "/"},       {Symbol::backslash, "\\"},
    {Symbol::caret, "^"},        {Symbol::open, "("},
    {Symbol::close, ")"},        {Symbol::equal, "="},
    {Symbol::less, "<"},         {Symbol::greater, ">"},
    {Symbol::comma, ","},        {Symbol::dot, "."},
    {Symbol::ampersand, "&"},
};

// Each value of an enumeration but its first, "none", has its line, in order.
constexpr bool inOrder() {
  for (std::size_t i = 0; i < std::size(keywords); ++i) {
    if (static_cast<std::size_t>(keywords[i].keyword) != i + 1) return false;
  }
  for (std::size_t i = 0; i < std::size(symbols); ++i) {
    if (static_cast<std::size_t>(symbols[i].symbol) != i + 1) return false;
  }
  return true;
}
static_assert(inOrder());

Keyword keywordSpelled(std::string_view word) {
  for (const auto& each : keywords) {
    if (sameName(each.spelling, word)) return each.keyword;
  }
  return Keyword::none;
}

// What other languages, and programs that set text for print, write for something of this one. The longer
// ones come first.
constexpr struct {
  std::string_view found, meant;
  Symbol symbol;  // that it is read as, so that the rest of the line makes sense
} mistaken[] = {
    {"==", "=", Symbol::equal},
    {"!=", "<>", Symbol::unequal},
    {"**", "^", Symbol::caret},
    {"<<", "Bitwise.ShiftLeft(a, bits)", Symbol::times},
    {">>", "Bitwise.ShiftRight(a, bits)", Symbol::times},
    {"&&", "And", Symbol::times},
    {"||", "Or", Symbol::times},
    {"[", "(", Symbol::open},
    {"]", ")", Symbol::close},
    {"!", "Not", Symbol::none},
    {"%", "Mod", Symbol::times},
    {"\u2212", "-", Symbol::minus},
    {"\u2013", "-", Symbol::minus},
    {"\u00D7", "*", Symbol::times},
    {"\u00F7", "/", Symbol::divide},
    {"\u2264", "<=", Symbol::lessOrEqual},
    {"\u2265", ">=", Symbol::greaterOrEqual},
    {"\u2260", "<>", Symbol::unequal},
};

// Blanks, among them those of text that was set for print.
constexpr std::string_view blanks[] = {" ",      "\t",     "\r",     "\u00A0", "\u1680", "\u2000",
                                       "\u2001", "\u2002", "\u2003", "\u2004", "\u2005", "\u2006",
                                       "\u2007", "\u2008", "\u2009", "\u200A", "\u200B", "\u202F",
                                       "\u205F", "\u2060", "\u3000", "\uFEFF"};
constexpr std::string_view doubleQuotes[] = {"\u201C", "\u201D", "\u201E", "\u201F"};
constexpr std::string_view singleQuotes[] = {"\u2018", "\u2019"};

// Words that are two in this language.
constexpr struct {
  std::string_view spelling;
  Keyword second;
} joinedEnds[] = {{"EndIf", Keyword::ifWord},       {"EndSelect", Keyword::selectWord},
                  {"EndSub", Keyword::subWord},     {"EndTry", Keyword::tryWord},
                  {"EndWhile", Keyword::whileWord}, {"EndFunction", Keyword::functionWord}};

// The classes that hold numbers of such a length, where there are some: they convert from a text.
std::string suggestionForBigNumber(const std::string& digits) {
  std::string names;
  for (const Class& each : registry().classes) {
    if (!each.fromLibrary) continue;
    for (const Method* method : each.findMethods("Operator_Convert")) {
      const std::vector<Parameter>& parameters = method->declaration.parameters;
      if (parameters.size() == 1 && parameters[0].type == Type{Kind::String}) {
        names += (names.empty() ? "" : " or ") + each.name;
      }
    }
  }
  return names.empty() ? "" : "; " + names + " takes it as a text: \"" + digits + "\"";
}

bool isWordStart(char c) { return std::isalpha(static_cast<unsigned char>(c)) || c == '_' || (c & 0x80); }
bool isWordPart(char c) { return isWordStart(c) || std::isdigit(static_cast<unsigned char>(c)); }
bool isDigit(char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; }

class Lexer {
 public:
  Lexer(std::string_view text, Problems& problems) : text_(text), problems_(problems) {
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

  // Says what is wrong, and goes on: what follows may make sense.
  void wrong(Position position, const std::string& message, bool endsTooEarly = false) {
    problems_.add(ProgramError(position, message, endsTooEarly));
  }
  // Most of what is tried is not there, which its first character tells.
  bool stands(std::string_view spelling) const {
    return peek() == spelling.front() && text_.substr(at_).starts_with(spelling);
  }
  template <typename Spellings>
  std::size_t lengthOfOne(const Spellings& spellings) const {  // of those that may stand here; 0: none does
    for (const std::string_view each : spellings) {
      if (stands(each)) return each.size();
    }
    return 0;
  }
  bool atWordPart() const {
    const char c = peek();
    if (!(c & 0x80)) return isWordPart(c);
    if (lengthOfOne(blanks) || lengthOfOne(doubleQuotes) || lengthOfOne(singleQuotes)) return false;
    for (const auto& each : mistaken) {
      if (stands(each.found)) return false;
    }
    return true;
  }
  void skipBlanks() {
    while (const std::size_t length = lengthOfOne(blanks)) at_ += length;
  }

  void add(TokenKind kind, std::string text) { tokens_.push_back({kind, std::move(text), here()}); }
  void add(Symbol symbol) {
    tokens_.push_back({TokenKind::symbol, spellingOf(symbol), here(), Keyword::none, symbol});
  }
  void endLine() {
    if (!tokens_.empty() && tokens_.back().kind != TokenKind::endOfLine) {
      add(TokenKind::endOfLine, "end of line");
    }
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
      openParentheses_ = 0;
      hasPairs_ = inBraces_ = false;
      ++at_;
      startLine();
    } else if (const std::size_t blank = lengthOfOne(blanks)) {
      at_ += blank;
    } else if (lengthOfOne(singleQuotes)) {
      problems_.addWarning(here(), "a comment starts with a straight '");
      skipComment();
    } else if (c == '\'' || (c == '/' && peek(1) == '/')) {
      if (c == '\'') warnOfQuotes();
      skipComment();
    } else if (c == ':') {
      openParentheses_ > 0 ? pair() : endLine();
      ++at_;
    } else if (c == '_' && !isWordPart(peek(1))) {
      joinLines();
    } else if (isWordStart(c) && atWordPart()) {
      word();
    } else if (isDigit(c) || (c == '.' && isDigit(peek(1)))) {
      number();
    } else if (c == '&' && std::string_view("hHbBoO").find(peek(1)) != std::string_view::npos) {
      prefixedNumber();
    } else if (c == '"' || lengthOfOne(doubleQuotes)) {
      quoted();
    } else {
      symbol();
    }
  }

  // No statement ends within parentheses.
  void pair() {
    if (!std::exchange(hasPairs_, true)) wrong(here(), "unexpected ':'" + absent("Pair"));
    add(Symbol::comma);
  }

  void joinLines() {
    const Position start = here();
    ++at_;
    skipBlanks();
    if (peek() == '\'' || text_.substr(at_).starts_with("//")) skipComment();
    if (peek() != '\n' && at_ < text_.size()) {
      return wrong(start, "expected the end of the line after the continuation mark _");
    }
    if (at_ < text_.size()) ++at_;
    startLine();
    if (at_ == text_.size()) wrong(here(), "nothing follows the continuation mark _", true);
  }

  void word() {
    const std::size_t start = at_;
    const Position position = here();
    while (atWordPart()) ++at_;
    const std::string_view word = text_.substr(start, at_ - start);
    if (sameName(word, "Rem")) return skipComment();
    if (tokens_.empty() || tokens_.back().kind == TokenKind::endOfLine) {
      for (const auto& each : joinedEnds) {
        if (!sameName(each.spelling, word)) continue;
        tokens_.push_back({TokenKind::word, std::string(word.substr(0, 3)), position, Keyword::endWord});
        tokens_.push_back({TokenKind::word, std::string(word.substr(3)), position, each.second});
        return;
      }
    }
    tokens_.push_back({TokenKind::word, std::string(word), position, keywordSpelled(word)});
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
    token.text = text_.substr(start, at_ - start);
    if (peek() == '.' && !isWordStart(peek(1))) {
      wrong(here(), "a number ends with a digit; leave out the '.', or write .0");
      ++at_;
    }
    if (isWordStart(peek()) && atWordPart()) {
      wrong(token.position, "a number is followed by a letter");
      while (atWordPart()) ++at_;
    }
    if (token.kind == TokenKind::integer) {
      const auto parsed =
          std::from_chars(token.text.data(), token.text.data() + token.text.size(), token.integer);
      if (parsed.ec != std::errc()) {
        wrong(token.position, token.text + " is too big for an integer" + suggestionForBigNumber(token.text));
      }
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
    while (atWordPart()) ++at_;
    token.text = text_.substr(start, at_ - start);
    const char* end = token.text.data() + token.text.size();
    const auto parsed = std::from_chars(token.text.data() + 2, end, token.integer, base);
    if (parsed.ec == std::errc::result_out_of_range) {
      wrong(token.position, token.text + " is too big for an integer");
    } else if (parsed.ec != std::errc() || parsed.ptr != end) {
      // Few begin a number where a value has just ended.
      const bool joins =
          !tokens_.empty() &&
          (tokens_.back().kind == TokenKind::text ||
           (tokens_.back().kind == TokenKind::word && tokens_.back().keyword == Keyword::none));
      wrong(token.position, token.text + " is not a number of base " + std::to_string(base) +
                                (joins ? "; texts are joined with '+'" : ""));
    }
    tokens_.push_back(std::move(token));
  }

  // Of a comment behind something that looks like a text: Print 'this'.
  void warnOfQuotes() {
    if (tokens_.empty() || tokens_.back().kind == TokenKind::endOfLine) return;
    const std::string_view line = text_.substr(at_, text_.find('\n', at_) - at_);
    const std::size_t closing = line.find('\'', 1);
    if (closing == std::string_view::npos || closing == 1 || line[1] == ' ') return;
    if (line.find_first_not_of(" \t\r)", closing + 1) != std::string_view::npos) return;
    problems_.addWarning(here(), "this is a comment; a text stands in straight quotes: \"");
  }

  void quoted() {
    Token token{TokenKind::text, "", here()};
    const std::size_t curly = lengthOfOne(doubleQuotes);
    if (curly) problems_.addWarning(token.position, "a text stands in straight quotes: \"");
    const auto quote = [&]() -> std::size_t {
      return peek() == '"' ? 1 : curly ? lengthOfOne(doubleQuotes) : 0;
    };
    for (at_ += curly ? curly : 1;; ++at_) {
      if (peek() == '\n' || at_ >= text_.size()) {
        if (lineOfUnexpected_ != line_) wrong(token.position, "the text is not closed by a quote");
        break;
      }
      if (const std::size_t length = quote()) {
        at_ += length;
        if (peek() != '"' || curly) break;
      }
      token.text += peek();
    }
    tokens_.push_back(std::move(token));
  }

  bool restOfLineIsBlank(std::size_t from) const {
    const std::size_t next = text_.find_first_not_of(" \t\r", from);
    return next == std::string_view::npos || text_[next] == '\n';
  }

  // Whether what was read last may have elements.
  bool endsValue() const {
    if (tokens_.empty()) return false;
    const Token& last = tokens_.back();
    return last.symbol == Symbol::close || last.kind == TokenKind::text ||
           (last.kind == TokenKind::word && !isReserved(last.keyword));
  }

  // As in Left$(s, 2) or n% = 5, and not in a%b.
  bool isTypeMark() const {
    if (std::string_view("$%!#").find(peek()) == std::string_view::npos || tokens_.empty()) return false;
    const Token& name = tokens_.back();
    const int end = name.position.column + static_cast<int>(name.text.size());
    if (name.kind != TokenKind::word || name.position.line != line_ || end != here().column) return false;
    if (peek() == '$') return true;
    if (stands("!=")) return false;
    const std::size_t next = text_.find_first_not_of(" \t", at_ + 1);
    return next == std::string_view::npos ||
           std::string_view("=<>,)\r\n").find(text_[next]) != std::string_view::npos;
  }

  // Of a whole #If, only its beginning is wrong; what stands in its first part is read.
  void directive() {
    const std::string name = directiveHere();
    if (name == "#if") {
      if (openDirectives_++ == 0) {
        wrong(here(), "this host has no #If; write Const and If, or leave in what is for this host");
      }
    } else if (name == "#else" || name == "#elseif") {
      if (openDirectives_ > 0) return skipOtherParts();
      wrong(here(), "there is no #If that this belongs to");
    } else if (name == "#endif" || name == "#end") {
      if (openDirectives_ == 0) wrong(here(), "there is no #If that this belongs to");
      openDirectives_ = std::max(openDirectives_ - 1, 0);
    } else {
      wrong(here(), "this host has no compiler directives; leave this line out");
    }
    skipComment();
  }

  std::string directiveHere() const {
    std::size_t length = 1;
    while (isWordPart(peek(length))) ++length;
    return lowerCase(text_.substr(at_, length));
  }

  // From #Else on to the #EndIf.
  void skipOtherParts() {
    for (int inside = 0; at_ < text_.size();) {
      skipComment();
      if (at_ < text_.size()) {
        ++at_;
        startLine();
      }
      skipBlanks();
      const std::string name = peek() == '#' ? directiveHere() : "";
      if (name == "#if") ++inside;
      if ((name == "#endif" || name == "#end") && inside-- == 0) return;
    }
  }

  void symbol() {
    if ((peek() == '+' || peek() == '-') && peek(1) == peek() && restOfLineIsBlank(at_ + 2)) {
      wrong(here(), std::string("there is no '") + peek() + peek() + "'; write '" + peek() + "= 1'");
      at_ += 2;
      return;
    }
    if (isTypeMark()) {
      wrong(here(), std::string("a name has no mark of its type; leave out the '") + peek() + "'");
      ++at_;
      return;
    }
    const bool endsLine = restOfLineIsBlank(at_ + 1);
    const bool beginsLine = tokens_.empty() || tokens_.back().kind == TokenKind::endOfLine;
    if ((peek() == '{' && endsLine) || (peek() == '}' && beginsLine)) {
      wrong(here(),
            std::string("leave out the '") + peek() + "'; a block goes on to its End, Next, Wend or Loop");
      ++at_;
      return;
    }
    if (peek() == '/' && peek(1) == '*') {
      wrong(here(), "a comment begins with ' or // and goes on to the end of its line");
      skipComment();
      return;
    }
    if (peek() == '#' && peek(1) == ' ' && beginsLine) {
      wrong(here(), "a comment begins with ' or //");
      skipComment();
      return;
    }
    if (peek() == '{' || (peek() == '[' && !endsValue())) {
      wrong(here(), "an array of several values is written Array(…)");
      inBraces_ = true;
      add(Symbol::open);
      ++at_;
      return;
    }
    if (inBraces_ && (peek() == '}' || peek() == ']')) {
      add(Symbol::close);
      ++at_;
      return;
    }
    for (const auto& each : mistaken) {
      if (!stands(each.found)) continue;
      wrong(here(), "there is no '" + std::string(each.found) + "'; write '" + std::string(each.meant) + "'");
      if (each.symbol != Symbol::none) add(each.symbol);
      at_ += each.found.size();
      return;
    }
    for (const auto& each : symbols) {
      if (!stands(each.spelling)) continue;
      add(each.symbol);
      if (each.symbol == Symbol::open) ++openParentheses_;
      if (each.symbol == Symbol::close && openParentheses_ > 0) --openParentheses_;
      at_ += each.spelling.size();
      return;
    }
    if (peek() == ';' && restOfLineIsBlank(at_ + 1)) {
      wrong(here(), "a statement ends with its line; leave out the ';'");
      at_ = std::min(text_.find('\n', at_), text_.size());
      return;
    }
    if (peek() == '#' && isWordStart(peek(1))) return directive();
    if (peek() == '\0') {
      wrong(here(), "this is no text of a program, which is UTF-8 or UTF-16");
      at_ = text_.size();
      return;
    }
    if (std::exchange(lineOfUnexpected_, line_) != line_) {
      const auto code = static_cast<unsigned char>(peek());
      const std::string shown =
          code < 0x20 || code == 0x7F ? std::to_string(code) : std::string("'") + peek() + "'";
      std::string message = "unexpected character " + shown;
      if (peek() == ';') message += "; texts are joined with '+'";
      if (peek() == '$' && isDigit(peek(1))) message += "; an amount has no sign of its currency";
      wrong(here(), message);
    }
    ++at_;
  }

  std::string_view text_;
  Problems& problems_;
  std::size_t at_ = 0, lineStart_ = 0;
  int line_ = 1;
  int openParentheses_ = 0;   // in this line
  bool hasPairs_ = false;     // this line
  bool inBraces_ = false;     // this line, what should be in Array(…)
  int lineOfUnexpected_ = 0;  // the last one in which a character was found that means nothing
  int openDirectives_ = 0;    // how many #If stand around this
  std::vector<Token> tokens_;
};

}  // namespace

const char* spellingOf(Keyword keyword) { return keywords[static_cast<std::size_t>(keyword) - 1].spelling; }
bool isReserved(Keyword keyword) {
  return keyword != Keyword::none && keywords[static_cast<std::size_t>(keyword) - 1].reserved;
}
const char* spellingOf(Symbol symbol) {
  return symbols[static_cast<std::size_t>(symbol) - 1].spelling.data();
}

std::vector<Token> tokenize(std::string_view text, Problems& problems) { return Lexer(text, problems).run(); }

}  // namespace host
