// Threads that wait for each other, and those that would wait forever.
#include "runtime/waiting.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "runtime/running_call.h"

namespace host {
namespace {

TEST(Waiting, EndsWhenWhatIsAwaitedComes) {
  Awaited awaited;
  std::atomic<bool> came{false};
  threadBegins();
  std::thread other([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    came = true;
    notify(awaited);
    threadEnds();
  });
  waitUntil(awaited, "this", [&] { return came.load(); });
  EXPECT_TRUE(came);
  other.join();
  waitUntil(awaited, "this", [] { return true; });
  awaitOtherThreads();
}

TEST(Waiting, EndsWhenItIsStopped) {
  stopWaiting(false);
  threadBegins();
  std::thread other([] {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    stopWaiting(true);
  });
  Awaited awaited;
  EXPECT_THROW(waitUntil(awaited, "this", [] { return false; }), Stopped);
  other.join();
  EXPECT_THROW(sleepHere(std::chrono::hours(24)), Stopped);
  stopWaiting(false);
  waitUntil(awaited, "this", [] { return true; });
  sleepHere(std::chrono::milliseconds(25));
  threadEnds();
  awaitOtherThreads();
}

TEST(Waiting, ForNobodyIsADeadlock) {
  std::string told;
  setDeadlockHandler([&](const std::string& places) { told = places; });
  Awaited awaited;
  EXPECT_THROW(waitUntil(awaited, "nothing", [] { return false; }), Deadlock);
  EXPECT_EQ(told, "") << "no place is known";
  const RunningCall main{"main.bas", "", 7, nullptr}, inner{"main.bas", "Inner", 3, &main};
  runningCall = &inner;
  EXPECT_THROW(waitUntil(awaited, "Lock.Enter", [] { return false; }), Deadlock);
  EXPECT_EQ(told, "  at main.bas:3: Inner: Lock.Enter\n");
  runningCall = &main;
  EXPECT_THROW(waitUntil(awaited, "Lock.Enter", [] { return false; }), Deadlock);
  EXPECT_EQ(told, "  at main.bas:7: Lock.Enter\n");
  runningCall = nullptr;
  setDeadlockHandler({});
}

TEST(Waiting, IsHopelessOnceTheLastOtherThreadEnds) {
  Awaited awaited;
  threadBegins();
  std::thread other([] {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    threadEnds();
  });
  EXPECT_THROW(waitUntil(awaited, "nothing", [] { return false; }), Deadlock);
  other.join();
}

TEST(Waiting, EndsOnAllThreadsThatWaitForNothing) {
  Awaited awaited;
  std::atomic<int> deadlocks{0};
  int told = 0;
  setDeadlockHandler([&](const std::string&) { ++told; });
  const auto wait = [&] {
    try {
      waitUntil(awaited, "nothing", [] { return false; });
    } catch (const Deadlock&) {
      ++deadlocks;
    }
  };
  threadBegins();
  std::thread other([&] {
    wait();
    threadEnds();
  });
  wait();
  awaitOtherThreads();
  other.join();
  EXPECT_EQ(deadlocks, 2);
  EXPECT_EQ(told, 1);
  setDeadlockHandler({});
}

}  // namespace
}  // namespace host
