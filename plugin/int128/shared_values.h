// The objects that results share where the values are small.
#pragma once

#include <array>
#include <atomic>
#include <thread>

#include "frame/debug_log.h"
#include "frame/host_operations.h"
#include "int128/instances.h"

namespace qtx {

// The objects that all results from 0 to 15 share, made when first wanted and kept, with a reference of
// their own, until someone changes one in place.
//
// No thread waits to take an object. Where two make the same one at once, the first to store it has made the
// shared one, and the other's is an object like any other. An object is taken in two steps, finding it and
// adding a reference, and must not go away in between: a thread that takes says so first, and detaching
// drops the slot's reference only when nobody is between the steps, which is soon: adding a reference runs
// nobody else's code.
template <typename Value>
class SharedValues {
 public:
  static constexpr std::size_t count = 16;

  // The shared object, with one more reference for the caller; nil where the host cannot make it.
  REALobject take(std::size_t value) {
    Slot& slot = slots_[value];
    slot.takers.fetch_add(1, std::memory_order_seq_cst);
    const REALobject shared = slot.object.load(std::memory_order_seq_cst);
    if (shared) REALLockObject(shared);
    slot.takers.fetch_sub(1, std::memory_order_release);
    return shared ? shared : make(value);
  }

  // Makes a shared object one like any other, since it is about to change. Others are left alone, and so is
  // nil.
  void detach(REALobject instance) {
    if (!instance) return;
    for (Slot& slot : slots_) {
      if (slot.object.load(std::memory_order_relaxed) != instance) continue;
      REALobject found = instance;
      if (!slot.object.compare_exchange_strong(found, nullptr, std::memory_order_seq_cst)) continue;
      while (slot.takers.load(std::memory_order_seq_cst) != 0) std::this_thread::yield();
      REALUnlockObject(instance);
    }
  }

 private:
  struct Slot {
    std::atomic<REALobject> object{nullptr};
    std::atomic<std::uint32_t> takers{0};  // threads between finding the object and adding their reference
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
    const bool stored = slots_[value].object.compare_exchange_strong(none, made, std::memory_order_seq_cst);
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
