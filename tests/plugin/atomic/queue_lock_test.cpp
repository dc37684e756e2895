// The lock of all queues, by itself.
#include "atomic/queue_lock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <ctime>
#include <mutex>
#include <thread>
#include <vector>

namespace qtx {
namespace {

using Lock = std::lock_guard<QueueLock>;

void inThreads(int count, const auto& body) {
  std::vector<std::thread> threads;
  threads.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) threads.emplace_back(body);
  for (std::thread& thread : threads) thread.join();
}

TEST(QueueLock, LetsOneInAtATime) {
  QueueLock lock;
  constexpr int threads = 4, rounds = 50'000;
  long entries = 0;  // plain: only the lock makes its increments whole
  inThreads(threads, [&] {
    for (int i = 0; i < rounds; ++i) {
      const Lock held(lock);
      ++entries;
    }
  });
  EXPECT_EQ(entries, long{threads} * rounds);
}

// Held so long that the others fall asleep, again and again: each of them is woken.
TEST(QueueLock, WakesThoseWhoSleep) {
  QueueLock lock;
  constexpr int threads = 4, rounds = 200;
  long entries = 0;
  inThreads(threads, [&] {
    for (int i = 0; i < rounds; ++i) {
      const Lock held(lock);
      ++entries;
      if (i % 2 == 0) std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
  });
  EXPECT_EQ(entries, long{threads} * rounds);
}

TEST(QueueLock, LeavesTheProcessorToOthersWhileItWaits) {
  using namespace std::chrono_literals;
  QueueLock lock;
  std::atomic<int> waiting{0};
  std::vector<std::thread> threads;
  std::clock_t used;
  {
    const Lock held(lock);
    for (int i = 0; i < 3; ++i) {
      threads.emplace_back([&] {
        ++waiting;
        const Lock late(lock);
      });
    }
    while (waiting < 3) std::this_thread::sleep_for(1ms);
    std::this_thread::sleep_for(50ms);
    used = std::clock();
    std::this_thread::sleep_for(400ms);
    used = std::clock() - used;
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_LT(used, CLOCKS_PER_SEC / 10) << "three that turn in circles would use four times as much at least";
}

}  // namespace
}  // namespace qtx
