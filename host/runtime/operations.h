// The host operations that a library finds by name.
#pragma once

#include <string>
#include <vector>

#include "frame/host_interface.h"

namespace host {

// The resolver handed to a library; null for a withheld or unknown name.
void* resolve(const char* name);

// Every name that resolve knows, sorted: for --help, for checking --without and for tests.
std::vector<std::string> operationNames();

// Throws std::runtime_error with what went wrong while a library registered itself, if anything did.
void throwRegistrationFailure();

}  // namespace host
