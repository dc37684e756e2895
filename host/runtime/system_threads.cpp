// Threads of the system.
#include "runtime/system_threads.h"

#include <pthread.h>

#include <atomic>
#include <thread>

#include "runtime/trap.h"

namespace host {

namespace {

// The thread sanitizer follows only 65,536 nested calls.
#if defined(__SANITIZE_THREAD__)
constexpr std::size_t stackSize = std::size_t{4} << 20;
#else
constexpr std::size_t stackSize = std::size_t{64} << 20;
#endif

using Body = std::function<void()>;

bool start(pthread_t& thread, int detached, void* (*entry)(void*), void* argument) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, stackSize);
  pthread_attr_setdetachstate(&attributes, detached);
  const bool started = pthread_create(&thread, &attributes, entry, argument) == 0;
  pthread_attr_destroy(&attributes);
  return started;
}

}  // namespace

bool startThread(Body body) {
  auto* const handed = new Body(std::move(body));
  const auto entry = [](void* argument) -> void* {
    const AlternateStack forSignals;
    auto* const given = static_cast<Body*>(argument);
    const Body taken = std::move(*given);
    delete given;
    taken();
    return nullptr;
  };
  pthread_t thread;
  const bool started = start(thread, PTHREAD_CREATE_DETACHED, entry, handed);
  if (!started) delete handed;
  return started;
}

void runOnDeepStack(const Body& body) {
  const auto entry = [](void* argument) -> void* {
    const AlternateStack forSignals;
    (*static_cast<const Body*>(argument))();
    return nullptr;
  };
  pthread_t thread;
  if (start(thread, PTHREAD_CREATE_JOINABLE, entry, const_cast<Body*>(&body))) {
    pthread_join(thread, nullptr);
  } else {
    body();
  }
}

const char* lowestOfStack() {
#if defined(__APPLE__)
  const pthread_t self = pthread_self();
  return static_cast<const char*>(pthread_get_stackaddr_np(self)) - pthread_get_stacksize_np(self);
#else
  pthread_attr_t attributes;
  void* lowest = nullptr;
  std::size_t size = 0;
  pthread_getattr_np(pthread_self(), &attributes);
  pthread_attr_getstack(&attributes, &lowest, &size);
  pthread_attr_destroy(&attributes);
  return static_cast<const char*>(lowest);
#endif
}

std::uint64_t threadNumber() {
  static std::atomic<std::uint64_t> last{0};
  thread_local const std::uint64_t own = ++last;
  return own;
}

bool sleepUntil(std::condition_variable& changed, std::unique_lock<std::mutex>& lock,
                const std::function<bool()>& holds, std::chrono::milliseconds longest) {
  while (!holds()) {
    if (longest == forever) {
      changed.wait(lock);
    } else {
      changed.wait_for(lock, longest);
    }
  }
  return true;
}

void sleepFor(std::chrono::milliseconds time) { std::this_thread::sleep_for(time); }

}  // namespace host
