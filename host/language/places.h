// What can be assigned to: variables, properties, and the memory behind a Ptr.
#pragma once

#include <array>

#include "language/node.h"
#include "language/program.h"
#include "runtime/class.h"

namespace host {

std::unique_ptr<Place> localPlace(Type type, std::size_t slot);
// A ByRef parameter: its slot points to the caller's.
std::unique_ptr<Place> byRefPlace(Type type, std::size_t slot);
std::unique_ptr<Place> globalPlace(Global& global);

// Of an object, or where `self` is null a shared one; a place where it can be assigned to. Throws
// ProgramError where it cannot be read. `member`: how the program writes it, for the message where self is
// Nil.
Expr property(const Property& property, Expr self, const std::string& member = "");

// What a Ptr points to, so many bytes on.
Expr pointedTo(Type type, Expr pointer, Expr offset);

// A place that is found by operands: `get` and `set` are handed their values. What get gives is owned.
template <std::size_t count, typename Get, typename Set>
class OperandPlace final : public Place {
 public:
  OperandPlace(Type ofType, std::array<Expr, count> operands, Get get, Set set)
      : Place(ofType), operands_(std::move(operands)), get_(std::move(get)), set_(std::move(set)) {}
  std::int64_t integer(Frame& frame) const override { return read(frame).integer; }
  double real(Frame& frame) const override { return read(frame).number; }
  float single(Frame& frame) const override { return read(frame).single; }
  Ref<Heap> reference(Frame& frame) const override { return Ref<Heap>::adopt(read(frame).heap); }
  void put(Frame& frame, Slot owned) const override {
    const Held held(owned, type);
    const Operands operands(operands_, frame);
    set_(operands.slots, owned);
  }
  void update(Frame& frame, const Change& change) const override {
    const Operands operands(operands_, frame);
    const Held current(get_(operands.slots), type);
    if (const std::optional<Slot> changed = change(current.slot)) {
      const Held held(*changed, type);
      set_(operands.slots, *changed);
    }
  }

 private:
  struct Operands {
    // Delegates, so that the destructor runs where an operand throws.
    Operands(const std::array<Expr, count>& of, Frame& frame) : Operands(of) {
      for (; evaluated < count; ++evaluated) slots[evaluated] = of[evaluated]->evaluate(frame);
    }
    explicit Operands(const std::array<Expr, count>& of) : expressions(of) {}
    ~Operands() {
      for (std::size_t i = 0; i < evaluated; ++i) releaseSlot(slots[i], expressions[i]->type);
    }
    Operands(const Operands&) = delete;
    Operands& operator=(const Operands&) = delete;
    const std::array<Expr, count>& expressions;
    std::size_t evaluated = 0;
    Slot slots[count + 1];  // never none
  };
  Slot read(Frame& frame) const {
    const Operands operands(operands_, frame);
    return get_(operands.slots);
  }

  std::array<Expr, count> operands_;
  Get get_;
  Set set_;
};

template <std::size_t count, typename Get, typename Set>
Expr operandPlace(Type type, std::array<Expr, count> operands, Get get, Set set) {
  return std::make_unique<OperandPlace<count, Get, Set>>(type, std::move(operands), std::move(get),
                                                         std::move(set));
}

}  // namespace host
