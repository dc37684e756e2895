// What every string, array and object of the host starts with: its class and its reference count.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <type_traits>
#include <utility>

namespace host {

class Class;
class LiveThings;  // a list of them; heap.cpp keeps several

// 32 bytes; the count lies where plug-ins that read arrays directly expect it. Live things are listed, so
// that leaks can be shown. Counting is thread-safe.
struct Heap {
  alignas(8) const Class* objectClass;   // never null: strings and arrays have classes of their own
  alignas(8) LiveThings* among;          // the list that it stands in; null once it is destroyed
  alignas(8) std::size_t place;          // in the list, under its lock
  std::atomic<std::int64_t> references;  // 1 when made
};
static_assert(sizeof(Heap) == 32);

// Memory for a thing of so many bytes, head included, which it enters among the live ones with one reference;
// the rest is not initialised. Null where there is no memory.
Heap* allocate(const Class& objectClass, std::size_t size);

// Finalizes a thing without references and frees its memory; for release alone.
void destroy(Heap* thing);
// Whether this thread has more to destroy when its stack is free again.
bool anyDestructionIsPutOff();

inline void retain(Heap* thing) {  // null: nothing
  if (thing) thing->references.fetch_add(1, std::memory_order_relaxed);
}
inline void release(Heap* thing) {  // null: nothing; destroys with the last reference
  if (thing && thing->references.fetch_sub(1, std::memory_order_acq_rel) == 1) destroy(thing);
}

// Calls back for each live thing, for the leak report: those of a thread from the newest to the oldest, and
// those of a thread that began later first.
void forEachLive(const std::function<void(const Heap&)>& visit);

// False on a host without an operation that adds references: there none is counted that could be relied on,
// and nothing ends.
bool destroysAnything();

// Where the settings keep the memory of what is destroyed: false once a thing has been.
inline bool isAlive(const Heap& thing) { return thing.among != nullptr; }
// Calls back for each thing whose references were counted up or down after it was destroyed.
void forEachMisused(const std::function<void(const Heap&)>& visit);

// Owns one reference, or is null.
template <typename Thing = Heap>
class Ref {
 public:
  Ref() = default;
  Ref(std::nullptr_t) {}
  // Takes the caller's reference.
  static Ref adopt(Thing* thing) {
    Ref ref;
    ref.thing_ = thing;
    return ref;
  }
  // Adds one.
  static Ref share(Thing* thing) {
    retain(thing);
    return adopt(thing);
  }
  Ref(const Ref& other) : thing_(other.thing_) { retain(thing_); }
  Ref(Ref&& other) noexcept : thing_(std::exchange(other.thing_, nullptr)) {}
  template <typename Derived>
  requires(!std::is_same_v<Derived, Thing> && std::is_convertible_v<Derived*, Thing*>) Ref(Ref<Derived> other)
      : thing_(other.detach()) {}
  Ref& operator=(Ref other) noexcept {
    std::swap(thing_, other.thing_);
    return *this;
  }
  ~Ref() { release(thing_); }

  Thing* get() const { return thing_; }
  Thing* detach() { return std::exchange(thing_, nullptr); }  // hands the reference over
  Thing* operator->() const { return thing_; }
  Thing& operator*() const { return *thing_; }
  explicit operator bool() const { return thing_ != nullptr; }

 private:
  Thing* thing_ = nullptr;
};

}  // namespace host
