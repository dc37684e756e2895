// Runs host programs as a user does, through qtxhost, and compares what they print.
#include <gtest/gtest.h>

#include <cctype>
#include <filesystem>
#include <sstream>
#include <string>

#include "host_programs.h"
#include "run_qtxhost.h"

namespace {

class Programs : public testing::TestWithParam<HostProgram> {};

TEST_P(Programs, PrintWhatTheyShould) {
  const HostProgram& program = GetParam();
  const Outcome outcome = runQtxhost(program.arguments(), program.text, program.folder);
  EXPECT_EQ(outcome.status, program.exitStatus) << outcome.errors;
  EXPECT_TRUE(program.output || !program.needsOutput) << "its .out is missing";
  if (program.output) {
    EXPECT_EQ(outcome.output, *program.output);
  }
  if (program.errors) {
    EXPECT_EQ(outcome.errors, *program.errors);
  } else if (program.warns) {
    EXPECT_NE(outcome.errors.find(": warning: "), std::string::npos) << outcome.errors;
  } else if (program.exitStatus == 0) {
    EXPECT_EQ(outcome.errors, "");
  }
}
INSTANTIATE_TEST_SUITE_P(All, Programs, testing::ValuesIn(allPrograms()),
                         [](const auto& each) { return each.param.name; });

// Lines of what was drawn by chance, for which there is no other.
std::string withoutDraws(const std::string& picture) {
  std::istringstream lines(picture);
  std::string rest;
  for (std::string line; std::getline(lines, line);) {
    rest += line.find("class='drawn'") == std::string::npos ? line + "\n" : "drawn\n";
  }
  return rest;
}

// The pictures of the documentation; those of measured times are not programs'.
TEST(Pictures, AreWhatProgramsPrint) {
  int pictures = 0, drawn = 0;
  const std::filesystem::path source = QTX_SOURCE_DIR;
  for (const auto& entry : std::filesystem::directory_iterator(source / "docs")) {
    if (entry.path().extension() != ".svg") continue;
    const std::string picture = contentOf(entry.path());
    bool found = false;
    for (const HostProgram& program : allPrograms()) {
      found = found || (program.output && program.output->find(picture) != std::string::npos);
      if (program.draws.empty() || source / program.draws != entry.path()) continue;
      found = true;
      ++drawn;
      const Outcome outcome = runQtxhost(program.arguments(), program.text, program.folder);
      EXPECT_EQ(withoutDraws(outcome.output), withoutDraws(picture));
      EXPECT_NE(outcome.output, picture) << "draws are the same twice";
    }
    EXPECT_TRUE(found) << entry.path() << " is printed by no program";
    ++pictures;
  }
  EXPECT_EQ(pictures, 7);
  EXPECT_EQ(drawn, 1);
}

// Whatever the library registers is shown in a program of the documentation. Constructors and operators are
// shown by use, which has no name to look for.
TEST(Documentation, ShowsEveryFunctionAndMember) {
  std::string shown;
  for (const HostProgram& program : documentedPrograms()) shown += program.text;
  const auto lower = [](std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
  };
  shown = lower(shown);
  std::istringstream lines(contentOf(std::filesystem::path(QTX_SOURCE_DIR) / "tests/registered.txt"));
  int names = 0;
  for (std::string line; std::getline(lines, line);) {
    std::string name;
    for (const std::string& word : words(line)) {
      name = word;
      if (word != "Class" && word != "Module" && word != "Shared" && word != "Property") break;
    }
    name = lower(name.substr(0, name.find('(')));
    if (name == "constructor" || name.starts_with("operator_") || name == "mathglobalsqtx") continue;
    ++names;
    std::size_t at = shown.find(name);
    while (at != std::string::npos && at + name.size() < shown.size() &&
           std::isalnum(static_cast<unsigned char>(shown[at + name.size()]))) {
      at = shown.find(name, at + 1);
    }
    EXPECT_NE(at, std::string::npos) << line << " is in no example";
  }
  EXPECT_GT(names, 130);
}

}  // namespace
