// What every operator has: its name, a way to it, and the members of classes that bring it.
#include "language/operators.h"

#include "language/calls.h"
#include "language/conversions.h"
#include "language/operator_parts.h"
#include "language/spelling.h"
#include "runtime/wording.h"

namespace host {

const char* nameOf(Operator op) {
  static constexpr const char* names[] = {"+", "-",  "*", "/",  "\\", "mod", "^",  "=",  "<>",
                                          "<", "<=", ">", ">=", "is", "and", "or", "xor"};
  return names[static_cast<std::size_t>(op)];
}

Expr binary(Operator op, Expr left, Expr right, Position position) {
  Expr made;
  if (op == Operator::is) {
    made = identity(std::move(left), std::move(right), position);
  } else if (op >= Operator::both) {
    made = logical(op, std::move(left), std::move(right), position);
  } else if (isComparison(op)) {
    made = comparison(op, std::move(left), std::move(right), position);
  } else {
    made = arithmetic(op, std::move(left), std::move(right), position);
  }
  made->position = position;
  return made;
}

void OperatorMember::consider(const Expression& self, const Expression& other, const std::string& member,
                              bool isReflected) {
  if (!isPlainObject(self.type) || !self.type.objectClass) return;
  for (const Method* each : self.type.objectClass->findMethods(member)) {
    if (each->declaration.parameters.size() != 1) continue;
    const int far = host::distance(other, each->declaration.parameters[0].type);
    if (far >= 0 && (!method || far < distance)) *this = {each, far, isReflected};
  }
}

Expr OperatorMember::call(Expr& left, Expr& right) const {
  Exprs arguments;
  const Expression& other = reflected ? *left : *right;
  if (other.type.isFloating() && !other.isLiteral && method->declaration.parameters[0].type.isInteger()) {
    warn(other.position,
         "the " + nameOf(other.type) + " loses its decimals: expected is " + method->declaration.text);
  }
  arguments.push_back(std::move(reflected ? left : right));
  return callExactly(*method, std::move(reflected ? right : left), std::move(arguments));
}

// Of Booleans (the right one only where it matters) or bit by bit.
Expr logical(Operator op, Expr left, Expr right, Position position) {
  left = plainValue(std::move(left));
  right = plainValue(std::move(right));
  for (Expr* each : {&left, &right}) {
    if (isVariant((*each)->type)) *each = convertTo(std::move(*each), {Kind::Boolean}, "an operand");
  }
  const Type l = left->type, r = right->type;
  Type type = l;
  if (isBoolean(l) && isBoolean(r)) {
    if (op == Operator::both) {
      return booleanNode([a = std::move(left), b = std::move(right)](Frame& f) {
        return a->integer(f) != 0 && b->integer(f) != 0;
      });
    }
    if (op == Operator::either) {
      return booleanNode([a = std::move(left), b = std::move(right)](Frame& f) {
        return a->integer(f) != 0 || b->integer(f) != 0;
      });
    }
  } else {
    if (!l.isInteger() || !r.isInteger()) {
      fail(position,
           std::string("there is no operator '") + nameOf(op) + "' for " + nameOf(l) + " and " + nameOf(r));
    }
    type = {l.kind == Kind::UInt64 || r.kind == Kind::UInt64 ? Kind::UInt64 : Kind::Int64};
    left = convertTo(std::move(left), type, "an operand");
    right = convertTo(std::move(right), type, "an operand");
  }
  switch (op) {
    case Operator::both:
      return integerOperation(type, std::move(left), std::move(right), std::bit_and<>());
    case Operator::either:
      return integerOperation(type, std::move(left), std::move(right), std::bit_or<>());
    default:
      return integerOperation(type, std::move(left), std::move(right), std::bit_xor<>());
  }
}

Expr inversion(Expr operand, Position position) {
  operand = plainValue(std::move(operand));
  if (isVariant(operand->type)) operand = convertTo(std::move(operand), {Kind::Boolean}, "an operand");
  const Type type = operand->type;
  if (isBoolean(type)) {
    return booleanNode([operand = std::move(operand)](Frame& f) { return operand->integer(f) == 0; });
  }
  if (!type.isInteger()) fail(position, "there is no operator 'Not' for " + withArticle(nameOf(type)));
  const Type result{type.kind == Kind::UInt64 ? Kind::UInt64 : Kind::Int64};
  return integerNode(result, [operand = std::move(operand)](Frame& f) { return ~operand->integer(f); });
}

}  // namespace host
