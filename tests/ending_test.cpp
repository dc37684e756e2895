// How programs end that do not come to their own end, and what is left of their output then.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <sstream>
#include <string>
#include <vector>

#include "run_qtxhost.h"

namespace {

// A sanitizer takes over what the processor reports, once it has been told.
constexpr int afterTrap(int signal) { return QTX_IS_SANITIZED ? 99 : 128 + signal; }

Outcome run(const std::string& program) { return runQtxhost({"run", "-"}, program, QTX_SOURCE_DIR); }

// A program that runs while the test looks.
class Started {
 public:
  explicit Started(const std::string& program, const char* output = nullptr,
                   const std::vector<std::string>& command = {"run", "-"}, const char* input = nullptr) {
    int toProgram[2], fromProgram[2], fromErrors[2];
    if (pipe(toProgram) != 0 || pipe(fromProgram) != 0 || pipe(fromErrors) != 0) return;
    child_ = fork();
    if (child_ == 0) {
      dup2(input ? open(input, O_RDONLY) : toProgram[0], STDIN_FILENO);
      dup2(output ? open(output, O_WRONLY) : fromProgram[1], STDOUT_FILENO);
      dup2(fromErrors[1], STDERR_FILENO);
      for (const int* each : {toProgram, fromProgram, fromErrors}) {
        close(each[0]);
        close(each[1]);
      }
      becomeQtxhost(command);
    }
    close(toProgram[0]);
    close(fromProgram[1]);
    close(fromErrors[1]);
    EXPECT_EQ(write(toProgram[1], program.data(), program.size()), static_cast<ssize_t>(program.size()));
    close(toProgram[1]);
    output_ = fromProgram[0];
    errors_ = fromErrors[0];
  }
  ~Started() {
    end(SIGKILL);
    close(output_);
    close(errors_);
  }
  Started(const Started&) = delete;
  Started& operator=(const Started&) = delete;

  // The output as far as that, or to its end.
  std::string outputUpTo(const std::string& last) { return read(output_, last); }
  std::string errors() { return read(errors_, {}); }
  int end(int signal = 0) {
    if (child_ < 0) return status_;
    if (signal != 0) kill(child_, signal);
    waitpid(child_, &status_, 0);
    child_ = -1;
    return status_ = WIFEXITED(status_) ? WEXITSTATUS(status_) : 128 + WTERMSIG(status_);
  }

 private:
  static std::string read(int descriptor, const std::string& last) {
    std::string text;
    pollfd ready{descriptor, POLLIN, 0};
    while (last.empty() || !text.ends_with(last)) {
      if (poll(&ready, 1, 60000) <= 0) break;
      char buffer[1024];
      const ssize_t count = ::read(descriptor, buffer, sizeof buffer);
      if (count <= 0) break;
      text.append(buffer, static_cast<std::size_t>(count));
    }
    return text;
  }

  pid_t child_ = -1;
  int output_ = -1, errors_ = -1, status_ = -1;
};

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

constexpr const char* hangs = "Print \"one\"\nPrint \"two\"\nWhile True\nWend\n";

TEST(Output, ComesWhileTheProgramGoesOn) {
  Started program(hangs);
  EXPECT_EQ(program.outputUpTo("two\n"), "one\ntwo\n");
  EXPECT_EQ(program.end(SIGKILL), 128 + SIGKILL);
}

TEST(Output, IsWrittenBeforeASignalEndsTheProgram) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
    Started program(hangs);
    EXPECT_EQ(program.outputUpTo("two\n"), "one\ntwo\n");
    EXPECT_EQ(program.end(signal), 128 + signal);
  }
}

TEST(Output, OfManyLinesIsWhole) {
  const Outcome outcome = run("For i As Integer = 1 To 100000\nPrint Str(i)\nNext\n");
  const std::vector<std::string> lines = linesOf(outcome.output);
  ASSERT_EQ(lines.size(), 100000u);
  for (std::size_t i = 0; i < lines.size(); ++i) ASSERT_EQ(lines[i], std::to_string(i + 1));
}

TEST(Output, ThatFailsEndsTheProgram) {
#if defined(__linux__)
  for (const char* program :
       {"Print 1\n", "While True\nPrint 1\nWend\n",
        "Sub Run(t As Thread)\nWhile True\nPrint 1\nWend\nEnd Sub\nDim t As New Thread\n"
        "AddHandler t.Run, AddressOf Run\nt.Start\nt.Join\n"}) {
    Started started(program, "/dev/full");
    EXPECT_EQ(started.errors(), "qtxhost: standard output: No space left on device\n");
    EXPECT_EQ(started.end(), 2);
  }
  const std::vector<std::vector<std::string>> commands = {
      {"list"},
      {"doc", "HypotQTX"},
      {"completion", "fish"},
      {"--help"},
      {"--version"},
      {"repl"},
      {"validate", "--only", "HypotQTX", "--check", "records"}};
  for (const std::vector<std::string>& command : commands) {
    Started started("5\n", "/dev/full", command);
    EXPECT_EQ(started.errors(), "qtxhost: standard output: No space left on device\n") << command[0];
    EXPECT_EQ(started.end(), 2) << command[0];
  }
#endif
}

// It is not taken for a program without lines.
TEST(Input, ThatCannotBeReadIsAnError) {
  for (const std::vector<std::string>& command :
       {std::vector<std::string>{"run", "-"}, {"check", "-"}, {"repl"}}) {
    Started started("", nullptr, command, "/");
    EXPECT_EQ(started.errors(), "qtxhost: standard input: Is a directory\n");
    EXPECT_EQ(started.end(), 2);
  }
}

TEST(Trap, NamesTheLineThatRanIntoIt) {
  const Outcome outcome =
      run("Sub Peek(p As Ptr)\n"
          "  Print \"before\"\n"
          "  Print p.Byte(1000000000000)\n"
          "End Sub\n"
          "Dim m As New MemoryBlock(8)\n"
          "Peek(m)\n");
  EXPECT_EQ(outcome.status, afterTrap(SIGSEGV));
  EXPECT_EQ(outcome.output, "before\n");
  const std::vector<std::string> lines = linesOf(outcome.errors);
  ASSERT_GE(lines.size(), 3u);
  EXPECT_EQ(lines[0], "standard input:3: memory is used that is not there (SIGSEGV)");
  EXPECT_EQ(lines[1], "  at standard input:3: Peek");
  EXPECT_EQ(lines[2], "  at standard input:6");
}

TEST(Trap, OnAThreadNamesItsLine) {
  const Outcome outcome =
      run("Sub Poke(t As Thread)\n"
          "  Dim m As New MemoryBlock(8)\n"
          "  Dim p As Ptr = m\n"
          "  p.Int64(1000000000000) = 1\n"
          "End Sub\n"
          "Dim t As New Thread\n"
          "AddHandler t.Run, AddressOf Poke\n"
          "t.Start\n"
          "t.Join\n");
  EXPECT_EQ(outcome.status, afterTrap(SIGSEGV));
  EXPECT_EQ(outcome.errors.find("standard input:4: memory is used that is not there (SIGSEGV)\n"
                                "  at standard input:4: Poke\n"),
            0u)
      << outcome.errors;
}

TEST(Trap, ThatSomebodySendsEndsTheProgramToo) {
  Started program("Print 1\nWhile True\nWend\n");
  EXPECT_EQ(program.outputUpTo("1\n"), "1\n");
  EXPECT_EQ(program.end(SIGFPE), afterTrap(SIGFPE));
  EXPECT_EQ(program.errors().find("the processor cannot compute this (SIGFPE)\n") != std::string::npos, true);
}

TEST(StackOverflow, ShowsTheFirstAndTheLastCalls) {
  const auto begin = std::chrono::steady_clock::now();
  const Outcome outcome =
      run("Function Outer(n As Integer) As Integer\n"
          "  Return Inner(n) + 1\n"
          "End Function\n"
          "Function Inner(n As Integer) As Integer\n"
          "  Return Inner(n + 1) + 1\n"
          "End Function\n"
          "Print Outer(0)\n");
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20)) << "even where all is slow";
  EXPECT_EQ(outcome.status, 1);
  const std::vector<std::string> lines = linesOf(outcome.errors);
  ASSERT_EQ(lines.size(), 38u) << outcome.errors;
  EXPECT_EQ(
      lines[0],
      "standard input:5: StackOverflowException: The stack is used up: Subs or Functions call each other "
      "too deeply.");
  for (std::size_t i = 1; i <= 24; ++i) EXPECT_EQ(lines[i], "  at standard input:5: Inner");
  EXPECT_TRUE(lines[25].starts_with("  ... ") && lines[25].ends_with(" calls more ...")) << lines[25];
  EXPECT_GT(std::stol(lines[25].substr(6)), 1000);
  EXPECT_EQ(lines[35], "  at standard input:5: Inner");
  EXPECT_EQ(lines[36], "  at standard input:2: Outer");
  EXPECT_EQ(lines[37], "  at standard input:7");
}

TEST(StackOverflow, OfFewCallsLeavesNoneOut) {
  const Outcome outcome =
      run("Sub Deep(n As Integer)\n"
          "  If n = 0 Then Raise New RuntimeException\n"
          "  Deep(n - 1)\n"
          "End Sub\n"
          "Deep(35)\n");
  EXPECT_EQ(linesOf(outcome.errors).size(), 38u) << "37 calls";
  EXPECT_EQ(outcome.errors.find("more"), std::string::npos);
}

}  // namespace
