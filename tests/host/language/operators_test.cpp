// Operators on typed operands.
#include "language/operators.h"

#include <cmath>

#include "typed.h"

namespace host {
namespace {

constexpr std::int64_t least = INT64_MIN, most = INT64_MAX;

std::string result(Operator op, Expr left, Expr right) {
  return shown(binary(op, std::move(left), std::move(right), {}));
}

TEST(Arithmetic, WrapsIntegersAround) {
  EXPECT_EQ(result(Operator::add, integer(most), integer(1)), std::to_string(least));
  EXPECT_EQ(result(Operator::subtract, integer(least), integer(1)), std::to_string(most));
  EXPECT_EQ(result(Operator::multiply, integer(most), integer(2)), "-2");
  EXPECT_EQ(result(Operator::integerDivide, integer(least), integer(-1)), std::to_string(least));
  EXPECT_EQ(result(Operator::modulo, integer(least), integer(-1)), "0");
  EXPECT_EQ(result(Operator::integerDivide, integer(-7), integer(2)), "-3");
  EXPECT_EQ(result(Operator::modulo, integer(-7), integer(2)), "-1");
}

TEST(Arithmetic, GoesWithAnUnsignedOperand) {
  EXPECT_EQ(result(Operator::integerDivide, ofType(Kind::UInt64, -1), integer(-1)), "1");
  EXPECT_EQ(result(Operator::integerDivide, ofType(Kind::UInt64, -2), ofType(Kind::UInt64, -1)), "0");
  EXPECT_EQ(result(Operator::modulo, ofType(Kind::UInt64, -1), integerLiteral(10, integerType)), "5");
  EXPECT_EQ(result(Operator::add, ofType(Kind::UInt64, -1), integerLiteral(0, integerType)),
            "18446744073709551615");
  EXPECT_EQ(result(Operator::subtract, integer(1), integerLiteral(2, {Kind::UInt64})), "-1")
      << "an unsigned literal goes with the other operand";
}

// An operand may be a variable or a literal, which are read on ways of their own.
TEST(Arithmetic, ReadsEveryKindOfOperand) {
  for (int left = 0; left < 3; ++left) {
    for (int right = 0; right < 3; ++right) {
      TestFrame frame;
      const auto operand = [&](int kind, std::int64_t value) -> Expr {
        if (kind == 0) return integer(value);
        if (kind == 1) return integerLiteral(static_cast<std::uint64_t>(value), integerType);
        std::unique_ptr<Place> variable = frame.variable(integerType);
        variable->put(frame, Slot{.integer = value});
        return variable;
      };
      EXPECT_EQ(shown(arithmetic(Operator::subtract, operand(left, 50), operand(right, 8), {}), frame), "42");
      EXPECT_EQ(shown(comparison(Operator::less, operand(left, 7), operand(right, 8), {}), frame), "True");
    }
  }
}

TEST(Arithmetic, DividesByZeroOnlyInFractions) {
  const auto divided = [](Operator op) { return failureOf([&] { result(op, integer(1), integer(0)); }); };
  EXPECT_EQ(divided(Operator::integerDivide), "DivisionByZeroException");
  EXPECT_EQ(divided(Operator::modulo), "DivisionByZeroException");
  EXPECT_EQ(divided(Operator::divide), "");
  EXPECT_EQ(result(Operator::power, integer(2), integer(10)), "1024");
}

TEST(Arithmetic, KeepsCurrencyExactWhereItCan) {
  const auto currency = [] { return ofType(Kind::Currency, 199900); };  // 19.99
  EXPECT_EQ(result(Operator::multiply, currency(), integer(3)), "59.97");
  EXPECT_EQ(result(Operator::add, currency(), integer(1)), "20.99");
}

TEST(Arithmetic, JoinsTextsAndComputesVariants) {
  EXPECT_EQ(result(Operator::add, text("a"), text("b")), "ab");
  EXPECT_EQ(result(Operator::add, variant(text("a")), integer(1)), "a1");
  EXPECT_EQ(result(Operator::add, variant(integer(2)), real(0.5)), "2.5");
  EXPECT_EQ(result(Operator::modulo, variant(integer(7)), integer(4)), "3");
}

TEST(Arithmetic, CallsTheMembersOfClasses) {
  takeAmountLog();
  EXPECT_EQ(result(Operator::add, object(amountClass()), integer(5)), "5");
  EXPECT_EQ(takeAmountLog(), "Add ConvertTo ");
  EXPECT_EQ(result(Operator::subtract, integer(5), object(amountClass())), "5");
  EXPECT_EQ(takeAmountLog(), "SubtractRight ConvertTo ");
  EXPECT_EQ(result(Operator::multiply, object(amountClass()), integer(5)), "0");
  EXPECT_EQ(takeAmountLog(), "ConvertTo ") << "without a member of its own it counts as a number";
}

TEST(Arithmetic, NamesWhatItCannotDo) {
  EXPECT_EQ(failureOf([] { result(Operator::multiply, text("a"), integer(1)); }),
            "there is no operator '*' for String and Integer");
  EXPECT_EQ(failureOf([] { result(Operator::both, text("a"), integer(1)); }),
            "there is no operator 'and' for String and Integer");
  EXPECT_EQ(failureOf([] { negation(text("a"), {}); }), "there is no operator '-' for a String");
}

TEST(Negation, TurnsALiteralIntoALiteral) {
  const Expr negated = negation(integerLiteral(std::uint64_t{1} << 63, {Kind::UInt64}), {});
  EXPECT_EQ(negated->type, integerType);
  EXPECT_EQ(negated->literal, least);
  EXPECT_EQ(shown(negation(real(0), {})), "-0");
  EXPECT_EQ(shown(negation(object(amountClass()), {})), "0");
}

std::string orders(const std::function<Expr()>& left, const std::function<Expr()>& right) {
  std::string holding;
  for (const Operator op : {Operator::less, Operator::lessOrEqual, Operator::equal, Operator::unequal,
                            Operator::greaterOrEqual, Operator::greater}) {
    if (result(op, left(), right()) == "True") holding += std::string(nameOf(op)) + " ";
  }
  return holding;
}

TEST(Comparison, OrdersValuesOfEveryKind) {
  const std::string less = "< <= <> ", same = "<= = >= ", greater = "<> >= > ", unordered = "<> ";
  const auto i = [](std::int64_t value) { return [value] { return integer(value); }; };
  const auto u = [](std::int64_t value) { return [value] { return ofType(Kind::UInt64, value); }; };
  const auto r = [](double value) { return [value] { return real(value); }; };
  const auto t = [](const char* value) { return [value] { return text(value); }; };
  const auto v = [](const std::function<Expr()>& value) { return [value] { return variant(value()); }; };
  EXPECT_EQ(orders(i(-1), i(1)), less);
  EXPECT_EQ(orders(u(-1), u(1)), greater);
  EXPECT_EQ(orders(i(-1), u(1)), less) << "by what the numbers are";
  EXPECT_EQ(orders(u(-1), i(5)), greater);
  EXPECT_EQ(orders(u(5), i(5)), same);
  EXPECT_EQ(orders(r(1.5), i(2)), less);
  EXPECT_EQ(orders(r(NAN), r(1)), unordered);
  EXPECT_EQ(orders(t("a"), t("B")), less);
  EXPECT_EQ(orders(t("a"), t("A")), same);
  EXPECT_EQ(orders(v(i(2)), r(1)), greater);
  EXPECT_EQ(orders(v(u(-1)), i(-1)), greater);
  EXPECT_EQ(orders(v(r(NAN)), r(1)), unordered);
  EXPECT_EQ(orders(v(t("5")), i(5)), same);
  EXPECT_EQ(orders(v(nil), i(5)), less);
}

TEST(Comparison, AsksClasses) {
  takeAmountLog();
  const auto amount = [] { return object(amountClass()); };
  EXPECT_EQ(orders(amount, [] { return integer(1); }), "< <= <> ");
  EXPECT_EQ(orders([] { return integer(1); }, amount), "<> >= > ") << "the sign is reversed";
  EXPECT_EQ(takeAmountLog().find("ConvertTo"), std::string::npos);
  EXPECT_EQ(result(Operator::equal, amount(), nil()), "False");
  EXPECT_EQ(result(Operator::unequal, amount(), nil()), "True");
  EXPECT_EQ(failureOf([&] { result(Operator::less, amount(), object(*hostClasses().thread)); }),
            "an Amount cannot be compared with a Thread");
}

TEST(Logic, EvaluatesTheRightOperandOnlyWhereItMatters) {
  std::string log;
  const auto flag = [&](const std::string& name, bool value) {
    return integerNode(booleanType, [&log, name, value](Frame&) {
      log += name;
      return value;
    });
  };
  EXPECT_EQ(result(Operator::both, flag("a", false), flag("b", true)), "False");
  EXPECT_EQ(result(Operator::either, flag("c", true), flag("d", false)), "True");
  EXPECT_EQ(result(Operator::differ, flag("e", true), flag("f", true)), "False");
  EXPECT_EQ(log, "acef");
}

TEST(Logic, GoesBitByBitOnIntegers) {
  EXPECT_EQ(result(Operator::both, integer(12), integer(10)), "8");
  EXPECT_EQ(result(Operator::either, integer(12), integer(10)), "14");
  EXPECT_EQ(result(Operator::differ, integer(12), integer(10)), "6");
  EXPECT_EQ(shown(inversion(integer(0), {})), "-1");
  EXPECT_EQ(shown(inversion(ofType(Kind::Boolean, 0), {})), "True");
}

TEST(Identity, IsOfObjectsAlone) {
  TestFrame frame;
  std::unique_ptr<Place> one = frame.variable({Kind::Object, false, &amountClass()});
  one->put(frame, Slot{.heap = makeObject(amountClass()).detach()});
  EXPECT_EQ(shown(identity(one->again(), one->again(), {}), frame), "True");
  EXPECT_EQ(shown(identity(one->again(), object(amountClass()), {}), frame), "False");
  EXPECT_EQ(shown(instanceTest(one->again(), amountClass(), {}), frame), "True");
  EXPECT_EQ(shown(instanceTest(nil(), amountClass(), {})), "False");
  EXPECT_EQ(failureOf([] { identity(text("a"), text("a"), {}); }), "Is compares objects; found String");
}

}  // namespace
}  // namespace host
