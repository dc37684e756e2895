// The host operations that a library finds by name, and how this host is to behave.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "frame/host_interface.h"

namespace host {

struct Settings {
  double version = 2024.01;
  std::set<std::string> withheld;  // operations that the resolver denies
  bool otherArrayShape = false;    // arrays that fail a library's look at their memory
};
Settings& settings();  // set before a library is loaded, only read afterwards

// The resolver handed to a library; null for a withheld or unknown name.
void* resolve(const char* name);

// Every name that resolve knows, sorted: for --help, for checking --without and for tests.
std::vector<std::string> operationNames();

// Throws std::runtime_error with what went wrong while a library registered itself, if anything did.
void throwRegistrationFailure();

}  // namespace host
