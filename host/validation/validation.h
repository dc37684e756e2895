// Validates a library: every record, and every member in many ways, each in a process of its own.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "validation/finding.h"

namespace host {

struct CheckDescription {
  const char* name;
  const char* says;  // "Each member with ..."
};
// In the order in which they are made.
const std::vector<CheckDescription>& checkDescriptions();

struct ValidationOptions {
  std::filesystem::path library;
  std::vector<std::string> only;    // parts of names of members; empty: all members
  std::vector<std::string> checks;  // names; empty: all
  std::uint64_t seed = 1;
  unsigned rounds = 20;   // of random calls, for each member
  bool thorough = false;  // more arguments where some would do
  double seconds = 20;    // that a process may take
  unsigned jobs = 1;      // processes at once
  bool shown = false;     // what the library prints
  std::function<void(const std::string& check, std::size_t done, std::size_t all)> progress;
};

struct Validation {
  std::vector<Finding> findings;  // in the order of checks, and of members within
  std::size_t records = 0, members = 0;
  std::map<std::string, std::size_t> cases;  // by check: how many there were
};

// The host's version and what it withholds are those of the settings. Throws std::runtime_error where the
// file is no library, or the options name no member.
Validation validate(const ValidationOptions& options);

}  // namespace host
