// Starts, joins and counts threads.
#include "runtime/thread.h"

#include <pthread.h>

#include <condition_variable>
#include <cstdio>
#include <mutex>

#include "runtime/host_record.h"

namespace host {

namespace {

// What a Thread object refers to; lives as long as the object.
struct ThreadState {
  std::function<void(Object&)> handler;
  std::mutex lock;
  std::condition_variable changed;
  bool running = false;
};
struct ThreadData {
  ThreadState* state;
};

// Never destroyed: a thread of a program may end while the process does.
std::mutex& allLock = *new std::mutex;
std::condition_variable& allChanged = *new std::condition_variable;
std::size_t runningCount = 0;
std::function<void(const HostException&)> uncaught;

ThreadState& stateOf(REALobject self) { return *dataIn<ThreadData>(self, *hostClasses().thread).state; }

void initialize(REALobject self) { dataIn<ThreadData>(self, *hostClasses().thread).state = new ThreadState; }
void destroy(REALobject self) { delete &stateOf(self); }

void run(Ref<Object> thread) {
  ThreadState& state = stateOf(reinterpret_cast<REALobject>(thread.get()));
  try {
    if (state.handler) state.handler(*thread);
  } catch (const HostException& exception) {
    reportUncaught(exception);
  }
  {
    const std::lock_guard lock(state.lock);
    state.running = false;
    state.changed.notify_all();
  }
  thread = nullptr;
  const std::lock_guard lock(allLock);
  --runningCount;
  allChanged.notify_all();
}

void start(REALobject self) {
  asPending([&] {
    ThreadState& state = stateOf(self);
    {
      const std::lock_guard lock(state.lock);
      if (state.running)
        throw HostException("UnsupportedOperationException", "The thread is running already.");
      state.running = true;
    }
    {
      const std::lock_guard lock(allLock);
      ++runningCount;
    }
    // The thread holds the object while it runs.
    auto* handed = new Ref<Object>(Ref<Object>::share(reinterpret_cast<Object*>(self)));
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, threadStackSize);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    pthread_t thread;
    const auto entry = [](void* argument) -> void* {
      auto* object = static_cast<Ref<Object>*>(argument);
      Ref<Object> taken = std::move(*object);
      delete object;
      run(std::move(taken));
      return nullptr;
    };
    const int failure = pthread_create(&thread, &attributes, entry, handed);
    pthread_attr_destroy(&attributes);
    if (failure != 0) {
      delete handed;
      {
        const std::lock_guard lock(state.lock);
        state.running = false;
      }
      const std::lock_guard lock(allLock);
      --runningCount;
      throw HostException("OutOfMemoryException", "The system cannot start another thread.");
    }
  });
}

void join(REALobject self) {
  ThreadState& state = stateOf(self);
  std::unique_lock lock(state.lock);
  state.changed.wait(lock, [&] { return !state.running; });
}

bool isRunning(REALobject self, std::intptr_t) {
  ThreadState& state = stateOf(self);
  const std::lock_guard lock(state.lock);
  return state.running;
}

}  // namespace

void setRunHandler(Object& thread, std::function<void(Object&)> handler) {
  stateOf(reinterpret_cast<REALobject>(&thread)).handler = std::move(handler);
}

void setUncaughtHandler(std::function<void(const HostException&)> report) { uncaught = std::move(report); }

void reportUncaught(const HostException& exception) {
  if (uncaught) uncaught(exception);
}

void joinAll() {
  std::unique_lock lock(allLock);
  allChanged.wait(lock, [] { return runningCount == 0; });
}

const Class& registerThread(Registry& registry) {
  static REALproperty properties[] = {
      hostProperty("IsRunning", "Boolean", &isRunning),
  };
  static REALmethodDefinition methods[] = {
      hostMethod("Start", &start),
      hostMethod("Join", &join),
  };
  static REALclassDefinition record =
      hostClass<ThreadData>("Thread", properties, methods, &destroy, &initialize);
  return registry.addClass(record, false);
}

}  // namespace host
