// What happens when a thread finds the lock of all queues taken.
#include "atomic/queue_lock.h"

#include <condition_variable>
#include <mutex>

namespace qtx {

namespace {

// Where the threads sleep. Never destroyed.
struct Sleepers {
  std::mutex mutex;
  std::condition_variable left;
};
Sleepers& sleepers() {
  static Sleepers& all = *new Sleepers;
  return all;
}

// Lets the processor's other thread go first, and the lock's cache line rest.
void pause() {
#if defined(__x86_64__)
  __builtin_ia32_pause();
#elif defined(__aarch64__)
  asm volatile("isb");  // waits about as long as the other's pause; its "yield" does not wait at all
#endif
}

}  // namespace

void QueueLock::wait() {
  constexpr int tries = 100;  // about what putting a thread to sleep and waking it costs
  for (int i = 0; i < tries; ++i) {
    pause();
    State expected = State::free;
    if (state_.load(std::memory_order_relaxed) == State::free &&
        state_.compare_exchange_weak(expected, State::taken, std::memory_order_acquire,
                                     std::memory_order_relaxed)) {
      return;
    }
  }
  // The holder is told before each sleep, and wakes a sleeper under the mutex: it cannot do so between the
  // two. Who takes the lock here cannot know whether others sleep, and will wake one.
  Sleepers& all = sleepers();
  std::unique_lock mutex(all.mutex);
  while (state_.exchange(State::awaited, std::memory_order_acquire) != State::free) all.left.wait(mutex);
}

void QueueLock::wakeOne() {
  Sleepers& all = sleepers();
  { const std::lock_guard mutex(all.mutex); }
  all.left.notify_one();
}

}  // namespace qtx
