// The host's exceptions: objects of the class RuntimeException and its subclasses.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/object.h"
#include "runtime/text.h"

namespace host {

// Instance data of RuntimeException; subclasses add none.
struct ExceptionData {
  Text* message;  // owned
  std::int64_t errorNumber;
};

// Where a program was when it threw an exception, innermost call first. Of very many calls, the first and the
// last: what is left out are `skipped` calls after the first `keptFirst`.
struct Trace {
  static constexpr std::size_t keptFirst = 24, keptLast = 12;
  struct Call {
    const char* file;
    const char* sub;  // empty: the module level
    int line;
  };
  std::vector<Call> calls;
  std::size_t skipped = 0;

  static Trace here();
};

// In flight in the interpreter.
class HostException {
 public:
  explicit HostException(Ref<Object> thrown) : exception(std::move(thrown)), trace(Trace::here()) {}
  HostException(std::string_view className, std::string_view message);  // makes the object

  Ref<Object> exception;
  Trace trace;
};

std::string messageOf(const Object& exception);  // its Message, in UTF-8

// The plug-in's raising operation marks an exception pending on the calling thread; it is thrown when the
// call returns. A second one before that replaces the first.
void setPending(Ref<Object> exception);
Ref<Object> takePending();  // null when none is

// Runs the body of a function that the language calls: a HostException that leaves it becomes the pending
// one.
template <typename Body>
auto asPending(Body body) noexcept -> decltype(body()) {
  try {
    return body();
  } catch (const HostException& exception) {
    setPending(exception.exception);
  } catch (const std::bad_alloc&) {
    setPending(HostException("OutOfMemoryException", "There is not enough memory.").exception);
  }
  return decltype(body())();
}

}  // namespace host
