// Lets libraries register themselves.
#include "runtime/library.h"

#include <stdexcept>

#include "runtime/operations.h"
#include "runtime/registry.h"

namespace host {

void loadLibrary(const std::filesystem::path& file) {
  openLibrary(file)(&resolve);
  try {
    throwRegistrationFailure();
    registry().checkComplete();
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(file.string() + ": " + error.what());
  }
}

}  // namespace host
