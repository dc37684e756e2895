// The host's exceptions: objects of the class RuntimeException and its subclasses.
#pragma once

#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/object.h"

namespace host {

// In flight in the interpreter. `trace` collects where it passed, innermost first: "main.bas:12: Worker".
class HostException {
 public:
  explicit HostException(Ref<Object> thrown) : exception(std::move(thrown)) {}
  HostException(std::string_view className, std::string_view message);  // makes the object

  Ref<Object> exception;
  std::vector<std::string> trace;
};

std::string messageOf(const Object& exception);  // its Message, in UTF-8
std::int64_t errorNumberOf(const Object& exception);

// The plug-in's raising operation marks an exception pending on the calling thread; it is thrown when the
// call returns. A second one before that replaces the first.
void setPending(Ref<Object> exception);
Ref<Object> takePending();  // null when none is

// Puts the pending exception aside for its lifetime: what the host calls on a library's behalf, while a
// function of the library is still running, must not take that function's exception for its own.
class PendingAside {
 public:
  PendingAside() : aside_(takePending()) {}
  ~PendingAside() { setPending(std::move(aside_)); }
  PendingAside(const PendingAside&) = delete;
  PendingAside& operator=(const PendingAside&) = delete;

 private:
  Ref<Object> aside_;
};

}  // namespace host
