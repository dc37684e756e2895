// What qtxhost's command line does: its options, what they may be, and what it says to bad ones.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "run_qtxhost.h"

namespace {

namespace fs = std::filesystem;

Outcome qtxhost(const std::vector<std::string>& arguments, const std::string& input = "") {
  return runQtxhost(arguments, input, QTX_SOURCE_DIR);
}

TEST(CommandLine, RunsAFileOrStandardInput) {
  const Outcome fromInput = qtxhost({"run", "-"}, "Print 6 * 7\n");
  EXPECT_EQ(fromInput.status, 0);
  EXPECT_EQ(fromInput.output, "42\n");
  EXPECT_EQ(fromInput.errors, "");
  const Outcome fromFile = qtxhost({"run", "tests/programs/language/operators.bas"});
  EXPECT_EQ(fromFile.status, 0);
  EXPECT_EQ(fromFile.output, contentOf(fs::path(QTX_SOURCE_DIR) / "tests/programs/language/operators.out"));
}

TEST(CommandLine, ListsEverythingThatTheLibraryRegisters) {
  const Outcome listed = qtxhost({"list"});
  EXPECT_EQ(listed.status, 0);
  EXPECT_EQ(listed.output, contentOf(fs::path(QTX_SOURCE_DIR) / "tests/registered.txt"));
}

TEST(CommandLine, ListsTheFunctionsOfAModuleWhereTheHostHasOne) {
  const std::string inModule = qtxhost({"list", "--host-version", "2013.0"}).output;
  const std::string alone = qtxhost({"list", "--host-version", "2012.99"}).output;
  EXPECT_NE(inModule.find("Module MathGlobalsQTX\n"), std::string::npos);
  EXPECT_EQ(alone.find("Module"), std::string::npos);
  EXPECT_NE(alone.find("\nFunctions\n"), std::string::npos);
  const std::string functions = "  RandomNormalDistributionQTX(Mean as Double, StdDev as Double) as double\n";
  EXPECT_NE(inModule.find(functions), std::string::npos);
  EXPECT_NE(alone.find(functions), std::string::npos);
}

TEST(CommandLine, TracesOnRequest) {
  const Outcome traced =
      qtxhost({"run", "--trace", "-"}, "Print BitCountQTX(7)\nPrint New AtomicFlagQTX Is Nil\n");
  EXPECT_EQ(traced.status, 0);
  EXPECT_EQ(traced.output, "3\nFalse\n");
  EXPECT_EQ(traced.errors.find("QTX Debug: QTX debug logging enabled.\n"), 0u) << traced.errors;
  const Outcome without = qtxhost({"run", "--trace", "--host-version", "2012.0", "-"}, "Print 1\n");
  EXPECT_EQ(without.status, 2);
  EXPECT_EQ(without.errors, "qtxhost: --trace: the library offers no tracing to a host of this version\n");
}

TEST(CommandLine, EndsAProgramAfterTheStepsGiven) {
  const Outcome ended = qtxhost({"run", "--steps", "1000", "-"}, "Print 1\nWhile True\nWend\nPrint 2\n");
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.output, "1\n");
  EXPECT_EQ(ended.errors, "standard input: the program has taken all the steps that it may\n");
  EXPECT_EQ(qtxhost({"run", "--steps", "3", "-"}, "For i As Integer = 1 To 3\nNext\nPrint 2\n").output,
            "2\n");
  EXPECT_EQ(qtxhost({"run", "--steps", "-1", "-"}, "Print 1\n").status, 2);
}

TEST(CommandLine, ReportsWhatIsLeftAlive) {
  const std::string program = "Dim n As New Int128QTX(3)\nPrint n + n\n";
  const Outcome leaking = qtxhost({"run", "--leaks", "-"}, program);
  EXPECT_EQ(leaking.status, 1);
  EXPECT_EQ(leaking.output, "6\n");
  EXPECT_EQ(leaking.errors, "leaked: Int128QTX, 1 reference\n");
  EXPECT_EQ(qtxhost({"run", "--leaks", "--keeps", "Int128QTX", "-"}, program).status, 0);
  const Outcome cycle = qtxhost({"run", "--leaks", "-"}, "Dim g(1, 2) As Variant\ng(1, 1) = g\n");
  EXPECT_EQ(cycle.status, 0);
  EXPECT_EQ(cycle.errors, "in a cycle: Variant(,) of 6 elements, 1 reference\n");
}

TEST(CommandLine, ListsWhatHasAName) {
  EXPECT_EQ(qtxhost({"list", "atomicFlagQTX.clear"}).output, "AtomicFlagQTX.Clear\n");
  const std::string add = qtxhost({"list", "Add"}).output;
  EXPECT_NE(add.find("AtomicIntegerQTX.Add(Value as Int64) as Int64\n"), std::string::npos) << add;
  EXPECT_NE(add.find("AtomicQueueQTX.Add(values() as Variant)\n"), std::string::npos) << add;
  EXPECT_EQ(qtxhost({"list", "FacQTX"}).output, "FacQTX(x as integer) as double\n");
  const std::string flag = qtxhost({"list", "AtomicFlagQTX"}).output;
  EXPECT_EQ(flag.find("Class AtomicFlagQTX\n  Property Value as Boolean\n"), 0u) << flag;
  // As declared, which is not what it is called in messages.
  const std::string value = qtxhost({"list", "AtomicIntegerQTX.Value"}).output;
  EXPECT_EQ(value, "AtomicIntegerQTX.Value as Int64\n");
}

TEST(CommandLine, ShowsWhatTheDocumentationSays) {
  const std::string member = qtxhost({"doc", "AtomicIntegerQTX.Exchange"}).output;
  EXPECT_EQ(member.find("AtomicIntegerQTX.Exchange(Value as Int64) as Int64\nreplaces; the value before\n"),
            0u)
      << member;
  EXPECT_NE(member.find("\nExample:\n  Dim c As New AtomicIntegerQTX\n"), std::string::npos) << member;
  EXPECT_NE(member.find("\nprints\n"), std::string::npos) << member;
  const std::string function = qtxhost({"doc", "hypotqtx"}).output;
  EXPECT_EQ(function.find("HypotQTX(x as double, y as double) as double\n√(x² + y²) without overflow"), 0u)
      << function;
  EXPECT_TRUE(function.ends_with("\nExample:\n  Print HypotQTX(3, 4)\nprints\n  5\n")) << function;
  const std::string type = qtxhost({"doc", "AtomicQueueQTX"}).output;
  EXPECT_NE(type.find("is a sequence of Variants that threads share"), std::string::npos) << type;
  EXPECT_NE(qtxhost({"doc", "Uppercase"}).output.find("Uppercase(s as String) as String\n"),
            std::string::npos);
  const std::string word = qtxhost({"doc", "Wend"}).output;
  EXPECT_EQ(word.find("Control\n"), 0u) << word;
  EXPECT_NE(word.find("\n  Wend\n"), std::string::npos) << word;
  EXPECT_EQ(qtxhost({"doc", "MathGlobalsQTX.HypotQTX"}).output, function);
  const std::string sign = qtxhost({"doc", "AtomicQueueQTX.Operator_Add"}).output;
  EXPECT_NE(sign.find("changes the queue on its left"), std::string::npos) << sign;
  EXPECT_NE(qtxhost({"doc", "CInt"}).status, 0);
  EXPECT_EQ(qtxhost({"doc", "For"}).output.find("Control\n"), 0u);
  EXPECT_EQ(qtxhost({"doc", "Print"}).output.find("Variables, constants, types\n"), 0u);
  // Of rows that tell of others, nothing.
  const std::string value = qtxhost({"doc", "AtomicIntegerQTX.Value"}).output;
  EXPECT_EQ(value.find("AtomicIntegerQTX.Value as Int64\nreads or replaces the counter\n\nExample:"), 0u)
      << value;
  const std::string dictionary = qtxhost({"doc", "Dictionary"}).output;
  EXPECT_EQ(dictionary.find("stands in for the host"), std::string::npos) << dictionary;
}

// Whatever the library registers has more to be said of it than how it is declared.
TEST(CommandLine, HasDocumentationOfEveryMember) {
  std::istringstream listed(contentOf(fs::path(QTX_SOURCE_DIR) / "tests/registered.txt"));
  std::string owner;
  for (std::string line; std::getline(listed, line);) {
    if (line.starts_with("Class ")) owner = line.substr(6) + ".";
    if (line.starts_with("Module ")) owner.clear();
    if (!line.starts_with("  ")) continue;
    std::string name = line.substr(2);
    for (const std::string word : {"Shared ", "Property "}) {
      if (name.starts_with(word)) name = name.substr(word.size());
    }
    name = name.substr(0, name.find_first_of("( "));
    if (name == "Operator_Convert") continue;
    const Outcome shown = qtxhost({"doc", owner + name});
    EXPECT_EQ(shown.status, 0) << owner << name;
    EXPECT_EQ(shown.output.find("Example:") == std::string::npos, false) << owner << name << "\n"
                                                                         << shown.output;
  }
}

TEST(CommandLine, ChecksProgramsWithoutRunningThem) {
  const Outcome right = qtxhost({"check", "examples/tour.bas", "examples/spline.bas"});
  EXPECT_EQ(right.status, 0) << right.errors;
  EXPECT_EQ(right.output + right.errors, "");
  const Outcome wrong = qtxhost({"check", "-"}, "Print nme\nDim b As Byte = 300\nPrint 1 +\n");
  EXPECT_EQ(wrong.status, 1);
  EXPECT_EQ(wrong.output, "");
  EXPECT_EQ(wrong.errors,
            "standard input:1:7: error: unknown name 'nme'\n"
            "standard input:2:17: warning: 300 does not fit in UInt8; as the value of b it is 44\n"
            "standard input:3:10: error: expected an expression, found the end of the line\n");
  // What cannot be read keeps nothing else from being checked, and each error is one line.
  const Outcome missing = qtxhost({"check", "nowhere.bas", "-"},
                                  "Sub S(n As Integer)\nEnd Sub\nSub S(s As String)\nEnd Sub\nS(Nil)\n");
  EXPECT_EQ(missing.status, 2);
  EXPECT_EQ(
      missing.errors,
      "qtxhost: nowhere.bas: there is no such file\n"
      "standard input:5:1: error: S does not take (Nil); expected one of: S(n As Integer); S(s As String)\n");
}

TEST(CommandLine, EndsALongListOfErrors) {
  std::string program;
  for (int i = 0; i < 22; ++i) program += "Print )\n";
  const std::string errors = qtxhost({"run", "-"}, program).errors;
  EXPECT_NE(errors.find("standard input:20:7: error: "), std::string::npos) << errors;
  EXPECT_EQ(errors.find("standard input:21:"), std::string::npos) << errors;
  EXPECT_TRUE(errors.ends_with("standard input: … and 2 more errors\n")) << errors;
}

TEST(CommandLine, ReadsUtf16) {
  const auto encoded = [](bool isLittle, bool isMarked) {
    std::string bytes = isMarked ? isLittle ? "\xFF\xFE" : "\xFE\xFF" : "";
    for (const char c : std::string("Print \"A\"\r\nPrint 2\r\n")) {
      if (isLittle) bytes += c;
      bytes += '\0';
      if (!isLittle) bytes += c;
    }
    return bytes;
  };
  for (const bool isLittle : {false, true}) {
    for (const bool isMarked : {false, true}) {
      EXPECT_EQ(qtxhost({"run", "-"}, encoded(isLittle, isMarked)).output, "A\n2\n") << isLittle << isMarked;
    }
  }
  EXPECT_EQ(qtxhost({"run", "-"}, "Print 1\rPrint 2\r").output, "1\n2\n") << "lines of an old Mac";
}

TEST(RandomDraws, DifferFromProcessToProcess) {
  const std::string draw = "Print RandomNormalDistributionQTX(0, 1)\n";
  EXPECT_NE(qtxhost({"run", "-"}, draw).output, qtxhost({"run", "-"}, draw).output);
}

TEST(CommandLine, ShowsHelpForEverything) {
  for (const std::vector<std::string>& arguments :
       std::vector<std::vector<std::string>>{{"--help"},
                                             {"run", "--help"},
                                             {"repl", "--help"},
                                             {"list", "--help"},
                                             {"check", "--help"},
                                             {"doc", "--help"},
                                             {"completion", "--help"},
                                             {"validate", "--help"}}) {
    const Outcome help = qtxhost(arguments);
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.output.find(" [OPTIONS]"), std::string::npos);  // in the line that shows the usage
    EXPECT_EQ(help.errors, "");
  }
  EXPECT_EQ(qtxhost({"--version"}).output, "qtxhost " QTX_VERSION "\n");
}

TEST(CommandLine, HasAManualPageOfAllThatTheHelpShows) {
  const std::string page = qtxhost({"manual"}).output;
  EXPECT_EQ(page.find(".TH QTXHOST 1 \"\" \"QTXHOST " QTX_VERSION "\""), 0u) << page;
  std::string help = qtxhost({"--help"}).output;
  for (const char* command : {"run", "repl", "list", "completion"}) {
    EXPECT_NE(page.find(std::string("\n.SS ") + command + "\n"), std::string::npos) << command;
    help += qtxhost({command, "--help"}).output;
  }
  std::istringstream words(help);
  for (std::string word; words >> word;) {
    if (word.rfind("--", 0) != 0 || !std::isalpha(static_cast<unsigned char>(word[2]))) continue;
    word = word.substr(0, word.find_first_of(";,:)"));
    std::string asWritten;  // a minus sign is escaped
    for (const char c : word) asWritten += c == '-' ? "\\-" : std::string(1, c);
    EXPECT_NE(page.find("\\fB" + asWritten + "\\fR"), std::string::npos) << word;
  }
  // What has to be given, what may, and of what there may be several.
  for (const char* synopsis :
       {"run\n[\\fIOPTIONS\\fR] \\fIFILE\\fR\n", "list\n[\\fIOPTIONS\\fR] [\\fINAME\\fR]\n",
        "check\n[\\fIOPTIONS\\fR] \\fIFILE\\fR ...\n"}) {
    EXPECT_NE(page.find(std::string(".B qtxhost ") + synopsis), std::string::npos) << synopsis;
  }
  EXPECT_NE(page.find("\n.SH EXAMPLES\n"), std::string::npos);
  EXPECT_NE(page.find("\n.SH EXIT STATUS\n"), std::string::npos);
}

TEST(CommandLine, KnowsThreeShells) {
  const Outcome refused = qtxhost({"completion", "tcsh"});
  EXPECT_EQ(refused.status, 2);
  EXPECT_NE(refused.errors.find("tcsh"), std::string::npos);
}

// Whatever is long is refused in one line, or runs.
TEST(CommandLine, BoundsHowDeepExpressionsAre) {
  const auto times = [](int count, const std::string& part) {
    std::string all;
    for (int i = 0; i < count; ++i) all += part;
    return all;
  };
  const std::string refused[] = {
      "Print 1" + times(20000, "+1"),
      "Print \"a\"" + times(20000, ".Trim"),
      "Print 2" + times(20000, "^1"),
      "Print " + times(20000, "-") + "1",
      "Print " + times(20000, "Not ") + "True",
      "Print 1" + times(20000, "+(1"),
      "Print 1" + times(300, "*(1" + times(4, "+1")) + times(300, ")"),
      "Const c = 1" + times(20000, "+1"),
  };
  for (const std::string& program : refused) {
    const Outcome outcome = qtxhost({"run", "-"}, program + "\n");
    EXPECT_EQ(outcome.status, 1) << program.substr(0, 30);
    EXPECT_EQ(outcome.errors.find("standard input:1:"), 0u) << outcome.errors.substr(0, 200);
    // The message, a part of the line, and the caret.
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 3) << outcome.errors;
    EXPECT_LT(outcome.errors.size(), 500u);
  }
  EXPECT_EQ(qtxhost({"run", "-"}, "Print 1" + times(1000, "+1") + "\n").output, "1001\n");
  // So long an expression where the stack is nearly used up.
  const Outcome deep = qtxhost(
      {"run", "-"},
      "Function F(n As Integer) As Integer\n  Return F(n + 1)" + times(990, "+1") +
          "\nEnd Function\nTry\n  Print F(0)\nCatch e As StackOverflowException\n  Print 7\nEnd Try\n");
  EXPECT_EQ(deep.output, "7\n") << deep.status << deep.errors;
}

// One line that names the thing, nothing on standard output, and status 2.
TEST(CommandLine, RefusesWhatItCannotDo) {
  const fs::path text = fs::temp_directory_path() / ("qtx-no-library-" + std::to_string(getpid()));
  std::ofstream(text) << "this is no library\n";
  const struct {
    std::vector<std::string> arguments;
    std::string named;
  } cases[] = {
      {{}, "subcommand is required"},
      {{"sing"}, "sing"},
      {{"run"}, "FILE"},
      {{"run", "--loudly", "examples/tour.bas"}, "--loudly"},
      {{"run", "no_such_file.bas"}, "no_such_file.bas"},
      {{"run", "tests"}, "tests"},
      {{"run", "--library", "no_such_library.so", "examples/tour.bas"}, "no_such_library.so"},
      {{"run", "--library", text.string(), "examples/tour.bas"}, text.string()},
      {{"run", "--without", "PluginNewInstanze", "examples/tour.bas"}, "did you mean PluginNewInstance?"},
      {{"run", "--host-version", "new", "examples/tour.bas"},
       "--host-version: expected a version such as 2013.04, found \"new\""},
      {{"run", "--host-version", "nan", "examples/tour.bas"}, "found \"nan\""},
      {{"run", "--host-version", "1e400", "examples/tour.bas"}, "found \"1e400\""},
      {{"run", "--host-version", "-1", "examples/tour.bas"}, "found \"-1\""},
      {{"run", "--steps", "-1", "examples/tour.bas"},
       "--steps: expected how many steps the program may take, found \"-1\""},
      {{"run", "--steps", "99999999999999999999", "examples/tour.bas"}, "--steps"},
      {{"validate", "--seconds", "nan"}, "--seconds: expected how many seconds a case may take"},
      {{"run", ""}, "\"\": there is no such file"},
      {{"run", "--library", std::string(5000, 'x'), "examples/tour.bas"}, "there is no such library"},
      {{"run", "--array-shape", "round", "examples/tour.bas"}, "--array-shape"},
      {{"list", "tests"}, "tests"},
      {{"list", "Incremnt"}, "did you mean 'Increment'?"},
      {{"doc", "Nothing.Add"}, "Nothing.Add"},
      {{"check"}, "FILE"},
      {{"check", "no_such_file.bas"}, "no_such_file.bas"},
      {{"run", "--without", "RegisterPluginVersion", "examples/tour.bas"}, "every host has it"},
  };
  for (const auto& each : cases) {
    const Outcome refused = qtxhost(each.arguments);
    EXPECT_EQ(refused.status, 2) << each.named;
    EXPECT_EQ(refused.output, "") << each.named;
    EXPECT_EQ(refused.errors.find("qtxhost: "), 0u) << refused.errors;
    EXPECT_NE(refused.errors.find(each.named), std::string::npos) << refused.errors;
    EXPECT_EQ(refused.errors.find('\n'), refused.errors.size() - 1) << refused.errors;
    EXPECT_LT(refused.errors.size(), 600u) << refused.errors;
  }
  fs::remove(text);
}

TEST(Repl, RunsStatementsAndShowsTheValuesOfExpressions) {
  const Outcome session =
      qtxhost({"repl"}, "Dim n As Integer = 20\nn = n + 1\nn * 2\nPrint n\nnonsense(\n1/0.5\n");
  EXPECT_EQ(session.status, 1) << "something was wrong";
  EXPECT_EQ(session.output, "42\n21\n2\n") << "goes on after an error";
  EXPECT_EQ(qtxhost({"repl"}, "Print 1 _\n+ 2\n").output, "3\n");
}

std::string manyNil(int count) {
  std::string all;
  for (int i = 0; i < count; ++i) all += ", Nil";
  return all;
}

TEST(Repl, ShowsWhatIsInAValue) {
  const Outcome session = qtxhost({"repl"},
                                  "Array(1, 2, 3)\nDim s() As String = Array(\"a\", \"b\")\ns\n"
                                  "Dim q As New AtomicQueueQTX\nq.Push(5)\nq.Push(\"x\")\nq\n"
                                  "New SplineQTX(Array(0, 1, 2), Array(0, 1, 4))\nNew Int128QTX(7)\n"
                                  "Dim v As Variant = s\nv\nDim none() As Double\nnone\n\"text\"\n"
                                  "Dim o As SplineQTX\no\n"
                                  "Dim g(1, 2) As Integer\ng(1, 0) = 7\ng\nDim w(8, 98) As Variant\n"
                                  "w(0, 0) = g\nw\nDim e(999999, -1) As String\ne\n");
  EXPECT_EQ(session.errors, "");
  EXPECT_EQ(session.output,
            "[1, 2, 3]\n[\"a\", \"b\"]\nAtomicQueueQTX [5, \"x\"]\nSplineQTX {count: 3}\n7\n"
            "[\"a\", \"b\"]\n[]\ntext\nNil\n"
            "[[0, 0, 0], [7, 0, 0]]\n[[[[0, 0, 0], [7, 0, 0]]" +
                manyNil(98) + "], [Nil, …], … 891 in all]\n[]\n");
}

TEST(Repl, ShowsWhatIsInDictionariesAndMemory) {
  const Outcome session =
      qtxhost({"repl"},
              "Dim d As New Dictionary\nd\nd(\"x\") = Array(1, 2)\nd(2) = d\nd\nDim v As Variant = d\nv\n"
              "d.RemoveAll\nFor i As Integer = 1 To 102\nd(i) = Nil\nNext\nd\n"
              "Dim m As New MemoryBlock(3)\nm.Byte(1) = 171\nm\nNew MemoryBlock(0)\n");
  EXPECT_EQ(session.errors, "");
  const std::string nested =
      "Dictionary {\"x\": [1, 2], 2: Dictionary {\"x\": [1, 2], 2: Dictionary {\"x\": …, 2: …}}}\n";
  std::string many = "Dictionary {1: Nil";
  for (int i = 2; i <= 100; ++i) many += ", " + std::to_string(i) + ": Nil";
  EXPECT_EQ(session.output, "Dictionary {}\n" + nested + nested + many +
                                ", … 102 in all}\nMemoryBlock 00 AB 00\nMemoryBlock\n");
}

TEST(Repl, HelpsWithWhatAVariableHolds) {
  const Outcome session =
      qtxhost({"repl"},
              "Dim q As New AtomicQueueQTX\nDim s As String\nhelp q.PopFirst\nhelp s.Left\n"
              "help q\n");
  EXPECT_EQ(session.errors, "");
  EXPECT_EQ(session.output, qtxhost({"doc", "AtomicQueueQTX.PopFirst"}).output +
                                qtxhost({"doc", "Left"}).output + qtxhost({"doc", "AtomicQueueQTX"}).output);
}

TEST(Repl, KnowsClassesThatWereDeclaredThere) {
  const Outcome session = qtxhost({"repl"},
                                  "Class A\nDim x As Integer = 5\nPrivate all() As Double = Array(1, 2)\n"
                                  "Property Twice As Integer\nGet\nReturn x * 2\nEnd Get\nEnd Property\n"
                                  "End Class\nDim a As New A\na\na.Twice\n"
                                  "Class B\nDim x As Intger\nEnd Class\nNew B\nClass C\nDim x As A\n");
  EXPECT_EQ(session.status, 1);
  EXPECT_EQ(session.output, "A {x: 5, all: [1, 2]}\n10\n");
  EXPECT_EQ(session.errors,
            "input:2:10: error: unknown type 'Intger'; did you mean 'Integer'?\n  Dim x As Intger\n"
            "           ^\n"
            "input:1:5: error: unknown type 'B'\n  New B\n      ^\n"
            "input:1:1: error: 'Class' of line 1 has no 'End Class'\n  Class C\n  ^\n");
  EXPECT_EQ(qtxhost({"repl"}, "help HypotQTX\nexit\n").output, qtxhost({"doc", "HypotQTX"}).output);
}

TEST(Repl, WaitsForTheEndOfABlockAndGoesOnAfterErrors) {
  const Outcome session =
      qtxhost({"repl"},
              "For i As Integer = 1 To 2\nPrint i\nNext\n"
              "Sub Fail()\nRaise New NilObjectException(\"no\")\nEnd Sub\nFail\n"
              "Dim s As String = 5\n\nhelp Len\nPrint \"still\"\nquit\nPrint \"never\"\n");
  EXPECT_EQ(session.status, 1);
  EXPECT_EQ(session.output.find("1\n2\nLen(s as String) as Integer\n"), 0u) << session.output;
  EXPECT_TRUE(session.output.ends_with("still\n")) << session.output;
  EXPECT_EQ(
      session.errors,
      "input:2: NilObjectException: no\n  at input:2: Fail\n  at input:1\n"
      "input:1:19: error: expected String as the value of s, found Integer; Str(…) makes a text of a number\n"
      "  Dim s As String = 5\n                    ^\n");
  for (const char* end : {":q", ":quit", "exit", "Quit"}) {
    EXPECT_EQ(qtxhost({"repl"}, std::string("Print 1\n") + end + "\nPrint 2\n").output, "1\n") << end;
  }
  EXPECT_EQ(qtxhost({"repl"}, "Dim quit As Integer = 3\nquit\n").output, "3\n");
}

// A block from a pipe is read to its end before anything is said of it; nothing of it runs then.
TEST(Repl, FailsWhereABlockOfAPipeIsWrongOrUnfinished) {
  const Outcome wrong = qtxhost({"repl"}, "For i As Integer = 1 To 2\nPrint )\nPrint i\nNext\nPrint 7\n");
  EXPECT_EQ(wrong.status, 1);
  EXPECT_EQ(wrong.output, "7\n");
  EXPECT_EQ(wrong.errors, "input:2:7: error: expected an expression, found ')'\n  Print )\n        ^\n");
  const Outcome unfinished = qtxhost({"repl"}, "Print 1\nFor i As Integer = 1 To 2\nPrint i\n");
  EXPECT_EQ(unfinished.status, 1);
  EXPECT_EQ(unfinished.output, "1\n");
  EXPECT_EQ(unfinished.errors,
            "input:1:1: error: 'For' of line 1 has no 'Next'\n  For i As Integer = 1 To 2\n  ^\n");
}

// Also of threads that are left when the session ends.
TEST(Repl, SaysWhereAllThreadsWait) {
  const Outcome session = qtxhost({"repl"},
                                  "Dim none As New Semaphore(0)\nnone.Signal\nPrint 7\n"
                                  "Sub Wait(t As Thread)\nnone.Signal\nEnd Sub\n"
                                  "Dim t As New Thread\nAddHandler t.Run, AddressOf Wait\nt.Start\n");
  EXPECT_EQ(session.status, 1);
  EXPECT_EQ(session.output, "7\n");
  const std::string told = "input: every thread of the program waits for another\n  at input:";
  EXPECT_EQ(session.errors, told + "1: Semaphore.Signal\n" + told + "2: Wait: Semaphore.Signal\n");
}

TEST(Repl, ReportsWhatAThreadDoesNotCatch) {
  const Outcome session = qtxhost({"repl", "--trace"},
                                  "Sub Fail()\nRaise New NilObjectException(\"no\")\nEnd Sub\n"
                                  "Dim t As New Thread\nAddHandler t.Run, AddressOf Fail\nt.Start\n");
  EXPECT_EQ(session.status, 1);
  EXPECT_NE(session.errors.find("input:2: NilObjectException: no\n  at input:2: Fail\n"), std::string::npos)
      << session.errors;
}

// On a terminal, with a history of its own.
class ReplOnATerminal : public testing::Test {
 protected:
  ReplOnATerminal() { setenv("XDG_STATE_HOME", folder_.c_str(), 1); }
  ~ReplOnATerminal() override {
    unsetenv("XDG_STATE_HOME");
    fs::remove_all(folder_);
  }
  // Types each line at the next prompt, which is the other one while a block is open.
  static Outcome session(const std::vector<Typed>& typed) { return runQtxhostOnTerminal({"repl"}, typed); }
  static std::size_t countOf(const std::string& part, const std::string& text) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
    return count;
  }

 private:
  fs::path folder_ = fs::temp_directory_path() / ("qtx-history-" + std::to_string(getpid()));
};

// It shows a prompt, another one while a block is open, and lets lines be edited.
TEST_F(ReplOnATerminal, Prompts) {
  const Outcome outcome = session({{"> ", "If True Then\n"},
                                   {"... ",
                                    "Print 6 * 8\x7F"
                                    "7\n"},
                                   {"... ", "End If\n"},
                                   {"> ", ":quit\n"}});
  EXPECT_EQ(outcome.status, 0);
  for (const char* part : {"Type help for help.\r\n", "> ", "... ", "\n42\r\n"}) {
    EXPECT_NE(outcome.output.find(part), std::string::npos) << outcome.output;
  }
}

TEST_F(ReplOnATerminal, AsksAgainForAWrongLineOfABlock) {
  const Outcome outcome = session({{"> ", "For i As Integer = 1 To 2\n"},
                                   {"... ", "Print )\n"},
                                   {"... ", "Print unknwn\n"},
                                   {"... ", "Print \"n\" + Str(i)\n"},
                                   {"... ", "Next\n"},
                                   {"> ", "exit\n"}});
  EXPECT_EQ(outcome.status, 1) << "something was wrong";
  EXPECT_NE(outcome.output.find("n1\r\nn2\r\n"), std::string::npos) << outcome.output;
  EXPECT_NE(outcome.output.find("unknown name 'unknwn'"), std::string::npos) << outcome.output;
}

TEST_F(ReplOnATerminal, CompletesNamesAndMembers) {
  const Outcome outcome = session({{"> ", "Dim counter As New AtomicInt\t\n"},
                                   {"> ", "counte\t.Incr\t\n"},
                                   {"> ", "counter.V\t\n"},
                                   {"> ", "Print \"[\" + Str(HypotQ\t(3, 4)) + \"]\"\n"},
                                   {"> ", "exit\n"}});
  EXPECT_EQ(outcome.status, 0) << outcome.output;
  EXPECT_NE(outcome.output.find("\n1\r\n"), std::string::npos) << outcome.output;
  EXPECT_NE(outcome.output.find("\n[5]\r\n"), std::string::npos) << outcome.output;
}

TEST_F(ReplOnATerminal, BringsBackWhatEarlierSessionsEntered) {
  EXPECT_EQ(session({{"> ", "For i As Integer = 1 To 2\n"},
                     {"... ", "Print \"once \" + Str(i)\n"},
                     {"... ", "Next\n"},
                     {"> ", "exit\n"}})
                .status,
            0);
  // Up once: the block is one entry.
  const Outcome outcome = session({{"> ", "\x10\n"}, {"once 2\r\n> ", "exit\n"}});
  EXPECT_EQ(outcome.status, 0) << outcome.output;
  EXPECT_NE(outcome.output.find("once 1\r\nonce 2\r\n"), std::string::npos) << outcome.output;
}

TEST_F(ReplOnATerminal, StopsWhatRunsAndDropsLines) {
  const Outcome outcome = session({{"> ", "Dim n As Integer = 7\n"},
                                   {"> ", "While True\n"},
                                   {"... ", "Print \"runs\"\n"},
                                   {"... ", "Wend\n"},
                                   {"runs\r\n", "\x03"},
                                   {"stopped\r\n> ", "Print \"gone\""},
                                   {"gone\"", "\x03"},
                                   {"> ", "If True Then\n"},
                                   {"... ", "\x03"},
                                   {"> ", "If True Then\n"},
                                   {"... ", "Print \"sleeps\"\n"},
                                   {"... ", "Thread.Sleep(600000)\n"},
                                   {"... ", "End If\n"},
                                   {"sleeps\r\n", "\x03"},
                                   {"stopped\r\n> ", "Print \"still \" + Str(n)\n"},
                                   {"> ", "exit\n"}});
  EXPECT_NE(outcome.output.find("still 7\r\n"), std::string::npos) << outcome.output;
  EXPECT_EQ(countOf("gone", outcome.output), 1u) << "typed, not printed: " << outcome.output;
}

TEST_F(ReplOnATerminal, TakesUtf8) {
  const Outcome outcome = session({{"> ", "Print Len(\"né€\x7F\u00DF\") * 100\n"}, {"> ", "exit\n"}});
  EXPECT_NE(outcome.output.find("\n300\r\n"), std::string::npos) << outcome.output;
}

TEST(CommandLine, FindsTheLibraryWhereAnInstallationPutsIt) {
  if (std::getenv("QTX_HOST_COMMAND")) GTEST_SKIP() << "which says itself what the library is";
  const fs::path program = QTX_HOST_PROGRAM;
  fs::path library = program.parent_path() / "libqtx.so";
  if (!fs::exists(library)) library.replace_extension(".dylib");
  const fs::path folder = fs::temp_directory_path() / ("qtx-installed-" + std::to_string(getpid()));
  fs::create_directories(folder / "bin");
  fs::create_directories(folder / "lib" / "qtx" / "plugins");
  fs::copy(program, folder / "bin");
  const std::string emulator = sizeof QTX_EMULATOR > 1 ? QTX_EMULATOR "|" : "";
  setenv("QTX_HOST_COMMAND", (emulator + (folder / "bin" / program.filename()).string()).c_str(), 1);
  const Outcome alone = qtxhost({"run", "-"}, "Print 1\n");
  fs::create_symlink(library, folder / "lib" / "qtx" / "plugins" / library.filename());
  const Outcome installed = qtxhost({"run", "-"}, "Print FacQTX(4)\n");
  unsetenv("QTX_HOST_COMMAND");
  fs::remove_all(folder);
  EXPECT_EQ(alone.status, 2);
  EXPECT_NE(alone.errors.find("there is no such library"), std::string::npos) << alone.errors;
  EXPECT_EQ(installed.output, "24\n") << installed.errors;
}

TEST(CommandLine, TakesTheLibraryThatTheEnvironmentNames) {
  if (std::getenv("QTX_HOST_COMMAND")) GTEST_SKIP() << "which says itself what the library is";
  setenv("QTX_LIBRARY", "no_such_library.so", 1);
  const Outcome refused = qtxhost({"run", "-"}, "Print 1\n");
  unsetenv("QTX_LIBRARY");
  EXPECT_EQ(refused.status, 2);
  EXPECT_EQ(refused.errors, "qtxhost: no_such_library.so: there is no such library\n");
  setenv("QTX_LIBRARY", "", 1);
  const Outcome found = qtxhost({"run", "-"}, "Print 1\n");
  unsetenv("QTX_LIBRARY");
  EXPECT_EQ(found.output, "1\n") << found.errors;
}

}  // namespace
