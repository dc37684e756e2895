// What becomes of a place when a value is assigned to it.
#include "language/assignments.h"

#include "language/calls.h"
#include "typed.h"

namespace host {
namespace {

Expr digit(Expr amount, Expr index) {
  Exprs arguments;
  arguments.push_back(std::move(index));
  return callMethod(amountClass().findMethods("Digit"), {"Digit", {}}, std::move(amount),
                    std::move(arguments));
}

class Assignments : public testing::Test {
 protected:
  Assignments()
      : number(frame.variable(integerType)), amount(frame.variable({Kind::Object, false, &amountClass()})) {
    takeAmountLog();
  }
  void assign(Expr target, Expr value) { assignment({}, std::move(target), std::move(value))->run(frame); }
  void change(Operator op, Expr target, Expr value) {
    const auto hidden = [&](Type type) { return frame.variable(type); };
    compoundAssignment({}, op, std::move(target), std::move(value), hidden)->run(frame);
  }
  TestFrame frame;
  std::unique_ptr<Place> number, amount;
};

TEST_F(Assignments, StoreInVariables) {
  assign(number->again(), integer(5));
  EXPECT_EQ(number->integer(frame), 5);
  assign(number->again(), real(7.9));
  EXPECT_EQ(number->integer(frame), 7) << "converted";
  std::unique_ptr<Place> small = frame.variable({Kind::Int8}), single = frame.variable({Kind::Single});
  assign(small->again(), integer(200));
  EXPECT_EQ(small->integer(frame), -56);
  assign(single->again(), real(0.1));
  EXPECT_EQ(single->single(frame), 0.1f);
}

TEST_F(Assignments, NeedAPlace) {
  EXPECT_EQ(failureOf([&] { assign(integer(1), integer(2)); }), "this cannot be assigned to");
  EXPECT_EQ(failureOf([&] { change(Operator::add, integer(1), integer(2)); }), "this cannot be assigned to");
  EXPECT_EQ(failureOf([&] { assign(number->again(), text("a")); }),
            "expected Integer as the value, found String");
}

TEST_F(Assignments, ChangeTheObjectThatIsThere) {
  assign(amount->again(), integer(5));
  const Ref<Heap> first = amount->reference(frame);
  ASSERT_TRUE(first) << "made where there was Nil";
  assign(amount->again(), integer(6));
  EXPECT_EQ(amount->reference(frame).get(), first.get());
  EXPECT_EQ(takeAmountLog(), "ConvertFrom ConvertFrom ");
  EXPECT_EQ(shown(amount->again(), frame), "6");
  assign(amount->again(), object(amountClass()));
  EXPECT_NE(amount->reference(frame).get(), first.get()) << "one of its class takes its place";
}

TEST_F(Assignments, ReadAndWriteAVariable) {
  assign(number->again(), integer(5));
  change(Operator::multiply, number->again(), integer(3));
  EXPECT_EQ(number->integer(frame), 15);
  change(Operator::divide, number->again(), integer(2));
  EXPECT_EQ(number->integer(frame), 7);
}

TEST_F(Assignments, ComputeWhatFindsThePlaceOnce) {
  std::string log;
  Ref<Heap> made = makeObject(amountClass());
  const auto found = [&] {
    return referenceNode({Kind::Object, false, &amountClass()}, [&](Frame&) {
      log += "self ";
      return made;
    });
  };
  change(Operator::add, digit(found(), logged(log, "index", 3)), logged(log, "value", 10));
  EXPECT_EQ(log, "self index value ");
  EXPECT_EQ(takeAmountLog(), "GetDigit SetDigit ");
  change(Operator::subtract, property(*amountClass().findProperty("Value"), found()),
         logged(log, "value", 4));
  EXPECT_EQ(log, "self index value self value ");
  EXPECT_EQ(shown(property(*amountClass().findProperty("Value"), found()), frame), "6");
}

TEST_F(Assignments, WriteNothingWhereTheValueThrows) {
  Ref<Heap> made = makeObject(amountClass());
  const auto self = [&] {
    return referenceNode({Kind::Object, false, &amountClass()}, [&](Frame&) { return made; });
  };
  EXPECT_EQ(failureOf([&] { change(Operator::integerDivide, digit(self(), integer(0)), integer(0)); }),
            "DivisionByZeroException");
  EXPECT_EQ(takeAmountLog(), "GetDigit ");
  EXPECT_EQ(made->references.load(), 1);
}

}  // namespace
}  // namespace host
