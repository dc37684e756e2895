// Searches and orders elements by their type. Equal elements keep their order, and NaN comes after all
// numbers.
#include "language/array_words.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <string>

#include "language/conversions.h"
#include "language/delegates.h"
#include "language/operators.h"
#include "runtime/random.h"
#include "runtime/text.h"
#include "runtime/variant.h"

namespace host {

namespace {

const Text* textIn(Slot slot) { return static_cast<const Text*>(slot.heap); }

bool sameElement(Type type, Slot one, Slot other) {
  switch (type.kind) {
    case Kind::Double:
      return one.number == other.number;
    case Kind::Single:
      return one.single == other.single;
    case Kind::String:
      return compareText(textIn(one), textIn(other)) == 0;
    case Kind::Variant: {
      const auto isPlain = [](Slot slot) {
        const Type inside = typeIn(slot.heap);
        return !inside.array && inside.kind != Kind::Object;
      };
      return one.heap == other.heap ||
             (isPlain(one) && isPlain(other) && std::is_eq(compareVariants(one.heap, other.heap)));
    }
    default:
      return one.word == other.word;
  }
}

Expr searched(Expr array, Expr value, Expr start) {
  const Type type = array->type.element();
  value = convertTo(std::move(value), type, "the element");
  return integerNode({Kind::Int64}, [array = std::move(array), value = std::move(value),
                                     start = std::move(start), type](Frame& f) {
    const Held held(*array, f);
    const Held wanted(*value, f);
    const std::int64_t from = start ? start->integer(f) : 0;
    return arrayIn(held.slot).find(from, [&](Slot slot) { return sameElement(type, slot, wanted.slot); });
  });
}

// Puts the elements in the order of what `keyOf` gives for each.
template <typename KeyOf>
void sortByKey(std::vector<Slot>& elements, KeyOf keyOf) {
  std::vector<std::pair<decltype(keyOf(Slot{})), Slot>> keyed;
  keyed.reserve(elements.size());
  for (const Slot each : elements) keyed.emplace_back(keyOf(each), each);
  std::stable_sort(keyed.begin(), keyed.end(),
                   [](const auto& one, const auto& other) { return one.first < other.first; });
  std::transform(keyed.begin(), keyed.end(), elements.begin(), [](const auto& each) { return each.second; });
}

// A text as comparisons see it.
std::string folded(const Text* text) {
  std::string bytes = utf8Of(text);
  for (char& c : bytes) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return bytes;
}

// Nil comes first, then numbers, NaN and texts; in `rest`, what a double cannot hold of an integer.
struct VariantKey {
  int rank = 0;
  double number = 0;
  std::int64_t rest = 0;
  std::string text;

  friend bool operator<(const VariantKey& one, const VariantKey& other) {
    if (one.rank != other.rank) return one.rank < other.rank;
    if (one.number != other.number) return one.number < other.number;
    return one.rest != other.rest ? one.rest < other.rest : one.text < other.text;
  }
};

std::int64_t beyondDouble(std::uint64_t word, double number) {
  const std::uint64_t held = number < 0 ? static_cast<std::uint64_t>(static_cast<std::int64_t>(number))
                             : number >= 0x1p64 ? 0
                                                : static_cast<std::uint64_t>(number);
  return static_cast<std::int64_t>(word - held);
}

std::optional<VariantKey> keyOfVariant(const Heap* variant) {
  const Type type = typeIn(variant);
  if (type.array || type.kind == Kind::Object || type.kind == Kind::Pointer) return std::nullopt;
  if (type.kind == Kind::Nil) return VariantKey{};
  if (type.kind == Kind::String) return VariantKey{3, 0, 0, folded(toText(variant).get())};
  const double number = toDouble(variant);
  if (std::isnan(number)) return VariantKey{2, 0, 0, {}};
  return VariantKey{1, number, type.isInteger() ? beyondDouble(toUInt64(variant), number) : 0, {}};
}

template <typename Number>
std::pair<bool, Number> keyOfNumber(Number number) {
  return std::isnan(number) ? std::pair(true, Number{}) : std::pair(false, number);
}

void sort(Array& array) {
  bool hasOrder = true;
  array.rearrange([&](std::vector<Slot>& elements) {
    switch (array.elementType.kind) {
      case Kind::Double:
        return sortByKey(elements, [](Slot each) { return keyOfNumber(each.number); });
      case Kind::Single:
        return sortByKey(elements, [](Slot each) { return keyOfNumber(each.single); });
      case Kind::UInt64:
        return sortByKey(elements, [](Slot each) { return each.word; });
      case Kind::String:
        return sortByKey(elements, [](Slot each) { return folded(textIn(each)); });
      case Kind::Variant:
        for (const Slot each : elements) hasOrder = hasOrder && keyOfVariant(each.heap);
        if (hasOrder) sortByKey(elements, [](Slot each) { return *keyOfVariant(each.heap); });
        return;
      default:
        return sortByKey(elements, [](Slot each) { return each.integer; });
    }
  });
  if (!hasOrder) {
    throw HostException("TypeMismatchException", "Sort has no order for objects, arrays and Ptrs.");
  }
}

}  // namespace

Expr indexOfElement(Expr array, Exprs& arguments) {
  Expr start =
      arguments.size() < 2 ? nullptr : convertTo(std::move(arguments[1]), {Kind::Int64}, "the start");
  return searched(std::move(array), std::move(arguments[0]), std::move(start));
}

Expr containsElement(Expr array, Exprs& arguments) {
  return booleanNode([found = searched(std::move(array), std::move(arguments[0]), nullptr)](Frame& f) {
    return found->integer(f) >= 0;
  });
}

namespace {

// Whatever the program's Function answers: each comparison only chooses which of two comes next.
template <typename IsLess>
void mergeSort(std::vector<Slot>& elements, IsLess isLess) {
  std::vector<Slot> merged(elements.size());
  for (std::size_t width = 1; width < elements.size(); width *= 2) {
    for (std::size_t start = 0; start < elements.size(); start += 2 * width) {
      const auto at = [&](std::size_t index) {
        return elements.begin() + static_cast<std::ptrdiff_t>(std::min(index, elements.size()));
      };
      std::merge(at(start), at(start + width), at(start + width), at(start + 2 * width),
                 merged.begin() + static_cast<std::ptrdiff_t>(start), isLess);
    }
    elements.swap(merged);
  }
}

// Of a copy, because the program runs meanwhile and may use the array; then it is written back.
void sortBy(Array& array, const Method& compare, Heap* self) {
  const Ref<Array> copy = makeArray(array.elementType, 0);
  for (std::int64_t i = 0; i < array.count(); ++i) {
    const Held element(array.get(i), array.elementType);
    copy->append(element.slot);
  }
  std::vector<Slot> elements;
  copy->rearrange([&](std::vector<Slot>& all) { elements = all; });
  mergeSort(elements, [&](Slot one, Slot other) {
    const Slot arguments[] = {{.heap = self}, one, other};
    return compare.call(std::span(arguments).subspan(self ? 0 : 1)).integer < 0;
  });
  for (std::size_t i = 0; i < elements.size(); ++i) array.set(static_cast<std::int64_t>(i), elements[i]);
}

// Sort(AddressOf Compare)
Expr sortElementsBy(Expr array, Expr given) {
  const Type type = array->type.element();
  const MethodReference* reference = given->methodReference();
  const Method* compare = nullptr;
  for (const Method* each : reference ? reference->candidates() : std::vector<const Method*>()) {
    const std::vector<Parameter>& parameters = each->declaration.parameters;
    const auto takes = [&](const Parameter& one) { return one.type == type && !one.byRef; };
    if (parameters.size() == 2 && takes(parameters[0]) && takes(parameters[1]) &&
        each->declaration.result == Type{Kind::Int64}) {
      compare = each;
    }
  }
  if (!compare) {
    fail(given->position,
         "Sort takes AddressOf a Function (a As " + nameOf(type) + ", b As " + nameOf(type) + ") As Integer");
  }
  Expr self = static_cast<MethodReference&>(*given).takeSelf();
  return doing(std::move(array), [compare, self = std::move(self)](Slot slot, Frame& f) {
    const Ref<Heap> owner = self ? self->reference(f) : nullptr;
    if (self) notNil({.heap = owner.get()});
    sortBy(arrayIn(slot), *compare, owner.get());
  });
}

}  // namespace

Expr sortElements(Expr array, Exprs& arguments) {
  const Type type = array->type.element();
  if (!arguments.empty()) return sortElementsBy(std::move(array), std::move(arguments[0]));
  if (type.kind == Kind::Object || type.kind == Kind::Pointer) {
    fail(array->position, "Sort orders numbers, texts and Variants, not " + nameOf(type) +
                              "; Sort(AddressOf …) orders them by a Function that compares two");
  }
  return doing(std::move(array), [](Slot slot, Frame&) { sort(arrayIn(slot)); });
}

Expr shuffleElements(Expr array, Exprs&) {
  return doing(std::move(array), [](Slot slot, Frame&) {
    arrayIn(slot).rearrange([](std::vector<Slot>& elements) {
      for (std::size_t left = elements.size(); left > 1; --left) {
        std::swap(elements[left - 1], elements[static_cast<std::size_t>(sharedGenerator().below(left))]);
      }
    });
  });
}

}  // namespace host
