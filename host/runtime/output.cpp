// Collects what is printed, and writes it.
#include "runtime/output.h"

#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <ctime>
#include <mutex>
#include <thread>
#include <utility>

namespace host {

namespace {

constexpr std::size_t capacity = std::size_t{1} << 16;
constexpr std::chrono::milliseconds longestWait{10};

class Output {
 public:
  void print(std::string_view text) {
    const std::lock_guard lock(lock_);
    if (failure_ != 0) throw OutputFailed();
    start();
    while (!text.empty()) {
      const std::size_t known = used_.load(std::memory_order_relaxed);
      const std::size_t count = std::min(text.size(), capacity - known);
      std::memcpy(buffer_ + known, text.data(), count);
      used_.store(known + count, std::memory_order_release);  // a signal's handler writes what is complete
      text.remove_prefix(count);
      if (known + count == capacity) writeOut();
    }
    if (!hasFlusher_) {
      writeOut();
    } else if (!awake_) {
      awake_ = true;
      pending_.notify_one();
    }
  }

  void flush() {
    const std::lock_guard lock(lock_);
    writeOut();
  }

  int failure() const { return failure_; }

  // Without the lock, which this very thread may hold. Another thread that is just writing gets some time
  // for it; what it has begun is not written twice.
  void flushInSignal() {
    constexpr timespec aMillisecond{0, 1000000};
    for (int tries = 0; writing_.exchange(true); ++tries) {
      if (tries == 100) return;
      nanosleep(&aMillisecond, nullptr);
    }
    writeAll();
    writing_ = false;
  }

 private:
  // Only when something is printed: a process that never prints has no more threads than its program.
  void start() {
    if (std::exchange(isStarted_, true)) return;
    if (isatty(STDOUT_FILENO)) return;
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);  // the program's own threads handle signals
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    pthread_t thread;
    const auto entry = [](void* output) -> void* {
      static_cast<Output*>(output)->flushAgainAndAgain();
      return nullptr;
    };
    hasFlusher_ = pthread_create(&thread, &attributes, entry, this) == 0;
    pthread_attr_destroy(&attributes);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
  }

  // Sleeps until something is printed, and then for as long as that may wait.
  void flushAgainAndAgain() {
    std::unique_lock lock(lock_);
    while (true) {
      pending_.wait(lock, [this] { return awake_; });
      lock.unlock();
      std::this_thread::sleep_for(longestWait);
      lock.lock();
      awake_ = used_.load(std::memory_order_relaxed) > 0;
      writeOut();
    }
  }

  void writeOut() {
    while (writing_.exchange(true)) std::this_thread::yield();
    writeAll();
    writing_ = false;
  }

  void writeAll() {
    const std::size_t count = used_.load(std::memory_order_acquire);
    for (std::size_t done = 0; done < count && failure_ == 0;) {
      const ssize_t written = ::write(STDOUT_FILENO, buffer_ + done, count - done);
      if (written >= 0) {
        done += static_cast<std::size_t>(written);
      } else if (errno != EINTR) {
        failure_ = errno;
      }
    }
    used_.store(0, std::memory_order_release);
  }

  std::mutex lock_;
  std::condition_variable pending_;
  bool isStarted_ = false, hasFlusher_ = false, awake_ = false;
  char buffer_[capacity] = {};
  std::atomic<std::size_t> used_{0};
  std::atomic<bool> writing_{false};
  std::atomic<int> failure_{0};
};

// Never destroyed: threads may print while the process ends.
Output& output = *new Output;

}  // namespace

void print(std::string_view text) { output.print(text); }
void flushOutput() { output.flush(); }
int outputFailure() { return output.failure(); }
void flushOutputInSignal() { output.flushInSignal(); }

}  // namespace host
