// What arithmetic and comparisons share.
#pragma once

#include "language/node.h"

namespace host {

// Hands `use` a function that reads an integer operand; a variable or a literal is read without a call.
template <typename Use>
Expr withInteger(Expr operand, Use use) {
  if (operand->literal) return use([value = *operand->literal](Frame&) { return value; });
  if (operand->variable)
    return use([variable = *operand->variable](Frame& f) { return variable.integer(f); });
  return use([operand = std::move(operand)](Frame& f) { return operand->integer(f); });
}

template <typename Use>
Expr withReal(Expr operand, Use use) {
  if (operand->variable) return use([variable = *operand->variable](Frame& f) { return variable.real(f); });
  return use([operand = std::move(operand)](Frame& f) { return operand->real(f); });
}

// What `make` makes of the function that computes operation(left, right), the left one first.
template <typename Operation, typename Make>
Expr onIntegers(Expr left, Expr right, Operation operation, Make make) {
  return withInteger(std::move(left), [&](auto l) {
    return withInteger(std::move(right), [&](auto r) {
      return make([l = std::move(l), r = std::move(r), operation](Frame& f) {
        const std::int64_t first = l(f);
        return operation(first, r(f));
      });
    });
  });
}

template <typename Operation, typename Make>
Expr onReals(Expr left, Expr right, Operation operation, Make make) {
  return withReal(std::move(left), [&](auto l) {
    return withReal(std::move(right), [&](auto r) {
      return make([l = std::move(l), r = std::move(r), operation](Frame& f) {
        const double first = l(f);
        return operation(first, r(f));
      });
    });
  });
}

template <typename Operation>
Expr integerOperation(Type type, Expr left, Expr right, Operation operation) {
  return onIntegers(std::move(left), std::move(right), operation,
                    [type](auto function) { return integerNode(type, std::move(function)); });
}

// One of the two members that a class may declare for an operator: of the left operand's class for
// the right one, or reflected, of the right operand's class for the left. Which it is goes by how far the
// other operand is from the member's parameter.
struct OperatorMember {
  const Method* method = nullptr;
  int distance = 0;
  bool reflected = false;

  // Considers the members of that name in the class of `self`, to be handed `other`; a nearer one replaces
  // what is there.
  void consider(const Expression& self, const Expression& other, const std::string& member, bool isReflected);
  // The call of the one found. What is used is moved from.
  Expr call(Expr& left, Expr& right) const;
};

}  // namespace host
