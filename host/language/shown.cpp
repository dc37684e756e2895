// Goes into arrays and objects, as deep and as far as a line can show.
#include "language/shown.h"

#include "language/conversions.h"
#include "language/widen.h"
#include "runtime/array.h"
#include "runtime/dictionary.h"
#include "runtime/exception.h"
#include "runtime/variant.h"

namespace host {

namespace {

constexpr std::int64_t mostElements = 100;
constexpr int deepest = 3;

std::string shownInside(Slot value, Type type, int depth);

std::string quoted(const std::string& text) {
  std::string result = "\"";
  for (const char c : text) result.append(c == '"' ? 2 : 1, c);
  return result + "\"";
}

// Those with the same indices in front of a dimension; what has more than one is shown as arrays of arrays.
// `at`: the next element.
std::string elementsOf(const Array& array, std::int64_t dimension, std::int64_t& at, int depth) {
  std::string text = "[";
  const std::int64_t bound = array.upperBound(dimension);
  std::int64_t i = 0;
  for (; i <= bound && at < mostElements; ++i) {
    if (i > 0) text += ", ";
    if (dimension < array.dimensions) {
      text += elementsOf(array, dimension + 1, at, depth);
      continue;
    }
    const Held element(array.get(at++), array.elementType);
    text += shownInside(element.slot, array.elementType, depth);
  }
  const std::int64_t count = array.count();
  if (dimension == 1 && count > mostElements) {
    text += ", … " + std::to_string(count) + " in all";
  } else if (i <= bound) {
    text += ", …";
  }
  return text + "]";
}

std::string elementsOf(const Array& array, int depth) {
  if (array.count() == 0) return "[]";  // however many rows there are
  std::int64_t at = 0;
  return elementsOf(array, 1, at, depth);
}

// What the class gives of an object where a plain value or an array is expected.
const Method* conversionOf(const Class& type) {
  for (const bool wantsArray : {false, true}) {
    for (const Kind kind :
         {Kind::String, Kind::Int64, Kind::UInt64, Kind::Double, Kind::Boolean, Kind::Variant}) {
      for (const Method* each : type.findMethods("Operator_Convert")) {
        const Declaration& declared = each->declaration;
        if (declared.parameters.empty() && declared.result == Type{kind, wantsArray}) return each;
      }
    }
  }
  return nullptr;
}

std::string propertiesOf(Heap& object, int depth) {
  std::string text;
  for (const Class* type = object.objectClass; type; type = type->super) {
    for (const Property& each : type->properties) {
      if (each.hidden || each.type.kind == Kind::Pointer) continue;
      if (each.get) continue;  // a program's own, which may do anything
      Slot value;
      if (each.field) {
        value =
            readMemory(reinterpret_cast<std::byte*>(&object) + type->dataOffset + each.parameter, each.type);
      } else {
        const Slot arguments[] = {{.heap = &object}, {.integer = each.parameter}};
        value = each.getter(arguments);
      }
      const Held held(value, each.type);
      text += (text.empty() ? "" : ", ") + each.name + ": " + shownInside(value, each.type, depth);
    }
  }
  return text;
}

std::string entriesShown(const Heap& dictionary, int depth) {
  std::string text;
  std::int64_t count = 0;
  const auto entries = entriesOf(dictionary);
  for (const auto& [key, value] : entries) {
    if (count > 0) text += ", ";
    if (count++ == mostElements) {
      text += "… " + std::to_string(entries.size()) + " in all";
      break;
    }
    text += shownInside({.heap = key.get()}, {Kind::Variant}, depth) + ": " +
            shownInside({.heap = value.get()}, {Kind::Variant}, depth);
  }
  return "{" + text + "}";
}

// Of memory, in hexadecimal.
std::string bytesShown(std::string_view bytes) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string text;
  for (const char each : bytes.substr(0, mostElements)) {
    const auto byte = static_cast<unsigned char>(each);
    text += std::string(" ") + digits[byte / 16] + digits[byte % 16];
  }
  return bytes.size() > mostElements ? text + " … " + std::to_string(bytes.size()) + " in all" : text;
}

std::string shownObject(Heap& object, int depth) {
  const Class& type = *object.objectClass;
  try {
    if (isDictionary(object)) return type.name + " " + entriesShown(object, depth);
    if (const Method* convert = conversionOf(type)) {
      const Slot self[] = {{.heap = &object}};
      const Type result = convert->declaration.result;
      const Held held(convert->call(self), result);
      if (isText(result)) {
        const auto* text = static_cast<const Text*>(held.slot.heap);
        if (!text || text->encoding == encoding::none) return type.name + bytesShown(bytesOf(text));
        return display(held.slot, result);  // a number's digits
      }
      const std::string value = shownInside(held.slot, result, depth);
      return result.array ? type.name + " " + value : value;
    }
    const std::string properties = propertiesOf(object, depth);
    return properties.empty() ? type.name : type.name + " {" + properties + "}";
  } catch (const HostException&) {  // it does not tell
    return type.name;
  }
}

std::string shownInside(Slot value, Type type, int depth) {
  if (type.kind == Kind::Variant && !type.array) {
    if (!value.heap) return "Nil";
    const Type inside = typeIn(value.heap);
    if (isText(inside)) return quoted(display(value, type));
    if (!inside.array && !isPlainObject(inside)) return display(value, type);
    type = inside;
  }
  if (isText(type)) return quoted(display(value, type));
  if (!type.array && !isPlainObject(type)) return display(value, type);
  if (!value.heap) return "Nil";
  if (depth == deepest) return "…";
  return type.array ? elementsOf(*static_cast<const Array*>(value.heap), depth + 1)
                    : shownObject(*value.heap, depth + 1);
}

}  // namespace

Expr shown(Expr value) {
  const Type type = value->type;
  if (!type.array && !isPlainObject(type) && !isVariant(type)) return displayed(std::move(value));
  const Position position = value->position;
  Expr text = referenceNode({Kind::String}, [value = std::move(value), type](Frame& f) -> Ref<Heap> {
    const Held held(*value, f);
    std::string inside = shownInside(held.slot, type, 0);
    // A text that is all there is stands as it is.
    const bool isBareText = isVariant(type) && held.slot.heap && isText(typeIn(held.slot.heap));
    return makeText(isBareText ? display(held.slot, type) : inside);
  });
  text->position = position;
  return text;
}

}  // namespace host
