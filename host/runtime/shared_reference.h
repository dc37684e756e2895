// A variable for a reference that several threads read and replace at once.
#pragma once

#include <atomic>
#include <cstdint>
#include <thread>

#include "runtime/heap.h"

namespace host {

// Whoever reads takes a reference of its own before another thread can give the variable's back. That is a
// matter of a few instructions, during which the lowest bit of the address is set; variables do not wait for
// each other.
class SharedReference {
 public:
  SharedReference() = default;
  SharedReference(const SharedReference&) = delete;
  SharedReference& operator=(const SharedReference&) = delete;
  ~SharedReference() { exchange(nullptr); }

  Ref<> load() const {
    if (word_.load(std::memory_order_acquire) == 0) return nullptr;
    Heap* thing = lock();
    retain(thing);
    unlock(thing);
    return Ref<>::adopt(thing);
  }

  // Gives back what was there.
  Ref<> exchange(Ref<> thing) {
    Heap* old = lock();
    unlock(thing.detach());
    return Ref<>::adopt(old);
  }

 private:
  static constexpr std::uintptr_t locked = 1;

  Heap* lock() const {
    for (int attempt = 1;; ++attempt) {
      std::uintptr_t word = word_.load(std::memory_order_relaxed) & ~locked;
      if (word_.compare_exchange_weak(word, word | locked, std::memory_order_acquire)) {
        return reinterpret_cast<Heap*>(word);
      }
      if (attempt % 64 == 0) std::this_thread::yield();  // who holds it may be waiting for this processor
    }
  }
  void unlock(Heap* thing) const {
    word_.store(reinterpret_cast<std::uintptr_t>(thing), std::memory_order_release);
  }

  mutable std::atomic<std::uintptr_t> word_ = 0;
};

}  // namespace host
