// Everything of a library that a host may call, as its records have it.
#pragma once

#include <string>
#include <vector>

#include "runtime/registry.h"

namespace host {

struct Member {
  std::string name;  // "AtomicQueueQTX.Push(value as Variant)", "AtomicQueueQTX.Count (get)"
  // Takes an object of it first; null: takes none.
  const Class* self = nullptr;
  // What a caller chooses: neither the object nor the number of a property.
  std::vector<Passing> parameters;
  Type result;
  Call call;
  const Property* property = nullptr;  // whose getter or setter it is
  bool isInstance = false;             // no function: an object that is made and goes again
  bool makes = false;                  // gives a new object its value: Constructor, Operator_Convert
  bool feeds = false;                  // changes an object by what it is given, and has no result

  // The parameters as the function takes them, those that nobody chooses included.
  std::vector<Passing> passed() const;
};

// Of all libraries, in the order of registration.
std::vector<Member> membersOf(const Registry& registry);

}  // namespace host
