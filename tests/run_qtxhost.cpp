// Starts qtxhost as a user does.
#include "run_qtxhost.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <thread>

#include "without_log_prefix.h"

namespace fs = std::filesystem;

namespace {

void reportSanitizersApart() {
  for (const char* name : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS", "LSAN_OPTIONS"}) {
    const char* given = std::getenv(name);
    const std::string options = (given ? given + std::string(":") : "") + sanitizerOptions;
    setenv(name, options.c_str(), 1);
  }
}

// What starts the program: a list separated by bars in the environment, or what was built.
std::vector<std::string> hostCommand() {
  std::vector<std::string> words;
  if (const char* given = std::getenv("QTX_HOST_COMMAND")) {
    std::istringstream list(given);
    for (std::string word; std::getline(list, word, '|');) words.push_back(word);
    return words;
  }
  // A program for another processor is started through what runs it here.
  if (sizeof QTX_EMULATOR > 1) words.push_back(QTX_EMULATOR);
  words.push_back(QTX_HOST_PROGRAM);
  return words;
}

}  // namespace

std::string contentOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

namespace {

int exitStatus(int status) { return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status); }

}  // namespace

void becomeQtxhost(const std::vector<std::string>& arguments) {
  reportSanitizersApart();
  std::vector<std::string> command = hostCommand();
  command.insert(command.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& word : command) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  execvp(pointers[0], pointers.data());
  _exit(127);
}

Outcome runQtxhost(const std::vector<std::string>& arguments, const std::string& text,
                   const fs::path& folder) {
  const fs::path scratch = fs::temp_directory_path() / ("qtx-program-" + std::to_string(getpid()));
  const fs::path input = scratch.string() + ".in", output = scratch.string() + ".out",
                 errors = scratch.string() + ".err";
  std::ofstream(input, std::ios::binary) << text;

  const pid_t child = fork();
  if (child == 0) {
    const auto redirect = [](const fs::path& file, int flags, int descriptor) {
      dup2(open(file.c_str(), flags, 0600), descriptor);
    };
    redirect(input, O_RDONLY, STDIN_FILENO);
    redirect(output, O_WRONLY | O_CREAT | O_TRUNC, STDOUT_FILENO);
    redirect(errors, O_WRONLY | O_CREAT | O_TRUNC, STDERR_FILENO);
    if (chdir(folder.c_str()) != 0) _exit(126);
    becomeQtxhost(arguments);
  }
  Outcome outcome;
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(100);
  int status = 0;
  pid_t ended = 0;
  while ((ended = waitpid(child, &status, WNOHANG)) == 0) {
    if (std::chrono::steady_clock::now() > end) {
      kill(child, SIGKILL);
      waitpid(child, &status, 0);
      break;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  if (ended == child) {
    outcome.status = exitStatus(status);
  }
  outcome.output = contentOf(output);
  outcome.errors = withoutLogPrefix(contentOf(errors));
  for (const fs::path& file : {input, output, errors}) fs::remove(file);
  return outcome;
}

Outcome runQtxhostOnTerminal(const std::vector<std::string>& arguments, const std::vector<Typed>& typed) {
  Outcome outcome;
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
  if (terminal < 0 || grantpt(terminal) != 0 || unlockpt(terminal) != 0) return outcome;
  const std::string name = ptsname(terminal);
  const pid_t child = fork();
  if (child == 0) {
    setsid();
    const int own = open(name.c_str(), O_RDWR);
    ioctl(own, TIOCSCTTY, 0);
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) dup2(own, descriptor);
    close(own);
    close(terminal);
    setenv("TERM", "dumb", 1);
    becomeQtxhost(arguments);
  }
  pollfd ready{terminal, POLLIN, 0};
  std::size_t next = 0, seen = 0;
  while (true) {
    while (next < typed.size()) {
      const std::size_t found = outcome.output.find(typed[next].after, seen);
      if (found == std::string::npos) break;
      seen = found + typed[next].after.size();
      const std::string& keys = typed[next++].keys;
      if (write(terminal, keys.data(), keys.size()) < 0) kill(child, SIGKILL);
    }
    if (poll(&ready, 1, 60000) <= 0) {
      kill(child, SIGKILL);
      break;
    }
    char buffer[1024];
    const ssize_t count = read(terminal, buffer, sizeof buffer);
    if (count <= 0) break;  // the child has ended
    outcome.output.append(buffer, static_cast<std::size_t>(count));
  }
  int status = 0;
  waitpid(child, &status, 0);
  outcome.status = exitStatus(status);
  close(terminal);
  return outcome;
}
