// Calls of methods and Subs: arguments from left to right, then the function, then what went by reference is
// written back.
#include "language/invocation.h"

#include <cstring>

#include "language/widen.h"
#include "runtime/object.h"

namespace host {

namespace {

// The arguments of one call while it runs; given back at the end.
class Evaluated {
 public:
  // Delegates, so that the destructor runs where an argument throws.
  Evaluated(const std::vector<Passed>& passed, Frame& frame, Heap* self) : Evaluated(passed, frame) {
    if (self) slots_[first_++].heap = self;
    for (const Passed& each : passed) {
      held_[count_] = each.value->evaluate(frame);
      slots_[first_ + count_] = each.byRef ? Slot{.pointer = &held_[count_]} : held_[count_];
      ++count_;
    }
  }
  ~Evaluated() {
    for (std::size_t i = 0; i < count_; ++i) {
      if (i >= handedOver_ || passed_[i].byRef) releaseSlot(held_[i], passed_[i].value->type);
    }
  }
  Evaluated(const Evaluated&) = delete;
  Evaluated& operator=(const Evaluated&) = delete;

  Slot call(const Call& function) { return function({slots_, first_ + count_}); }
  // What the object's class makes of the method.
  Slot call(const Method& method) {
    const Method& target = method.place < 0 ? method : targetOf(method, *slots_[0].heap);
    return target.sub ? call(*target.sub) : call(target.call);
  }
  Slot call(const Sub& sub) {
    handedOver_ = count_;  // it takes over what it is handed by value
    return callSub(sub, slots_);
  }
  void assign(const Call& setter, Slot value) {
    slots_[first_ + count_] = value;
    setter({slots_, first_ + count_ + 1});
  }
  // What a call by reference has left in a variable goes back to where it came from.
  void writeBack() {
    for (std::size_t i = 0; i < count_; ++i) {
      if (!passed_[i].byRef) continue;
      const Slot changed = widened(held_[i], passed_[i].value->type);
      held_[i] = {};
      passed_[i].value->place()->put(frame_, changed);
    }
  }

 private:
  Evaluated(const std::vector<Passed>& passed, Frame& frame) : passed_(passed), frame_(frame) {}

  const std::vector<Passed>& passed_;
  Frame& frame_;
  std::size_t first_ = 0, count_ = 0, handedOver_ = 0;
  Slot held_[mostParameters], slots_[mostParameters + 2];
};

}  // namespace

Call unreadable() {
  return Call(
      [](const void*, const Slot*) -> Slot {
        throw HostException("UnsupportedOperationException", "This can only be assigned to.");
      },
      nullptr);
}

Slot callNow(const Method& method, Heap* self, const std::vector<Passed>& arguments, Frame& frame) {
  Evaluated values(arguments, frame, self);
  Held result(values.call(method), method.declaration.result);
  values.writeBack();
  return result.detach();
}

namespace {

// A call of a method. It can be assigned to where the method has a setter, which takes one more argument.
class MethodCall {
 public:
  MethodCall(const Method& method, Expr self, std::vector<Passed> arguments, std::string member = "")
      : method_(method),
        self_(std::move(self)),
        arguments_(std::move(arguments)),
        member_(std::move(member)) {
    if (self_ && self_->heldIn && (self_->isSelf || changeNothing(arguments_))) stays_ = self_->heldIn;
  }

  Slot run(Frame& frame, Heap* self) const { return callNow(method_, self, arguments_, frame); }
  Slot run(Frame& frame) const {
    if (stays_) return run(frame, notNil(frame.locals[*stays_], member_).heap);
    return run(frame, object(frame).get());
  }
  void put(Frame& frame, Slot owned) const {
    const Held held(owned, method_.declaration.result);
    const Ref<Heap> self = object(frame);
    Evaluated values(arguments_, frame, self.get());
    values.assign(method_.setter, owned);
    values.writeBack();
  }
  void update(Frame& frame, const Place::Change& change) const {
    const Type type = method_.declaration.result;
    const Ref<Heap> self = object(frame);
    Evaluated values(arguments_, frame, self.get());
    const Held current(values.call(method_.call), type);
    if (const std::optional<Slot> changed = change(current.slot)) {
      const Held held(*changed, type);
      values.assign(method_.setter, *changed);
    }
    values.writeBack();
  }

 private:
  Ref<Heap> object(Frame& frame) const {
    if (!self_) return nullptr;
    Ref<Heap> object = self_->reference(frame);
    notNil({.heap = object.get()}, member_);
    return object;
  }

  // None of them can put another object where this one is.
  static bool changeNothing(const std::vector<Passed>& arguments) {
    for (const Passed& each : arguments) {
      if (each.byRef || !(each.value->variable || each.value->literal || each.value->heldIn)) return false;
    }
    return true;
  }

  const Method& method_;
  Expr self_;
  std::vector<Passed> arguments_;
  std::string member_;                // as the program writes it
  std::optional<std::size_t> stays_;  // the slot that holds the object for as long as the call takes
};

class MethodPlace final : public Place {
 public:
  MethodPlace(Type ofType, MethodCall call) : Place(ofType), call_(std::move(call)) {}
  std::int64_t integer(Frame& frame) const override { return call_.run(frame).integer; }
  double real(Frame& frame) const override { return call_.run(frame).number; }
  float single(Frame& frame) const override { return call_.run(frame).single; }
  Ref<Heap> reference(Frame& frame) const override { return Ref<Heap>::adopt(call_.run(frame).heap); }
  void put(Frame& frame, Slot owned) const override { call_.put(frame, owned); }
  void update(Frame& frame, const Change& change) const override { call_.update(frame, change); }

 private:
  MethodCall call_;
};

}  // namespace

Expr invoke(const Method& method, Expr self, std::vector<Passed> arguments, std::string member) {
  const Type result = method.declaration.result;
  if (member.empty() && self) member = self->written;  // an operator's operand, say
  MethodCall call(method, std::move(self), std::move(arguments), std::move(member));
  if (method.setter) return std::make_unique<MethodPlace>(result, std::move(call));
  return slotNode(result, [call = std::move(call)](Frame& f) { return call.run(f); });
}

Expr construct(const Class& made, const Method& constructor, std::vector<Passed> arguments) {
  return referenceNode(
      {Kind::Object, false, &made},
      [&made, call = MethodCall(constructor, nullptr, std::move(arguments))](Frame& f) -> Ref<Heap> {
        Ref<Object> object = makeObject(made);
        call.run(f, object.get());
        return object;
      });
}

}  // namespace host
