// Searches and orders elements by their type. Equal elements keep their order, and NaN comes after all
// numbers.
#include "language/array_words.h"

#include <algorithm>
#include <cmath>
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

// What the elements are while a program compares them, and afterwards.
class Snapshot {
 public:
  explicit Snapshot(Array& array) : array_(array) {
    array.rearrange([&](std::vector<Slot>& elements) {
      before_ = elements;
      if (isCounted()) std::for_each(before_.begin(), before_.end(), [](Slot each) { retain(each.heap); });
    });
    sorted = before_;
  }
  ~Snapshot() {
    for (const Slot each : before_) releaseSlot(each, array_.elementType);
  }
  Snapshot(const Snapshot&) = delete;
  Snapshot& operator=(const Snapshot&) = delete;

  // Puts the elements in the order of `sorted`, if they are still the same.
  void putBack() {
    bool isSame = false;
    array_.rearrange([&](std::vector<Slot>& elements) {
      isSame = std::equal(elements.begin(), elements.end(), before_.begin(), before_.end(),
                          [](Slot one, Slot other) { return one.word == other.word; });
      if (isSame) elements = sorted;
    });
    if (!isSame) {
      throw HostException("UnsupportedOperationException", "The array was changed while it was sorted.");
    }
  }

  std::vector<Slot> sorted;

 private:
  bool isCounted() const { return array_.elementType.isReference(); }

  Array& array_;
  std::vector<Slot> before_;
};

// Whatever `isAfter` answers, it ends, and loses no element; the library's own may not be asked of a program.
template <typename IsAfter>
void mergeSort(std::vector<Slot>& elements, IsAfter isAfter) {
  std::vector<Slot> merged(elements.size());
  for (std::size_t width = 1; width < elements.size(); width *= 2) {
    for (std::size_t start = 0; start < elements.size(); start += 2 * width) {
      const std::size_t middle = std::min(start + width, elements.size());
      const std::size_t end = std::min(middle + width, elements.size());
      std::size_t left = start, right = middle;
      for (std::size_t to = start; to < end; ++to) {
        const bool takesRight = left == middle || (right < end && isAfter(elements[left], elements[right]));
        merged[to] = elements[takesRight ? right++ : left++];
      }
    }
    elements.swap(merged);
  }
}

// By a Function of the program, of which `call` makes a call with the two elements.
template <typename Call>
void sortBy(Array& array, Call call) {
  const Type type = array.elementType;
  Slot one = {}, other = {};
  std::vector<Passed> passed;
  for (const Slot* each : {&one, &other}) {
    passed.push_back({slotNode(type, [each, type](Frame&) {
      if (type.isReference()) retain(each->heap);
      return *each;
    })});
  }
  Snapshot elements(array);
  mergeSort(elements.sorted, [&](Slot left, Slot right) {
    one = left;
    other = right;
    return call(passed).integer > 0;
  });
  elements.putBack();
}

// Whether the Function compares two elements.
bool compares(const Declaration& declared, Type element) {
  const auto isElement = [&](const Parameter& each) { return each.type == element && !each.byRef; };
  return declared.result == Type{Kind::Int64} && declared.parameters.size() == 2 &&
         std::all_of(declared.parameters.begin(), declared.parameters.end(), isElement);
}

Expr sortedBy(Expr array, Expr compare) {
  const Type element = array->type.element();
  if (const MethodReference* reference = compare->methodReference()) {
    for (const Method* each : reference->candidates()) {
      if (!compares(each->declaration, element)) continue;
      Expr self = static_cast<MethodReference&>(*compare).takeSelf();
      return doing(std::move(array), [each, self = std::move(self)](Slot slot, Frame& f) {
        const Ref<Heap> object = self ? self->reference(f) : nullptr;
        if (self) notNil({.heap = object.get()}, self->written);
        sortBy(arrayIn(slot),
               [&](const std::vector<Passed>& two) { return callNow(*each, object.get(), two, f); });
      });
    }
  }
  const Class* made = isPlainObject(compare->type) ? compare->type.objectClass : nullptr;
  if (!made || !made->signature || !compares(made->signature->declaration, element)) {
    fail(compare->position, "Sort takes a Function that compares two elements: (a As " + nameOf(element) +
                                ", b As " + nameOf(element) + ") As Integer");
  }
  return doing(std::move(array), [compare = std::move(compare)](Slot slot, Frame& f) {
    const Ref<Heap> held = compare->reference(f);
    notNil({.heap = held.get()}, compare->written);
    sortBy(arrayIn(slot), [&](const std::vector<Passed>& two) { return callDelegateNow(*held, two, f); });
  });
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

Expr sortElements(Expr array, Exprs& arguments) {
  const Type type = array->type.element();
  if (!arguments.empty()) return sortedBy(std::move(array), std::move(arguments[0]));
  if (type.kind == Kind::Object || type.kind == Kind::Pointer) {
    fail(array->position, "Sort orders numbers, texts and Variants, not " + nameOf(type) +
                              "; Sort(AddressOf …) takes a Function that compares two");
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
