// A library that is loaded to be validated: watched, its records looked at.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "validation/members.h"
#include "validation/record_checks.h"

namespace host {

struct CheckedLibrary {
  std::vector<Finding> findings;  // in its records
  std::size_t records = 0;
  std::vector<Member> members;     // what of it can be called
  std::vector<std::string> asked;  // the operations that it asked for while it registered itself
};

// Once a process. Throws std::runtime_error where it is no library.
CheckedLibrary loadChecked(const std::filesystem::path& file);

}  // namespace host
