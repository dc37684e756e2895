// Runs host programs as a user does, through qtxhost, and compares what they print: those in tests/programs,
// the examples, and every program in the documentation. Then runs all of them once per host operation, on a
// host without it.
//
// A program's first lines may carry "' options: …" (more options for qtxhost), "' exit: N", "' output:
// varies" and "' takes: long". NAME.out beside it holds its standard output, which only a program whose
// output varies goes without; NAME.err holds its standard error, which otherwise is empty where the exit
// status is 0.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "run_qtxhost.h"
#include "runtime/operations.h"

namespace {

namespace fs = std::filesystem;
const fs::path source = QTX_SOURCE_DIR;

struct HostProgram {
  std::string name;  // of the test
  fs::path folder;   // that it runs in
  std::string file;  // in that folder; empty: `text` goes to standard input
  std::string text;
  std::optional<std::string> output, errors;  // expected; nothing: whatever it prints
  bool needsOutput = false;                   // it is a mistake if `output` is not there
  std::vector<std::string> options;
  int exitStatus = 0;
  bool takesLong = false;
};

// "' key: value" among the comment lines that open a program.
std::string heading(const std::string& text, const std::string& key) {
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line) && line.starts_with("'");) {
    const std::string start = "' " + key + ": ";
    if (line.starts_with(start)) return line.substr(start.size());
  }
  return "";
}

std::vector<std::string> words(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> all;
  for (std::string word; stream >> word;) all.push_back(word);
  return all;
}

std::string testName(std::string path) {
  for (char& c : path) {
    if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
  }
  return path;
}

HostProgram fromFile(const fs::path& file, const fs::path& expectations) {
  HostProgram program;
  program.name = testName(fs::relative(file, source).replace_extension("").string());
  program.folder = file.parent_path();
  program.file = file.filename().string();
  program.text = contentOf(file);
  program.options = words(heading(program.text, "options"));
  if (const std::string status = heading(program.text, "exit"); !status.empty())
    program.exitStatus = std::stoi(status);
  program.needsOutput = heading(program.text, "output") != "varies";
  program.takesLong = heading(program.text, "takes") == "long";
  fs::path expected = expectations / file.filename();
  if (fs::exists(expected.replace_extension(".out"))) program.output = contentOf(expected);
  if (fs::exists(expected.replace_extension(".err"))) program.errors = contentOf(expected);
  return program;
}

// The ```basic blocks of a page; a ```text block that follows is what the program prints.
std::vector<HostProgram> fromPage(const fs::path& page) {
  std::vector<HostProgram> programs;
  std::ifstream stream(page);
  std::string line, language, block;
  bool inBlock = false, followsProgram = false;
  int number = 0;
  for (int at = 1; std::getline(stream, line); ++at) {
    if (!line.starts_with("```")) {
      if (inBlock) {
        block += line + "\n";
      } else if (!line.empty()) {
        followsProgram = false;
      }
      continue;
    }
    inBlock = !inBlock;
    if (inBlock) {
      language = line.substr(3);
      block.clear();
      number = at;
      continue;
    }
    if (language == "basic") {
      HostProgram program;
      program.name = testName(page.stem().string()) + "_line_" + std::to_string(number);
      program.folder = page.parent_path();
      program.text = block;
      program.options = words(heading(block, "options"));
      if (const std::string status = heading(block, "exit"); !status.empty())
        program.exitStatus = std::stoi(status);
      programs.push_back(program);
    } else if (language == "text" && followsProgram) {
      programs.back().output = block;
    }
    followsProgram = language == "basic";
  }
  return programs;
}

std::vector<fs::path> filesIn(const fs::path& folder, const std::string& extension) {
  std::vector<fs::path> files;
  if (!fs::exists(folder)) return files;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.path().extension() == extension) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::vector<HostProgram> allPrograms() {
  std::vector<HostProgram> all;
  for (const fs::path& file : filesIn(source / "tests/programs", ".bas"))
    all.push_back(fromFile(file, file.parent_path()));
  for (const fs::path& file : filesIn(source / "examples", ".bas"))
    all.push_back(fromFile(file, source / "tests/examples"));
  std::vector<fs::path> pages = filesIn(source / "docs", ".md");
  pages.push_back(source / "README.md");
  for (const fs::path& page : pages) {
    for (HostProgram& program : fromPage(page)) all.push_back(std::move(program));
  }
  return all;
}

void PrintTo(const HostProgram& program, std::ostream* stream) { *stream << program.name; }

Outcome run(const HostProgram& program, const std::vector<std::string>& more) {
  std::vector<std::string> arguments = {"run"};
  // The classes that keep shared objects for small values.
  for (const char* each : {"--leaks", "--keeps", "Int128QTX", "--keeps", "UInt128QTX"})
    arguments.push_back(each);
  arguments.insert(arguments.end(), program.options.begin(), program.options.end());
  arguments.insert(arguments.end(), more.begin(), more.end());
  arguments.push_back(program.file.empty() ? "-" : program.file);
  return runQtxhost(arguments, program.text, program.folder);
}

class Programs : public testing::TestWithParam<HostProgram> {};

TEST_P(Programs, PrintWhatTheyShould) {
  const HostProgram& program = GetParam();
  const Outcome outcome = run(program, {});
  EXPECT_EQ(outcome.status, program.exitStatus) << outcome.errors;
  EXPECT_TRUE(program.output || !program.needsOutput) << "its .out is missing";
  if (program.output) {
    EXPECT_EQ(outcome.output, *program.output);
  }
  if (program.errors) {
    EXPECT_EQ(outcome.errors, *program.errors);
  } else if (program.exitStatus == 0) {
    EXPECT_EQ(outcome.errors, "");
  }
}
INSTANTIATE_TEST_SUITE_P(All, Programs, testing::ValuesIn(allPrograms()),
                         [](const auto& each) { return each.param.name; });

// Whatever the library registers is shown in a program of the documentation. Constructors and operators are
// shown by use, which has no name to look for.
TEST(Documentation, ShowsEveryFunctionAndMember) {
  std::string shown;
  for (const fs::path& page : filesIn(source / "docs", ".md")) {
    for (const HostProgram& program : fromPage(page)) shown += program.text;
  }
  const auto lower = [](std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
  };
  shown = lower(shown);
  std::istringstream lines(contentOf(source / "tests/registered.txt"));
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

class WithoutOperation : public testing::TestWithParam<std::string> {};

// Sanitizers and emulators make every start slow; the documentation's programs and those that take long
// anyway are left out there.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool runSlowly = true;
#else
constexpr bool runSlowly = sizeof QTX_EMULATOR > 1;
#endif

// What the programs do then is their matter; they neither crash nor hang.
TEST_P(WithoutOperation, NoProgramCrashesOrHangs) {
  for (const HostProgram& program : allPrograms()) {
    if (runSlowly && (program.file.empty() || program.takesLong)) continue;
    const Outcome outcome = run(program, {"--without", GetParam()});
    EXPECT_TRUE(outcome.status >= 0 && outcome.status <= 2)
        << program.name << " ended with " << outcome.status << "\n"
        << outcome.errors;
  }
}

// All but the one that every host has.
std::vector<std::string> operations() {
  std::vector<std::string> names = host::operationNames();
  std::erase(names, "RegisterPluginVersion");
  return names;
}
INSTANTIATE_TEST_SUITE_P(Each, WithoutOperation, testing::ValuesIn(operations()),
                         [](const auto& each) { return each.param; });

}  // namespace
