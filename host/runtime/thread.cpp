// Starts, joins and counts threads.
#include "runtime/thread.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <mutex>
#include <utility>

#include "runtime/host_record.h"
#include "runtime/sharing.h"
#include "runtime/system_threads.h"
#include "runtime/waiting.h"

namespace host {

namespace {

// What a Thread object refers to; lives as long as the object.
struct ThreadState {
  std::mutex lock;  // of the handler and its owner
  RunHandler handler;
  Ref<Heap> owner;
  std::atomic<Activity> activity{Activity::notRunning};
  Awaited ended;
};
struct ThreadData {
  ThreadState* state;
};

// Never destroyed: a thread of a program may end while the process does.
auto& uncaught = *new std::function<void(const HostException&)>;

// The object of this thread, which holds it while it runs; null on the first one.
constinit thread_local REALobject ownThread = nullptr;

ThreadState& stateOf(REALobject self) { return *dataIn<ThreadData>(self, *hostClasses().thread).state; }

void initialize(REALobject self) { dataIn<ThreadData>(self, *hostClasses().thread).state = new ThreadState; }
void destroy(REALobject self) { delete &stateOf(self); }

// The Sub Run of a program's class that inherits from Thread.
const Method* ownRun(const Object& thread) {
  for (const Method* each : thread.objectClass->findMethods("Run")) {
    if (each->isOwn && each->declaration.parameters.empty()) return each;
  }
  return nullptr;
}

void run(Ref<Object> thread) {
  // Where threads take turns, another's is put aside meanwhile.
  const REALobject threadBefore = std::exchange(ownThread, reinterpret_cast<REALobject>(thread.get()));
  ThreadState& state = stateOf(ownThread);
  std::atomic<Activity>* const activityBefore = std::exchange(ownActivity, &state.activity);
  try {
    RunHandler handler;
    Ref<Heap> owner;
    {
      const std::lock_guard lock(state.lock);
      handler = state.handler;
      owner = state.owner;
    }
    if (handler) {
      handler(*thread, owner.get());
    } else if (const Method* const run = ownRun(*thread)) {
      const Slot arguments[] = {{.heap = thread.get()}};
      run->call(arguments);
    }
  } catch (const HostException& exception) {
    reportUncaught(exception);
  } catch (const ProgramEnd&) {  // ends this thread; the others notice themselves
  }
  ownActivity = activityBefore;
  ownThread = threadBefore;
  state.activity = Activity::notRunning;
  notify(state.ended);
  thread = nullptr;
  threadEnds();
}

void start(REALobject self) {
  asPending([&] {
    ThreadState& state = stateOf(self);
    Activity before = Activity::notRunning;
    if (!state.activity.compare_exchange_strong(before, Activity::running))
      throw HostException("UnsupportedOperationException", "The thread is running already.");
    beginSharing();
    threadBegins();
    // The thread holds the object while it runs.
    if (!startThread([held = Ref<Object>::share(reinterpret_cast<Object*>(self))]() mutable {
          run(std::move(held));
        })) {
      state.activity = Activity::notRunning;
      threadEnds();
      throw HostException("OutOfMemoryException", "The system cannot start another thread.");
    }
  });
}

void join(REALobject self) {
  if (self == ownThread) {
    setPending(HostException("UnsupportedOperationException", "The thread waits for its own end.").exception);
    return;
  }
  ThreadState& state = stateOf(self);
  const auto hasEnded = [&state] { return state.activity == Activity::notRunning; };
  if (!hasEnded()) waitUntil(state.ended, "Thread.Join", hasEnded);
}

bool isRunning(REALobject self, RBInteger) { return stateOf(self).activity != Activity::notRunning; }
RBInteger activityOf(REALobject self, RBInteger) {
  return static_cast<RBInteger>(stateOf(self).activity.load());
}

REALobject current() {
  retain(reinterpret_cast<Object*>(ownThread));
  return ownThread;
}

void sleep(RBInteger milliseconds) {
  constexpr RBInteger aYear = RBInteger{1000} * 60 * 60 * 24 * 365;  // what a clock can add to now
  sleepHere(std::chrono::milliseconds(std::clamp<RBInteger>(milliseconds, 0, aYear)));
}

template <Activity activity>
RBInteger number() {
  return static_cast<RBInteger>(activity);
}

}  // namespace

void setRunHandler(Object& thread, Ref<Heap> owner, RunHandler handler) {
  ThreadState& state = stateOf(reinterpret_cast<REALobject>(&thread));
  const std::lock_guard lock(state.lock);
  state.handler.swap(handler);
  std::swap(state.owner, owner);  // the former one goes when the lock is open again
}

const Heap* ownerOfHandler(const Heap& thing) {
  if (!thing.objectClass->isA(*hostClasses().thread)) return nullptr;
  auto* const thread = const_cast<Heap*>(&thing);
  return stateOf(reinterpret_cast<REALobject>(thread)).owner.get();
}

void setUncaughtHandler(std::function<void(const HostException&)> report) { uncaught = std::move(report); }

void reportUncaught(const HostException& exception) {
  if (uncaught) uncaught(exception);
}

void joinAll() { awaitOtherThreads(); }

const Class& registerThread(Registry& registry) {
  static REALproperty properties[] = {
      hostProperty("IsRunning", "Boolean", &isRunning),
      hostProperty("State", "Integer", &activityOf),
      hostProperty("ThreadState", "Integer", &activityOf),
  };
  static REALmethodDefinition methods[] = {
      hostMethod("Start", &start),
      hostMethod("Join", &join),
  };
  static REALmethodDefinition sharedMethods[] = {
      hostMethod("Current as Thread", &current),
      hostMethod("Sleep(milliseconds as Integer)", &sleep),
      hostMethod("Running as Integer", &number<Activity::running>),
      hostMethod("Waiting as Integer", &number<Activity::waiting>),
      hostMethod("Suspended as Integer", &number<Activity::suspended>),
      hostMethod("Sleeping as Integer", &number<Activity::sleeping>),
      hostMethod("NotRunning as Integer", &number<Activity::notRunning>),
  };
  static REALclassDefinition record =
      hostClass<ThreadData>("Thread", properties, methods, &destroy, &initialize);
  record.sharedMethods = sharedMethods;
  record.sharedMethodCount = std::size(sharedMethods);
  return registry.addClass(record, false);
}

}  // namespace host
