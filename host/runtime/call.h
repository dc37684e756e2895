// Calls of C functions by their declared types.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "frame/host_interface.h"
#include "runtime/sharing.h"
#include "runtime/throwing.h"
#include "runtime/value.h"

namespace host {

// How one argument travels: by its type, or as a pointer to a variable of that type.
struct Passing {
  Type type;
  bool byRef = false;
};

// A function ready to be called any number of times, by any number of threads at once.
class Call {
 public:
  Call() = default;
  Call(REALproc callee, const std::vector<Passing>& arguments, Type result);

  // Of what a program declares itself: `run` is handed `own` and the arguments, which stay the caller's as a
  // C function's do, and may throw at once.
  using Run = Slot (*)(const void* own, const Slot* arguments);
  Call(Run run, const void* own) : run_(run), own_(own) {}

  explicit operator bool() const { return function_ != nullptr || run_ != nullptr; }

  // Slots hold values as value.h says; a byRef argument's slot holds the address of a variable of exactly its
  // type. A reference result is owned by the caller. Throws HostException when the function left an exception
  // pending (its result is released first).
  Slot operator()(std::span<const Slot> arguments) const {
    if (readsReferences_ && threadsShare()) [[unlikely]]
      return whileReading(arguments);
    return checked(arguments);
  }

  // The same, but an exception that the function left pending stays so, beside the result.
  Slot enter(std::span<const Slot> arguments) const {
    return direct_ ? direct_(function_, arguments.data()) : indirectly(arguments);
  }

  REALproc function() const { return function_; }

 private:
  struct Prepared;
  Slot checked(std::span<const Slot> arguments) const {
    const Slot result = enter(arguments);
    if (pendingException) [[unlikely]]
      throwPending(returnsThing_ ? result.heap : nullptr);
    return result;
  }
  Slot whileReading(std::span<const Slot> arguments) const;
  Slot indirectly(std::span<const Slot> arguments) const;

  REALproc function_ = nullptr;
  Slot (*direct_)(REALproc function, const Slot* arguments) = nullptr;  // for the frequent shapes; else null
  Run run_ = nullptr;
  const void* own_ = nullptr;
  bool returnsThing_ = false;
  bool readsReferences_ = false;              // is handed an array of them
  std::shared_ptr<const Prepared> prepared_;  // libffi keeps pointers into it
};

}  // namespace host
