// Texts for people: what is registered, what is still alive, what went wrong.
#pragma once

#include <set>
#include <string>

#include "runtime/exception.h"

namespace host {

// Every class, member and function that libraries have registered, in that order, with their declarations.
std::string listing();
// What it has of that name, "Name" or "Class.Name": a class whole, or the members and functions called so,
// each with its owner in front. Empty where there is none.
std::string listing(std::string_view name);

struct LeakReport {
  std::string leaks;  // empty if there is none
  std::string
      cycles;  // what the program's own objects and arrays hold among themselves, and nothing else does
};
// What is still alive, a line each with its count of references. Of the classes in `kept` a library may keep
// objects for itself: one reference to each is as it should be.
LeakReport leakReport(const std::set<std::string>& kept);

// "tour.bas:12: NilObjectException: Other is nil", then the calls that led there.
std::string describe(const HostException& exception);

}  // namespace host
