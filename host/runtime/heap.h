// What every string, array and object of the host starts with: its class and its reference count.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <utility>

namespace host {

class Class;

// 32 bytes; the count lies where plug-ins that read arrays directly expect it. Live things form one list per
// process, so that leaks can be listed. Counting is thread-safe.
struct Heap {
  const Class* objectClass;  // never null: strings and arrays have classes of their own
  Heap* previous;
  Heap* next;
  std::atomic<std::int64_t> references;  // 1 when made
};
static_assert(sizeof(Heap) == 32);

void retain(Heap* thing);   // null: nothing
void release(Heap* thing);  // null: nothing; destroys with the last reference

// Enters a thing just made into the list of live things, with one reference; allocators call it.
void enlist(Heap* thing, const Class* objectClass);

// Calls back for each live thing, under the list's lock: for the leak report.
void forEachLive(const std::function<void(const Heap&)>& visit);

// Owns one reference, or is null.
template <typename Thing = Heap>
class Ref {
 public:
  Ref() = default;
  Ref(std::nullptr_t) {}
  static Ref adopt(Thing* thing) {
    Ref ref;
    ref.thing_ = thing;
    return ref;
  }  // takes the caller's reference
  static Ref share(Thing* thing) {
    retain(thing);
    return adopt(thing);
  }  // adds one
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
