// Runs every host program once for each host operation, on a host without it. What the program does then is
// its matter; it neither crashes nor hangs.
//
// Two things make that many runs affordable:
//  - An operation that a run never asks the resolver for cannot matter to it: without that operation the same
//  run
//    takes place, and that one is a test already. So a first run notes what is asked for, and only that is
//    withheld.
//  - A run is a forked copy of this process, which has qtxhost in it and has mapped the library, but has
//  entered
//    neither: each run begins with caches of its own, as a fresh qtxhost does, and saves the start of a
//    program.
#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "command_line.h"
#include "host_programs.h"
#include "run_qtxhost.h"

// What a sanitizer finds ends a run with a status that no program has of its own. They read these when the
// process starts; each names its own.
#define QTX_EXPORTED __attribute__((visibility("default")))
extern "C" {
QTX_EXPORTED const char* __asan_default_options() { return sanitizerOptions; }
QTX_EXPORTED const char* __lsan_default_options() { return sanitizerOptions; }
QTX_EXPORTED const char* __tsan_default_options() { return sanitizerOptions; }
QTX_EXPORTED const char* __ubsan_default_options() { return sanitizerOptions; }
}

namespace {

constexpr unsigned secondsUntilItHangs = 60;  // less than a test may take

using File = std::unique_ptr<std::FILE, decltype([](std::FILE* file) { std::fclose(file); })>;

std::string contentOf(std::FILE* file) {
  std::string text;
  std::rewind(file);
  for (int c; (c = std::fgetc(file)) != EOF;) text += static_cast<char>(c);
  return text;
}

// What the program prints is dropped.
Outcome runForked(const HostProgram& program, const std::vector<std::string>& more) {
  std::vector<std::string> arguments = program.arguments(more);
  arguments.insert(arguments.begin(), "qtxhost");
  const File input(std::tmpfile()), errors(std::tmpfile());
  std::fputs(program.text.c_str(), input.get());
  std::rewind(input.get());
  std::fflush(stdout);
  const pid_t child = fork();
  if (child == 0) {
    dup2(fileno(input.get()), STDIN_FILENO);
    dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
    dup2(fileno(errors.get()), STDERR_FILENO);
    if (chdir(program.folder.c_str()) != 0) _exit(126);
    alarm(secondsUntilItHangs);
    std::vector<char*> pointers;
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    std::exit(host::commandLine(static_cast<int>(pointers.size()), pointers.data()));
  }
  int status = 0;
  waitpid(child, &status, 0);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), "", contentOf(errors.get())};
}

// The host operations that the program asks for where none is withheld.
std::set<std::string> askedFor(const HostProgram& program) {
  const File names(std::tmpfile());
  setenv("QTX_ASKED_OF", QTX_LIBRARY_FILE, 1);
  setenv("QTX_ASKED_TO", std::to_string(fileno(names.get())).c_str(), 1);
  const Outcome outcome = runForked(program, {"--library", QTX_ASKED_OPERATIONS});
  EXPECT_EQ(outcome.status, program.exitStatus) << outcome.errors;
  const std::vector<std::string> all = words(contentOf(names.get()));
  return {all.begin(), all.end()};
}

class WithoutAnOperation : public testing::TestWithParam<HostProgram> {};

TEST_P(WithoutAnOperation, NeitherCrashesNorHangs) {
  ASSERT_TRUE(dlopen(QTX_LIBRARY_FILE, RTLD_NOW | RTLD_LOCAL)) << dlerror();
  std::set<std::string> asked = askedFor(GetParam());
  ASSERT_EQ(asked.erase("RegisterPluginVersion"), 1u) << "every library does, and every host has it";
  for (const std::string& operation : asked) {
    const Outcome outcome = runForked(GetParam(), {"--library", QTX_LIBRARY_FILE, "--without", operation});
    EXPECT_TRUE(outcome.status >= 0 && outcome.status <= 2)
        << "without " << operation << " it ended with " << outcome.status << "\n"
        << outcome.errors;
  }
}

// Where everything is slow, without those that take long anyway.
std::vector<HostProgram> programs() {
  std::vector<HostProgram> all = allPrograms();
  if (QTX_RUNS_SLOWLY) std::erase_if(all, [](const HostProgram& program) { return program.takesLong; });
  return all;
}
INSTANTIATE_TEST_SUITE_P(Each, WithoutAnOperation, testing::ValuesIn(programs()),
                         [](const auto& each) { return each.param.name; });

}  // namespace
