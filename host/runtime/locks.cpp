// Locks of a program: taken and left by one atomic operation as long as nobody waits.
#include "runtime/locks.h"

#include <map>
#include <mutex>
#include <string>

#include "runtime/exception.h"
#include "runtime/host_record.h"
#include "runtime/system_threads.h"
#include "runtime/waiting.h"

namespace host {

namespace {

// Belongs to one thread, which may enter it again and leaves it as often.
struct Lock {
  std::atomic<std::uint64_t> owner{0};
  std::int64_t depth = 0;  // the owner's
  Awaited left;

  bool tryEnter() {
    std::uint64_t nobody = 0;
    const std::uint64_t self = threadNumber();
    if (owner.load(std::memory_order_relaxed) != self && !owner.compare_exchange_strong(nobody, self)) {
      return false;
    }
    ++depth;
    return true;
  }
  void enter(const char* what) {
    while (!tryEnter()) waitUntil(left, what, [this] { return owner == 0; });
  }
  bool leave() {
    if (owner.load(std::memory_order_relaxed) != threadNumber()) return false;
    if (--depth == 0) {
      owner = 0;
      notify(left);
    }
    return true;
  }
};

struct Tickets {
  std::atomic<std::int64_t> count{1};
  Awaited released;

  bool tryTake() {
    std::int64_t left = count;
    while (left > 0 && !count.compare_exchange_weak(left, left - 1)) {
    }
    return left > 0;
  }
  bool giveBack() {
    std::int64_t left = count;
    while (left < INT64_MAX && !count.compare_exchange_weak(left, left + 1)) {
    }
    return left < INT64_MAX;
  }
};

// Instance data.
struct SectionData {
  Lock* lock;
};
struct MutexData {
  Lock* own;
  std::atomic<Lock*> used;  // its own, or the one of its name
};
struct SemaphoreData {
  Tickets* tickets;
};
const Class *sectionClass, *mutexClass, *semaphoreClass;

// The same for all that give the name; they stay, as a program gives few.
Lock& lockNamed(const std::string& name) {
  static std::mutex& guard = *new std::mutex;
  static auto& all = *new std::map<std::string, Lock>;
  const std::lock_guard lock(guard);
  return all[name];
}

Lock& lockOf(const SectionData& data) { return *data.lock; }
Lock& lockOf(const MutexData& data) { return *data.used.load(); }

constexpr const char* enterSection = "CriticalSection.Enter";
constexpr const char* enterMutex = "Mutex.Enter";

template <typename Data, const Class*& declaring, const char* const& what>
void enter(REALobject self) {
  lockOf(dataIn<Data>(self, *declaring)).enter(what);
}
template <typename Data, const Class*& declaring>
bool tryEnter(REALobject self) {
  return lockOf(dataIn<Data>(self, *declaring)).tryEnter();
}
template <typename Data, const Class*& declaring>
void leave(REALobject self) {
  asPending([&] {
    if (!lockOf(dataIn<Data>(self, *declaring)).leave()) {
      throw HostException("IllegalLockingException", "The thread leaves what it has not entered.");
    }
  });
}

void makeSection(REALobject self) { dataIn<SectionData>(self, *sectionClass).lock = new Lock; }
void destroySection(REALobject self) { delete dataIn<SectionData>(self, *sectionClass).lock; }

void makeMutex(REALobject self) {
  auto& data = dataIn<MutexData>(self, *mutexClass);
  data.own = new Lock;
  data.used = data.own;
}
void destroyMutex(REALobject self) { delete dataIn<MutexData>(self, *mutexClass).own; }
void nameMutex(REALobject self, REALstring name) {
  const std::string text = utf8Of(reinterpret_cast<const Text*>(name));
  if (!text.empty()) dataIn<MutexData>(self, *mutexClass).used = &lockNamed(text);
}

Tickets& ticketsOf(REALobject self) { return *dataIn<SemaphoreData>(self, *semaphoreClass).tickets; }
void makeSemaphore(REALobject self) { dataIn<SemaphoreData>(self, *semaphoreClass).tickets = new Tickets; }
void destroySemaphore(REALobject self) { delete &ticketsOf(self); }
void countSemaphore(REALobject self, RBInteger count) {
  asPending([&] {
    if (count < 0) throw HostException("OutOfBoundsException", "The count of a Semaphore is less than 0.");
    ticketsOf(self).count = count;
    notify(ticketsOf(self).released);
  });
}
void signal(REALobject self) {
  Tickets& tickets = ticketsOf(self);
  while (!tickets.tryTake())
    waitUntil(tickets.released, "Semaphore.Signal", [&] { return tickets.count > 0; });
}
bool trySignal(REALobject self) { return ticketsOf(self).tryTake(); }
void releaseTicket(REALobject self) {
  asPending([&] {
    if (!ticketsOf(self).giveBack()) {
      throw HostException("OutOfBoundsException", "The Semaphore has as many places as it can count.");
    }
    notify(ticketsOf(self).released);
  });
}

}  // namespace

void registerLocks(Registry& registry) {
  static REALmethodDefinition sectionMethods[] = {
      hostMethod("Enter", &enter<SectionData, sectionClass, enterSection>),
      hostMethod("TryEnter as Boolean", &tryEnter<SectionData, sectionClass>),
      hostMethod("Leave", &leave<SectionData, sectionClass>),
  };
  static REALclassDefinition section =
      hostClass<SectionData>("CriticalSection", {}, sectionMethods, &destroySection, &makeSection);
  sectionClass = &registry.addClass(section, false);

  static REALmethodDefinition mutexMethods[] = {
      hostMethod("Constructor(name as String = \"\")", &nameMutex),
      hostMethod("Enter", &enter<MutexData, mutexClass, enterMutex>),
      hostMethod("TryEnter as Boolean", &tryEnter<MutexData, mutexClass>),
      hostMethod("Leave", &leave<MutexData, mutexClass>),
  };
  static REALclassDefinition mutex =
      hostClass<MutexData>("Mutex", {}, mutexMethods, &destroyMutex, &makeMutex);
  mutexClass = &registry.addClass(mutex, false);

  static REALmethodDefinition semaphoreMethods[] = {
      hostMethod("Constructor(count as Integer = 1)", &countSemaphore),
      hostMethod("Signal", &signal),
      hostMethod("TrySignal as Boolean", &trySignal),
      hostMethod("Release", &releaseTicket),
  };
  static REALclassDefinition semaphore =
      hostClass<SemaphoreData>("Semaphore", {}, semaphoreMethods, &destroySemaphore, &makeSemaphore);
  semaphoreClass = &registry.addClass(semaphore, false);
}

}  // namespace host
