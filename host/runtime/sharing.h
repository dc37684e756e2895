// What keeps memory safe that threads of a program share without a lock of the program's own. As long as
// there has been only one thread, all of this is one load and one branch.
#pragma once

#include <atomic>
#include <cstddef>

namespace host {

namespace detail {
inline constinit std::atomic<bool> threadsShare{false};
}
// Whether a second thread has ever been started. Relaxed: whoever starts one says so before, and no thread is
// in the midst of an operation on what is shared while it starts another.
inline bool threadsShare() { return detail::threadsShare.load(std::memory_order_relaxed); }
inline void beginSharing() { detail::threadsShare.store(true, std::memory_order_relaxed); }

// For its lifetime, this thread uses the thing, and no other changes it. Any number of threads use it at
// once; they write only what is one atomic word. Short, and never one within another.
class Using {
 public:
  explicit Using(const void* thing) : shares_(threadsShare()) {
    if (shares_) [[unlikely]]
      begin(thing);
  }
  ~Using() {
    if (shares_) [[unlikely]]
      end();
  }
  Using(const Using&) = delete;
  Using& operator=(const Using&) = delete;

 private:
  static void begin(const void* thing);
  static void end();
  const bool shares_;
};

// For its lifetime, this thread is alone with the thing. Short: nothing of a program runs meanwhile.
class Changing {
 public:
  explicit Changing(const void* thing) : thing_(threadsShare() ? thing : nullptr) {
    if (thing_) [[unlikely]]
      begin();
  }
  ~Changing() {
    if (thing_) [[unlikely]]
      end();
  }
  Changing(const Changing&) = delete;
  Changing& operator=(const Changing&) = delete;

 private:
  void begin() const;
  void end() const;
  const void* const thing_;
};

// A plain value that threads read and write at once: each gets some value that was there.
template <typename Value>
Value loadRelaxed(const Value& from) {
  Value value;
  __atomic_load(&from, &value, __ATOMIC_RELAXED);
  return value;
}
template <typename Value>
void storeRelaxed(Value& to, Value value) {
  __atomic_store(&to, &value, __ATOMIC_RELAXED);
}

// So many bytes of memory at any address: 1, 2, 4 or 8 at a multiple of their number in one piece, others
// byte by byte.
void copyFromShared(void* to, const void* from, std::size_t size);
void copyToShared(void* to, const void* from, std::size_t size);
void clearShared(void* to, std::size_t size);

}  // namespace host
