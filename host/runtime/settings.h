// How this host is to behave.
#pragma once

#include <set>
#include <string>

namespace host {

struct Settings {
  double version = 2024.01;
  std::set<std::string> withheld;  // operations that the resolver denies
  bool otherArrayShape = false;    // arrays that fail a library's look at their memory
};
Settings& settings();  // set before a library is loaded, only read afterwards

}  // namespace host
