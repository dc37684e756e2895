// Running programs.
#include "process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

extern char** environ;

namespace bench {
namespace {

struct Close {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, Close>;

double secondsIn(const timeval& time) {
  return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
}

[[noreturn]] void fail(const std::vector<std::string>& command) {
  std::fprintf(stderr, "qtx bench: %s has failed\n", command.front().c_str());
  std::exit(1);
}

}  // namespace

Finished run(const std::vector<std::string>& command, const std::string& input, int processes) {
  std::vector<char*> arguments;
  for (const std::string& each : command) arguments.push_back(const_cast<char*>(each.c_str()));
  arguments.push_back(nullptr);

  // Spawned, not forked: this process may be large by now, and need not be copied.
  const File output(std::tmpfile());
  for (int i = 0; i < processes; ++i) {
    const File text(std::tmpfile());
    std::fwrite(input.data(), 1, input.size(), text.get());
    std::rewind(text.get());
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, fileno(text.get()), STDIN_FILENO);
    if (i == 0) {
      posix_spawn_file_actions_adddup2(&actions, fileno(output.get()), STDOUT_FILENO);
    } else {
      posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    }
    pid_t child;
    if (posix_spawn(&child, arguments[0], &actions, nullptr, arguments.data(), environ) != 0) fail(command);
    posix_spawn_file_actions_destroy(&actions);
  }
  Finished finished = {};
  for (int i = 0; i < processes; ++i) {
    int status = 0;
    rusage usage = {};
    if (wait4(-1, &status, 0, &usage) < 0 || status != 0) fail(command);
    finished.userSeconds += secondsIn(usage.ru_utime);
  }
  std::rewind(output.get());
  char part[4096];
  while (const std::size_t read = std::fread(part, 1, sizeof part, output.get()))
    finished.output.append(part, read);
  return finished;
}

}  // namespace bench
