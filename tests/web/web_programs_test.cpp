// Runs host programs in WebAssembly and natively: both print the same, byte for byte.
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <string>

#include "host_programs.h"
#include "run_qtxhost.h"

namespace {

// What a program comes to that cannot be the same where its threads take turns, or its stack is a page's.
struct Difference {
  const char* reason;
  int status;
  const char* error;  // part of what it says
};
const std::map<std::string, Difference>& differences() {
  static const std::map<std::string, Difference> all = {};
  return all;
}

Outcome runInWeb(const HostProgram& program) {
  setenv("QTX_HOST_COMMAND", std::getenv("QTX_WEB_COMMAND"), 1);
  Outcome outcome = runQtxhost(program.arguments(), program.text, program.folder);
  unsetenv("QTX_HOST_COMMAND");
  return outcome;
}

class WebPrograms : public testing::TestWithParam<HostProgram> {};

TEST_P(WebPrograms, PrintTheSame) {
  const HostProgram& program = GetParam();
  const Outcome inWeb = runInWeb(program);
  if (const auto found = differences().find(program.name); found != differences().end()) {
    const Difference& expected = found->second;
    EXPECT_EQ(inWeb.status, expected.status) << expected.reason;
    EXPECT_NE(inWeb.errors.find(expected.error), std::string::npos) << inWeb.errors;
    return;
  }
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
