// The table of distances, and the conversions that it stands for.
#include "language/conversions.h"

#include <algorithm>
#include <cmath>

#include "language/delegates.h"
#include "language/invocation.h"
#include "runtime/array.h"
#include "runtime/text.h"
#include "runtime/variant.h"
#include "runtime/wording.h"

namespace host {

namespace {

// How many bits an integer type holds, the sign aside.
int widthOf(Type type) {
  switch (type.kind) {
    case Kind::Int8:
      return 7;
    case Kind::UInt8:
      return 8;
    case Kind::Int16:
      return 15;
    case Kind::UInt16:
      return 16;
    case Kind::Int32:
      return 31;
    case Kind::UInt32:
      return 32;
    case Kind::Int64:
      return 63;
    default:
      return 64;
  }
}

bool literalFits(std::int64_t value, Type type) {
  if (type.kind == Kind::UInt64) return value >= 0;
  const std::int64_t beyond = value >> widthOf(type);
  return beyond == 0 || (beyond == -1 && !type.isUnsigned());
}

// Of two integers' types.
bool fitsAsLiteral(const Expression& from, Type to) {
  const bool isBeyondSigned = from.type.kind == Kind::UInt64 && from.literal && *from.literal < 0;
  return from.literal && !isBeyondSigned && literalFits(*from.literal, to);
}

// What a class converts to by a parameterless Operator_Convert.
int distanceOfObject(const Expression& from, Type to) {
  if (!isPlainObject(from.type) || !from.type.objectClass) return -1;
  for (const Method* method : from.type.objectClass->findMethods("Operator_Convert")) {
    if (method->declaration.parameters.empty() && method->declaration.result == to) return throughClass;
  }
  // Through another plain type, where there is just the one way.
  if (to.isNumber() || to.kind == Kind::Boolean || to.kind == Kind::String) {
    for (const Method* method : from.type.objectClass->findMethods("Operator_Convert")) {
      const Type middle = method->declaration.result;
      if (method->declaration.parameters.empty() && middle.isNumber() && to.isNumber())
        return throughClass + 100;
    }
  }
  return -1;
}

}  // namespace

ObjectConversion conversionInto(const Class& objectClass, const Expression& from) {
  ObjectConversion best;
  for (const Method* method : objectClass.findMethods("Operator_Convert")) {
    const auto& parameters = method->declaration.parameters;
    if (parameters.size() != 1 || isPlainObject(parameters[0].type)) continue;
    const int each = distance(from, parameters[0].type);
    if (each >= 0 && each < best.distance) best = {method, each};
  }
  return best;
}

namespace {

// That of the element which is furthest from it; never 0, because the array is of another type.
int distanceOfElements(const ArrayOfElements& array, Type to) {
  int furthest = 1;
  for (const Expr& each : array.elements) {
    const int far = distance(*each, to);
    if (far < 0) return -1;
    furthest = std::max(furthest, far);
  }
  return furthest;
}

}  // namespace

Ref<Heap> ArrayOfElements::reference(Frame& frame) const {
  const Type element = type.element();
  Ref<Array> array = makeArray(element, 0);
  for (const Expr& value : elements) {
    const Held held(*value, frame);
    array->append(held.slot);
  }
  return array;
}

int distance(const Expression& from, Type to) {
  const Type type = from.type;
  if (const MethodReference* reference = from.methodReference()) {
    const bool isDelegate = isPlainObject(to) && to.objectClass && to.objectClass->signature;
    return isDelegate && reference->fitting(*to.objectClass->signature) ? 0 : -1;
  }
  if (type == to) return 0;
  if (type.kind == Kind::None) return -1;
  if (type.kind == Kind::Nil) return to.isReference() && !isText(to) ? 1 : to.kind == Kind::Pointer ? 2 : -1;
  if (to.array) {
    const auto* made = dynamic_cast<const ArrayOfElements*>(&from);
    if (made && to.array == 1) return distanceOfElements(*made, to.element());
    return isVariant(type) ? 90 : distanceOfObject(from, to);
  }
  if (type.array) return isVariant(to) ? 20 : to.kind == Kind::Object && !to.objectClass ? 30 : -1;
  if (isPlainObject(to)) {
    if (!to.objectClass) return isPlainObject(type) ? 5 : isVariant(type) ? 90 : -1;
    if (isPlainObject(type) && type.objectClass) {
      if (type.objectClass->isA(*to.objectClass)) return 1;
    } else if (isPlainObject(type) || isVariant(type)) {
      return 90;  // checked when run
    }
    const ObjectConversion conversion = conversionInto(*to.objectClass, from);
    return conversion.method ? throughClass + conversion.distance : -1;
  }
  if (isPlainObject(type)) return isVariant(to) ? 20 : distanceOfObject(from, to);
  if (isVariant(to)) return 40;
  if (isVariant(type)) return isConvertible(type, to) ? 60 : -1;
  if (type.isInteger() && to.isInteger()) {
    if (fitsAsLiteral(from, to)) {
      return to.kind == Kind::Int64 || to.kind == Kind::UInt64 ? 1 : 2;
    }
    const bool keeps =
        type.isUnsigned() ? widthOf(to) >= widthOf(type) : !to.isUnsigned() && widthOf(to) >= widthOf(type);
    return keeps ? 2 : type.isUnsigned() == to.isUnsigned() ? 8 : 7;
  }
  if (type.isNumber() && to.isNumber()) {
    if (to.kind == Kind::Double) return type.kind == Kind::Single ? 2 : 4;
    if (to.kind == Kind::Single) return from.isLiteral || type.kind == Kind::Double ? 5 : 6;
    if (to.kind == Kind::Currency) return 6;
    return 10;  // from a fraction to an integer
  }
  return -1;
}

namespace {

// Beyond the largest number of a type that is not for integers alone.
bool isTooBig(double number, Slot becomes, Type type) {
  if (type.kind == Kind::Single) return std::isfinite(number) && !std::isfinite(becomes.single);
  return type.kind == Kind::Currency && std::fabs(number) > 922337203685477.5807;
}

// A literal that becomes another number.
void warnOfLoss(const Expression& value, Type type, const std::string& what) {
  if (!value.isLiteral || !value.type.isNumber() || !type.isNumber() || type.array) return;
  Frame none;
  const Slot written = value.evaluate(none);
  const Slot becomes = convert(written, value.type, type);
  if (!type.isInteger() && !isTooBig(convert(written, value.type, {Kind::Double}).number, becomes, type)) {
    return;
  }
  const std::string before = display(written, value.type), after = display(becomes, type);
  if (before == after || convert(becomes, type, value.type).word == written.word) {
    if (before.starts_with('-') == after.starts_with('-')) return;
  }
  warn(value.position, before + " does not fit in " + nameOf(type) + "; as " + what + " it is " + after);
}

}  // namespace

Expr convertTo(Expr value, Type type, const std::string& what) {
  const Type from = value->type;
  if (from == type) return value;
  const Position position = value->position;
  const int far = distance(*value, type);
  if (far < 0) {
    const bool isDelegate = isPlainObject(type) && type.objectClass && type.objectClass->signature;
    const std::string found = value->methodReference()
                                  ? isDelegate ? "the address of a method that does not fit"
                                               : "the address of a method; a Delegate's type can hold it"
                              : from.kind == Kind::None ? "something without a value"
                                                        : nameOf(from);
    const std::string advice = isText(from) && !value->isLiteral && type.isNumber()
                                   ? "; Val(…) reads the number in a text"
                               : isText(type) && from.isNumber() ? "; Str(…) makes a text of a number"
                                                                 : "";
    const std::string message = "expected " + nameOf(type) + " as " + what + ", found " + found + advice;
    if (isPlainObject(type) || isPlainObject(from)) throw WrongUse(position, "Operator_Convert", message);
    fail(position, message);
  }
  if (const MethodReference* reference = value->methodReference()) {
    const Method& method = *reference->fitting(*type.objectClass->signature);
    return newDelegate(*type.objectClass, method, static_cast<MethodReference&>(*value).takeSelf());
  }
  if (from.isInteger() && type.isInteger() && fitsAsLiteral(*value, type)) {
    return integerLiteral(static_cast<std::uint64_t>(*value->literal), type);
  }
  warnOfLoss(*value, type, what);
  if (auto* made = type.array ? dynamic_cast<ArrayOfElements*>(value.get()) : nullptr) {
    for (Expr& each : made->elements)
      each = convertTo(std::move(each), type.element(), "an element of " + what);
    made->type = type;
    return value;
  }
  if (from.kind == Kind::Nil) {
    if (type.kind == Kind::Pointer) return integerNode(type, [](Frame&) { return 0; });
    return referenceNode(type, [](Frame&) { return Ref<Heap>(); });
  }
  // The handle stays what it is: to a superclass, to Object, to Variant.
  const bool fromHandle = isPlainObject(from) || from.array;
  if (fromHandle && !type.array &&
      (isVariant(type) || (isPlainObject(type) && (!type.objectClass || far == 1)))) {
    return referenceNode(type, [value = std::move(value)](Frame& f) { return value->reference(f); });
  }
  // Checked when run: from a variant or an Object to a class or an array.
  if ((isVariant(from) || (isPlainObject(from) && !from.objectClass)) &&
      (type.array || isPlainObject(type))) {
    return referenceNode(type, [value = std::move(value), type](Frame& f) {
      Ref<Heap> held = value->reference(f);
      const Type inside = typeIn(held.get());
      const bool fits =
          !held || (type.array ? inside == type
                               : isPlainObject(inside) &&
                                     (!type.objectClass || isInstance(held.get(), *type.objectClass)));
      if (!fits) {
        throw HostException("TypeMismatchException",
                            withLargeArticle(nameOf(inside)) + " is no " + nameOf(type) + ".");
      }
      return held;
    });
  }
  if (isPlainObject(type)) {  // a new object that converts from the value
    const Method* convert = conversionInto(*type.objectClass, *value).method;
    value = convertTo(std::move(value), convert->declaration.parameters[0].type, what);
    return referenceNode(type, [value = std::move(value), convert, objectClass = type.objectClass](Frame& f) {
      const Held held(*value, f);
      Ref<Heap> object = makeObject(*objectClass);
      const Slot arguments[] = {{.heap = object.get()}, held.slot};
      convert->call(arguments);
      return object;
    });
  }
  if (isPlainObject(from)) {  // by the class's conversion
    const Method* chosen = nullptr;
    for (const Method* method : from.objectClass->findMethods("Operator_Convert")) {
      if (!method->declaration.parameters.empty()) continue;
      if (method->declaration.result == type) chosen = method;
      if (!chosen && method->declaration.result.isNumber() && type.isNumber()) chosen = method;
    }
    return convertTo(invoke(*chosen, std::move(value), {}), type, what);
  }
  if (from.isInteger() && type.kind == Kind::Double) {
    if (value->literal && from.kind != Kind::UInt64) {
      return realNode([number = static_cast<double>(*value->literal)](Frame&) { return number; });
    }
    if (from.kind == Kind::UInt64) {
      return realNode([value = std::move(value)](Frame& f) {
        return static_cast<double>(static_cast<std::uint64_t>(value->integer(f)));
      });
    }
    return realNode([value = std::move(value)](Frame& f) { return static_cast<double>(value->integer(f)); });
  }
  if (from.kind == Kind::Single && type.kind == Kind::Double) {
    return realNode([value = std::move(value)](Frame& f) { return static_cast<double>(value->single(f)); });
  }
  if (from.kind == Kind::Double && type.kind == Kind::Single) {
    return singleNode([value = std::move(value)](Frame& f) { return static_cast<float>(value->real(f)); });
  }
  if (from.isInteger() && (type.kind == Kind::Int64 || type.kind == Kind::UInt64)) {
    return integerNode(type, [value = std::move(value)](Frame& f) { return value->integer(f); });
  }
  return slotNode(type, [value = std::move(value), from, type](Frame& f) {
    const Held held(*value, f);
    return convert(held.slot, from, type);
  });
}

Expr displayed(Expr value) {
  const Type type = value->type;
  if (isText(type)) return value;
  if (type.kind == Kind::None) fail(value->position, "this has no value to print");
  if (isPlainObject(type) && type.objectClass) {
    for (const Kind kind : {Kind::String, Kind::Int64, Kind::UInt64, Kind::Double, Kind::Boolean}) {
      if (distanceOfObject(*value, {kind}) == throughClass) {
        Expr plain = convertTo(std::move(value), {kind}, "what is printed");
        return displayed(std::move(plain));
      }
    }
  }
  return referenceNode({Kind::String}, [value = std::move(value), type](Frame& f) -> Ref<Heap> {
    const Held held(*value, f);
    return makeText(display(held.slot, type));
  });
}

Expr plainValue(Expr operand) {
  if (!isPlainObject(operand->type)) return operand;
  for (const Kind kind : {Kind::Int64, Kind::UInt64, Kind::Double, Kind::String, Kind::Boolean}) {
    if (distanceOfObject(*operand, {kind}) == throughClass)
      return convertTo(std::move(operand), {kind}, "an operand");
  }
  return operand;
}

}  // namespace host
