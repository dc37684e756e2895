// How this host is to behave.
#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>

namespace host {

struct Settings {
  double version = 2024.01;
  std::set<std::string> withheld;  // operations that the resolver denies
  bool otherArrayShape = false;    // arrays that fail a library's look at their memory
  bool keepsMemory = false;        // of what is destroyed, so that its use afterwards can be told
  std::size_t mostBytes =
      SIZE_MAX;  // of one text, array or MemoryBlock, where that is less than each may have anyway
};
Settings& settings();  // set before a library is loaded, only read afterwards

}  // namespace host
