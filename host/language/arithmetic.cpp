// Arithmetic: on whole numbers, which wraps around, on fractions, text and variants.
#include <cmath>
#include <optional>
#include <type_traits>

#include "language/calls.h"
#include "language/conversions.h"
#include "language/joined_text.h"
#include "language/operator_parts.h"
#include "language/operators.h"
#include "language/spelling.h"
#include "runtime/text.h"
#include "runtime/variant.h"
#include "runtime/wording.h"

namespace host {

namespace {

const char* memberOf(Operator op) {
  switch (op) {
    case Operator::add:
      return "Operator_Add";
    case Operator::subtract:
      return "Operator_Subtract";
    case Operator::multiply:
      return "Operator_Multiply";
    case Operator::divide:
      return "Operator_Divide";
    case Operator::integerDivide:
      return "Operator_IntegerDivide";
    case Operator::modulo:
      return "Operator_Modulo";
    default:
      return "Operator_Power";
  }
}

template <typename Word>
void checkDivisor(Word divisor) {
  if (divisor == 0) throw HostException("DivisionByZeroException", "An integer is divided by zero.");
}
// The least number has no opposite: its quotient by -1 wraps around to itself.
template <typename Word>
Word divide(Word left, Word right) {
  checkDivisor(right);
  if constexpr (std::is_signed_v<Word>) {
    if (right == -1) return static_cast<Word>(0 - static_cast<std::uint64_t>(left));
  }
  return left / right;
}
template <typename Word>
Word remainder(Word left, Word right) {
  checkDivisor(right);
  if constexpr (std::is_signed_v<Word>) {
    if (right == -1) return 0;
  }
  return left % right;
}

// On 64-bit words, which are signed or not.
template <typename Word>
Expr quotient(Operator op, Type type, Expr l, Expr r) {
  if (op == Operator::integerDivide) {
    return integerOperation(type, std::move(l), std::move(r), [](std::int64_t a, std::int64_t b) {
      return divide(static_cast<Word>(a), static_cast<Word>(b));
    });
  }
  return integerOperation(type, std::move(l), std::move(r), [](std::int64_t a, std::int64_t b) {
    return remainder(static_cast<Word>(a), static_cast<Word>(b));
  });
}

Expr integerArithmetic(Operator op, Type type, Expr l, Expr r) {
  // These three are the same with a sign and without one.
  const auto make = [&](auto operation) {
    return integerOperation(type, std::move(l), std::move(r), [operation](std::int64_t a, std::int64_t b) {
      return operation(static_cast<std::uint64_t>(a), static_cast<std::uint64_t>(b));
    });
  };
  switch (op) {
    case Operator::add:
      return make(std::plus<>());
    case Operator::subtract:
      return make(std::minus<>());
    case Operator::multiply:
      return make(std::multiplies<>());
    default:
      return type.kind == Kind::UInt64 ? quotient<std::uint64_t>(op, type, std::move(l), std::move(r))
                                       : quotient<std::int64_t>(op, type, std::move(l), std::move(r));
  }
}

// Calls use with the operation on fractions.
template <typename Use>
Expr withFloating(Operator op, Use use) {
  switch (op) {
    case Operator::add:
      return use([](auto a, auto b) { return a + b; });
    case Operator::subtract:
      return use([](auto a, auto b) { return a - b; });
    case Operator::multiply:
      return use([](auto a, auto b) { return a * b; });
    case Operator::divide:
      return use([](auto a, auto b) { return a / b; });
    default:
      return use([](auto a, auto b) { return std::pow(a, b); });
  }
}

Expr realArithmetic(Operator op, Expr left, Expr right) {
  return withFloating(op, [&](auto operation) {
    return onReals(std::move(left), std::move(right), operation,
                   [](auto function) { return realNode(std::move(function)); });
  });
}

template <typename Number>
std::optional<Number> sumDifferenceOrProduct(Operator op, Number a, Number b) {
  if (op == Operator::add) return a + b;
  if (op == Operator::subtract) return a - b;
  if (op == Operator::multiply) return a * b;
  return std::nullopt;
}

Ref<Heap> quotientOrRemainder(Operator op, std::int64_t a, std::int64_t b) {
  return box(Slot{.integer = op == Operator::integerDivide ? divide(a, b) : remainder(a, b)}, {Kind::Int64});
}

Ref<Heap> computeVariants(Operator op, const Heap* left, const Heap* right) {
  const Type l = typeIn(left), r = typeIn(right);
  if (op == Operator::add && (isText(l) || isText(r))) {
    const Ref<Text> joined = makeText(utf8Of(toText(left).get()) + utf8Of(toText(right).get()));
    return box(Slot{.heap = joined.get()}, {Kind::String});
  }
  if (l.isInteger() && r.isInteger() && op != Operator::divide && op != Operator::power) {
    const std::int64_t a = toInt64(left), b = toInt64(right);
    const auto result =
        sumDifferenceOrProduct(op, static_cast<std::uint64_t>(a), static_cast<std::uint64_t>(b));
    return result ? box(Slot{.word = *result}, {Kind::Int64}) : quotientOrRemainder(op, a, b);
  }
  const double a = toDouble(left), b = toDouble(right);
  if (const auto result = sumDifferenceOrProduct(op, a, b))
    return box(Slot{.number = *result}, {Kind::Double});
  if (op == Operator::divide) return box(Slot{.number = a / b}, {Kind::Double});
  if (op == Operator::power) return box(Slot{.number = std::pow(a, b)}, {Kind::Double});
  return quotientOrRemainder(op, convert(Slot{.number = a}, {Kind::Double}, {Kind::Int64}).integer,
                             convert(Slot{.number = b}, {Kind::Double}, {Kind::Int64}).integer);
}

// What is meant for a reader, and no number.
bool isProse(const Expression& text) {
  if (dynamic_cast<const JoinedText*>(&text)) return true;
  if (!isText(text.type) || !text.isLiteral) return false;
  Frame none;
  const Ref<Heap> value = text.reference(none);
  const std::string bytes = utf8Of(static_cast<const Text*>(value.get()));
  return bytes.find_first_not_of("+-0123456789 ") != std::string::npos || bytes.empty();
}

// One unsigned 64-bit operand makes the other one too; literals go with the other operand.
bool isUnsignedTogether(const Expression& left, const Expression& right) {
  const auto decides = [](const Expression& one, const Expression& other) {
    const bool fitsOther = one.literal && *one.literal >= 0 && other.type.kind != Kind::UInt64;
    return one.type.kind == Kind::UInt64 && !fitsOther;
  };
  return decides(left, right) || decides(right, left);
}

}  // namespace

Expr arithmetic(Operator op, Expr left, Expr right, Position position) {
  if (isPlainObject(left->type) || isPlainObject(right->type)) {
    OperatorMember member;
    member.consider(*left, *right, memberOf(op), false);
    member.consider(*right, *left, std::string(memberOf(op)) + "Right", true);
    if (member.method && op == Operator::add && (isProse(*left) || isProse(*right))) {
      const Expression& object = *(isProse(*left) ? right : left);
      if (isPlainObject(member.method->declaration.parameters[0].type)) {
        warn(position, "this adds numbers, for which the text is read as one; Str(…) makes a text of the " +
                           nameOf(object.type));
      }
    }
    if (member.method) return member.call(left, right);
    left = plainValue(std::move(left));
    right = plainValue(std::move(right));
  }
  const Type l = left->type, r = right->type;
  if (op == Operator::add && isText(l) && isText(r)) {
    return std::make_unique<JoinedText>(std::move(left), std::move(right));
  }
  if (isVariant(l) || isVariant(r)) {
    left = convertTo(std::move(left), {Kind::Variant}, "an operand");
    right = convertTo(std::move(right), {Kind::Variant}, "an operand");
    return referenceNode({Kind::Variant}, [left = std::move(left), right = std::move(right), op](Frame& f) {
      const Ref<Heap> first = left->reference(f);
      return computeVariants(op, first.get(), right->reference(f).get());
    });
  }
  if (!l.isNumber() || !r.isNumber()) {
    const bool joins = op == Operator::add && (isText(l) || isText(r));
    const std::string message = std::string("there is no operator '") + nameOf(op) + "' for " + nameOf(l) +
                                " and " + nameOf(r) + (joins ? "; Str(…) makes a text of a number" : "");
    if (isPlainObject(l) || isPlainObject(r)) throw WrongUse(position, memberOf(op), message);
    fail(position, message);
  }
  const bool needsIntegers = op == Operator::integerDivide || op == Operator::modulo;
  const bool integers = l.isInteger() && r.isInteger() && op != Operator::divide && op != Operator::power;
  if (integers || needsIntegers) {
    const bool wide = isUnsignedTogether(*left, *right);
    const Type type{wide ? Kind::UInt64 : Kind::Int64};
    left = convertTo(std::move(left), type, "an operand");
    right = convertTo(std::move(right), type, "an operand");
    return integerArithmetic(op, type, std::move(left), std::move(right));
  }
  if (l.kind == Kind::Currency || r.kind == Kind::Currency) {
    // Currency stays exact where it can: in sums, and times an integer.
    if ((op == Operator::add || op == Operator::subtract) && !l.isFloating() && !r.isFloating()) {
      left = convertTo(std::move(left), {Kind::Currency}, "an operand");
      right = convertTo(std::move(right), {Kind::Currency}, "an operand");
      return integerArithmetic(op, {Kind::Currency}, std::move(left), std::move(right));
    }
    if (op == Operator::multiply && (l.isInteger() || r.isInteger())) {
      return integerArithmetic(op, {Kind::Currency}, std::move(left), std::move(right));
    }
  }
  if (l.kind == Kind::Single && r.kind == Kind::Single && op != Operator::power) {
    return withFloating(op, [&](auto operation) {
      return singleNode([left = std::move(left), right = std::move(right), operation](Frame& f) {
        const float first = left->single(f);
        return operation(first, right->single(f));
      });
    });
  }
  return realArithmetic(op, convertTo(std::move(left), {Kind::Double}, "an operand"),
                        convertTo(std::move(right), {Kind::Double}, "an operand"));
}

Expr negation(Expr operand, Position position) {
  if (isPlainObject(operand->type)) {
    if (operand->type.objectClass) {
      for (const Method* method : operand->type.objectClass->findMethods("Operator_Negate")) {
        return callExactly(*method, std::move(operand), {});
      }
    }
    operand = plainValue(std::move(operand));
  }
  const Type type = operand->type;
  if (type.isInteger() && operand->literal && (*operand->literal >= 0 || *operand->literal == INT64_MIN)) {
    // −9223372036854775808 is written as a literal that is one too big by itself.
    if (type.kind == Kind::Int64 || *operand->literal == INT64_MIN) {
      return integerLiteral(0 - static_cast<std::uint64_t>(*operand->literal), {Kind::Int64});
    }
  }
  if (type.isInteger()) {
    const Type result{type.kind == Kind::UInt64 ? Kind::UInt64 : Kind::Int64};
    if (operand->literal && type.kind == Kind::UInt64) {
      const auto written = static_cast<std::uint64_t>(*operand->literal);
      warn(position, "-" + std::to_string(written) + " does not fit in an integer; it is " +
                         std::to_string(0 - written));
    }
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
    return arithmetic(Operator::subtract, convertTo(integerLiteral(0, {Kind::Int64}), type, "an operand"),
                      std::move(operand), position);
  } else {
    fail(position, "there is no operator '-' for " + withArticle(nameOf(type)));
  }
  negated->isLiteral = isLiteral;
  return negated;
}

}  // namespace host
