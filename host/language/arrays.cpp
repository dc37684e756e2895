// Arrays as a program uses them.
#include "language/arrays.h"

#include <algorithm>
#include <array>

#include "language/absent_words.h"
#include "language/array_words.h"
#include "language/conversions.h"
#include "language/places.h"
#include "language/spelling.h"
#include "runtime/array.h"
#include "runtime/wording.h"

namespace host {

namespace {

std::int64_t countFor(std::int64_t upperBound) {
  if (upperBound < -1) throw HostException("OutOfBoundsException", "The upper bound is less than -1.");
  if (upperBound == INT64_MAX) throw HostException("OutOfMemoryException", "The array is too big.");
  return upperBound + 1;
}

Expr asIndex(Expr value) { return convertTo(std::move(value), {Kind::Int64}, "the index"); }

Expr count(Expr array, Exprs&) {
  return integerNode({Kind::Int64}, [array = std::move(array)](Frame& f) {
    const Held held(*array, f);
    return arrayIn(held.slot).count();
  });
}

// Of a dimension, where one is given; else of the first.
Expr lastIndex(Expr array, Exprs& arguments) {
  if (arguments.empty() && array->type.array == 1) {
    return integerNode({Kind::Int64}, [array = std::move(array)](Frame& f) {
      const Held held(*array, f);
      return arrayIn(held.slot).count() - 1;
    });
  }
  Expr dimension = arguments.empty() ? integerLiteral(1, {Kind::Int64})
                                     : convertTo(std::move(arguments[0]), {Kind::Int64}, "the dimension");
  return integerNode({Kind::Int64}, [array = std::move(array), dimension = std::move(dimension)](Frame& f) {
    const Held held(*array, f);
    const std::int64_t which = dimension->integer(f);
    return arrayIn(held.slot).upperBound(which);
  });
}

Expr append(Expr array, Exprs& arguments) {
  Expr value = convertTo(std::move(arguments[0]), array->type.element(), "the element");
  return doing(std::move(array), [value = std::move(value)](Slot slot, Frame& f) {
    const Held owned(*value, f);
    arrayIn(slot).append(owned.slot);
  });
}

Expr insert(Expr array, Exprs& arguments) {
  Expr index = asIndex(std::move(arguments[0]));
  Expr value = convertTo(std::move(arguments[1]), array->type.element(), "the element");
  return doing(std::move(array), [index = std::move(index), value = std::move(value)](Slot slot, Frame& f) {
    const std::int64_t at = index->integer(f);
    const Held owned(*value, f);
    arrayIn(slot).insert(at, owned.slot);
  });
}

Expr remove(Expr array, Exprs& arguments) {
  return doing(std::move(array), [index = asIndex(std::move(arguments[0]))](Slot slot, Frame& f) {
    arrayIn(slot).remove(index->integer(f));
  });
}

Expr removeAll(Expr array, Exprs&) {
  return doing(std::move(array), [](Slot slot, Frame&) { arrayIn(slot).resize(0); });
}

Expr resizeTo(Expr array, Exprs& arguments) {
  return doing(std::move(array), [bound = asIndex(std::move(arguments[0]))](Slot slot, Frame& f) {
    const std::int64_t upper = bound->integer(f);
    arrayIn(slot).resize(countFor(upper));
  });
}

Expr pop(Expr array, Exprs&) {
  const Type type = array->type.element();
  return slotNode(type, [array = std::move(array)](Frame& f) {
    const Held held(*array, f);
    return arrayIn(held.slot).pop();
  });
}

constexpr struct {
  std::string_view name;
  std::size_t arguments;
  Expr (*make)(Expr array, Exprs& arguments);  // moves from them
  std::size_t optional = 0;                    // how many arguments more it may have
  bool ofSeveral = false;                      // arrays of several dimensions have it too
} methods[] = {{"Ubound", 0, &lastIndex, 1, true},
               {"LastIndex", 0, &lastIndex, 1, true},
               {"LastRowIndex", 0, &lastIndex, 1, true},
               {"Count", 0, &count, 0, true},
               {"Append", 1, &append},
               {"Add", 1, &append},
               {"AddRow", 1, &append},
               {"Insert", 2, &insert},
               {"AddAt", 2, &insert},
               {"AddRowAt", 2, &insert},
               {"Remove", 1, &remove},
               {"RemoveAt", 1, &remove},
               {"RemoveRowAt", 1, &remove},
               {"RemoveAll", 0, &removeAll},
               {"RemoveAllRows", 0, &removeAll},
               {"ResizeTo", 1, &resizeTo},
               {"Pop", 0, &pop},
               {"IndexOf", 1, &indexOfElement, 1},
               {"Contains", 1, &containsElement, 0, true},
               {"Sort", 0, &sortElements, 1},
               {"Shuffle", 0, &shuffleElements}};

// The place with so many indices or more.
template <std::size_t dimensions = 2>
Expr elementOfSeveral(Expr array, Exprs indices) {
  if constexpr (dimensions < mostDimensions) {
    if (indices.size() > dimensions) {
      return elementOfSeveral<dimensions + 1>(std::move(array), std::move(indices));
    }
  }
  const Type type = array->type.element();
  std::array<Expr, dimensions + 1> operands = {std::move(array)};
  for (std::size_t i = 0; i < dimensions; ++i) operands[i + 1] = asIndex(std::move(indices[i]));
  return operandPlace<dimensions + 1>(
      type, std::move(operands), [](const Slot* slots) { return gridIn(slots[0]).get(slots + 1); },
      [](const Slot* slots, Slot value) { gridIn(slots[0]).set(slots + 1, value); });
}

// For each dimension how many indices an array with those upper bounds has.
std::vector<std::int64_t> countsFor(const Exprs& upperBounds, Frame& frame) {
  std::vector<std::int64_t> counts;
  for (const Expr& each : upperBounds) counts.push_back(countFor(each->integer(frame)));
  return counts;
}

}  // namespace

Expr element(Expr array, Position position, Exprs indices) {
  if (indices.size() != array->type.array) {
    fail(position, "expected " + counted(array->type.array, "index", "indices") + ", found " +
                       std::to_string(indices.size()));
  }
  if (indices.size() > 1) return elementOfSeveral(std::move(array), std::move(indices));
  const Type type = array->type.element();
  return operandPlace<2>(
      type, {std::move(array), asIndex(std::move(indices[0]))},
      [](const Slot* operands) { return arrayIn(operands[0]).get(operands[1].integer); },
      [](const Slot* operands, Slot value) { arrayIn(operands[0]).set(operands[1].integer, value); });
}

std::vector<std::string> arrayMembers(Type type) {
  std::vector<std::string> names;
  for (const auto& each : methods) {
    if (type.array == 1 || each.ofSeveral) names.emplace_back(each.name);
  }
  return names;
}

Expr callArrayMethod(const Callee& callee, Expr array, Exprs arguments) {
  for (const auto& each : methods) {
    if (!sameName(each.name, callee.name)) continue;
    if (array->type.array > 1 && !each.ofSeveral) {
      fail(callee.position, callee.name + " is for arrays of one dimension, not for " + nameOf(array->type));
    }
    if (arguments.size() < each.arguments || arguments.size() > each.arguments + each.optional) {
      fail(callee.position,
           (each.optional ? "expected " + std::to_string(each.arguments) + " to " : "expected ") +
               counted(each.arguments + each.optional, "argument") + ", found " +
               std::to_string(arguments.size()));
    }
    return each.make(std::move(array), arguments);
  }
  std::string advice = absentMember("Array", callee.name);
  if (advice.empty()) advice = suggestion(callee.name, arrayMembers(array->type));
  throw WrongUse(callee.position, callee.name, "an array has no member '" + callee.name + "'" + advice);
}

Expr newArray(Type type, Exprs upperBounds) {
  if (type.array > 1) {
    return referenceNode(type, [type, bounds = std::move(upperBounds)](Frame& f) -> Ref<Heap> {
      std::vector<std::int64_t> counts = countsFor(bounds, f);
      counts.resize(type.array);
      return makeGrid(type.element(), counts);
    });
  }
  Expr upperBound = upperBounds.empty() ? nullptr : std::move(upperBounds[0]);
  return referenceNode(type, [type, bound = std::move(upperBound)](Frame& f) -> Ref<Heap> {
    return makeArray(type.element(), bound ? countFor(bound->integer(f)) : 0);
  });
}

Stmt reDim(Position position, Expr array, Exprs upperBounds) {
  const std::uint8_t dimensions = array->type.array;
  if (upperBounds.size() != dimensions) {
    fail(position,
         "expected " + counted(dimensions, "upper bound") + ", found " + std::to_string(upperBounds.size()));
  }
  if (dimensions > 1) {
    return statement(position, [array = std::move(array), bounds = std::move(upperBounds)](Frame& f) {
      const Held held(*array, f);
      const std::vector<std::int64_t> counts = countsFor(bounds, f);
      gridIn(held.slot).resize(counts);
    });
  }
  Expr upperBound = std::move(upperBounds[0]);
  return statement(position, [array = std::move(array), bound = std::move(upperBound)](Frame& f) {
    const Held held(*array, f);
    const std::int64_t upper = bound->integer(f);
    Array& elements = arrayIn(held.slot);
    elements.resize(countFor(upper));
  });
}

}  // namespace host
