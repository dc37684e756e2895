// What qtxhost's command line does: its options, what they may be, and what it says to bad ones.
#include <gtest/gtest.h>

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
    EXPECT_EQ(outcome.errors.find('\n'), outcome.errors.size() - 1);
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
      {{"run", "--host-version", "new", "examples/tour.bas"}, "--host-version"},
      {{"run", "--array-shape", "round", "examples/tour.bas"}, "--array-shape"},
      {{"list", "tests"}, "tests"},
  };
  for (const auto& each : cases) {
    const Outcome refused = qtxhost(each.arguments);
    EXPECT_EQ(refused.status, 2) << each.named;
    EXPECT_EQ(refused.output, "") << each.named;
    EXPECT_EQ(refused.errors.find("qtxhost: "), 0u) << refused.errors;
    EXPECT_NE(refused.errors.find(each.named), std::string::npos) << refused.errors;
    EXPECT_EQ(refused.errors.find('\n'), refused.errors.size() - 1) << refused.errors;
  }
  fs::remove(text);
}

TEST(Repl, RunsStatementsAndShowsTheValuesOfExpressions) {
  const Outcome session =
      qtxhost({"repl"}, "Dim n As Integer = 20\nn = n + 1\nn * 2\nPrint n\nnonsense(\n1/0.5\n");
  EXPECT_EQ(session.status, 0);
  EXPECT_NE(session.output.find("42\n"), std::string::npos) << session.output;
  EXPECT_NE(session.output.find("21\n"), std::string::npos) << session.output;
  EXPECT_NE(session.output.find("2\n"), std::string::npos) << "goes on after an error";
}

TEST(Repl, WaitsForTheEndOfABlockAndGoesOnAfterErrors) {
  const Outcome session = qtxhost({"repl"},
                                  "For i As Integer = 1 To 2\nPrint i\nNext\n"
                                  "Sub Fail()\nRaise New NilObjectException(\"no\")\nEnd Sub\nFail\n"
                                  "Dim s As String = 5\n\n:help\nPrint \"still\"\n:quit\nPrint \"never\"\n");
  EXPECT_EQ(session.status, 0);
  EXPECT_EQ(session.output,
            "1\n2\n"
            "Enter a statement to run it, or an expression to see its value.\n"
            "A block such as For … Next is run when it is complete. What is declared stays.\n"
            "  :help  this text\n  :quit  the end (as is the end of the input)\n"
            "still\n");
  EXPECT_EQ(session.errors,
            "input:2: NilObjectException: no\n  at input:2: Fail\n  at input:1\n"
            "input:1:19: error: expected String as the value of s, found Integer\n");
  EXPECT_EQ(qtxhost({"repl"}, "Print 1\n:q\nPrint 2\n").output, "1\n");
}

TEST(Repl, ReportsWhatAThreadDoesNotCatch) {
  const Outcome session = qtxhost({"repl", "--trace"},
                                  "Sub Fail()\nRaise New NilObjectException(\"no\")\nEnd Sub\n"
                                  "Dim t As New Thread\nAddHandler t.Run, AddressOf Fail\nt.Start\n");
  EXPECT_EQ(session.status, 0);
  EXPECT_NE(session.errors.find("input:2: NilObjectException: no\n  at input:2: Fail\n"), std::string::npos)
      << session.errors;
}

// On a terminal it shows a prompt, another one while a block is open, and lets lines be edited.
TEST(Repl, PromptsOnATerminal) {
  const Outcome session = runQtxhostOnTerminal({"repl"},
                                               "If True Then\nPrint 6 * 8\x7F"
                                               "7\nEnd If\n:quit\n");
  EXPECT_EQ(session.status, 0);
  for (const char* part : {"Type :help for help.\r\n", "> ", "... ", "\n42\r\n"}) {
    EXPECT_NE(session.output.find(part), std::string::npos) << session.output;
  }
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
}

}  // namespace
