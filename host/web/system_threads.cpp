// A page's script has one thread. The threads of a program take turns on it: each begins when another waits
// or sleeps, and goes on to its end.
#include "runtime/system_threads.h"

#include <emscripten/stack.h>

#include <deque>
#include <thread>
#include <utility>

#include "runtime/running_call.h"
#include "runtime/throwing.h"

namespace host {

namespace {

struct Turn {
  std::uint64_t number;
  std::function<void()> body;
};
std::deque<Turn> toBegin;
std::uint64_t lastNumber = 1;
std::uint64_t ownNumber = 1;

// The next thread that has not begun, to its end. False where there is none.
bool runNext() {
  if (toBegin.empty()) return false;
  const Turn next = std::move(toBegin.front());
  toBegin.pop_front();
  const std::uint64_t numberBefore = std::exchange(ownNumber, next.number);
  const RunningCall* const callBefore = std::exchange(runningCall, nullptr);
  Heap* const pendingBefore = std::exchange(pendingException, nullptr);
  next.body();
  pendingException = pendingBefore;
  runningCall = callBefore;
  ownNumber = numberBefore;
  return true;
}

}  // namespace

bool startThread(std::function<void()> body) {
  toBegin.push_back({++lastNumber, std::move(body)});
  return true;
}

void runOnDeepStack(const std::function<void()>& body) { body(); }

const char* lowestOfStack() { return reinterpret_cast<const char*>(emscripten_stack_get_end()); }

std::uint64_t threadNumber() { return ownNumber; }

bool sleepUntil(std::condition_variable&, std::unique_lock<std::mutex>& lock,
                const std::function<bool()>& holds, std::chrono::milliseconds) {
  while (!holds()) {
    lock.unlock();
    const bool ran = runNext();
    lock.lock();
    if (!ran) return holds();
  }
  return true;
}

void sleepFor(std::chrono::milliseconds time) {
  const auto end = std::chrono::steady_clock::now() + time;
  while (runNext() && std::chrono::steady_clock::now() < end) {
  }
  std::this_thread::sleep_until(end);
}

}  // namespace host
