// Calls whose arguments are of the parameters' types already.
#pragma once

#include "language/fields.h"
#include "language/program.h"
#include "runtime/class.h"

namespace host {

inline constexpr std::size_t mostParameters = 16;

// One argument: a value of exactly the parameter's type, or a place that goes by reference.
struct Passed {
  Expr value;
  bool byRef = false;
};

// Of a method, a shared method or a function; `self` is null for the latter two. A method that can be
// assigned to gives a place.
// `member`: how the program writes it, for the message where self is Nil.
Expr invoke(const Method& method, Expr self, std::vector<Passed> arguments, std::string member = "");
// The reading of what can be assigned to alone: throws a HostException.
Call unreadable();

// The call itself, on an object that the caller holds; null where the method needs none.
Slot callNow(const Method& method, Heap* self, const std::vector<Passed>& arguments, Frame& frame);
// A new object, on which the constructor is called.
Expr construct(const Class& made, const Method& constructor, std::vector<Passed> arguments);

}  // namespace host
