// Boxes, reads, converts and shows values.
#include "runtime/variant.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "runtime/array.h"
#include "runtime/exception.h"
#include "runtime/host_record.h"
#include "runtime/name.h"

namespace host {

namespace {

// Instance data of every box.
struct BoxData {
  Slot value;  // a text is owned
};

// The hidden classes of the boxes, by kind; null where a kind needs none.
std::array<const Class*, static_cast<std::size_t>(Kind::Object) + 1> boxClasses = {};

const Class& boxClassOf(Kind kind) { return *boxClasses[static_cast<std::size_t>(kind)]; }

void destroyTextBox(REALobject self) { release(dataIn<BoxData>(self, boxClassOf(Kind::String)).value.heap); }

// The kind a plain value is boxed as.
Kind boxedKind(Kind kind) {
  switch (kind) {
    case Kind::Int8:
    case Kind::Int16:
    case Kind::UInt8:
    case Kind::UInt16:
      return Kind::Int32;
    default:
      return kind;
  }
}

// Toward zero, saturating; NaN gives 0.
template <typename Integer>
Integer truncated(double value) {
  using Limits = std::numeric_limits<Integer>;
  if (std::isnan(value)) return 0;
  // One past the largest is a power of two, which a double holds exactly.
  const double past = std::ldexp(1.0, Limits::digits);
  if (value >= past) return Limits::max();
  if (value <= static_cast<double>(Limits::min())) return Limits::min();
  return static_cast<Integer>(value);
}

std::int64_t narrowed(std::int64_t value, Kind kind) {
  switch (kind) {
    case Kind::Int8:
      return static_cast<std::int8_t>(value);
    case Kind::Int16:
      return static_cast<std::int16_t>(value);
    case Kind::Int32:
      return static_cast<std::int32_t>(value);
    case Kind::UInt8:
      return static_cast<std::uint8_t>(value);
    case Kind::UInt16:
      return static_cast<std::uint16_t>(value);
    case Kind::UInt32:
      return static_cast<std::uint32_t>(value);
    default:
      return value;
  }
}

}  // namespace

std::size_t lengthOfNumber(std::string_view text) {
  std::size_t at = std::min(text.find_first_not_of(" \t\r\n\v\f"), text.size());
  const auto is = [&](std::string_view any) { return at < text.size() && any.find(text[at]) != any.npos; };
  const auto digits = [&] {
    const std::size_t start = at;
    while (is("0123456789")) ++at;
    return at - start;
  };
  if (is("+-")) ++at;
  std::size_t count = digits();
  if (is(".")) {
    ++at;
    count += digits();
  }
  if (count == 0) return 0;
  const std::size_t end = at;
  if (!is("eE")) return end;
  ++at;
  if (is("+-")) ++at;
  return digits() > 0 ? at : end;
}

namespace {

// A number at the start of a text, blanks in front of it aside: an integer as far as its digits go
// (saturating), or a fraction in the C locale.
std::int64_t integerIn(const std::string& text) { return std::strtoll(text.c_str(), nullptr, 10); }
std::uint64_t wordIn(const std::string& text) {
  const std::size_t start = text.find_first_not_of(" \t\r\n");
  if (start != std::string::npos && text[start] == '-') return static_cast<std::uint64_t>(integerIn(text));
  return std::strtoull(text.c_str(), nullptr, 10);
}
// strtod alone would take "nan", "infinity" and hexadecimal digits too.
double numberIn(const std::string& text) {
  return std::strtod(text.substr(0, lengthOfNumber(text)).c_str(), nullptr);
}

std::int64_t currencyFrom(double value) { return truncated<std::int64_t>(std::round(value * 10000)); }

double toNumber(Slot value, Type from) {
  switch (from.kind) {
    case Kind::Double:
      return value.number;
    case Kind::Single:
      return value.single;
    case Kind::Currency:
      return static_cast<double>(value.integer) / 10000;
    case Kind::UInt64:
      return static_cast<double>(value.word);
    default:
      return static_cast<double>(value.integer);
  }
}

std::int64_t toInteger(Slot value, Type from, bool asWord) {
  if (from.isFloating()) {
    const double number = toNumber(value, from);
    return asWord && number > 0 ? static_cast<std::int64_t>(truncated<std::uint64_t>(number))
                                : truncated<std::int64_t>(number);
  }
  return from.kind == Kind::Currency ? value.integer / 10000 : value.integer;
}

[[noreturn]] void mismatch(const Heap* variant, Type to) {
  throw HostException("TypeMismatchException",
                      nameOf(typeIn(variant)) + " cannot be converted to " + nameOf(to) + ".");
}

const BoxData& boxed(const Heap* variant) {
  auto* object = static_cast<Object*>(const_cast<Heap*>(variant));
  return *reinterpret_cast<const BoxData*>(object->dataOf(*variant->objectClass));
}

// Borrowed: of a box the plain value, otherwise the thing itself.
Slot valueIn(const Heap* variant) {
  const bool isBox = variant && variant->objectClass->boxed != Kind::None;
  return isBox ? boxed(variant).value : Slot{.heap = const_cast<Heap*>(variant)};
}

Slot fromVariant(const Heap* variant, Type to) {
  const Type inside = typeIn(variant);
  if (inside.kind == Kind::Nil) return Slot{};
  if (inside.array || inside.kind == Kind::Object) mismatch(variant, to);
  return convert(valueIn(variant), inside, to);
}

}  // namespace

void registerBoxes(Registry& registry) {
  static constexpr std::pair<Kind, const char*> boxes[] = {
      {Kind::Int32, "_VariantInt32"},       {Kind::UInt32, "_VariantUInt32"},
      {Kind::Int64, "_VariantInt64"},       {Kind::UInt64, "_VariantUInt64"},
      {Kind::Single, "_VariantSingle"},     {Kind::Double, "_VariantDouble"},
      {Kind::Currency, "_VariantCurrency"}, {Kind::Boolean, "_VariantBoolean"},
      {Kind::Pointer, "_VariantPtr"},       {Kind::String, "_VariantString"}};
  for (const auto& [kind, name] : boxes) {
    REALclassDefinition record =
        hostClass<BoxData>(name, {}, {}, kind == Kind::String ? &destroyTextBox : nullptr);
    Class& added = registry.addClass(record, false);
    added.boxed = kind;
    boxClasses[static_cast<std::size_t>(kind)] = &added;
  }
}

Ref<Heap> box(Slot value, Type type) {
  if (type.kind == Kind::Nil || type.kind == Kind::Variant || type.kind == Kind::Object || type.array) {
    return Ref<Heap>::share(value.heap);
  }
  const Kind kind = boxedKind(type.kind);
  Ref<Object> made = makeObject(boxClassOf(kind));
  if (kind == Kind::String) retain(value.heap);
  reinterpret_cast<BoxData*>(made->dataOf(*made->objectClass))->value = value;
  return made;
}

Type typeIn(const Heap* variant) {
  if (!variant) return {Kind::Nil};
  if (variant->objectClass->boxed != Kind::None) return {variant->objectClass->boxed};
  if (variant->objectClass == hostClasses().array) return typeOf(*static_cast<const Array*>(variant));
  return {Kind::Object, false, variant->objectClass};
}

namespace {
std::int64_t codeOf(Type type) {
  switch (type.kind) {
    case Kind::Int8:
    case Kind::Int16:
    case Kind::Int32:
    case Kind::UInt8:
    case Kind::UInt16:
    case Kind::UInt32:
      return variantType::int32;
    case Kind::Int64:
    case Kind::UInt64:
      return variantType::int64;
    case Kind::Single:
      return variantType::single;
    case Kind::Double:
      return variantType::floating;
    case Kind::Currency:
      return variantType::currency;
    case Kind::Boolean:
      return variantType::boolean;
    case Kind::Pointer:
      return variantType::pointer;
    case Kind::String:
      return variantType::string;
    case Kind::Object:
      if (type.objectClass == hostClasses().date) return variantType::date;
      if (type.objectClass == hostClasses().dateTime) return variantType::dateTime;
      return variantType::object;
    default:
      return type.kind == Kind::Variant ? variantType::object : variantType::nil;
  }
}
}  // namespace

std::int64_t varTypeOf(const Heap* variant) {
  const Type type = typeIn(variant);
  return type.array ? variantType::arrayFlag | codeOf(type.element()) : codeOf(type);
}

std::int64_t toInt64(const Heap* variant) { return fromVariant(variant, {Kind::Int64}).integer; }
std::uint64_t toUInt64(const Heap* variant) { return fromVariant(variant, {Kind::UInt64}).word; }
double toDouble(const Heap* variant) { return fromVariant(variant, {Kind::Double}).number; }
Ref<Text> toText(const Heap* variant) {
  return Ref<Text>::adopt(static_cast<Text*>(fromVariant(variant, {Kind::String}).heap));
}

bool isConvertible(Type from, Type to) {
  if (from == to) return true;
  if (from.array || to.array) return false;
  const auto plain = [](Type type) {
    return type.isNumber() || type.kind == Kind::Boolean || type.kind == Kind::String ||
           type.kind == Kind::Variant || type.kind == Kind::Pointer;
  };
  return plain(from) && plain(to);
}

Slot convert(Slot value, Type from, Type to) {
  if (from == to) {
    if (from.isReference()) retain(value.heap);
    return value;
  }
  if (to.kind == Kind::Variant) return Slot{.heap = box(value, from).detach()};
  if (from.kind == Kind::Variant) return fromVariant(value.heap, to);
  if (to.kind == Kind::String) return Slot{.heap = makeText(display(value, from)).detach()};
  Slot result = {};
  if (from.kind == Kind::String) {
    const std::string text = utf8Of(static_cast<const Text*>(value.heap));
    switch (to.kind) {
      case Kind::Double:
        result.number = numberIn(text);
        break;
      case Kind::Single:
        result.single = static_cast<float>(numberIn(text));
        break;
      case Kind::Currency:
        result.integer = currencyFrom(numberIn(text));
        break;
      case Kind::Boolean:
        result.integer = sameName(text, "True") || integerIn(text) != 0;
        break;
      case Kind::UInt64:
        result.word = wordIn(text);
        break;
      default:
        result.integer = narrowed(integerIn(text), to.kind);
        break;
    }
    return result;
  }
  switch (to.kind) {
    case Kind::Double:
      result.number = toNumber(value, from);
      break;
    case Kind::Single:
      result.single = static_cast<float>(toNumber(value, from));
      break;
    case Kind::Currency:
      result.integer = from.isFloating() ? currencyFrom(toNumber(value, from))
                                         : static_cast<std::int64_t>(value.word * 10000);
      break;
    case Kind::Boolean:
      result.integer = from.isFloating() ? toNumber(value, from) != 0 : value.integer != 0;
      break;
    default:
      result.integer = narrowed(toInteger(value, from, to.kind == Kind::UInt64), to.kind);
      break;
  }
  return result;
}

std::string display(Slot value, Type type) {
  if (type.array) {
    const auto* array = static_cast<const Array*>(value.heap);
    if (!array) return "Nil";
    std::string bounds;
    for (std::int64_t i = 1; i <= array->dimensions; ++i) {
      bounds += (i > 1 ? ", " : "") + std::to_string(array->upperBound(i));
    }
    return nameOf(type.element()) + "(" + bounds + ")";
  }
  const auto number = [](auto shown) -> std::string {
    if (std::isnan(shown)) return "NaN";
    if (std::isinf(shown)) return shown < 0 ? "-INF" : "INF";
    return fmt::format("{}", shown);
  };
  switch (type.kind) {
    case Kind::Boolean:
      return value.integer != 0 ? "True" : "False";
    case Kind::UInt64:
      return std::to_string(value.word);
    case Kind::Double:
      return number(value.number);
    case Kind::Single:
      return number(value.single);
    case Kind::Currency: {
      const std::uint64_t magnitude = value.integer < 0 ? 0 - value.word : value.word;
      std::string text =
          fmt::format("{}{}.{:04}", value.integer < 0 ? "-" : "", magnitude / 10000, magnitude % 10000);
      text.erase(text.find_last_not_of('0') + 1);
      if (text.ends_with('.')) text.pop_back();
      return text;
    }
    case Kind::Pointer:
      return fmt::format("&h{:X}", value.word);
    case Kind::String:
      return utf8Of(static_cast<const Text*>(value.heap));
    case Kind::Nil:
      return "Nil";
    case Kind::Variant: {
      if (!value.heap) return "";
      const Type inside = typeIn(value.heap);
      return display(valueIn(value.heap), inside);
    }
    case Kind::Object:
      return value.heap ? value.heap->objectClass->name : "Nil";
    default:
      return std::to_string(value.integer);
  }
}

}  // namespace host
