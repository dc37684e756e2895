// REALObject: owns one reference to a host object, or nil.
#pragma once

#include <functional>
#include <utility>

#include "frame/debug_log.h"
#include "frame/host_operations.h"

namespace qtx {

class REALObject {
 public:
  static constexpr const char* moveConstruction = "REALObject::REALObject(REALObject &&)";
  static constexpr const char* moveAssignment = "REALObject &REALObject::operator=(REALObject &&)";

  REALObject() noexcept = default;  // nil
  // Adds a reference. The host is asked for nil too: it knows what to do with it.
  explicit REALObject(REALobject handle) : handle_(handle) {
    Trace("REALObject::REALObject(REALobject)");
    REALLockObject(handle_);
  }
  REALObject(const REALObject& other) : handle_(other.handle_) {
    Trace("REALObject::REALObject(const REALObject &)");
    REALLockObject(handle_);
  }
  REALObject(REALObject&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {
    Trace(moveConstruction);
  }
  // Locks first: both may be the same object, held by nothing else.
  REALObject& operator=(const REALObject& other) {
    Trace("REALObject &REALObject::operator=(const REALObject &)");
    REALLockObject(other.handle_);
    if (handle_) REALUnlockObject(handle_);
    handle_ = other.handle_;
    return *this;
  }
  REALObject& operator=(REALObject&& other) noexcept {
    Trace(moveAssignment);
    if (handle_) REALUnlockObject(handle_);
    handle_ = std::exchange(other.handle_, nullptr);
    return *this;
  }
  ~REALObject() {
    if (!handle_) return;
    Trace("REALObject::~REALObject()");
    REALUnlockObject(std::exchange(handle_, nullptr));
  }

  // A reference of the caller's own.
  REALobject get() const {
    Trace("REALobject REALObject::get() const");
    REALLockObject(handle_);
    return handle_;
  }
  // The handle while this object lives.
  REALobject borrow() const { return handle_; }

  // Identity of the objects, not of the values in them.
  bool operator==(const REALObject& other) const {
    trace("bool REALObject::operator==(const REALObject &) const", other);
    return handle_ == other.handle_;
  }
  // By address.
  bool operator<(const REALObject& other) const {
    trace("bool REALObject::operator<(const REALObject &) const", other);
    return std::less<>()(handle_, other.handle_);
  }

 private:
  void trace(const char* text, const REALObject& other) const {
    Trace(text, static_cast<const void*>(handle_), static_cast<const void*>(other.handle_));
  }

  REALobject handle_ = nullptr;
};

}  // namespace qtx
