// Operators and conversions: those of plain values, and those that classes bring as Operator_… members.
#include <bit>
#include <cmath>
#include <optional>

#include "language/compiler.h"
#include "runtime/text.h"
#include "runtime/variant.h"

namespace host {

namespace {

bool isPlainObject(Type type) { return type.kind == Kind::Object && !type.array; }
bool isVariant(Type type) { return type.kind == Kind::Variant && !type.array; }
bool isText(Type type) { return type.kind == Kind::String && !type.array; }
bool isBoolean(Type type) { return type.kind == Kind::Boolean && !type.array; }

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

std::int64_t divide(std::int64_t left, std::int64_t right) {
  if (right == 0) throw HostException("DivisionByZeroException", "An integer is divided by zero.");
  return right == -1 ? static_cast<std::int64_t>(0 - static_cast<std::uint64_t>(left)) : left / right;
}
std::int64_t remainder(std::int64_t left, std::int64_t right) {
  if (right == 0) throw HostException("DivisionByZeroException", "An integer is divided by zero.");
  return right == -1 ? 0 : left % right;
}

// One of the language's arithmetic operators on 64-bit words; wraps around.
template <typename Word>
Expr integerOperator(char symbol, Type type, Expr l, Expr r) {
  switch (symbol) {
    case '+':
      return integerNode(type, [l = std::move(l), r = std::move(r)](Frame& f) {
        return static_cast<std::uint64_t>(l->integer(f)) + static_cast<std::uint64_t>(r->integer(f));
      });
    case '-':
      return integerNode(type, [l = std::move(l), r = std::move(r)](Frame& f) {
        return static_cast<std::uint64_t>(l->integer(f)) - static_cast<std::uint64_t>(r->integer(f));
      });
    case '*':
      return integerNode(type, [l = std::move(l), r = std::move(r)](Frame& f) {
        return static_cast<std::uint64_t>(l->integer(f)) * static_cast<std::uint64_t>(r->integer(f));
      });
    default:
      break;
  }
  return integerNode(type, [l = std::move(l), r = std::move(r), isDivision = symbol == '\\'](Frame& f) {
    const std::int64_t left = l->integer(f);
    const std::int64_t right = r->integer(f);
    if constexpr (std::is_unsigned_v<Word>) {
      if (right == 0) throw HostException("DivisionByZeroException", "An integer is divided by zero.");
      const auto dividend = static_cast<Word>(left), divisor = static_cast<Word>(right);
      return static_cast<std::int64_t>(isDivision ? dividend / divisor : dividend % divisor);
    } else {
      return isDivision ? divide(left, right) : remainder(left, right);
    }
  });
}

template <typename Node, typename Evaluate>
Expr floatingOperator(char symbol, Node node, Evaluate value, Expr l, Expr r) {
  const auto make = [&](auto operation) {
    return node([l = std::move(l), r = std::move(r), operation, value](Frame& f) {
      const auto left = value(*l, f);
      return operation(left, value(*r, f));
    });
  };
  switch (symbol) {
    case '+':
      return make([](auto a, auto b) { return a + b; });
    case '-':
      return make([](auto a, auto b) { return a - b; });
    case '*':
      return make([](auto a, auto b) { return a * b; });
    case '/':
      return make([](auto a, auto b) { return a / b; });
    default:
      return make([](auto a, auto b) { return std::pow(a, b); });
  }
}

// -1, 0, 1, or 2 where neither is less, greater or equal.
template <typename Value>
int order(Value left, Value right) {
  return left < right ? -1 : left > right ? 1 : left == right ? 0 : 2;
}

template <typename Compare>
Expr compareWith(const std::string& symbol, Compare compare) {
  const auto make = [&](auto test) {
    return integerNode({Kind::Boolean}, [compare = std::move(compare), test](Frame& f) {
      const int result = compare(f);
      return result != 2 && test(result);
    });
  };
  if (symbol == "=") return make([](int o) { return o == 0; });
  if (symbol == "<") return make([](int o) { return o < 0; });
  if (symbol == "<=") return make([](int o) { return o <= 0; });
  if (symbol == ">") return make([](int o) { return o > 0; });
  if (symbol == ">=") return make([](int o) { return o >= 0; });
  return integerNode({Kind::Boolean}, [compare = std::move(compare)](Frame& f) { return compare(f) != 0; });
}

template <typename Word, typename Test>
Expr compareIntegers(Expr l, Expr r, Test test) {
  return integerNode({Kind::Boolean}, [l = std::move(l), r = std::move(r), test](Frame& f) {
    const auto left = static_cast<Word>(l->integer(f));
    return test(left, static_cast<Word>(r->integer(f)));
  });
}
template <typename Word>
Expr compareIntegers(const std::string& symbol, Expr l, Expr r) {
  if (symbol == "=")
    return compareIntegers<Word>(std::move(l), std::move(r), [](Word a, Word b) { return a == b; });
  if (symbol == "<>")
    return compareIntegers<Word>(std::move(l), std::move(r), [](Word a, Word b) { return a != b; });
  if (symbol == "<")
    return compareIntegers<Word>(std::move(l), std::move(r), [](Word a, Word b) { return a < b; });
  if (symbol == "<=")
    return compareIntegers<Word>(std::move(l), std::move(r), [](Word a, Word b) { return a <= b; });
  if (symbol == ">")
    return compareIntegers<Word>(std::move(l), std::move(r), [](Word a, Word b) { return a > b; });
  return compareIntegers<Word>(std::move(l), std::move(r), [](Word a, Word b) { return a >= b; });
}

// Two variants, by value: as numbers where both are numbers, as text where one is text.
int compareVariants(const Heap* left, const Heap* right) {
  if (left == right) return 0;
  const Type l = typeIn(left), r = typeIn(right);
  if (isText(l) || isText(r)) return order(compareText(toText(left).get(), toText(right).get()), 0);
  if (l.isInteger() && r.isInteger()) {
    if (l.kind == Kind::UInt64 || r.kind == Kind::UInt64) {
      if (l.kind != Kind::UInt64 && toInt64(left) < 0) return -1;
      if (r.kind != Kind::UInt64 && toInt64(right) < 0) return 1;
      return order(toUInt64(left), toUInt64(right));
    }
    return order(toInt64(left), toInt64(right));
  }
  if (l.kind == Kind::Nil || r.kind == Kind::Nil) return left ? 1 : -1;
  if (isPlainObject(l) || isPlainObject(r) || l.array || r.array) return 2;
  return order(toDouble(left), toDouble(right));
}

template <typename Number>
std::optional<Number> sumDifferenceOrProduct(char symbol, Number a, Number b) {
  if (symbol == '+') return a + b;
  if (symbol == '-') return a - b;
  if (symbol == '*') return a * b;
  return std::nullopt;
}

Ref<Heap> quotientOrRemainder(char symbol, std::int64_t a, std::int64_t b) {
  return box(Slot{.integer = symbol == '\\' ? divide(a, b) : remainder(a, b)}, {Kind::Int64});
}

Ref<Heap> computeVariants(char symbol, const Heap* left, const Heap* right) {
  const Type l = typeIn(left), r = typeIn(right);
  if (symbol == '+' && (isText(l) || isText(r))) {
    const Ref<Text> joined = makeText(utf8Of(toText(left).get()) + utf8Of(toText(right).get()));
    return box(Slot{.heap = joined.get()}, {Kind::String});
  }
  if (l.isInteger() && r.isInteger() && symbol != '/' && symbol != '^') {
    const std::int64_t a = toInt64(left), b = toInt64(right);
    const auto result =
        sumDifferenceOrProduct(symbol, static_cast<std::uint64_t>(a), static_cast<std::uint64_t>(b));
    return result ? box(Slot{.word = *result}, {Kind::Int64}) : quotientOrRemainder(symbol, a, b);
  }
  const double a = toDouble(left), b = toDouble(right);
  if (const auto result = sumDifferenceOrProduct(symbol, a, b))
    return box(Slot{.number = *result}, {Kind::Double});
  if (symbol == '/') return box(Slot{.number = a / b}, {Kind::Double});
  if (symbol == '^') return box(Slot{.number = std::pow(a, b)}, {Kind::Double});
  return quotientOrRemainder(symbol, convert(Slot{.number = a}, {Kind::Double}, {Kind::Int64}).integer,
                             convert(Slot{.number = b}, {Kind::Double}, {Kind::Int64}).integer);
}

}  // namespace

// Conversions.

Expr Compiler::literalInteger(std::uint64_t value, Type type) {
  Expr node = integerNode(type, [value](Frame&) { return value; });
  node->isLiteral = true;
  node->literal = static_cast<std::int64_t>(value);
  return node;
}

Expr Compiler::text(const std::string& value) {
  return referenceNode({Kind::String}, [made = Ref<Heap>(makeText(value))](Frame&) { return made; });
}

// What a class converts to by a parameterless Operator_Convert.
int Compiler::costOfObject(const Expression& from, Type to) {
  if (!isPlainObject(from.type) || !from.type.objectClass) return -1;
  for (const Method* method : from.type.objectClass->findMethods("Operator_Convert")) {
    if (method->declaration.parameters.empty() && method->declaration.result == to) return 1000;
  }
  // Through another plain type, where there is just the one way.
  if (to.isNumber() || to.kind == Kind::Boolean || to.kind == Kind::String) {
    for (const Method* method : from.type.objectClass->findMethods("Operator_Convert")) {
      const Type middle = method->declaration.result;
      if (method->declaration.parameters.empty() && middle.isNumber() && to.isNumber()) return 1100;
    }
  }
  return -1;
}

Compiler::Conversion Compiler::conversionInto(const Class& objectClass, const Expression& from) {
  Conversion best;
  for (const Method* method : objectClass.findMethods("Operator_Convert")) {
    const auto& parameters = method->declaration.parameters;
    if (parameters.size() != 1 || isPlainObject(parameters[0].type)) continue;
    const int each = cost(from, parameters[0].type, false);
    if (each >= 0 && each < best.cost) best = {method, each};
  }
  return best;
}

// How far a value is from a parameter's type: 0 the same, more the less alike; 1000 and above through
// operators of classes; negative: it does not fit.
int Compiler::cost(const Expression& from, Type to, bool byRef) {
  const Type type = from.type;
  if (type == to) return 0;
  if (byRef) return -1;
  if (type.kind == Kind::None) return -1;
  if (type.kind == Kind::Nil) return to.isReference() && !isText(to) ? 1 : to.kind == Kind::Pointer ? 2 : -1;
  if (to.array) return isVariant(type) ? 90 : costOfObject(from, to);
  if (type.array) return isVariant(to) ? 20 : to.kind == Kind::Object && !to.objectClass ? 30 : -1;
  if (isPlainObject(to)) {
    if (!to.objectClass) return isPlainObject(type) ? 5 : isVariant(type) ? 90 : -1;
    if (isPlainObject(type) && type.objectClass) {
      if (type.objectClass->isA(*to.objectClass)) return 1;
    } else if (isPlainObject(type) || isVariant(type)) {
      return 90;  // checked when run
    }
    const Conversion conversion = conversionInto(*to.objectClass, from);
    return conversion.method ? 1000 + conversion.cost : -1;
  }
  if (isPlainObject(type)) return isVariant(to) ? 20 : costOfObject(from, to);
  if (isVariant(to)) return 40;
  if (isVariant(type)) return isConvertible(type, to) ? 60 : -1;
  if (type.isInteger() && to.isInteger()) {
    if (from.isLiteral && literalFits(from.literal, to) && !(type.kind == Kind::UInt64 && from.literal < 0)) {
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

Expr Compiler::convertTo(Expr value, Type type, const std::string& what) {
  const Type from = value->type;
  if (from == type) return value;
  const Position position = value->position.line ? value->position : peek().position;
  const int distance = cost(*value, type, false);
  if (distance < 0) {
    fail(position, "expected " + nameOf(type) + " as " + what + ", found " +
                       (from.kind == Kind::None ? "something without a value" : nameOf(from)));
  }
  if (value->isLiteral && from.isInteger() && type.isInteger() && literalFits(value->literal, type)) {
    return literalInteger(static_cast<std::uint64_t>(value->literal), type);
  }
  if (from.kind == Kind::Nil) {
    if (type.kind == Kind::Pointer) return integerNode(type, [](Frame&) { return 0; });
    return referenceNode(type, [](Frame&) { return Ref<Heap>(); });
  }
  // The handle stays what it is: to a superclass, to Object, to Variant.
  const bool fromHandle = isPlainObject(from) || from.array;
  if (fromHandle && !type.array &&
      (isVariant(type) || (isPlainObject(type) && (!type.objectClass || distance == 1)))) {
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
        throw HostException("TypeMismatchException", "A " + nameOf(inside) + " is no " + nameOf(type) + ".");
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
    return convertTo(callMethodExactly(*chosen, std::move(value), {}, position), type, what);
  }
  if (from.isInteger() && type.kind == Kind::Double) {
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

// As Print shows it.
Expr Compiler::displayed(Expr value) {
  const Type type = value->type;
  if (isText(type)) return value;
  if (type.kind == Kind::None) fail(value->position, "this has no value to print");
  if (isPlainObject(type) && type.objectClass) {
    for (const Kind kind : {Kind::String, Kind::Int64, Kind::UInt64, Kind::Double, Kind::Boolean}) {
      if (costOfObject(*value, {kind}) == 1000) {
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

// Operators.

// A call of the operator that the left operand's class declares for the right one, or the right operand's
// class in its reflected form for the left; null where there is neither. What is used is moved from.
Expr Compiler::overloaded(const char* name, Expr& left, Expr& right, Position position) {
  struct Choice {
    const Method* method = nullptr;
    int distance = -1;
    bool reflected = false;
  } best;
  const auto consider = [&](const Expression& self, const Expression& other, const std::string& member,
                            bool reflected) {
    if (!isPlainObject(self.type) || !self.type.objectClass) return;
    for (const Method* method : self.type.objectClass->findMethods(member)) {
      if (method->declaration.parameters.size() != 1) continue;
      const int distance = cost(other, method->declaration.parameters[0].type, false);
      if (distance < 0 || (best.method && distance >= best.distance)) continue;
      best = {method, distance, reflected};
    }
  };
  consider(*left, *right, name, false);
  consider(*right, *left, std::string(name) + "Right", true);
  if (!best.method) return nullptr;
  Arguments arguments;
  arguments.push_back(std::move(best.reflected ? left : right));
  return callMethodExactly(*best.method, std::move(best.reflected ? right : left), std::move(arguments),
                           position);
}

// An object where arithmetic needs a plain value: what its class converts to.
Expr Compiler::plainValue(Expr operand) {
  if (!isPlainObject(operand->type)) return operand;
  for (const Kind kind : {Kind::Int64, Kind::UInt64, Kind::Double, Kind::String, Kind::Boolean}) {
    if (costOfObject(*operand, {kind}) == 1000) return convertTo(std::move(operand), {kind}, "an operand");
  }
  return operand;
}

Expr Compiler::arithmetic(const std::string& symbol, Expr left, Expr right, Position position) {
  static const std::map<std::string, const char*> names = {
      {"+", "Operator_Add"},    {"-", "Operator_Subtract"},       {"*", "Operator_Multiply"},
      {"/", "Operator_Divide"}, {"\\", "Operator_IntegerDivide"}, {"mod", "Operator_Modulo"},
      {"^", "Operator_Power"}};
  if (isPlainObject(left->type) || isPlainObject(right->type)) {
    if (Expr call = overloaded(names.at(symbol), left, right, position)) return call;
    left = plainValue(std::move(left));
    right = plainValue(std::move(right));
  }
  const Type l = left->type, r = right->type;
  const char key = symbol == "mod" ? '%' : symbol[0];
  if (key == '+' && isText(l) && isText(r)) {
    return referenceNode({Kind::String},
                         [left = std::move(left), right = std::move(right)](Frame& f) -> Ref<Heap> {
                           const Ref<Heap> first = left->reference(f);
                           const Ref<Heap> second = right->reference(f);
                           const auto* a = static_cast<const Text*>(first.get());
                           const auto* b = static_cast<const Text*>(second.get());
                           if (a && b && a->encoding != b->encoding) return makeText(utf8Of(a) + utf8Of(b));
                           std::string joined(bytesOf(a));
                           joined += bytesOf(b);
                           return makeText(joined, a ? a->encoding : b ? b->encoding : encoding::utf8);
                         });
  }
  if (isVariant(l) || isVariant(r)) {
    left = convertTo(std::move(left), {Kind::Variant}, "an operand");
    right = convertTo(std::move(right), {Kind::Variant}, "an operand");
    return referenceNode({Kind::Variant}, [left = std::move(left), right = std::move(right), key](Frame& f) {
      const Ref<Heap> first = left->reference(f);
      return computeVariants(key, first.get(), right->reference(f).get());
    });
  }
  if (!l.isNumber() || !r.isNumber()) {
    fail(position, "there is no operator '" + symbol + "' for " + nameOf(l) + " and " + nameOf(r));
  }
  const bool needsIntegers = key == '\\' || key == '%';
  const bool integers = l.isInteger() && r.isInteger() && key != '/' && key != '^';
  if (integers || needsIntegers) {
    // One unsigned 64-bit operand makes the other one too; literals go with the other operand.
    const auto isWord = [](const Expression& e) { return e.type.kind == Kind::UInt64; };
    const bool wide = (isWord(*left) && !(left->isLiteral && left->literal >= 0 && !isWord(*right))) ||
                      (isWord(*right) && !(right->isLiteral && right->literal >= 0 && !isWord(*left)));
    const Type type{wide ? Kind::UInt64 : Kind::Int64};
    left = convertTo(std::move(left), type, "an operand");
    right = convertTo(std::move(right), type, "an operand");
    return wide ? integerOperator<std::uint64_t>(key, type, std::move(left), std::move(right))
                : integerOperator<std::int64_t>(key, type, std::move(left), std::move(right));
  }
  if (l.kind == Kind::Currency || r.kind == Kind::Currency) {
    // Currency stays exact where it can: in sums, and times an integer.
    if ((key == '+' || key == '-') && !l.isFloating() && !r.isFloating()) {
      left = convertTo(std::move(left), {Kind::Currency}, "an operand");
      right = convertTo(std::move(right), {Kind::Currency}, "an operand");
      return integerOperator<std::int64_t>(key, {Kind::Currency}, std::move(left), std::move(right));
    }
    if (key == '*' && (l.isInteger() || r.isInteger())) {
      return integerOperator<std::int64_t>(key, {Kind::Currency}, std::move(left), std::move(right));
    }
  }
  if (l.kind == Kind::Single && r.kind == Kind::Single && key != '^') {
    return floatingOperator(
        key, [](auto f) { return singleNode(std::move(f)); },
        [](const Expression& e, Frame& f) { return e.single(f); }, std::move(left), std::move(right));
  }
  left = convertTo(std::move(left), {Kind::Double}, "an operand");
  right = convertTo(std::move(right), {Kind::Double}, "an operand");
  return floatingOperator(
      key, [](auto f) { return realNode(std::move(f)); },
      [](const Expression& e, Frame& f) { return e.real(f); }, std::move(left), std::move(right));
}

Expr Compiler::comparison(const std::string& symbol, Expr left, Expr right, Position position) {
  static const std::set<std::string> symbols = {"=", "<>", "<", "<=", ">", ">="};
  if (!symbols.contains(symbol))
    fail(position, "expected a comparison such as < or =, found '" + symbol + "'");
  if (isPlainObject(left->type) || isPlainObject(right->type)) {
    const auto declares = [](const Expression& e) {
      return isPlainObject(e.type) && e.type.objectClass &&
             !e.type.objectClass->findMethods("Operator_Compare").empty();
    };
    const bool leftDeclares = declares(*left);
    if (leftDeclares || declares(*right)) {
      const Type leftType = left->type, rightType = right->type;
      // From the right the operator's sign is reversed.
      for (const bool reversed : {false, true}) {
        if (reversed ? !declares(*right) : !leftDeclares) continue;
        Expr& self = reversed ? right : left;
        Expr& other = reversed ? left : right;
        const std::vector<const Method*> candidates = self->type.objectClass->findMethods("Operator_Compare");
        const Method* best = nullptr;
        int bestCost = -1;
        for (const Method* method : candidates) {
          if (method->declaration.parameters.size() != 1) continue;
          const int each = cost(*other, method->declaration.parameters[0].type, false);
          if (each >= 0 && (bestCost < 0 || each < bestCost)) {
            best = method;
            bestCost = each;
          }
        }
        if (!best) continue;
        Arguments arguments;
        arguments.push_back(std::move(other));
        Expr sign = callMethodExactly(*best, std::move(self), std::move(arguments), position);
        return compareWith(symbol, [sign = std::move(sign), reversed](Frame& f) {
          const int result = order(sign->integer(f), std::int64_t{0});
          return reversed ? -result : result;
        });
      }
      if (isPlainObject(leftType) && isPlainObject(rightType)) {
        fail(position, "a " + nameOf(leftType) + " cannot be compared with a " + nameOf(rightType));
      }
    }
    const auto isObjectOrNil = [](Type type) { return isPlainObject(type) || type.kind == Kind::Nil; };
    if (isObjectOrNil(left->type) && isObjectOrNil(right->type) && (symbol == "=" || symbol == "<>")) {
      return integerNode({Kind::Boolean},
                         [left = std::move(left), right = std::move(right), same = symbol == "="](Frame& f) {
                           const Ref<Heap> first = left->reference(f);
                           return (first.get() == right->reference(f).get()) == same;
                         });
    }
    left = plainValue(std::move(left));
    right = plainValue(std::move(right));
  }
  const Type l = left->type, r = right->type;
  if (isVariant(l) || isVariant(r)) {
    left = convertTo(std::move(left), {Kind::Variant}, "an operand");
    right = convertTo(std::move(right), {Kind::Variant}, "an operand");
    return compareWith(symbol, [left = std::move(left), right = std::move(right)](Frame& f) {
      const Ref<Heap> first = left->reference(f);
      return compareVariants(first.get(), right->reference(f).get());
    });
  }
  if (isText(l) && isText(r)) {
    return compareWith(symbol, [left = std::move(left), right = std::move(right)](Frame& f) {
      const Ref<Heap> first = left->reference(f);
      const Ref<Heap> second = right->reference(f);
      return order(compareText(static_cast<const Text*>(first.get()), static_cast<const Text*>(second.get())),
                   0);
    });
  }
  if ((isBoolean(l) && isBoolean(r)) || (l.kind == Kind::Pointer && r.kind == Kind::Pointer)) {
    return compareIntegers<std::uint64_t>(symbol, std::move(left), std::move(right));
  }
  if (l.kind == Kind::Pointer && r.kind == Kind::Nil) {
    right = convertTo(std::move(right), l, "an operand");
    return compareIntegers<std::uint64_t>(symbol, std::move(left), std::move(right));
  }
  if (!l.isNumber() || !r.isNumber()) {
    fail(position, "a " + nameOf(l) + " cannot be compared with a " + nameOf(r));
  }
  if (l.isInteger() && r.isInteger()) {
    const bool lWord = l.kind == Kind::UInt64, rWord = r.kind == Kind::UInt64;
    if (lWord == rWord) {
      return lWord ? compareIntegers<std::uint64_t>(symbol, std::move(left), std::move(right))
                   : compareIntegers<std::int64_t>(symbol, std::move(left), std::move(right));
    }
    // Signed with unsigned: by what the numbers are.
    return compareWith(symbol, [left = std::move(left), right = std::move(right), lWord](Frame& f) {
      const std::int64_t first = left->integer(f), second = right->integer(f);
      // Where either has its top bit set, the unsigned one is the greater.
      if (first < 0 || second < 0) return lWord ? 1 : -1;
      return order(first, second);
    });
  }
  if (l.kind == Kind::Currency && r.kind == Kind::Currency) {
    return compareIntegers<std::int64_t>(symbol, std::move(left), std::move(right));
  }
  left = convertTo(std::move(left), {Kind::Double}, "an operand");
  right = convertTo(std::move(right), {Kind::Double}, "an operand");
  return compareWith(symbol, [left = std::move(left), right = std::move(right)](Frame& f) {
    const double first = left->real(f);
    return order(first, right->real(f));
  });
}

// And, Or, Xor: of Booleans (the right one only where it matters) or bit by bit.
Expr Compiler::logical(const std::string& symbol, Expr left, Expr right, Position position) {
  left = plainValue(std::move(left));
  right = plainValue(std::move(right));
  for (Expr* each : {&left, &right}) {
    if (isVariant((*each)->type)) *each = convertTo(std::move(*each), {Kind::Boolean}, "an operand");
  }
  const Type l = left->type, r = right->type;
  if (isBoolean(l) && isBoolean(r)) {
    if (symbol == "and") {
      return integerNode(l, [a = std::move(left), b = std::move(right)](Frame& f) {
        return a->integer(f) != 0 && b->integer(f) != 0;
      });
    }
    if (symbol == "or") {
      return integerNode(l, [a = std::move(left), b = std::move(right)](Frame& f) {
        return a->integer(f) != 0 || b->integer(f) != 0;
      });
    }
    return integerNode(
        l, [a = std::move(left), b = std::move(right)](Frame& f) { return a->integer(f) ^ b->integer(f); });
  }
  if (!l.isInteger() || !r.isInteger()) {
    fail(position, "there is no operator '" + symbol + "' for " + nameOf(l) + " and " + nameOf(r));
  }
  const Type type{l.kind == Kind::UInt64 || r.kind == Kind::UInt64 ? Kind::UInt64 : Kind::Int64};
  left = convertTo(std::move(left), type, "an operand");
  right = convertTo(std::move(right), type, "an operand");
  if (symbol == "and") {
    return integerNode(type, [a = std::move(left), b = std::move(right)](Frame& f) {
      return a->integer(f) & b->integer(f);
    });
  }
  if (symbol == "or") {
    return integerNode(type, [a = std::move(left), b = std::move(right)](Frame& f) {
      return a->integer(f) | b->integer(f);
    });
  }
  return integerNode(
      type, [a = std::move(left), b = std::move(right)](Frame& f) { return a->integer(f) ^ b->integer(f); });
}

Expr Compiler::negation(Expr operand, Position position) {
  if (isPlainObject(operand->type)) {
    if (operand->type.objectClass) {
      for (const Method* method : operand->type.objectClass->findMethods("Operator_Negate")) {
        return callMethodExactly(*method, std::move(operand), {}, position);
      }
    }
    operand = plainValue(std::move(operand));
  }
  const Type type = operand->type;
  if (operand->isLiteral && type.isInteger() && (operand->literal >= 0 || operand->literal == INT64_MIN)) {
    // −9223372036854775808 is written as a literal that is one too big by itself.
    if (type.kind == Kind::Int64 || operand->literal == INT64_MIN) {
      return literalInteger(0 - static_cast<std::uint64_t>(operand->literal), {Kind::Int64});
    }
  }
  if (type.isInteger()) {
    const Type result{type.kind == Kind::UInt64 ? Kind::UInt64 : Kind::Int64};
    return integerNode(result, [operand = std::move(operand)](Frame& f) {
      return 0 - static_cast<std::uint64_t>(operand->integer(f));
    });
  }
  const bool isLiteral = operand->isLiteral;
  Expr negated;
  if (type.kind == Kind::Currency && !type.array) {
    negated = integerNode(type, [operand = std::move(operand)](Frame& f) {
      return 0 - static_cast<std::uint64_t>(operand->integer(f));
    });
  } else if (type.kind == Kind::Double && !type.array) {
    negated = realNode([operand = std::move(operand)](Frame& f) { return -operand->real(f); });
  } else if (type.kind == Kind::Single && !type.array) {
    negated = singleNode([operand = std::move(operand)](Frame& f) { return -operand->single(f); });
  } else if (isVariant(type)) {
    return arithmetic("-", convertTo(literalInteger(0, {Kind::Int64}), type, "an operand"),
                      std::move(operand), position);
  } else {
    fail(position, "there is no operator '-' for a " + nameOf(type));
  }
  negated->isLiteral = isLiteral;
  negated->literal = -1;
  return negated;
}

}  // namespace host
