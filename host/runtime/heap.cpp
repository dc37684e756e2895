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

// Things that wait to be destroyed, each with the next one in place of its count.
void wait(Heap*& first, Heap* thing) {
  thing->references.store(reinterpret_cast<std::int64_t>(first), std::memory_order_relaxed);
  first = thing;
}
Heap* nextOf(Heap*& first) {
  Heap* const thing = first;
  first = reinterpret_cast<Heap*>(thing->references.exchange(0, std::memory_order_relaxed));
  return thing;
}

void finish(Heap* thing) {
  const bool keepsMemory = settings().keepsMemory;
  if (thing->objectClass->finalize) thing->objectClass->finalize(*thing);
  // Its finalizer has kept it; where memory is kept to be looked at, libraries' mistakes may look the same.
  if (!keepsMemory && thing->references.load(std::memory_order_relaxed) != 0) return;
  thing->among->remove(thing);
  keepsMemory ? keep(thing) : std::free(thing);
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
  // What a thing holds goes with it, and so on: a chain of any length must not exhaust the stack.
  constexpr int deepest = 50;
  static thread_local int depth = 0;
  static thread_local Heap* waiting = nullptr;
  if (depth == deepest) {
    wait(waiting, thing);
    return;
  }
  ++depth;
  finish(thing);
  while (depth == 1 && waiting) finish(nextOf(waiting));
  --depth;
}

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
