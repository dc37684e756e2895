// The objects that results share where the values are small.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <new>

#include "frame/debug_log.h"
#include "frame/host_operations.h"
#include "int128/instances.h"

namespace qtx {

// The objects that all results from 0 to 15 share, made when first wanted and kept, with a reference of
// their own, until someone changes one in place.
//
// No thread waits. Where two make the same one at once, the first to store it has made the shared one, and
// the other's is an object like any other. An object is taken in two steps, finding it and adding a
// reference, and must not go away in between: a thread that takes says so first. Who detaches an object drops
// the slot's reference at once where nobody is between the steps, and leaves it to the last who is otherwise.
// That one may be this very thread: adding a reference is the host's code, which may run ours again.
template <typename Value>
class SharedValues {
 public:
  static constexpr std::size_t count = 16;

  // The shared object, with one more reference for the caller; nil where the host cannot make it.
  REALobject take(std::size_t value) {
    Slot& slot = slots_[value];
    slot.takers.fetch_add(1);
    const REALobject shared = slot.object.load();
    if (shared) REALLockObject(shared);
    if (slot.takers.fetch_sub(1) == 1 && slot.left.load()) slot.giveBack();
    return shared ? shared : make(value);
  }

  // Makes a shared object one like any other, since it is about to change. Others are left alone, and so is
  // nil.
  void detach(REALobject instance) {
    if (!instance) return;
    for (Slot& slot : slots_) {
      if (slot.object.load(std::memory_order_relaxed) != instance) continue;
      REALobject found = instance;
      if (!slot.object.compare_exchange_strong(found, nullptr)) continue;
      if (slot.takers.load() == 0) {
        REALUnlockObject(instance);
      } else if (auto* left = new (std::nothrow) Left{instance, nullptr}) {
        slot.leave(left);
        slot.giveBack();
      }  // without memory to note it in, the reference stays: nothing is freed too early
    }
  }

 private:
  // A reference that is to be given back when nobody is between the two steps any more.
  struct Left {
    REALobject object;
    Left* next;
  };

  // All of it in sequentially consistent order: that either who leaves a reference sees that nobody is
  // between the steps, or the last who is sees the reference, holds in no weaker one.
  struct Slot {
    std::atomic<REALobject> object{nullptr};
    std::atomic<std::uint32_t> takers{0};  // threads between finding the object and adding their reference
    std::atomic<Left*> left{nullptr};

    void leave(Left* reference) {
      reference->next = left.load();
      while (!left.compare_exchange_weak(reference->next, reference)) {
      }
    }

    // Who comes between the steps after an object has left the slot cannot find it, so that a moment without
    // takers is enough. Where there is none, whoever ends it comes here.
    void giveBack() {
      while (takers.load() == 0) {
        Left* all = left.exchange(nullptr);
        if (!all) return;
        const bool free = takers.load() == 0;
        while (all) {
          Left* const each = all;
          all = all->next;
          if (free) {
            REALUnlockObject(each->object);
            delete each;
          } else {
            leave(each);
          }
        }
      }
    }
  };

  __attribute__((noinline)) REALobject make(std::size_t value) {
    Trace("new constant", value);
    const REALobject made = makeInstance(Value(value));
    if (!made) return nullptr;
    // The caller's reference is there before another thread can find the object; a host without references
    // gives the caller none.
    const bool locked = REALLockObject.resolve() != nullptr;
    if (locked) REALLockObject(made);
    REALobject none = nullptr;
    const bool stored = slots_[value].object.compare_exchange_strong(none, made);
    if (locked && !stored) REALUnlockObject(made);
    return made;
  }

  std::array<Slot, count> slots_;
};
template <typename Value>
inline constinit SharedValues<Value> constants;

// What every result passes through: the shared object for 0 to 15, a fresh one otherwise; nil where the host
// cannot make it. The reference is the caller's.
template <typename Value>
REALobject newObject(Value value) {
  if (value.high == 0 && value.low < SharedValues<Value>::count) return constants<Value>.take(value.low);
  return makeInstance(value);
}

// To be called before an object is changed in place. Whoever took it while it was shared still refers to it,
// and sees the change.
template <typename Value>
void Modify(REALobject instance) {
  constants<Value>.detach(instance);
}

}  // namespace qtx
