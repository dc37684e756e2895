// REALObject: an element of a queue, which owns one reference to a host object, or nil, and traces what
// happens to it.
#pragma once

#include <functional>
#include <utility>

#include "frame/debug_log.h"
#include "frame/reference.h"

namespace qtx {

class REALObject {
 public:
  static constexpr const char* moveConstruction = "REALObject::REALObject(REALObject &&)";
  static constexpr const char* moveAssignment = "REALObject &REALObject::operator=(REALObject &&)";

  REALObject() noexcept = default;  // nil
  explicit REALObject(REALobject handle) {
    Trace("REALObject::REALObject(REALobject)");
    reference_ = Reference<REALobject>::to(handle);
  }
  REALObject(const REALObject& other) {
    Trace("REALObject::REALObject(const REALObject &)");
    reference_ = other.reference_;
  }
  REALObject(REALObject&& other) noexcept : reference_(std::move(other.reference_)) {
    Trace(moveConstruction);
  }
  REALObject& operator=(const REALObject& other) {
    Trace("REALObject &REALObject::operator=(const REALObject &)");
    reference_ = other.reference_;
    return *this;
  }
  REALObject& operator=(REALObject&& other) noexcept {
    Trace(moveAssignment);
    reference_ = std::move(other.reference_);
    return *this;
  }
  ~REALObject() {
    if (reference_) Trace("REALObject::~REALObject()");
  }

  // A reference of the caller's own.
  REALobject get() const {
    Trace("REALobject REALObject::get() const");
    return Reference(reference_).release();
  }
  // The handle while this object lives.
  REALobject borrow() const { return reference_.borrow(); }

  // Identity of the objects, not of the values in them.
  bool operator==(const REALObject& other) const {
    trace("bool REALObject::operator==(const REALObject &) const", other);
    return borrow() == other.borrow();
  }
  // By address.
  bool operator<(const REALObject& other) const {
    trace("bool REALObject::operator<(const REALObject &) const", other);
    return std::less<>()(borrow(), other.borrow());
  }

 private:
  void trace(const char* text, const REALObject& other) const {
    Trace(text, static_cast<const void*>(borrow()), static_cast<const void*>(other.borrow()));
  }

  Reference<REALobject> reference_;
};

}  // namespace qtx
