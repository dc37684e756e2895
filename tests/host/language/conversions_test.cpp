// Which values may stand for which types, and how.
#include "language/conversions.h"

#include "typed.h"

namespace host {
namespace {

TEST(Distance, IsSmallerTheMoreAlikeTheTypesAre) {
  const Expr small = ofType(Kind::Int8, 1), wide = integer(1),
             single = singleNode([](Frame&) { return 1.0f; });
  EXPECT_EQ(distance(*wide, integerType), 0);
  EXPECT_LT(distance(*small, integerType), distance(*wide, {Kind::UInt64}));
  EXPECT_LT(distance(*wide, {Kind::UInt64}), distance(*wide, {Kind::Int8}) + 1);
  EXPECT_LT(distance(*single, realType), distance(*wide, realType));
  EXPECT_LT(distance(*wide, realType), distance(*real(1), integerType));
  EXPECT_LT(distance(*wide, variantType), throughClass);
}

TEST(Distance, LetsALiteralBeWhateverHoldsIt) {
  const Expr five = integerLiteral(5, integerType), many = integerLiteral(300, integerType);
  EXPECT_EQ(distance(*five, {Kind::UInt8}), 2);
  EXPECT_GT(distance(*many, {Kind::UInt8}), 2);
  EXPECT_EQ(distance(*integerLiteral(5, integerType), {Kind::UInt64}), 1);
  EXPECT_GT(distance(*integer(5), {Kind::UInt64}), 2) << "no literal";
}

TEST(Distance, IsNoneWhereNothingConverts) {
  EXPECT_LT(distance(*text("5"), integerType), 0);
  EXPECT_LT(distance(*integer(5), textType), 0);
  EXPECT_LT(distance(*integer(5), booleanType), 0);
  EXPECT_LT(distance(*nil(), textType), 0);
  EXPECT_LT(distance(*object(*hostClasses().thread), {Kind::Object, false, &amountClass()}), 0);
}

TEST(Distance, GoesThroughClassesLast) {
  const Type amount{Kind::Object, false, &amountClass()};
  EXPECT_GE(distance(*integer(5), amount), throughClass);
  EXPECT_GE(distance(*object(amountClass()), integerType), throughClass);
  EXPECT_GT(distance(*object(amountClass()), realType), distance(*object(amountClass()), integerType));
  EXPECT_EQ(distance(*object(amountClass()), {Kind::Object}), 5);
}

TEST(ConvertTo, KeepsOrChangesTheValue) {
  EXPECT_EQ(shown(convertTo(real(-2.9), integerType, "x")), "-2");
  EXPECT_EQ(shown(convertTo(integer(-1), {Kind::UInt8}, "x")), "255");
  EXPECT_EQ(shown(convertTo(ofType(Kind::UInt64, -1), realType, "x")), "1.8446744073709552e+19");
  EXPECT_EQ(shown(convertTo(integerLiteral(3, integerType), realType, "x")), "3");
  EXPECT_EQ(shown(convertTo(variant(text("12.5 apples")), realType, "x")), "12.5");
  EXPECT_EQ(shown(convertTo(object(amountClass()), realType, "x")), "0");
}

TEST(ConvertTo, MakesAnObjectThatTakesTheValueOn) {
  takeAmountLog();
  EXPECT_EQ(shown(convertTo(integer(5), {Kind::Object, false, &amountClass()}, "x")), "5");
  EXPECT_EQ(takeAmountLog(), "ConvertFrom ConvertTo ");
}

TEST(ConvertTo, ChecksObjectsWhenItRuns) {
  const auto viewed = [](Expr value) {
    TestFrame frame;
    convertTo(std::move(value), {Kind::Object, false, &amountClass()}, "x")->reference(frame);
  };
  EXPECT_EQ(failureOf([&] { viewed(variant(object(amountClass()))); }), "");
  EXPECT_EQ(failureOf([&] { viewed(variant(integer(5))); }), "TypeMismatchException");
  EXPECT_EQ(failureOf([&] { viewed(variant(object(*hostClasses().thread))); }), "TypeMismatchException");
}

TEST(ConvertTo, SaysWhatWasExpected) {
  EXPECT_EQ(failureOf([] { convertTo(text("a"), integerType, "the index"); }),
            "expected Integer as the index, found String");
}

TEST(Displayed, ShowsWhatAnObjectConvertsTo) {
  EXPECT_EQ(shown(object(amountClass())), "0");
  EXPECT_EQ(shown(text("plain")), "plain");
  EXPECT_EQ(failureOf([] { displayed(integerNode(Type{}, [](Frame&) { return 0; })); }),
            "this has no value to print");
}

}  // namespace
}  // namespace host
