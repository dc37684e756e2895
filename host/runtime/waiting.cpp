// One lock for all waits, so that whoever begins one can see whether all threads wait, and whether for
// nothing.
#include "runtime/waiting.h"

#include <algorithm>
#include <mutex>
#include <vector>

#include "runtime/running_call.h"
#include "runtime/system_threads.h"

namespace host {

namespace {

struct Waiter {
  Awaited& awaited;
  const char* what;
  const std::function<bool()>& ready;
  std::uint64_t thread;
  const RunningCall* place;
  bool isHopeless = false;
};

// Never destroyed: a thread of a program may end while the process does.
std::mutex& allWaits = *new std::mutex;
std::condition_variable& anyEnded = *new std::condition_variable;
std::vector<Waiter*>& waiters = *new std::vector<Waiter*>;
std::function<void(const std::string&)>& deadlockHandler = *new std::function<void(const std::string&)>;
std::size_t started = 0;     // and not ended
bool mainIsThrough = false;  // and waits for the others to end
constinit std::atomic<bool> mayStop{false}, stops{false};
constexpr std::chrono::milliseconds oneLook{20};  // between one look whether to stop and the next

// With the lock of all waits.
void checkForDeadlock() {
  if (waiters.empty() || waiters.size() < started + (mainIsThrough ? 0 : 1)) return;
  if (std::any_of(waiters.begin(), waiters.end(),
                  [](const Waiter* each) { return each->isHopeless || each->ready(); })) {
    return;
  }
  std::sort(waiters.begin(), waiters.end(),
            [](const Waiter* a, const Waiter* b) { return a->thread < b->thread; });
  std::string places;
  for (Waiter* each : waiters) {
    if (const RunningCall* const place = each->place) {
      places += std::string("  at ") + place->file + ":" + std::to_string(place->line) +
                (*place->sub ? std::string(": ") + place->sub : "") + ": " + each->what + "\n";
    }
    each->isHopeless = true;
    each->awaited.changed.notify_all();
  }
  if (deadlockHandler) deadlockHandler(places);
}

}  // namespace

void stopWaiting(bool now) noexcept {
  stops = now;
  mayStop = true;
}

void sleepHere(std::chrono::milliseconds time) {
  const Doing sleeping(Activity::sleeping);
  while (mayStop && time > oneLook) {
    if (stops) throw Stopped();
    sleepFor(oneLook);
    time -= oneLook;
  }
  sleepFor(time);
}

void waitUntil(Awaited& awaited, const char* what, const std::function<bool()>& ready) {
  const Doing waiting(Activity::waiting);
  Waiter self{awaited, what, ready, threadNumber(), runningCall};
  std::unique_lock lock(allWaits);
  waiters.push_back(&self);
  ++awaited.waiters;  // before looking: whoever makes it ready then looks for those who wait
  checkForDeadlock();
  const auto isOver = [&] { return self.isHopeless || (mayStop && stops) || ready(); };
  const bool canCome = sleepUntil(awaited.changed, lock, isOver, mayStop ? oneLook : forever);
  --awaited.waiters;
  std::erase(waiters, &self);
  if (self.isHopeless) throw Deadlock();
  if (mayStop && stops) throw Stopped();
  if (!canCome) {
    throwException("UnsupportedOperationException",
                   std::string(what) + ": the thread waits for another that waits for its turn.");
  }
}

void notify(Awaited& awaited) {
  if (awaited.waiters == 0) return;
  const std::lock_guard lock(allWaits);
  awaited.changed.notify_all();
}

void setDeadlockHandler(std::function<void(const std::string&)> report) {
  const std::lock_guard lock(allWaits);
  deadlockHandler = std::move(report);
}

void threadBegins() {
  const std::lock_guard lock(allWaits);
  ++started;
}

void threadEnds() {
  const std::lock_guard lock(allWaits);
  --started;
  checkForDeadlock();
  anyEnded.notify_all();
}

void awaitOtherThreads() {
  std::unique_lock lock(allWaits);
  mainIsThrough = true;
  checkForDeadlock();
  sleepUntil(
      anyEnded, lock, [] { return started == 0; }, forever);
  mainIsThrough = false;
}

}  // namespace host
