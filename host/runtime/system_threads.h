// The threads that a program runs on: those of the system or, where it has but one (host/web), turns of that.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>

namespace host {

// Starts one with a stack for deeply nested calls. False where there can be no more.
bool startThread(std::function<void()> body);

// Runs it on such a stack, and returns when it has ended. It lets no exception out.
void runOnDeepStack(const std::function<void()>& body);

// The lowest address of this thread's stack.
const char* lowestOfStack();

// A number of this thread's own, from 1 on.
std::uint64_t threadNumber();

constexpr std::chrono::milliseconds forever = std::chrono::milliseconds::max();

// Sleeps until it holds, which is asked under the lock whenever something has changed, and at least once in
// such a time. False where no other thread can bring it about,
// because all of them wait for this one to come out of here.
bool sleepUntil(std::condition_variable& changed, std::unique_lock<std::mutex>& lock,
                const std::function<bool()>& holds, std::chrono::milliseconds longest);

void sleepFor(std::chrono::milliseconds time);

}  // namespace host
