// The type of a conditional value, and the choice.
#include "language/conditional.h"

#include "language/conversions.h"

namespace host {

const Class* commonClass(const Class* one, const Class* other) {
  if (!one || !other) return nullptr;
  if (one->isA(*other)) return other;
  for (; one; one = one->super) {
    if (other->isA(*one)) return one;
  }
  return nullptr;
}

namespace {

Type commonType(const Expression& first, const Expression& second) {
  const Type one = first.type, other = second.type;
  if (one == other) return one;
  if (one.kind == Kind::Nil && other.isReference() && !isText(other)) return other;
  if (other.kind == Kind::Nil && one.isReference() && !isText(one)) return one;
  if (one.isNumber() && other.isNumber()) {
    // A literal becomes what the other one is, where it fits.
    if (first.literal && (!other.isInteger() || distance(first, other) <= 2)) return other;
    if (second.literal && (!one.isInteger() || distance(second, one) <= 2)) return one;
    return {one.isInteger() && other.isInteger() ? Kind::Int64 : Kind::Double};
  }
  if (isPlainObject(one) && isPlainObject(other)) {
    return {Kind::Object, false, commonClass(one.objectClass, other.objectClass)};
  }
  return {Kind::Variant};
}

}  // namespace

Expr conditional(Expr condition, Expr first, Expr second, Position position) {
  for (const Expr* each : {&first, &second}) {
    if ((*each)->type.kind == Kind::None) fail((*each)->position, "If chooses between values; this has none");
  }
  const Type type = commonType(*first, *second);
  first = convertTo(std::move(first), type, "the first value of If");
  second = convertTo(std::move(second), type, "the second value of If");
  Expr chosen = slotNode(
      type, [condition = std::move(condition), first = std::move(first), second = std::move(second)](
                Frame& f) { return condition->integer(f) != 0 ? first->evaluate(f) : second->evaluate(f); });
  chosen->position = position;
  return chosen;
}

}  // namespace host
