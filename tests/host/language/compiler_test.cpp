// Programs in one piece, and in pieces as the interactive mode compiles them.
#include "language/compiler.h"

#include "typed.h"

namespace host {
namespace {

class Pieces : public testing::Test {
 protected:
  // Compiles and runs one more piece; gives what is wrong with it.
  std::string run(const std::string& text, bool interactive = true) {
    return failureOf([&] { runMain(pieces.emplace_back(compile(module, text, interactive))); });
  }
  std::int64_t number(const std::string& name) {
    return std::get<Global*>(module.values.at(name))->slot.integer;
  }
  ModuleNames module;
  std::deque<Main> pieces;
};

TEST_F(Pieces, SeeWhatIsDeclaredFurtherDown) {
  EXPECT_EQ(run("Dim x As Integer = Twice(4)\n"
                "Function Twice(n As Integer) As Integer\nReturn Again(n)\nEnd Function\n"
                "Function Again(n As Integer) As Integer\nx = 1\nReturn n * 2\nEnd Function",
                false),
            "");
  EXPECT_EQ(number("x"), 8);
}

TEST_F(Pieces, GoOnFromEachOther) {
  EXPECT_EQ(run("Dim x As Integer = 4"), "");
  EXPECT_EQ(run("x = x + 1"), "");
  EXPECT_EQ(number("x"), 5);
  EXPECT_EQ(run("Const x = 7"), "") << "declared anew";
  EXPECT_EQ(run("x = 1"), "x is constant");
}

TEST_F(Pieces, KeepTheSubThatTheyWereCompiledWith) {
  EXPECT_EQ(run("Dim x As Integer\nFunction F() As Integer\nReturn 1\nEnd Function"), "");
  EXPECT_EQ(run("Sub G()\nx = F()\nEnd Sub"), "");
  EXPECT_EQ(run("Function F() As Integer\nReturn 2\nEnd Function\nG"), "");
  EXPECT_EQ(number("x"), 1);
  EXPECT_EQ(run("x = F()"), "");
  EXPECT_EQ(number("x"), 2);
}

TEST_F(Pieces, DeclareNothingWhereSomethingIsWrong) {
  EXPECT_EQ(run("Dim x As Integer = 3"), "");
  EXPECT_EQ(run("Dim x As String\nSub S()\nEnd Sub\nx = unknwn"), "unknown name 'unknwn'");
  EXPECT_EQ(number("x"), 3);
  EXPECT_EQ(run("S"), "unknown name 'S'");
}

TEST_F(Pieces, HaveConstantsOfTheirBlocks) {
  EXPECT_EQ(run("Dim x As Integer\nSub S()\nConst k = 5\nx = k\nEnd Sub\nS", false), "");
  EXPECT_EQ(number("x"), 5);
  EXPECT_EQ(run("x = k"), "unknown name 'k'");
}

TEST_F(Pieces, TakeOnlySoManyParameters) {
  std::string parameters = "a0 As Integer";
  for (int i = 1; i < 16; ++i) parameters += ", a" + std::to_string(i) + " As Integer";
  EXPECT_EQ(run("Sub S(" + parameters + ")\nEnd Sub"), "");
  EXPECT_EQ(run("Sub S(" + parameters + ", b As Integer)\nEnd Sub"), "S has too many parameters");
}

// What runs under a limit of steps, and whether it took them all.
bool tookAll(std::int64_t steps, const std::string& text) {
  ModuleNames module;
  module.stepsLeft = std::make_unique<StepsLeft>(steps);
  const Main main = compile(module, text);
  try {
    runMain(main);
    return false;
  } catch (const OutOfSteps&) {
    return true;
  }
}

TEST(StepLimit, CountsRoundsOfLoopsAndCalls) {
  const std::string threeRounds = "For i As Integer = 1 To 3\nNext";
  EXPECT_FALSE(tookAll(3, threeRounds));
  EXPECT_TRUE(tookAll(2, threeRounds));
  const std::string twoCalls = "Sub P()\nEnd Sub\nP\nP";
  EXPECT_FALSE(tookAll(2, twoCalls));
  EXPECT_TRUE(tookAll(1, twoCalls));
  EXPECT_FALSE(tookAll(0, "Dim x As Integer = 1\nIf x = 1 Then\nx = 2\nEnd If"));
}

TEST(StepLimit, EndsWhatWouldNotEnd) {
  for (const char* text :
       {"While True\nWend", "Do\nLoop", "Do\nDim x As Integer\nLoop Until False",
        "Dim i As Integer\nFor i = 1 To 2\ni = 1\nNext", "For d As Double = 0 To 1 Step 0\nNext",
        "Dim a() As Integer = Array(1)\nFor Each e As Integer In a\na.Append(e)\nNext",
        "Sub P()\nP\nEnd Sub\nP"}) {
    EXPECT_TRUE(tookAll(100, text)) << text;
  }
}

TEST(StepLimit, CannotBeCaught) {
  EXPECT_TRUE(tookAll(100, "While True\nTry\nWhile True\nWend\nCatch\nEnd Try\nWend"));
  EXPECT_TRUE(tookAll(100, "Try\nDo\nLoop\nFinally\nDo\nLoop\nEnd Try"));
}

TEST(StepLimit, HoldsForThreadsToo) {
  EXPECT_TRUE(tookAll(100,
                      "Sub Work()\nWhile True\nWend\nEnd Sub\nDim t As New Thread\n"
                      "AddHandler t.Run, AddressOf Work\nt.Start\nt.Join\nDo\nLoop"));
}

}  // namespace
}  // namespace host
