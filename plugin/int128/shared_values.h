// The objects that results share where the values are small.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <new>

#include "frame/debug_log.h"
#include "frame/host_operations.h"
#include "int128/hazard_pointers.h"
#include "int128/instances.h"

namespace qtx {

// The objects that all results from 0 to 15 share, made when first wanted and kept, with a reference of
// their own, until someone changes one in place.
//
// No thread waits. Where two make the same one at once, the first to store it has made the shared one, and
// the other's is an object like any other. An object is taken in two steps, finding it and adding a
// reference, and must not go away in between: a thread that takes announces it first. Who detaches an object
// drops the table's reference at once where nobody announces it, and leaves it to who does otherwise. That
// one may be this very thread: adding a reference is the host's code, which may run ours again.
template <typename Value>
class SharedValues {
 public:
  static constexpr std::size_t count = 16;

  // The shared object, with one more reference for the caller; nil where the host cannot make it.
  __attribute__((noinline)) REALobject take(std::size_t value) noexcept {
    Slot& slot = slots_[value];
    const REALobject shared = slot.load(std::memory_order_relaxed);
    if (!shared) [[unlikely]]
      return make(value);
    HazardPointers::Place* const place = hazards_.announce(shared);
    if (!place || slot.load() != shared) [[unlikely]] {
      if (place) HazardPointers::clear(*place);
      return takeUnnamed(value);
    }
    REALLockObject(shared);
    HazardPointers::clear(*place);
    if (left_.load()) [[unlikely]]
      giveBack();
    return shared;
  }

  // Makes a shared object one like any other, since it is about to change. Others are left alone, and so is
  // nil.
  void detach(REALobject instance) {
    if (!instance) return;
    if (strayed_.load(std::memory_order_relaxed)) [[unlikely]] {
      for (Slot& slot : slots_) drop(slot, instance);
    } else if (const Value value = valueOf<Value>(instance); isShared(value)) {
      drop(slotOf(value), instance);
    }
  }

  // To be called before an object is given another value without being detached. From then on a shared
  // object need not hold its slot's number.
  void overwrite(REALobject instance) {
    const Value value = valueOf<Value>(instance);
    if (isShared(value) && slotOf(value).load(std::memory_order_relaxed) == instance) {
      strayed_.store(true, std::memory_order_relaxed);
    }
  }

  static bool isShared(Value value) { return value.high == 0 && value.low < count; }

 private:
  using Slot = std::atomic<REALobject>;
  Slot& slotOf(const Value& value) { return slots_[static_cast<std::size_t>(value.low)]; }

  // A reference that is to be given back when nobody announces its object any more.
  struct Left {
    REALobject object;
    Left* next;
  };

  __attribute__((noinline)) REALobject make(std::size_t value) noexcept {
    Trace("new constant", value);
    const REALobject made = makeInstance(Value(value));
    if (!made) return nullptr;
    // The caller's reference is there before another thread can find the object; a host without references
    // gives the caller none.
    const bool locked = REALLockObject.resolve() != nullptr;
    if (locked) REALLockObject(made);
    REALobject none = nullptr;
    const bool stored = slots_[value].compare_exchange_strong(none, made);
    if (locked && !stored) REALUnlockObject(made);
    return made;
  }

  __attribute__((noinline)) REALobject takeUnnamed(std::size_t value) noexcept {
    hazards_.enterUnnamed();
    const REALobject shared = slots_[value].load();
    if (shared) REALLockObject(shared);
    hazards_.leaveUnnamed();
    if (left_.load()) giveBack();
    return shared ? shared : make(value);
  }

  void drop(Slot& slot, REALobject instance) {
    REALobject found = instance;
    if (slot.load(std::memory_order_relaxed) != instance || !slot.compare_exchange_strong(found, nullptr)) {
      return;
    }
    if (!hazards_.isAnnounced(instance)) {
      REALUnlockObject(instance);
    } else if (auto* left = new (std::nothrow) Left{instance, nullptr}) {
      leave(left);
      giveBack();
    }  // without memory to note it in, the reference stays: nothing is freed too early
  }

  void leave(Left* reference) {
    reference->next = left_.load();
    while (!left_.compare_exchange_weak(reference->next, reference)) {
    }
  }

  // Nobody can find an object that has left its slot, so that a moment in which it is not announced is
  // enough. Where it is, its taker comes here afterwards. A taker whose last step is still on its way to the
  // other threads can seem to be there and yet have looked for what is left too early: then whoever takes
  // next comes here. To exclude that would cost every taker a second locked instruction.
  __attribute__((noinline)) void giveBack() {
    REALobject kept = nullptr;
    do {
      Left* all = left_.exchange(nullptr);
      kept = nullptr;
      while (all) {
        Left* const each = all;
        all = all->next;
        if (hazards_.isAnnounced(each->object)) {
          kept = each->object;
          leave(each);
        } else {
          REALUnlockObject(each->object);
          delete each;
        }
      }
    } while (kept && !hazards_.isAnnounced(kept));
  }

  std::array<Slot, count> slots_{};
  std::atomic<bool> strayed_{false};  // a shared object may hold another number than its slot's
  std::atomic<Left*> left_{nullptr};
  HazardPointers hazards_;
};
template <typename Value>
inline constinit SharedValues<Value> constants;

// What every result passes through: the shared object for 0 to 15, a fresh one otherwise; nil where the host
// cannot make it. The reference is the caller's.
template <typename Value>
REALobject newObject(Value value) noexcept {
  if (SharedValues<Value>::isShared(value)) return constants<Value>.take(static_cast<std::size_t>(value.low));
  return makeInstance(value);
}

// To be called before an object is changed in place. Whoever took it while it was shared still refers to it,
// and sees the change.
template <typename Value>
void Modify(REALobject instance) {
  constants<Value>.detach(instance);
}

}  // namespace qtx
