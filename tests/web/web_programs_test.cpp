// Runs host programs in WebAssembly and natively: both print the same, byte for byte.
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "host_programs.h"
#include "run_qtxhost.h"

namespace {

// What a program comes to that cannot be the same where its threads take turns. Its exit status is 1.
struct Difference {
  const char* reason;
  const char* error;                      // part of what it says
  std::vector<std::string> options = {};  // to run it with
};
const std::vector<std::string> limited = {"--steps", "10000"};
const std::map<std::string, Difference>& differences() {
  static const std::map<std::string, Difference> all = {
      {"tests_programs_queue_handing_over",
       {"The module level waits for other threads without sleeping, so they never begin.",
        "handing_over.bas: the program has taken all the steps that it may", limited}},
      {"tests_programs_threads_states",
       {"The module level waits, in a loop, until the other thread waits, which never goes on beside it.",
        "UnsupportedOperationException: Semaphore.Signal: the thread waits for another that waits for its "
        "turn.",
        limited}},
      {"tests_programs_threads_locks",
       {"A thread waits for the module level, which waited for that very thread and could go on after it.",
        "UnsupportedOperationException: Semaphore.Signal: the thread waits for another that waits for its "
        "turn."}},
      {"tests_programs_threads_deadlock",
       {"The same, before all of them wait: the program catches the exception, and one thread less waits.",
        "deadlock.bas: every thread of the program waits for another"}},
  };
  return all;
}

Outcome runInWeb(const HostProgram& program, const std::vector<std::string>& options = {}) {
  setenv("QTX_HOST_COMMAND", std::getenv("QTX_WEB_COMMAND"), 1);
  Outcome outcome = runQtxhost(program.arguments(options), program.text, program.folder);
  unsetenv("QTX_HOST_COMMAND");
  return outcome;
}

class WebPrograms : public testing::TestWithParam<HostProgram> {};

TEST_P(WebPrograms, PrintTheSame) {
  const HostProgram& program = GetParam();
  if (const auto found = differences().find(program.name); found != differences().end()) {
    const Difference& expected = found->second;
    const Outcome outcome = runInWeb(program, expected.options);
    EXPECT_EQ(outcome.status, 1) << expected.reason;
    EXPECT_NE(outcome.errors.find(expected.error), std::string::npos) << outcome.errors;
    return;
  }
  const Outcome inWeb = runInWeb(program);
  const Outcome native = runQtxhost(program.arguments(), program.text, program.folder);
  EXPECT_EQ(inWeb.status, native.status);
  EXPECT_EQ(inWeb.errors, native.errors);
  const bool varies = program.text.find("\n' output: varies\n") != std::string::npos ||
                      program.text.starts_with("' output: varies\n");
  if (!varies) {
    EXPECT_EQ(inWeb.output, native.output);
  }
}
INSTANTIATE_TEST_SUITE_P(All, WebPrograms, testing::ValuesIn(allPrograms()),
                         [](const auto& each) { return each.param.name; });

TEST(WebPrograms, DifferOnlyWhereTheyAreThere) {
  std::map<std::string, Difference> left = differences();
  for (const HostProgram& program : allPrograms()) left.erase(program.name);
  EXPECT_TRUE(left.empty()) << left.begin()->first;
}

}  // namespace
