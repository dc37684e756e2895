// Arrays as a program uses them.
#include "language/arrays.h"

#include <algorithm>

#include "language/array_words.h"
#include "language/conversions.h"
#include "language/places.h"
#include "language/spelling.h"
#include "runtime/array.h"

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

Expr lastIndex(Expr array, Exprs&) {
  return integerNode({Kind::Int64}, [array = std::move(array)](Frame& f) {
    const Held held(*array, f);
    return arrayIn(held.slot).count() - 1;
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
} methods[] = {{"Ubound", 0, &lastIndex},
               {"LastIndex", 0, &lastIndex},
               {"LastRowIndex", 0, &lastIndex},
               {"Count", 0, &count},
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
               {"Contains", 1, &containsElement},
               {"Sort", 0, &sortElements},
               {"Shuffle", 0, &shuffleElements}};

}  // namespace

Expr element(Expr array, Position position, Exprs indices) {
  if (indices.size() != 1) fail(position, "expected one index");
  const Type type = array->type.element();
  return operandPlace<2>(
      type, {std::move(array), asIndex(std::move(indices[0]))},
      [](const Slot* operands) { return arrayIn(operands[0]).get(operands[1].integer); },
      [](const Slot* operands, Slot value) { arrayIn(operands[0]).set(operands[1].integer, value); });
}

std::vector<std::string> arrayMembers() {
  std::vector<std::string> names;
  for (const auto& each : methods) names.emplace_back(each.name);
  return names;
}

Expr callArrayMethod(const Callee& callee, Expr array, Exprs arguments) {
  for (const auto& each : methods) {
    if (!sameName(each.name, callee.name)) continue;
    if (arguments.size() < each.arguments || arguments.size() > each.arguments + each.optional) {
      fail(callee.position,
           "expected " + counted(each.arguments) + ", found " + std::to_string(arguments.size()));
    }
    return each.make(std::move(array), arguments);
  }
  fail(callee.position,
       "an array has no member '" + callee.name + "'" + suggestion(callee.name, arrayMembers()));
}

Expr newArray(Type type, Exprs upperBounds) {
  Expr upperBound = upperBounds.empty() ? nullptr : std::move(upperBounds[0]);
  return referenceNode(type, [type, bound = std::move(upperBound)](Frame& f) -> Ref<Heap> {
    return makeArray(type.element(), bound ? countFor(bound->integer(f)) : 0);
  });
}

Stmt reDim(Position position, Expr array, Exprs upperBounds) {
  if (upperBounds.size() != 1) fail(position, "this host's arrays have one dimension");
  Expr upperBound = std::move(upperBounds[0]);
  return statement(position, [array = std::move(array), bound = std::move(upperBound)](Frame& f) {
    const Held held(*array, f);
    const std::int64_t upper = bound->integer(f);
    Array& elements = arrayIn(held.slot);
    elements.resize(countFor(upper));
  });
}

}  // namespace host
