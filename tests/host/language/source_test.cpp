// How files become texts, and what messages show of them.
#include "language/source.h"

#include <gtest/gtest.h>

#include "language/spelling.h"

namespace host {
namespace {

// What stands under the message: the line and the caret.
std::string shownOf(const std::string& text, Position position) {
  const std::string described = describe(Problem{position, "no"}, "f", text);
  return described.substr(described.find('\n') + 1);
}

TEST(Source, PutsTheCaretUnderThePlace) {
  EXPECT_EQ(describe(Problem{{2, 3}, "no"}, "f", "a\nbcd\ne"), "f:2:3: error: no\n  bcd\n    ^\n");
  EXPECT_EQ(describe(Problem{{1, 1}, "why", true}, "f", "a"), "f:1:1: warning: why\n  a\n  ^\n");
  EXPECT_EQ(shownOf("\t\tx", {1, 3}), "  \t\tx\n  \t\t^\n") << "tabs are as wide as they are";
  EXPECT_EQ(shownOf("é中e\u0301x", {1, 9}), "  é中e\u0301x\n      ^\n") << "columns, not bytes";
  EXPECT_EQ(shownOf("\U0001F600 x", {1, 6}), "  \U0001F600 x\n     ^\n");
  EXPECT_EQ(shownOf("ab\r\n", {1, 3}), "  ab\n    ^\n") << "at the end of the line";
  EXPECT_EQ(shownOf("ab\n", {2, 1}), "") << "there is nothing to show";
  EXPECT_EQ(shownOf("ab", {7, 1}), "");
}

TEST(Source, ShowsThePartOfALongLineThatMatters) {
  const std::string line = std::string(500, 'a') + "#" + std::string(500, 'b');
  const std::string shown = shownOf(line, {1, 501});
  EXPECT_LT(shown.size(), 300u);
  const std::size_t caret = shown.find('^') - shown.find('\n') - 1;
  EXPECT_EQ(shown.find("  …a"), 0u) << shown;
  // The ellipsis is one column of three bytes.
  EXPECT_EQ(shown[caret + 2], '#') << shown;
  std::string wide;
  for (int i = 0; i < 200; ++i) wide += "é";
  for (int column = 1; column < 400; column += 2) {  // never cut within a character
    const std::string part = shownOf(wide, {1, column});
    EXPECT_EQ(part.find("\xC3\n"), std::string::npos);
    EXPECT_EQ(part.find("…\xA9"), std::string::npos);
    EXPECT_EQ(part.find("\xC3…"), std::string::npos);
  }
}

TEST(Source, PutsListsAfterTheLine) {
  EXPECT_EQ(describe(Problem{{1, 1}, "expected one of\n  a\n  b"}, "f", "x"),
            "f:1:1: error: expected one of\n  x\n  ^\n  a\n  b\n");
}

TEST(Source, IsReadFromFilesOfAnyOrigin) {
  using namespace std::string_literals;
  EXPECT_EQ(sourceText("é\n"), "é\n");
  EXPECT_EQ(sourceText("\xFF\xFE"s + "a\0\xE9\0"s), "aé");
  EXPECT_EQ(sourceText("\xFE\xFF\0a\0\xE9"s), "aé");
  EXPECT_EQ(sourceText("a\0b\0"s), "ab");
  EXPECT_EQ(sourceText("\0a\0b"s), "ab");
  EXPECT_EQ(sourceText("a\rb\r"), "a\nb\n");
  EXPECT_EQ(sourceText("a\r\nb\r\n"), "a\r\nb\r\n");
  EXPECT_EQ(sourceText("a\r\nb\rc\n\rd\r\r\ne"), "a\r\nb\nc\n\nd\r\r\ne") << "each ends a line";
  EXPECT_EQ(sourceText(""), "");
  EXPECT_EQ(sourceText("\0"s), "\0"s);
}

TEST(Spelling, FindsWhatAWrongNameMayMean) {
  const std::vector<std::string> names = {"stringValue", "Count",        "Increment",
                                          "HypotQTX",    "HypotLongQTX", "Value"};
  EXPECT_EQ(nearest("Incremnt", names), "Increment") << "nearly so";
  EXPECT_EQ(nearest("Cuont", names), "Count") << "letters that have changed places";
  EXPECT_EQ(nearest("hypot", names), "HypotQTX") << "the shorter one that goes on";
  EXPECT_EQ(nearest("Length", names), "Count") << "elsewhere it is called so";
  EXPECT_EQ(nearest("ToString", names), "stringValue") << "of the same words";
  EXPECT_EQ(nearest("Nonsense", names), "");
  EXPECT_EQ(suggestion("Valu", names), "; did you mean 'Value'?");
  EXPECT_EQ(nearest(std::string(1000000, 'x'), names), "") << "at once";
}

TEST(Spelling, SuggestsAsMuchAsIsRead) {
  const std::vector<std::string> names = {"Value"};
  allowSuggestions();
  for (int i = 0; i < 100; ++i) EXPECT_NE(suggestion("Valu", names), "");
  for (int i = 0; hasSuggestionsLeft() && i < 100000; ++i) (void)suggestion("Valu", names);
  EXPECT_EQ(suggestion("Valu", names), "");
  const Problems next;
  EXPECT_NE(suggestion("Valu", names), "") << "for another text";
}

TEST(Spelling, LeavesTheMiddleOfLongLinesOut) {
  const std::string shortOne(600, 'a'), longOne = "'" + std::string(1000000, 'b') + "'";
  EXPECT_EQ(withoutMiddle(""), "");
  EXPECT_EQ(withoutMiddle(shortOne + "\n" + shortOne + "\n"), shortOne + "\n" + shortOne + "\n");
  const std::string cut = withoutMiddle(shortOne + "\n" + longOne + "\nend");
  EXPECT_EQ(cut, shortOne + "\n'" + std::string(199, 'b') + "…" + std::string(199, 'b') + "'\nend");
  std::string wide = "a";
  for (int i = 0; i < 1000; ++i) wide += "é";
  std::string half = "a";
  for (int i = 0; i < 99; ++i) half += "é";
  EXPECT_EQ(withoutMiddle(wide), half + "…" + half.substr(1) + "é") << "not within a character";
}

TEST(Problems, AreSaidOnceAndInOrder) {
  Problems problems;
  EXPECT_TRUE(problems.attempt([] {}));
  EXPECT_FALSE(problems.attempt([] { throw UnknownName({3, 1}, "X", "unknown x"); }));
  EXPECT_FALSE(problems.attempt([] { throw UnknownName({4, 1}, "x", "unknown x again"); }));
  EXPECT_FALSE(problems.attempt([] { throw FollowsFromAnother({5, 1}); }));
  EXPECT_FALSE(problems.attempt([] { fail({2, 1}, "second line"); }));
  warn({1, 1}, "odd");
  warn({1, 1}, "odd");
  problems.startPass();
  EXPECT_FALSE(problems.attempt([] { fail({2, 9}, "of a line that is wrong already"); }));
  EXPECT_FALSE(problems.attempt([] { fail({6, 1}, "sixth line"); }));
  std::string all;
  for (const Problem& each : problems.found()) {
    all += std::to_string(each.position.line) + (each.isWarning ? "w " : " ") + each.message + "\n";
  }
  EXPECT_EQ(all, "1w odd\n2 second line\n3 unknown x\n6 sixth line\n");
  try {
    problems.throwIfAny();
    ADD_FAILURE();
  } catch (const ProgramError& error) {
    EXPECT_STREQ(error.what(), "second line");
    EXPECT_EQ(error.position.line, 2);
    EXPECT_FALSE(error.atEnd || error.isUnfinished);
  }
}

TEST(Problems, AreNoErrorsWhereTheyAreWarnings) {
  Problems problems;
  warn({1, 1}, "odd");
  {
    Problems inner;
    warn({1, 1}, "of the inner one");
    EXPECT_EQ(inner.found().size(), 1u);
  }
  problems.throwIfAny();
  EXPECT_EQ(problems.found().size(), 1u);
}

TEST(Problems, KnowWhatMoreLinesMayMend) {
  Problems problems;
  problems.addMissing({1, 1}, "no end", true);
  try {
    problems.throwIfAny();
  } catch (const ProgramError& error) {
    EXPECT_TRUE(error.atEnd && error.isUnfinished);
  }
  problems.attempt([] { fail({2, 1}, "wrong"); });
  try {
    problems.throwIfAny();
  } catch (const ProgramError& error) {
    EXPECT_TRUE(!error.atEnd && error.isUnfinished);
  }
}

}  // namespace
}  // namespace host
