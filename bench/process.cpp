// Running programs.
#include "process.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace bench {
namespace {

struct Close {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, Close>;

double secondsIn(const timeval& time) {
  return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
}

}  // namespace

Finished run(const std::vector<std::string>& command, const std::string& input, int processes) {
  std::vector<char*> arguments;
  for (const std::string& each : command) arguments.push_back(const_cast<char*>(each.c_str()));
  arguments.push_back(nullptr);

  const File output(std::tmpfile());
  for (int i = 0; i < processes; ++i) {
    const File text(std::tmpfile());
    std::fwrite(input.data(), 1, input.size(), text.get());
    std::rewind(text.get());
    if (fork() != 0) continue;
    dup2(fileno(text.get()), STDIN_FILENO);
    dup2(i == 0 ? fileno(output.get()) : open("/dev/null", O_WRONLY), STDOUT_FILENO);
    execv(arguments[0], arguments.data());
    _exit(127);
  }
  Finished finished = {};
  for (int i = 0; i < processes; ++i) {
    int status = 0;
    rusage usage = {};
    if (wait4(-1, &status, 0, &usage) < 0 || status != 0) {
      std::fprintf(stderr, "qtx bench: %s has failed\n", command.front().c_str());
      std::exit(1);
    }
    finished.userSeconds += secondsIn(usage.ru_utime);
  }
  std::rewind(output.get());
  char part[4096];
  while (const std::size_t read = std::fread(part, 1, sizeof part, output.get()))
    finished.output.append(part, read);
  return finished;
}

}  // namespace bench
