// The lock of all queues: a word that costs one atomic operation to take and one to leave while nobody else
// wants it.
#pragma once

#include <atomic>
#include <cstdint>

namespace qtx {

// A mutex that needs no initialisation and no destruction, so that host threads may still use it while the
// process ends. Who finds it taken sleeps until it is left; to try for a while first has not been faster. As
// with std::mutex, whoever asks first need not get it first, and who asks for it twice waits forever.
class QueueLock {
 public:
  void lock() {
    State expected = State::free;
    if (!state_.compare_exchange_strong(expected, State::taken, std::memory_order_acquire,
                                        std::memory_order_relaxed)) [[unlikely]] {
      wait();
    }
  }
  void unlock() {
    if (state_.exchange(State::free, std::memory_order_release) == State::awaited) [[unlikely]]
      wakeOne();
  }

 private:
  enum class State : std::uint32_t {
    free,
    taken,
    awaited  // taken, and somebody may sleep
  };

  void wait();
  static void wakeOne();

  std::atomic<State> state_{State::free};
};

}  // namespace qtx
