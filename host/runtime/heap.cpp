// Allocates, lists and frees the host's things.
#include "runtime/heap.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <set>
#include <string>
#include <vector>

#include "runtime/class.h"
#include "runtime/settings.h"

namespace host {

// What is alive of the things that some of the threads have made, in that order. A thing that goes leaves a
// gap; gaps at the end go at once, and the others when they are more than what is alive.
class alignas(128) LiveThings {  // processors fetch pairs of 64 bytes
 public:
  // Throws std::bad_alloc.
  void add(Heap* thing) {
    const std::lock_guard lock(lock_);
    thing->among = this;
    thing->place = things_.size();
    things_.push_back(thing);
  }

  void remove(const Heap* thing) {
    const std::lock_guard lock(lock_);
    things_[thing->place] = nullptr;
    ++gaps_;
    for (; !things_.empty() && !things_.back(); --gaps_) things_.pop_back();
    if (gaps_ > things_.size() / 2 && gaps_ > 64) {
      std::erase(things_, nullptr);
      for (std::size_t i = 0; i < things_.size(); ++i) things_[i]->place = i;
      gaps_ = 0;
    }
  }

  void visit(const std::function<void(const Heap&)>& visitor) {
    const std::lock_guard lock(lock_);
    for (std::size_t i = things_.size(); i > 0; --i) {
      if (things_[i - 1]) visitor(*things_[i - 1]);
    }
  }

 private:
  std::mutex lock_;
  std::vector<Heap*> things_;
  std::size_t gaps_ = 0;
};

namespace {

// Threads rarely share one, so that they seldom wait for each other or move each other's memory. Leaked on
// purpose: threads may still run at the end of the process.
constexpr std::size_t listCount = 64;
std::array<LiveThings, listCount>& lists() {
  static auto* const all = new std::array<LiveThings, listCount>;
  return *all;
}

LiveThings& ownList() {
  static std::atomic<std::size_t> threads = 0;
  static thread_local LiveThings& own = lists()[threads.fetch_add(1) % listCount];
  return own;
}

// What was destroyed while memory was kept.
std::mutex& keptLock = *new std::mutex;
std::vector<Heap*>& kept = *new std::vector<Heap*>;

// `place` of a thing that is gone: that it was given references, and lost them, once more.
constexpr std::size_t destroyedAgain = 1;

void keep(Heap* thing) {
  thing->among = nullptr;
  thing->place = 0;
  // What still reads an instance's data finds nothing that makes sense.
  if (const Class& its = *thing->objectClass; its.fromLibrary) {
    std::memset(reinterpret_cast<std::byte*>(thing) + its.dataOffset, 0xDD,
                its.instanceSize - its.dataOffset);
  }
  const std::lock_guard lock(keptLock);
  kept.push_back(thing);
}

}  // namespace

// A library that cannot lock what it keeps holds on to it all the same: such a host never destroys anything.
bool destroysAnything() {
  const std::set<std::string>& withheld = settings().withheld;
  return !withheld.contains("REALLockObject") && !withheld.contains("REALLockString");
}

Heap* allocate(const Class& objectClass, std::size_t size) {
  void* memory = std::malloc(size);
  if (!memory) return nullptr;
  auto* thing = static_cast<Heap*>(memory);
  thing->objectClass = &objectClass;
  thing->references.store(1, std::memory_order_relaxed);
  try {
    ownList().add(thing);
  } catch (const std::bad_alloc&) {
    std::free(memory);
    return nullptr;
  }
  return thing;
}

namespace {

// How deep the destruction of one thing leads to that of another on a thread's stack. What would lie deeper
// is put in a list and comes when the stack is free again, so that a chain of any length can go.
constexpr int deepestDestruction = 64;
struct Destruction {
  int depth = 0;
  Heap* putOff = nullptr;  // the next one stands where its references were counted
};
constinit thread_local Destruction destruction;

void destroyNow(Heap* thing) {
  {
    const struct Deeper {
      Deeper() { ++destruction.depth; }
      ~Deeper() { --destruction.depth; }
    } here;
    if (thing->objectClass->finalize) thing->objectClass->finalize(*thing);
  }
  const bool keepsMemory = settings().keepsMemory;
  // Its finalizer has kept it; where memory is kept to be looked at, libraries' mistakes may look the same.
  if (!keepsMemory && thing->references.load(std::memory_order_relaxed) != 0) return;
  thing->among->remove(thing);
  keepsMemory ? keep(thing) : std::free(thing);
}

void putOff(Heap* thing) {
  thing->references.store(reinterpret_cast<std::intptr_t>(destruction.putOff), std::memory_order_relaxed);
  destruction.putOff = thing;
}
Heap* takePutOff() {
  Heap* const thing = destruction.putOff;
  destruction.putOff = reinterpret_cast<Heap*>(
      static_cast<std::intptr_t>(thing->references.exchange(0, std::memory_order_relaxed)));
  return thing;
}

}  // namespace

void destroy(Heap* thing) {
  const bool keepsMemory = settings().keepsMemory;
  static const bool destroys = destroysAnything();
  if (!(keepsMemory ? destroysAnything() : destroys)) return;
  if (keepsMemory && !isAlive(*thing)) {
    thing->place = destroyedAgain;
    return;
  }
  if (destruction.depth >= deepestDestruction) {
    putOff(thing);
    return;
  }
  destroyNow(thing);
  while (destruction.depth == 0 && destruction.putOff) destroyNow(takePutOff());
}

bool anyDestructionIsPutOff() { return destruction.putOff; }

void forEachLive(const std::function<void(const Heap&)>& visit) {
  for (auto each = lists().rbegin(); each != lists().rend(); ++each) each->visit(visit);
}

void forEachMisused(const std::function<void(const Heap&)>& visit) {
  const std::lock_guard lock(keptLock);
  for (const Heap* each : kept) {
    if (each->references != 0 || each->place == destroyedAgain) visit(*each);
  }
}

}  // namespace host
