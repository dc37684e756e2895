// A lock for readers and writers that costs readers no common memory: each thread announces, in a place of
// its own, what it uses; whoever changes a thing says so first and then waits until nobody announces it.
// Either sees the other, because both write before they read, in the one order of sequentially consistent
// operations. As in W. C. Hsieh and W. E. Weihl, "Scalable Reader-Writer Locks for Parallel Systems" (1992),
// with one set of places for all things.
#include "runtime/sharing.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <thread>

namespace host {

namespace {

// On a cache line of its own. They are never freed, but used again by other threads.
struct alignas(64) Announcement {
  std::atomic<const void*> thing{nullptr};
  std::atomic<bool> taken{true};
  Announcement* next = nullptr;
};
std::atomic<Announcement*> announcements{nullptr};

Announcement* takeAnnouncement() {
  for (Announcement* each = announcements.load(); each; each = each->next) {
    if (!each->taken.exchange(true)) return each;
  }
  auto* made = new Announcement;
  made->next = announcements.load();
  while (!announcements.compare_exchange_weak(made->next, made)) {
  }
  return made;
}

struct OwnAnnouncement {
  Announcement* const announcement = takeAnnouncement();
  ~OwnAnnouncement() { announcement->taken.store(false); }
};

std::atomic<const void*>& announced() {
  thread_local const OwnAnnouncement own;
  return own.announcement->thing;
}

// What is being changed, by its address. Things that share a place are changed one after the other.
struct alignas(64) Place {
  std::atomic<const void*> changing{nullptr};
};
constinit std::array<Place, 64> places = {};

std::atomic<const void*>& changingAt(const void* thing) {
  const auto address = reinterpret_cast<std::uintptr_t>(thing);
  return places[(address >> 4 ^ address >> 10) % places.size()].changing;
}

template <typename Word>
bool copiesAtOnce(void* to, const void* from, const void* shared, std::size_t size) {
  if (size != sizeof(Word) || reinterpret_cast<std::uintptr_t>(shared) % sizeof(Word) != 0) return false;
  Word word;
  if (shared == from) {
    word = __atomic_load_n(static_cast<const Word*>(from), __ATOMIC_RELAXED);
    std::memcpy(to, &word, sizeof word);
  } else {
    std::memcpy(&word, from, sizeof word);
    __atomic_store_n(static_cast<Word*>(to), word, __ATOMIC_RELAXED);
  }
  return true;
}

void copy(void* to, const void* from, const void* shared, std::size_t size) {
  if (!threadsShare()) {
    std::memcpy(to, from, size);
    return;
  }
  if (copiesAtOnce<std::uint64_t>(to, from, shared, size) ||
      copiesAtOnce<std::uint32_t>(to, from, shared, size) ||
      copiesAtOnce<std::uint16_t>(to, from, shared, size)) {
    return;
  }
  auto* const target = static_cast<std::uint8_t*>(to);
  const auto* const source = static_cast<const std::uint8_t*>(from);
  for (std::size_t i = 0; i < size; ++i) {
    __atomic_store_n(target + i, __atomic_load_n(source + i, __ATOMIC_RELAXED), __ATOMIC_RELAXED);
  }
}

}  // namespace

void Using::begin(const void* thing) {
  std::atomic<const void*>& own = announced();
  const std::atomic<const void*>& changing = changingAt(thing);
  while (true) {
    // Exchanged: emulators of Arm let a load overtake a store before it, sequentially consistent as both are.
    own.exchange(thing);
    if (changing.load() != thing) return;
    own.store(nullptr, std::memory_order_release);
    while (changing.load(std::memory_order_relaxed) == thing) std::this_thread::yield();
  }
}

void Using::end() { announced().store(nullptr, std::memory_order_release); }

void Changing::begin() const {
  std::atomic<const void*>& changing = changingAt(thing_);
  for (const void* free = nullptr; !changing.compare_exchange_weak(free, thing_); free = nullptr) {
    std::this_thread::yield();
  }
  for (const Announcement* each = announcements.load(); each; each = each->next) {
    while (each->thing.load() == thing_) std::this_thread::yield();
  }
}

void Changing::end() const { changingAt(thing_).store(nullptr, std::memory_order_release); }

void copyFromShared(void* to, const void* from, std::size_t size) { copy(to, from, from, size); }
void copyToShared(void* to, const void* from, std::size_t size) { copy(to, from, to, size); }
void clearShared(void* to, std::size_t size) {
  if (!threadsShare()) {
    std::memset(to, 0, size);
    return;
  }
  for (std::size_t i = 0; i < size; ++i) storeRelaxed(static_cast<std::uint8_t*>(to)[i], std::uint8_t{0});
}

}  // namespace host
