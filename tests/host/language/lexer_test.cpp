// What the text of a program falls into.
#include "language/lexer.h"

#include <gtest/gtest.h>

namespace host {
namespace {

std::vector<Token> tokenize(std::string_view text) {
  Problems problems;
  std::vector<Token> tokens = host::tokenize(text, problems);
  problems.throwIfAny();
  return tokens;
}

std::string kindsIn(std::string_view text) {
  std::string kinds;
  for (const Token& token : tokenize(text)) kinds += "wirtsl."[static_cast<std::size_t>(token.kind)];
  return kinds;
}

TEST(Lexer, TellsTheKindsOfTokensApart) {
  EXPECT_EQ(kindsIn("a 1 1.5 \"t\" + "), "wirtsl.");
  EXPECT_EQ(kindsIn(""), ".");
  EXPECT_EQ(kindsIn("\n\n\n"), ".") << "an empty line is none";
  EXPECT_EQ(kindsIn("a:b\nc"), "wlwlwl.") << "a colon ends a statement";
  EXPECT_EQ(kindsIn("a _ ' why\n b"), "wwl.") << "a joined line is one";
  EXPECT_EQ(kindsIn("a ' b\nRem c\n// d\ne"), "wlwl.");
}

TEST(Lexer, KnowsKeywordsWhateverTheirCase) {
  EXPECT_EQ(tokenize("ELSEIF")[0].keyword, Keyword::elseIfWord);
  EXPECT_EQ(tokenize("isa")[0].keyword, Keyword::isAWord);
  EXPECT_EQ(tokenize("elsewhere")[0].keyword, Keyword::none);
  EXPECT_STREQ(spellingOf(Keyword::downToWord), "DownTo");
  EXPECT_TRUE(isReserved(Keyword::whileWord));
  EXPECT_FALSE(isReserved(Keyword::callWord)) << "a variable may be called so";
  EXPECT_FALSE(isReserved(Keyword::none));
}

TEST(Lexer, TakesTheLongerSymbol) {
  const std::vector<Token> tokens = tokenize("<= <> < = += + \\");
  const Symbol expected[] = {Symbol::lessOrEqual, Symbol::unequal, Symbol::less,     Symbol::equal,
                             Symbol::plusEqual,   Symbol::plus,    Symbol::backslash};
  for (std::size_t i = 0; i < std::size(expected); ++i) {
    EXPECT_EQ(tokens[i].symbol, expected[i]) << i;
    EXPECT_EQ(tokens[i].text, spellingOf(expected[i])) << i;
  }
}

TEST(Lexer, ReadsLiterals) {
  EXPECT_EQ(tokenize("18446744073709551615")[0].integer, UINT64_MAX);
  EXPECT_EQ(tokenize("&hFf")[0].integer, 255u);
  EXPECT_EQ(tokenize("&b101")[0].integer, 5u);
  EXPECT_EQ(tokenize("&o17")[0].integer, 15u);
  EXPECT_EQ(tokenize("1.5e-3")[0].real, 1.5e-3);
  EXPECT_EQ(tokenize(".5")[0].real, 0.5);
  EXPECT_EQ(tokenize("\"say \"\"hi\"\"\"")[0].text, "say \"hi\"");
}

TEST(Lexer, SaysWhereEachTokenStands) {
  const std::vector<Token> tokens = tokenize(
      "\xEF\xBB\xBF"
      "a\n  b");
  EXPECT_EQ(tokens[2].position.line, 2);
  EXPECT_EQ(tokens[2].position.column, 3);
}

TEST(Lexer, RefusesWhatIsNoToken) {
  const struct {
    const char* text;
    const char* message;
    int column;
  } cases[] = {{"a #", "unexpected character '#'", 3},
               {"a \f", "unexpected character 12", 3},
               {"\"open", "the text is not closed by a quote", 1},
               {"18446744073709551616", "18446744073709551616 is too big for an integer", 1},
               {"&b102", "&b102 is not a number of base 2", 1},
               {"&h11112222333344445", "&h11112222333344445 is too big for an integer", 1},
               {"1x", "a number is followed by a letter", 1},
               {"a _ b", "expected the end of the line after the continuation mark _", 3}};
  for (const auto& each : cases) {
    try {
      tokenize(each.text);
      ADD_FAILURE() << each.text;
    } catch (const ProgramError& error) {
      EXPECT_STREQ(error.what(), each.message);
      EXPECT_EQ(error.position.column, each.column) << each.text;
      EXPECT_FALSE(error.atEnd);
    }
  }
}

}  // namespace
}  // namespace host
