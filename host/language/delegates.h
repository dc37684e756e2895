// Delegates: objects that stand for a Sub, or for a method of an object.
#pragma once

#include "language/invocation.h"
#include "language/node.h"
#include "runtime/class.h"

namespace host {

// AddressOf: what it is a delegate of depends on where it goes to. It has no value by itself.
class MethodReference final : public Expression {
 public:
  // `self`: the object whose method it is; null where it is none's.
  MethodReference(std::vector<const Method*> candidates, Expr self)
      : Expression(Type{}), candidates_(std::move(candidates)), self_(std::move(self)) {}
  std::int64_t integer(Frame&) const override { return 0; }
  const MethodReference* methodReference() const override { return this; }

  // The one that takes and gives what the delegate does; null where there is none.
  const Method* fitting(const Method& signature) const;
  const std::vector<const Method*>& candidates() const { return candidates_; }
  Expr takeSelf() { return std::move(self_); }

 private:
  std::vector<const Method*> candidates_;
  Expr self_;
};

// Makes the class one of delegates.
void becomeDelegate(Class& made);

// A delegate of the class, of a method that fits it; `self` as above.
Expr newDelegate(const Class& made, const Method& method, Expr self);

// Calls what the delegate stands for.
Slot callDelegateNow(Heap& delegate, const std::vector<Passed>& arguments, Frame& frame);

// A call through a delegate, of arguments that are of the parameters' types already. `written`: how the
// program writes it, for the message where it is Nil.
Expr invokeDelegate(const Class& made, Expr delegate, std::vector<Passed> arguments,
                    const std::string& written);

}  // namespace host
