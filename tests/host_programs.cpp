// Finds the host programs there are: files, examples and the blocks of the documentation.
#include "host_programs.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <sstream>

#include "run_qtxhost.h"

namespace fs = std::filesystem;

namespace {

const fs::path source = QTX_SOURCE_DIR;

// "' key: value" among the comment lines that open a program.
std::string heading(const std::string& text, const std::string& key) {
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line) && line.starts_with("'");) {
    const std::string start = "' " + key + ": ";
    if (line.starts_with(start)) return line.substr(start.size());
  }
  return "";
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
  program.draws = heading(program.text, "draws");
  program.needsOutput = heading(program.text, "output") != "varies";
  program.takesLong = heading(program.text, "takes") == "long";
  if (const std::string printed = heading(program.text, "prints"); !printed.empty())
    program.output = contentOf(source / printed);
  fs::path expected = expectations / file.filename();
  if (fs::exists(expected.replace_extension(".out"))) program.output = contentOf(expected);
  if (fs::exists(expected.replace_extension(".err"))) program.errors = contentOf(expected);
  return program;
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
      program.warns = !heading(block, "warns").empty();
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

}  // namespace

std::vector<std::string> HostProgram::arguments(const std::vector<std::string>& more) const {
  // The classes that keep shared objects for small values.
  std::vector<std::string> all = {"run", "--leaks", "--keeps", "Int128QTX", "--keeps", "UInt128QTX"};
  all.insert(all.end(), options.begin(), options.end());
  all.insert(all.end(), more.begin(), more.end());
  all.push_back(file.empty() ? "-" : file);
  return all;
}

void PrintTo(const HostProgram& program, std::ostream* stream) { *stream << program.name; }

std::vector<std::string> words(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> all;
  for (std::string word; stream >> word;) all.push_back(word);
  return all;
}

std::vector<HostProgram> documentedPrograms() {
  std::vector<HostProgram> all;
  for (const fs::path& page : filesIn(source / "docs", ".md")) {
    for (HostProgram& program : fromPage(page)) all.push_back(std::move(program));
  }
  return all;
}

std::vector<HostProgram> allPrograms() {
  std::vector<HostProgram> all;
  for (const fs::path& file : filesIn(source / "tests/programs", ".bas"))
    all.push_back(fromFile(file, file.parent_path()));
  for (const fs::path& file : filesIn(source / "examples", ".bas"))
    all.push_back(fromFile(file, source / "tests/examples"));
  for (std::vector<HostProgram>& onPages :
       std::vector{documentedPrograms(), fromPage(source / "README.md")}) {
    for (HostProgram& program : onPages) all.push_back(std::move(program));
  }
  return all;
}
