// The host programs that are tests: those in tests/programs, the examples, and every program in the
// documentation.
//
// A program's first lines may carry "' options: …" (more options for qtxhost), "' exit: N", "' output:
// varies", "' prints: FILE", "' draws: FILE" and "' takes: long"; on a page also "' warns: …" where the
// compiler warns of it. NAME.out beside it, or the file that it prints, holds its standard output, which only
// a program whose output varies goes without; NAME.err holds its standard error, which otherwise is empty
// where the exit status is 0.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

struct HostProgram {
  std::string name;              // of the test
  std::filesystem::path folder;  // that it runs in
  std::string file;              // in that folder; empty: `text` goes to standard input
  std::string text;
  std::optional<std::string> output, errors;  // expected; nothing: whatever it prints
  bool needsOutput = false;                   // it is a mistake if `output` is not there
  std::vector<std::string> options;
  int exitStatus = 0;
  bool takesLong = false;
  bool warns = false;
  std::string draws;  // the picture of one run, which the next repeats but for what chance has drawn

  // To run it with qtxhost and more options of the test's own, leaks reported.
  std::vector<std::string> arguments(const std::vector<std::string>& more = {}) const;
};

void PrintTo(const HostProgram& program, std::ostream* stream);  // for GoogleTest

std::vector<HostProgram> allPrograms();
std::vector<HostProgram> documentedPrograms();  // those in docs/ alone

std::vector<std::string> words(const std::string& text);
