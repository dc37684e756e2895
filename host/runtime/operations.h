// The host operations that a library finds by name.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "frame/host_interface.h"

namespace host {

struct Heap;

// The resolver handed to a library; null for a withheld or unknown name.
void* resolve(const char* name);

// Stands between a library and the operations that it calls.
class OperationWatch {
 public:
  // Before each call of an operation, on the caller's thread, with the handles that it was given. True: the
  // call is not carried out and answers null, zero or false. Calls without an answer are carried out anyway.
  virtual bool refuses(const char* operation, bool answers, std::span<Heap* const> handles) noexcept = 0;

 protected:
  ~OperationWatch() = default;
};
// Of what resolve gives from now on. Null: nobody watches, and calls go straight to the operations.
inline constinit OperationWatch* operationWatch = nullptr;

// Every name that resolve knows, sorted: for --help, for checking --without and for tests.
std::vector<std::string> operationNames();

// Throws std::runtime_error with what went wrong while a library registered itself, if anything did.
void throwRegistrationFailure();

}  // namespace host
