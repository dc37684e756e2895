// The tree that a program's text becomes.
#include "language/parser.h"

#include <gtest/gtest.h>

namespace host {
namespace {

syntax::Program parse(std::string_view text, bool interactive = false) {
  Problems problems;
  syntax::Program program = host::parse(text, interactive, problems);
  problems.throwIfAny();
  return program;
}

std::string written(const syntax::Expression& expression);

std::string written(const syntax::Arguments& arguments) {
  std::string list;
  for (const syntax::Expression& each : arguments.values) list += (list.empty() ? "" : ", ") + written(each);
  return arguments.parenthesised ? "(" + list + ")" : " " + list;
}

// An expression with all of its grouping shown.
struct Writer {
  std::string operator()(const syntax::Unread&) const { return "?"; }
  std::string operator()(const syntax::Literal& literal) const {
    if (const auto* number = std::get_if<std::uint64_t>(&literal.value)) return std::to_string(*number);
    if (const auto* text = std::get_if<std::string>(&literal.value)) return '"' + *text + '"';
    return "literal";
  }
  std::string operator()(const syntax::Name& name) const { return name.text; }
  std::string operator()(const syntax::New& made) const {
    return "New " + made.type.text + written(made.arguments);
  }
  std::string operator()(const syntax::Parenthesised& inner) const {
    return "(" + written(*inner.inner) + ")";
  }
  std::string operator()(const syntax::Negation& node) const { return "[-" + written(*node.operand) + "]"; }
  std::string operator()(const syntax::Not& node) const { return "[Not " + written(*node.operand) + "]"; }
  std::string operator()(const syntax::Conditional& node) const {
    return "If(" + written(*node.condition) + ", " + written(*node.first) + ", " + written(*node.second) +
           ")";
  }
  std::string operator()(const syntax::AddressOf& node) const { return "AddressOf " + written(*node.method); }
  std::string operator()(const syntax::Chain& chain) const {
    std::string text = written(*chain.first);
    for (const syntax::Link& link : chain.links) {
      const auto* name = std::get_if<syntax::Name>(&link);
      text += name ? "." + name->text : written(std::get<syntax::Arguments>(link));
    }
    return text;
  }
  std::string operator()(const syntax::Sequence& sequence) const {
    std::string text = "[" + written(*sequence.first);
    for (const auto& [position, what, operand] : sequence.rest) {
      const auto* op = std::get_if<Operator>(&what);
      text += op ? std::string(" ") + nameOf(*op) + " " + written(*operand)
                 : " IsA " + std::get<syntax::TypeName>(what).text;
    }
    return text + "]";
  }
};
std::string written(const syntax::Expression& expression) { return std::visit(Writer(), expression.node); }

std::string expressionIn(const std::string& text) {
  const syntax::Program program = parse("x = " + text);
  return written(std::get<syntax::Assign>(program.main.at(0).node).value);
}

TEST(Parser, GroupsOperatorsByPrecedence) {
  EXPECT_EQ(expressionIn("1 + 2 * 3 - 4"), "[1 + [2 * 3] - 4]");
  EXPECT_EQ(expressionIn("1 Or 2 And 3 = 4"), "[1 or [2 and [3 = 4]]]");
  EXPECT_EQ(expressionIn("Not a = b And c"), "[[Not [a = b]] and c]");
  EXPECT_EQ(expressionIn("-a ^ 2"), "[-[a ^ 2]]");
  EXPECT_EQ(expressionIn("2 ^ -a"), "[2 ^ [-a]]");
  EXPECT_EQ(expressionIn("2 ^ 3 ^ 4"), "[2 ^ 3 ^ 4]");
  EXPECT_EQ(expressionIn("a Mod b \\ c"), "[a mod b \\ c]");
  EXPECT_EQ(expressionIn("a IsA T And b Is Nil"), "[[a IsA T] and [b is literal]]");
  EXPECT_EQ(expressionIn("(1 + 2) * 3"), "[([1 + 2]) * 3]");
  EXPECT_EQ(expressionIn("+a"), "a");
}

TEST(Parser, KeepsMembersAndArgumentsInOneList) {
  EXPECT_EQ(expressionIn("a.b(1, c(2)).d(3)(4)"), "a.b(1, c(2)).d(3)(4)");
  EXPECT_EQ(expressionIn("New T(1).Next"), "New T(1).Next");
  EXPECT_EQ(expressionIn("If(a = 1, b + 2, c.d) * 2"), "[If([a = 1], [b + 2], c.d) * 2]");
  EXPECT_EQ(expressionIn("AddressOf a.b"), "AddressOf a.b");
}

std::string statementIn(const std::string& text, bool interactive = false) {
  const syntax::Program program = parse(text, interactive);
  return written(std::get<syntax::Evaluate>(program.main.at(0).node).value);
}

TEST(Parser, TakesArgumentsWithoutParenthesesInStatements) {
  EXPECT_EQ(statementIn("Greet \"you\", 2"), "Greet \"you\", 2");
  EXPECT_EQ(statementIn("c.Add -1"), "c.Add [-1]");
  EXPECT_EQ(statementIn("Call c.Add(1)"), "c.Add(1)");
}

TEST(Parser, SubtractsInTheInteractiveMode) {
  EXPECT_EQ(statementIn("n - 1 * 2", true), "[n - [1 * 2]]");
  EXPECT_EQ(statementIn("n * 2 + 1", true), "[[n * 2] + 1]");
}

TEST(Parser, PutsSubsAsideFromWhatRuns) {
  const syntax::Program program =
      parse("Print 1\nFunction F(ByRef a() As Integer, b As T = 2) As U()\nEnd Function\nPrint 2");
  EXPECT_EQ(program.main.size(), 2u);
  ASSERT_EQ(program.declared.subs.size(), 1u);
  const syntax::Sub& sub = program.declared.subs[0];
  EXPECT_EQ(sub.name.text, "F");
  EXPECT_TRUE(sub.parameters[0].byRef && sub.parameters[0].type.array);
  EXPECT_TRUE(!sub.parameters[1].byRef && sub.parameters[1].defaultValue);
  EXPECT_TRUE(sub.result && sub.result->array);
}

TEST(Parser, KnowsWhereTextIsOnlyUnfinished) {
  for (const char* text :
       {"If a Then", "For i = 1 To 3\nPrint i", "Sub A", "x =", "Select Case 1\nCase 2", "Print (1"}) {
    try {
      parse(text);
      ADD_FAILURE() << text;
    } catch (const ProgramError& error) {
      const bool endsInALine = std::string_view(text) == "x =" || std::string_view(text) == "Print (1";
      EXPECT_EQ(error.atEnd, !endsInALine) << text << ": " << error.what();
    }
  }
}

TEST(Parser, BoundsNesting) {
  const auto nested = [](std::size_t depth) {
    return "x = " + std::string(depth, '(') + "1" + std::string(depth, ')');
  };
  EXPECT_NO_THROW(parse(nested(190)));
  EXPECT_THROW(parse(nested(250)), ProgramError);
  std::string signs = "x = ", sum = "x = 1";
  for (int i = 0; i < 250; ++i) signs += "-";
  EXPECT_THROW(parse(signs + "1"), ProgramError);
  for (int i = 0; i < 20000; ++i) sum += " + 1";
  EXPECT_NO_THROW(parse(sum)) << "long is not deep";
}

}  // namespace
}  // namespace host
