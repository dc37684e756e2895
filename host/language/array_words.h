// What is done with an array as a whole: to search, sort and shuffle it.
#pragma once

#include "language/node.h"
#include "runtime/array.h"
#include "runtime/exception.h"

namespace host {

inline Array& arrayIn(Slot slot) {
  if (!slot.heap) throw HostException("NilObjectException", "The array is Nil.");
  return *static_cast<Array*>(slot.heap);
}

// Of a type of several dimensions.
inline Grid& gridIn(Slot slot) { return static_cast<Grid&>(arrayIn(slot)); }

// What is done with an array; without a value.
template <typename Action>
Expr doing(Expr array, Action action) {
  return integerNode(Type{}, [array = std::move(array), action = std::move(action)](Frame& f) {
    const Held held(*array, f);
    action(held.slot, f);
    return 0;
  });
}

// Methods of arrays, which move from the arguments: IndexOf(value, start), Contains(value), Sort,
// Sort(AddressOf compare), Shuffle. All throw ProgramError where the elements are not for it.
Expr indexOfElement(Expr array, Exprs& arguments);
Expr containsElement(Expr array, Exprs& arguments);
Expr sortElements(Expr array, Exprs& arguments);
Expr shuffleElements(Expr array, Exprs& arguments);

}  // namespace host
