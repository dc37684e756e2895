// Forks, waits, and reads what the copy has left.
#include "validation/isolation.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <ctime>
#include <new>
#include <stdexcept>
#include <thread>

#if defined(__linux__) && defined(__GNUC__)
extern "C" void __gcov_dump() __attribute__((weak));
#endif

namespace host {

namespace {

// Shared by a process and its copy.
struct Notes {
  std::atomic<int> count;
  std::atomic<bool> isBeingWritten;
  using Text = char[1000];
  Text step, doing;
};
Notes* notes = nullptr;

Notes* sharedNotes() {
  void* memory = mmap(nullptr, sizeof(Notes), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) throw std::runtime_error("there is no memory to share with another process");
  return new (memory) Notes{};
}

[[noreturn]] void runBody(int out, bool shown, const std::function<std::string()>& body) {
  if (!shown) {
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, STDOUT_FILENO);
    dup2(nowhere, STDERR_FILENO);
  }
  const std::string text = body();
  for (std::size_t at = 0; at < text.size();) {
    const ssize_t written = write(out, text.data() + at, text.size() - at);
    if (written < 0 && errno != EINTR) leaveProcess(1);
    if (written > 0) at += static_cast<std::size_t>(written);
  }
  leaveProcess(0);
}

double secondsOf(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}
// What the processes that were waited for have computed.
double secondsOfChildren() {
  rusage usage;
  getrusage(RUSAGE_CHILDREN, &usage);
  return secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime);
}

// Ends a process that was too late. True: it was computing, however slowly on a machine that has much to do,
// and did not just wait.
bool endBusy(pid_t process, double seconds) {
  bool isBusy = false;
#if !defined(__APPLE__)
  clockid_t clock;
  timespec earlier, later;
  const bool isKnown = clock_getcpuclockid(process, &clock) == 0 && clock_gettime(clock, &earlier) == 0;
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  // What a sanitizer's own thread looks after takes some hundred microseconds.
  constexpr double most = 0.003;
  isBusy = isKnown && clock_gettime(clock, &later) == 0 &&
           static_cast<double>(later.tv_sec - earlier.tv_sec) +
                   static_cast<double>(later.tv_nsec - earlier.tv_nsec) * 1e-9 >
               most;
#endif
  const double before = secondsOfChildren();
  kill(process, SIGKILL);
  while (waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
  }
  return isBusy || secondsOfChildren() - before > seconds / 4;
}

}  // namespace

void leaveProcess(int status) {
#if defined(__linux__) && defined(__GNUC__)
  if (__gcov_dump) __gcov_dump();  // what was reached in this copy counts too
#endif
  _exit(status);
}

namespace {
void note(const std::string& step, bool isStep) {
  if (!notes) return;
  if (notes->isBeingWritten.exchange(true, std::memory_order_acquire)) return;  // another thread's will do
  const auto put = [&](Notes::Text& to) {
    const std::size_t size = std::min(step.size(), sizeof to - 1);
    std::memcpy(to, step.data(), size);
    to[size] = '\0';
  };
  put(notes->doing);
  if (isStep) {
    put(notes->step);
    notes->count.fetch_add(1, std::memory_order_relaxed);
  }
  notes->isBeingWritten.store(false, std::memory_order_release);
}
}  // namespace

void noteStep(const std::string& step) { note(step, true); }
void notePreparation(const std::string& step) { note(step, false); }

Ending inProcess(double seconds, bool shown, const std::function<std::string()>& body) {
  Notes* const outer = notes;
  Notes* const own = sharedNotes();
  int ends[2];
  if (pipe(ends) != 0) throw std::runtime_error("there is no pipe to another process");
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("the system cannot start another process");
  if (child == 0) {
    close(ends[0]);
    notes = own;
    runBody(ends[1], shown, body);
  }
  close(ends[1]);

  Ending ending;
  using Clock = std::chrono::steady_clock;
  const auto last =
      Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(last - Clock::now()).count();
    pollfd ready{ends[0], POLLIN, 0};
    const int found = left <= 0 ? 0 : poll(&ready, 1, static_cast<int>(std::min<long long>(left, 1'000'000)));
    if (found < 0 && errno == EINTR) continue;
    if (found <= 0) {
      ending.how = Ending::How::tooLate;
      break;
    }
    char buffer[4096];
    const ssize_t count = read(ends[0], buffer, sizeof buffer);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;
    ending.text.append(buffer, static_cast<std::size_t>(count));
  }
  close(ends[0]);
  if (ending.how == Ending::How::tooLate) {
    ending.isBusy = endBusy(child, seconds);
  } else {
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFSIGNALED(status)) {
      ending.how = Ending::How::bySignal;
      ending.number = WTERMSIG(status);
    } else if (WEXITSTATUS(status) != 0) {
      ending.how = Ending::How::byItself;
      ending.number = WEXITSTATUS(status);
    }
  }
  ending.step = own->step;
  ending.doing = own->doing;
  ending.steps = own->count;
  munmap(own, sizeof(Notes));
  notes = outer;
  return ending;
}

std::string nameOfSignal(int number) {
  return "signal " + std::to_string(number) + " (" + strsignal(number) + ")";
}

}  // namespace host
