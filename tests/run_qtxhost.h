// Starts qtxhost as a user does and collects what it prints.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

struct Outcome {
  int status = -1;  // exit status; 128 + signal; -1: did not end in time
  std::string output, errors;
};

// What a sanitizer finds ends a program with this status, so that it is not taken for a failing program's
// own; and none waits for races at the end, a second in each process that has threads.
constexpr const char* sanitizerOptions = "exitcode=99:atexit_sleep_ms=0";

// With `input` as its standard input, in `folder`. Where the environment has QTX_HOST_COMMAND, its words,
// separated by bars, start qtxhost in place of the one that was built. A sanitizer's finding gives the
// status 99.
Outcome runQtxhost(const std::vector<std::string>& arguments, const std::string& input,
                   const std::filesystem::path& folder);

// What somebody types as soon as the terminal shows a text after what it showed before.
struct Typed {
  std::string after, keys;
};

// With a terminal of which all that it shows, prompts and echo among it, is the output.
Outcome runQtxhostOnTerminal(const std::vector<std::string>& arguments, const std::vector<Typed>& typed);

// In a child process, whose standard streams are what they should be.
[[noreturn]] void becomeQtxhost(const std::vector<std::string>& arguments);

std::string contentOf(const std::filesystem::path& file);
