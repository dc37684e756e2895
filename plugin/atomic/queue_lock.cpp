// What happens when a thread finds the lock of all queues taken.
#include "atomic/queue_lock.h"

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <new>

namespace qtx {

namespace {

// Where the threads sleep. Never destroyed, and not on the heap, so that waiting cannot fail.
struct Sleepers {
  std::mutex mutex;
  std::condition_variable left;
};
Sleepers& sleepers() {
  alignas(Sleepers) static std::byte place[sizeof(Sleepers)];
  static Sleepers& all = *new (place) Sleepers;
  return all;
}

}  // namespace

void QueueLock::wait() {
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
