// Declarations: each is understood or refused with a reason.
#include <stdexcept>

#include "runtime/registry.h"

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
  try {
    host::parseDeclaration({data, size}, host::registry());
  } catch (const std::runtime_error&) {
  }
  return 0;
}
