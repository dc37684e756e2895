// Reference: owns one reference to a host string, object or array, or nothing.
#pragma once

#include <type_traits>
#include <utility>

#include "frame/host_operations.h"

namespace qtx {

// Gives its reference back when it ends. As large as the handle.
template <typename Handle>
class Reference {
 public:
  Reference() noexcept = default;  // nothing
  // Takes over the caller's reference: that of what was made or handed over.
  explicit Reference(Handle handle) noexcept : handle_(handle) {}
  // Adds one. The host is asked for null too: it knows what to do with it.
  static Reference to(Handle handle) {
    lock(handle);
    return Reference(handle);
  }

  Reference(const Reference& other) : handle_(other.handle_) { lock(handle_); }
  Reference(Reference&& other) noexcept : handle_(other.release()) {}
  // Locks first: both may be the same object, held by nothing else.
  Reference& operator=(const Reference& other) {
    lock(other.handle_);
    unlock(std::exchange(handle_, other.handle_));
    return *this;
  }
  Reference& operator=(Reference&& other) noexcept {
    unlock(std::exchange(handle_, other.release()));
    return *this;
  }
  // Always inline: whoever called it, if only while unwinding, would have to keep the handle in memory.
  [[gnu::always_inline]] ~Reference() { unlock(handle_); }

  explicit operator bool() const { return handle_ != nullptr; }
  Handle borrow() const { return handle_; }                              // while this object lives
  Handle release() noexcept { return std::exchange(handle_, nullptr); }  // the reference is the caller's now

 private:
  // An array is locked as the object that it is.
  static void lock(Handle handle) {
    if constexpr (std::is_same_v<Handle, REALstring>) {
      REALLockString(handle);
    } else {
      REALLockObject(reinterpret_cast<REALobject>(handle));
    }
  }
  static void unlock(Handle handle) {
    if (!handle) return;
    if constexpr (std::is_same_v<Handle, REALstring>) {
      REALUnlockString(handle);
    } else {
      REALUnlockObject(reinterpret_cast<REALobject>(handle));
    }
  }

  Handle handle_ = nullptr;
};

}  // namespace qtx
