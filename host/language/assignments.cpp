// What a place takes, and how it gets there.
#include "language/assignments.h"

#include "language/conversions.h"
#include "language/joined_text.h"
#include "language/operators.h"
#include "runtime/object.h"

namespace host {

namespace {

// How a value gets into a place: as it is, or converted by the object that is there.
class Taking {
 public:
  Taking(Type type, Expr value) {
    const bool isObject = isPlainObject(type) && type.objectClass;
    if (isObject && distance(*value, type) >= throughClass) {
      objectClass_ = type.objectClass;
      convert_ = conversionInto(*objectClass_, *value).method;
      value_ = convertTo(std::move(value), convert_->declaration.parameters[0].type, "the value");
    } else {
      value_ = convertTo(std::move(value), type, "the value");
    }
  }

  bool needsCurrent() const { return convert_ != nullptr; }
  const Expression& value() const { return *value_; }
  Expr takeValue() { return std::move(value_); }

  // What becomes of the current value; nothing where its object has taken the value on.
  std::optional<Slot> apply(Slot current, Slot value) const {
    if (!convert_) return value;
    Ref<Heap> object = Ref<Heap>::share(current.heap);
    const bool fresh = !object;
    if (fresh) object = makeObject(*objectClass_);
    const Slot arguments[] = {{.heap = object.get()}, value};
    convert_->call(arguments);
    return fresh ? std::optional(Slot{.heap = object.detach()}) : std::nullopt;
  }

 private:
  const Class* objectClass_ = nullptr;
  const Method* convert_ = nullptr;
  Expr value_;
};

}  // namespace

Stmt assignment(Position position, Expr target, Expr value) {
  std::unique_ptr<Place> place = placeOf(std::move(target), position, "this cannot be assigned to");
  Taking taking(place->type, std::move(value));
  if (taking.needsCurrent()) {
    return statement(position, [place = std::move(place), taking = std::move(taking)](Frame& frame) {
      const Held held(taking.value(), frame);
      place->update(frame, [&](Slot current) { return taking.apply(current, held.slot); });
    });
  }
  Expr taken = taking.takeValue();
  if (Exprs added = takeAdded(*place, *taken); !added.empty()) {
    return statement(position, [place = std::move(place), added = std::move(added)](Frame& frame) {
      appendTexts(*place, frame, added);
    });
  }
  if (place->variable) {
    if (Stmt stored = taken->storing(*place->variable, position)) return stored;
  }
  if (registerOf(place->type) == Register::integer) {
    return statement(position, [place = std::move(place), taken = std::move(taken)](Frame& frame) {
      place->put(frame, Slot{.integer = taken->integer(frame)});
    });
  }
  return statement(position, [place = std::move(place), taken = std::move(taken)](Frame& frame) {
    place->put(frame, taken->evaluate(frame));
  });
}

void warnOfOverwriting(Position position, Operator op, Type target, Type computed) {
  if (!isPlainObject(target) || !target.objectClass || isPlainObject(computed) || computed.array) return;
  const std::string member = op == Operator::add ? "Add" : op == Operator::subtract ? "Subtract" : "";
  const bool hasMember = !member.empty() && !target.objectClass->findMethods(member).empty();
  warn(position, std::string("this puts the result of '") + nameOf(op) + "' back into the " +
                     target.objectClass->name + ", over what was done to it meanwhile" +
                     (hasMember ? "; its member " + member + " changes it in one step" : ""));
}

Stmt compoundAssignment(Position position, Operator op, Expr target, Expr value, const MakeHidden& hidden) {
  std::unique_ptr<Place> place = placeOf(std::move(target), position, "this cannot be assigned to");
  Expr again = place->again();
  std::unique_ptr<Place> before;
  if (!again) before = hidden(place->type);
  Expr result = binary(op, before ? before->again() : std::move(again), std::move(value), position);
  warnOfOverwriting(position, op, place->type, result->type);
  if (!before) return assignment(position, std::move(place), std::move(result));
  if (Exprs added = takeAdded(*before, *result); !added.empty()) {
    return statement(position, [place = std::move(place), added = std::move(added)](Frame& frame) {
      appendTextsToFound(*place, frame, added);
    });
  }
  Taking taking(place->type, std::move(result));
  return statement(position, [place = std::move(place), before = std::move(before),
                              taking = std::move(taking)](Frame& frame) {
    place->update(frame, [&](Slot current) {
      if (place->type.isReference()) retain(current.heap);
      before->put(frame, current);
      Held computed(taking.value(), frame);
      if (before->type.isReference()) before->put(frame, Slot{});
      std::optional<Slot> changed = taking.apply(current, computed.slot);
      if (!taking.needsCurrent()) computed.detach();
      return changed;
    });
  });
}

}  // namespace host
