// Looks at the first words of lines, and behind End.
#include "language/mistyped.h"

#include <algorithm>
#include <set>
#include <string>

#include "language/absent_words.h"
#include "language/spelling.h"
#include "runtime/registry.h"

namespace host {

namespace {

// What a line may begin with where more follows.
constexpr Keyword openers[] = {
    Keyword::dimWord,       Keyword::varWord,        Keyword::constWord,    Keyword::staticWord,
    Keyword::ifWord,        Keyword::elseIfWord,     Keyword::selectWord,   Keyword::caseWord,
    Keyword::forWord,       Keyword::nextWord,       Keyword::whileWord,    Keyword::doWord,
    Keyword::loopWord,      Keyword::returnWord,     Keyword::printWord,    Keyword::raiseWord,
    Keyword::catchWord,     Keyword::exitWord,       Keyword::continueWord, Keyword::callWord,
    Keyword::reDimWord,     Keyword::subWord,        Keyword::functionWord, Keyword::classWord,
    Keyword::moduleWord,    Keyword::enumWord,       Keyword::propertyWord, Keyword::interfaceWord,
    Keyword::inheritsWord,  Keyword::implementsWord, Keyword::privateWord,  Keyword::publicWord,
    Keyword::protectedWord, Keyword::addHandlerWord, Keyword::endWord,      Keyword::delegateWord};
// And where nothing does.
constexpr Keyword alone[] = {Keyword::nextWord,    Keyword::wendWord,  Keyword::loopWord,
                             Keyword::doWord,      Keyword::elseWord,  Keyword::tryWord,
                             Keyword::finallyWord, Keyword::catchWord, Keyword::returnWord,
                             Keyword::printWord,   Keyword::exitWord,  Keyword::continueWord};
// What End ends.
constexpr Keyword ended[] = {Keyword::ifWord,       Keyword::selectWord,    Keyword::whileWord,
                             Keyword::tryWord,      Keyword::subWord,       Keyword::functionWord,
                             Keyword::classWord,    Keyword::moduleWord,    Keyword::enumWord,
                             Keyword::propertyWord, Keyword::interfaceWord, Keyword::getWord,
                             Keyword::setWord};

// What other languages call it.
constexpr struct {
  std::string_view word;
  Keyword meant;
} others[] = {
    {"Func", Keyword::functionWord}, {"Procedure", Keyword::subWord}, {"ElIf", Keyword::elseIfWord}};

template <std::size_t count>
Keyword nearestOf(const Keyword (&candidates)[count], const std::string& word) {
  for (const auto& [other, meant] : others) {
    const bool fits = std::find(std::begin(candidates), std::end(candidates), meant) != std::end(candidates);
    if (fits && sameName(other, word)) return meant;
  }
  std::size_t least = word.size() > 4 ? 3 : word.size() > 2 ? 2 : 0;  // which is too far
  Keyword best = Keyword::none;
  for (const Keyword each : candidates) {
    const std::size_t far = editsBetween(lowerCase(word), lowerCase(spellingOf(each)));
    if (far >= least) continue;
    least = far;
    best = each;
  }
  return best;
}

// Whether a library or the host has something of that name, which a class of the program may inherit.
bool isRegistered(const std::string& name) {
  if (!registry().findFunctions(name).empty() || registry().findClass(name) || registry().findModule(name) ||
      registry().findSharedProperty(name)) {
    return true;
  }
  return std::any_of(registry().classes.begin(), registry().classes.end(), [&](const Class& each) {
    return each.findProperty(name) || !each.findMethods(name).empty();
  });
}

class Mender {
 public:
  Mender(std::vector<Token>& tokens, Problems& problems) : tokens_(tokens), problems_(problems) {
    bool begins = true;
    for (std::size_t i = 0; i + 1 < tokens_.size(); ++i) {
      if (tokens_[i].kind == TokenKind::word && (!begins || !isFollowed(i))) {
        used_.insert(lowerCase(tokens_[i].text));
      }
      begins = tokens_[i].kind == TokenKind::endOfLine || tokens_[i].keyword == Keyword::endWord ||
               (begins && isModifier(i));
    }
  }

  void run() {
    bool inEnum = false;
    for (std::size_t i = 0; i + 1 < tokens_.size(); ++i) {
      if (!isFirst(i) || tokens_[i].kind != TokenKind::word) continue;
      if (tokens_[i].keyword == Keyword::endWord) {
        mendEnd(i + 1);
        inEnum = inEnum && tokens_[i + 1].keyword != Keyword::enumWord;
        continue;
      }
      while (isModifier(i) && tokens_[i + 1].kind == TokenKind::word) ++i;
      if (!inEnum) mendFirst(i);
      inEnum = inEnum || (tokens_[i].keyword == Keyword::enumWord && tokens_[i + 1].kind == TokenKind::word);
    }
  }

 private:
  bool isFirst(std::size_t i) const { return i == 0 || tokens_[i - 1].kind == TokenKind::endOfLine; }
  bool isModifier(std::size_t i) const {
    const Keyword word = tokens_[i].keyword;
    return word == Keyword::privateWord || word == Keyword::publicWord || word == Keyword::protectedWord ||
           word == Keyword::sharedWord || word == Keyword::globalWord;
  }

  // By what may follow a word of the language, but no name in front of what it declares.
  bool isFollowed(std::size_t i) const {
    const Token& next = tokens_[i + 1];
    return next.kind == TokenKind::word ? next.keyword != Keyword::asWord : next.kind != TokenKind::symbol;
  }

  void mendEnd(std::size_t i) {
    Token& word = tokens_[i];
    if (word.kind != TokenKind::word || word.keyword != Keyword::none) return;
    mend(word, nearestOf(ended, word.text), true);
  }

  void mendFirst(std::size_t i) {
    Token& word = tokens_[i];
    const Token& next = tokens_[i + 1];
    if (word.keyword != Keyword::none || word.kind != TokenKind::word) return;
    if (!isFollowed(i)) return;
    if (sameName(word.text, "ForEach") && next.kind == TokenKind::word) {
      say(word, "For Each");
      word.keyword = Keyword::forWord;
      Token each = word;
      each.keyword = Keyword::eachWord;
      tokens_.insert(tokens_.begin() + static_cast<std::ptrdiff_t>(i) + 1, each);
      return;
    }
    const bool atEnd = next.kind == TokenKind::endOfLine;
    mend(word, atEnd ? nearestOf(alone, word.text) : nearestOf(openers, word.text), false);
  }

  bool isMeant(const std::string& name) const {
    return used_.contains(lowerCase(name)) || !absent(name).empty() || isRegistered(name);
  }

  void mend(Token& word, Keyword meant, bool isBehindEnd) {
    if (meant == Keyword::none || (!isBehindEnd && isMeant(word.text))) return;
    say(word, spellingOf(meant));
    word.keyword = meant;
  }
  void say(const Token& word, const std::string& meant) {
    problems_.add(
        ProgramError(word.position, "unknown word '" + word.text + "'; did you mean '" + meant + "'?"));
  }

  std::vector<Token>& tokens_;
  Problems& problems_;
  // Words that stand elsewhere than at the start of a line, in lower case: names are declared there.
  std::set<std::string> used_;
};

}  // namespace

void mendWords(std::vector<Token>& tokens, Problems& problems) { Mender(tokens, problems).run(); }

}  // namespace host
