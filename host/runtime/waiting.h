// Threads of a program that wait for each other, and what becomes of them when all do.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <string>

#include "runtime/throwing.h"

namespace host {

// What a thread of a program does; as Thread.State gives it.
enum class Activity : std::int64_t { running, waiting, suspended, sleeping, notRunning };

// That of this thread; null where it is none that a program has started.
inline constinit thread_local std::atomic<Activity>* ownActivity = nullptr;

// For its lifetime, this thread does that instead.
class Doing {
 public:
  explicit Doing(Activity activity) { set(activity); }
  ~Doing() { set(Activity::running); }
  Doing(const Doing&) = delete;
  Doing& operator=(const Doing&) = delete;

 private:
  static void set(Activity activity) {
    if (ownActivity) ownActivity->store(activity);
  }
};

// Something that threads wait for.
struct Awaited {
  std::atomic<int> waiters{0};
  std::condition_variable changed;
};

// Leaves what would be waited for forever.
class Deadlock final : public ProgramEnd {
 public:
  const char* what() const noexcept override { return "every thread of the program waits for another"; }
};

// Ends what somebody has stopped.
class Stopped final : public ProgramEnd {
 public:
  const char* what() const noexcept override { return "stopped"; }
};

// From the first call on, threads that wait or sleep look now and then whether they are to stop: while that
// is so, none of them waits any longer, but throws Stopped. A handler of a signal may say so.
void stopWaiting(bool stops) noexcept;

// Sleeps so long, or until it is stopped.
void sleepHere(std::chrono::milliseconds time);

// Returns when `ready` holds, which may be asked at any time and changes nothing; `what` is said of it in a
// report. Throws Deadlock on each thread where none is left that could bring it about, and
// UnsupportedOperationException where threads take turns and the one that could waits for its own.
void waitUntil(Awaited& awaited, const char* what, const std::function<bool()>& ready);

// To be called after a change that somebody may wait for.
void notify(Awaited& awaited);

// What is told, on the thread that notices, where each thread waits: a line each.
void setDeadlockHandler(std::function<void(const std::string& places)> report);

// Of the threads that a program starts; the one that starts the program is counted already.
void threadBegins();
void threadEnds();

// Returns when all of those have ended.
void awaitOtherThreads();

}  // namespace host
