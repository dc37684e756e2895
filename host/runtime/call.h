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

  explicit operator bool() const { return function_ != nullptr; }

  // Slots hold values as value.h says; a byRef argument's slot holds the address of a variable of exactly its
  // type. A reference result is owned by the caller. Throws HostException when the function left an exception
  // pending (its result is released first).
  Slot operator()(std::span<const Slot> arguments) const {
    if (readsReferences_ && threadsShare()) [[unlikely]]
      return whileReading(arguments);
    return run(arguments);
  }

 private:
  struct Prepared;
  Slot run(std::span<const Slot> arguments) const {
    const Slot result = direct_ ? direct_(function_, arguments.data()) : throughLibffi(arguments);
    if (pendingException) [[unlikely]]
      throwPending(returnsThing_ ? result.heap : nullptr);
    return result;
  }
  Slot whileReading(std::span<const Slot> arguments) const;
  Slot throughLibffi(std::span<const Slot> arguments) const;

  REALproc function_ = nullptr;
  Slot (*direct_)(REALproc function, const Slot* arguments) = nullptr;  // for the frequent shapes; else null
  bool returnsThing_ = false;
  bool readsReferences_ = false;              // is handed an array of them
  std::shared_ptr<const Prepared> prepared_;  // libffi keeps pointers into it
};

}  // namespace host
