// Comparisons, and what else gives a Boolean about two values: Is, IsA, conditions.
#include <compare>
#include <functional>

#include "language/conversions.h"
#include "language/operator_parts.h"
#include "language/operators.h"
#include "language/spelling.h"
#include "runtime/object.h"
#include "runtime/text.h"
#include "runtime/variant.h"
#include "runtime/wording.h"

namespace host {

namespace {

// Calls `use` with the function of two numbers that the operator stands for.
template <typename Use>
Expr withTest(Operator op, Use use) {
  switch (op) {
    case Operator::equal:
      return use(std::equal_to<>());
    case Operator::unequal:
      return use(std::not_equal_to<>());
    case Operator::less:
      return use(std::less<>());
    case Operator::lessOrEqual:
      return use(std::less_equal<>());
    case Operator::greater:
      return use(std::greater<>());
    default:
      return use(std::greater_equal<>());
  }
}

constexpr auto makeBoolean = [](auto function) { return booleanNode(std::move(function)); };

template <typename Word>
Expr compareIntegers(Operator op, Expr left, Expr right) {
  return withTest(op, [&](auto test) {
    const auto compare = [test](std::int64_t a, std::int64_t b) {
      return test(static_cast<Word>(a), static_cast<Word>(b));
    };
    return onIntegers(std::move(left), std::move(right), compare, makeBoolean);
  });
}

Expr compareReals(Operator op, Expr left, Expr right) {
  return withTest(op,
                  [&](auto test) { return onReals(std::move(left), std::move(right), test, makeBoolean); });
}

// By a function of the frame that orders the two.
template <typename Order>
Expr compareBy(Operator op, Order order) {
  bool (*test)(std::partial_ordering) noexcept = op == Operator::equal         ? std::is_eq
                                                 : op == Operator::unequal     ? std::is_neq
                                                 : op == Operator::less        ? std::is_lt
                                                 : op == Operator::lessOrEqual ? std::is_lteq
                                                 : op == Operator::greater     ? std::is_gt
                                                                               : std::is_gteq;
  return booleanNode([order = std::move(order), test](Frame& f) { return test(order(f)); });
}

// A signed number and an unsigned one, by what they are.
std::partial_ordering compareMixed(std::int64_t left, std::int64_t right, bool leftIsUnsigned) {
  // Where either has its top bit set, the unsigned one is the greater.
  if (left < 0 || right < 0) {
    return leftIsUnsigned ? std::partial_ordering::greater : std::partial_ordering::less;
  }
  return left <=> right;
}

bool declaresCompare(const Expression& object) {
  return isPlainObject(object.type) && object.type.objectClass &&
         !object.type.objectClass->findMethods("Operator_Compare").empty();
}

// Where an operand is an object: by its class's Operator_Compare, or whether it is the same object. Null
// where that leaves plain values to be compared.
Expr compareObjects(Operator op, Expr& left, Expr& right, Position position) {
  OperatorMember member;
  member.consider(*left, *right, "Operator_Compare", false);
  if (!member.method) member.consider(*right, *left, "Operator_Compare", true);
  if (member.method) {
    const bool reflected = member.reflected;
    return compareBy(op, [sign = member.call(left, right), reflected](Frame& f) -> std::partial_ordering {
      const std::int64_t result = sign->integer(f);
      return reflected ? 0 <=> result : result <=> 0;
    });
  }
  const Type l = left->type, r = right->type;
  if ((declaresCompare(*left) || declaresCompare(*right)) && isPlainObject(l) && isPlainObject(r)) {
    throw WrongUse(position, "Operator_Compare",
                   withArticle(nameOf(l)) + " cannot be compared with " + withArticle(nameOf(r)));
  }
  const auto isObjectOrNil = [](Type type) { return isPlainObject(type) || type.kind == Kind::Nil; };
  const bool forIdentity = op == Operator::equal || op == Operator::unequal;
  if (!forIdentity || !isObjectOrNil(l) || !isObjectOrNil(r)) return nullptr;
  Expr same = identity(std::move(left), std::move(right), position);
  if (op == Operator::equal) return same;
  return booleanNode([same = std::move(same)](Frame& f) { return same->integer(f) == 0; });
}

}  // namespace

std::partial_ordering compareVariants(const Heap* left, const Heap* right) {
  if (left == right) return std::partial_ordering::equivalent;
  const Type l = typeIn(left), r = typeIn(right);
  if (isText(l) || isText(r)) return compareText(toText(left).get(), toText(right).get()) <=> 0;
  if (l.isInteger() && r.isInteger()) {
    if (l.kind == Kind::UInt64 || r.kind == Kind::UInt64) {
      if (l.kind != Kind::UInt64 && toInt64(left) < 0) return std::partial_ordering::less;
      if (r.kind != Kind::UInt64 && toInt64(right) < 0) return std::partial_ordering::greater;
      return toUInt64(left) <=> toUInt64(right);
    }
    return toInt64(left) <=> toInt64(right);
  }
  if (l.kind == Kind::Nil || r.kind == Kind::Nil)
    return left ? std::partial_ordering::greater : std::partial_ordering::less;
  if (isPlainObject(l) || isPlainObject(r) || l.array || r.array) return std::partial_ordering::unordered;
  return toDouble(left) <=> toDouble(right);
}

Expr comparison(Operator op, Expr left, Expr right, Position position) {
  if (isPlainObject(left->type) || isPlainObject(right->type)) {
    if (Expr compared = compareObjects(op, left, right, position)) return compared;
    left = plainValue(std::move(left));
    right = plainValue(std::move(right));
  }
  const Type l = left->type, r = right->type;
  if (isVariant(l) || isVariant(r)) {
    left = convertTo(std::move(left), {Kind::Variant}, "an operand");
    right = convertTo(std::move(right), {Kind::Variant}, "an operand");
    return compareBy(op,
                     [left = std::move(left), right = std::move(right)](Frame& f) -> std::partial_ordering {
                       const Ref<Heap> first = left->reference(f);
                       return compareVariants(first.get(), right->reference(f).get());
                     });
  }
  if (isText(l) && isText(r)) {
    return compareBy(op,
                     [left = std::move(left), right = std::move(right)](Frame& f) -> std::partial_ordering {
                       const Ref<Heap> first = left->reference(f);
                       const Ref<Heap> second = right->reference(f);
                       return compareText(static_cast<const Text*>(first.get()),
                                          static_cast<const Text*>(second.get())) <=> 0;
                     });
  }
  if ((isBoolean(l) && isBoolean(r)) || (l.kind == Kind::Pointer && r.kind == Kind::Pointer)) {
    return compareIntegers<std::uint64_t>(op, std::move(left), std::move(right));
  }
  if (l.kind == Kind::Pointer && r.kind == Kind::Nil) {
    right = convertTo(std::move(right), l, "an operand");
    return compareIntegers<std::uint64_t>(op, std::move(left), std::move(right));
  }
  if (!l.isNumber() || !r.isNumber()) {
    throw WrongUse(position, isPlainObject(l) || isPlainObject(r) ? "Operator_Compare" : " ",
                   withArticle(nameOf(l)) + " cannot be compared with " + withArticle(nameOf(r)));
  }
  if (l.isInteger() && r.isInteger()) {
    const bool lWord = l.kind == Kind::UInt64, rWord = r.kind == Kind::UInt64;
    if (lWord == rWord) {
      return lWord ? compareIntegers<std::uint64_t>(op, std::move(left), std::move(right))
                   : compareIntegers<std::int64_t>(op, std::move(left), std::move(right));
    }
    return compareBy(op, [left = std::move(left), right = std::move(right), lWord](Frame& f) {
      const std::int64_t first = left->integer(f);
      return compareMixed(first, right->integer(f), lWord);
    });
  }
  if (l.kind == Kind::Currency && r.kind == Kind::Currency) {
    return compareIntegers<std::int64_t>(op, std::move(left), std::move(right));
  }
  return compareReals(op, convertTo(std::move(left), {Kind::Double}, "an operand"),
                      convertTo(std::move(right), {Kind::Double}, "an operand"));
}

Expr identity(Expr left, Expr right, Position position) {
  for (const Expr* each : {&left, &right}) {
    if (!(*each)->type.isReference() || isText((*each)->type)) {
      fail(position, "Is compares objects; found " + nameOf((*each)->type));
    }
  }
  return booleanNode([left = std::move(left), right = std::move(right)](Frame& f) {
    const Ref<Heap> first = left->reference(f);
    return first.get() == right->reference(f).get();
  });
}

Expr instanceTest(Expr object, const Class& type, Position position) {
  if (!object->type.isReference()) fail(position, "IsA tests objects; found " + nameOf(object->type));
  return booleanNode(
      [object = std::move(object), &type](Frame& f) { return isInstance(object->reference(f).get(), type); });
}

Expr condition(Expr value, Position position, const std::string& what) {
  if (distance(*value, {Kind::Boolean}) < 0) {
    fail(position, "expected Boolean as " + what + ", found " + nameOf(value->type));
  }
  return convertTo(std::move(value), {Kind::Boolean}, what);
}

}  // namespace host
