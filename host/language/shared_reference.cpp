// References that threads share, by hazard pointers: before a reader counts itself among the holders of a
// thing, it announces in a place of its thread's own which thing it is about to hold, and looks whether the
// slot still holds it; a writer gives the old thing back only when nobody announces it. Maged M. Michael,
// "Hazard Pointers: Safe Memory Reclamation for Lock-Free Objects", IEEE Transactions on Parallel and
// Distributed Systems 15 (2004).
#include "language/shared_reference.h"

#include <atomic>
#include <thread>

namespace host {

namespace {

// One thread's announcement, on a cache line of its own. They are never freed, but used again by other
// threads.
struct alignas(64) Announcement {
  std::atomic<Heap*> thing{nullptr};
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

}  // namespace

Ref<Heap> loadShared(const Slot& slot) {
  thread_local const OwnAnnouncement own;
  std::atomic<Heap*>& announced = own.announcement->thing;
  Heap* thing = __atomic_load_n(&slot.heap, __ATOMIC_SEQ_CST);
  while (thing) {
    announced.store(thing);
    Heap* const still = __atomic_load_n(&slot.heap, __ATOMIC_SEQ_CST);
    if (still == thing) break;
    thing = still;
  }
  Ref<Heap> held = Ref<Heap>::share(thing);
  announced.store(nullptr, std::memory_order_release);
  return held;
}

void storeShared(Slot& slot, Heap* owned) {
  Heap* const old = __atomic_exchange_n(&slot.heap, owned, __ATOMIC_SEQ_CST);
  if (!old) return;
  for (Announcement* each = announcements.load(); each; each = each->next) {
    while (each->thing.load() == old) std::this_thread::yield();
  }
  release(old);
}

}  // namespace host
