// Declarations: each is understood or refused with a reason.
#include <stdexcept>

#include "runtime/registry.h"

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
  host::Registry names;  // of its own: a class that is mentioned is entered there
  try {
    host::parseDeclaration({data, size}, names);
  } catch (const std::runtime_error&) {
  }
  return 0;
}
