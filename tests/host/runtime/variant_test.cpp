// Variants and the language's conversions.
#include "runtime/variant.h"

#include <gtest/gtest.h>

#include <cmath>

#include "runtime/array.h"
#include "runtime/exception.h"
#include "runtime/host_classes.h"

namespace host {
namespace {

Ref<Heap> boxed(std::int64_t value, Kind kind) { return box(Slot{.integer = value}, {kind}); }
Ref<Heap> boxed(double value) { return box(Slot{.number = value}, {Kind::Double}); }
Ref<Heap> boxed(std::string_view value) { return box(Slot{.heap = makeText(value).get()}, {Kind::String}); }

TEST(Variant, TellsItsTypeByCode) {
  startRuntime();
  EXPECT_EQ(varTypeOf(nullptr), 0);
  EXPECT_EQ(varTypeOf(boxed(1, Kind::Int8).get()), 2);
  EXPECT_EQ(varTypeOf(boxed(1, Kind::UInt16).get()), 2);
  EXPECT_EQ(varTypeOf(boxed(1, Kind::Int32).get()), 2);
  EXPECT_EQ(varTypeOf(boxed(1, Kind::UInt32).get()), 2);
  EXPECT_EQ(varTypeOf(boxed(1, Kind::Int64).get()), 3);
  EXPECT_EQ(varTypeOf(boxed(1, Kind::UInt64).get()), 3);
  EXPECT_EQ(varTypeOf(box(Slot{.single = 1}, {Kind::Single}).get()), 4);
  EXPECT_EQ(varTypeOf(boxed(1.0).get()), 5);
  EXPECT_EQ(varTypeOf(boxed(1, Kind::Currency).get()), 6);
  EXPECT_EQ(varTypeOf(makeObject(*hostClasses().date).get()), 7);
  EXPECT_EQ(varTypeOf(boxed("text").get()), 8);
  EXPECT_EQ(varTypeOf(makeObject(*hostClasses().thread).get()), 9);
  EXPECT_EQ(varTypeOf(boxed(1, Kind::Boolean).get()), 11);
  EXPECT_EQ(varTypeOf(makeObject(*hostClasses().dateTime).get()), 38);
  EXPECT_EQ(varTypeOf(makeArray({Kind::Int64}, 0).get()), 4096 + 3);
  EXPECT_EQ(varTypeOf(makeArray({Kind::Double}, 0).get()), 4096 + 5);
}

TEST(Variant, KeepsUnsignedKindsInBoxesOfTheirOwn) {
  startRuntime();
  EXPECT_EQ(boxed(1, Kind::UInt32)->objectClass->name, "_VariantUInt32");
  EXPECT_EQ(boxed(1, Kind::UInt64)->objectClass->name, "_VariantUInt64");
  EXPECT_EQ(boxed(1, Kind::Int64)->objectClass->name, "_VariantInt64");
}

TEST(Variant, OfAnObjectIsTheObject) {
  startRuntime();
  const Ref<Object> object = makeObject(*hostClasses().date);
  const Ref<Heap> variant = box(Slot{.heap = object.get()}, {Kind::Object, false, hostClasses().date});
  EXPECT_EQ(variant.get(), object.get());
  EXPECT_EQ(object->references.load(), 2);
}

TEST(Variant, ConvertsToNumbers) {
  startRuntime();
  EXPECT_EQ(toInt64(boxed("-42 apples").get()), -42);
  EXPECT_EQ(toInt64(boxed("apples").get()), 0);
  EXPECT_EQ(toInt64(boxed(-2.9).get()), -2);
  EXPECT_EQ(toInt64(boxed(1e300).get()), INT64_MAX);
  EXPECT_EQ(toInt64(boxed(-1e300).get()), INT64_MIN);
  EXPECT_EQ(toInt64(boxed(std::nan("")).get()), 0);
  EXPECT_EQ(toInt64(boxed(35000, Kind::Currency).get()), 3);
  EXPECT_EQ(toUInt64(boxed(1e19).get()), 10000000000000000000u);
  EXPECT_EQ(toUInt64(boxed("18446744073709551615").get()), UINT64_MAX);
  EXPECT_EQ(toUInt64(boxed(-1, Kind::Int64).get()), UINT64_MAX);
  EXPECT_EQ(toDouble(boxed("2.5e1").get()), 25.0);
  EXPECT_EQ(toDouble(boxed(-1, Kind::UInt64).get()), 18446744073709551616.0);
  EXPECT_EQ(toDouble(nullptr), 0.0);
  EXPECT_EQ(toInt64(nullptr), 0);
}

TEST(Variant, OfAnObjectHasNoNumber) {
  startRuntime();
  const Ref<Object> object = makeObject(*hostClasses().date);
  EXPECT_THROW(toInt64(object.get()), HostException);
  EXPECT_THROW(toText(object.get()), HostException);
}

TEST(Convert, WrapsIntegersAndSaturatesFractions) {
  const auto toInt8 = [](std::int64_t value) {
    return convert(Slot{.integer = value}, {Kind::Int64}, {Kind::Int8}).integer;
  };
  EXPECT_EQ(toInt8(128), -128);
  EXPECT_EQ(toInt8(-129), 127);
  EXPECT_EQ(convert(Slot{.integer = 70000}, {Kind::Int64}, {Kind::UInt16}).integer, 4464);
  EXPECT_EQ(convert(Slot{.number = 2.75}, {Kind::Double}, {Kind::Currency}).integer, 27500);
  EXPECT_EQ(convert(Slot{.integer = 3}, {Kind::Int64}, {Kind::Currency}).integer, 30000);
  EXPECT_EQ(convert(Slot{.integer = 15000}, {Kind::Currency}, {Kind::Double}).number, 1.5);
}

TEST(Display, IsWhatPrintShows) {
  startRuntime();
  const auto shown = [](double value) { return display(Slot{.number = value}, {Kind::Double}); };
  EXPECT_EQ(shown(3), "3");
  EXPECT_EQ(shown(0.1), "0.1");
  EXPECT_EQ(shown(-0.0), "-0");
  EXPECT_EQ(shown(1e300), "1e+300");
  EXPECT_EQ(shown(0.1 + 0.2), "0.30000000000000004");
  EXPECT_EQ(shown(std::nan("")), "NaN");
  EXPECT_EQ(shown(INFINITY), "INF");
  EXPECT_EQ(shown(-INFINITY), "-INF");
  const auto currency = [](std::int64_t value) { return display(Slot{.integer = value}, {Kind::Currency}); };
  EXPECT_EQ(currency(45000), "4.5");
  EXPECT_EQ(currency(-1), "-0.0001");
  EXPECT_EQ(currency(20000), "2");
  EXPECT_EQ(currency(INT64_MIN), "-922337203685477.5808");
  EXPECT_EQ(display(Slot{.integer = 1}, {Kind::Boolean}), "True");
  EXPECT_EQ(display(Slot{.word = UINT64_MAX}, {Kind::UInt64}), "18446744073709551615");
}

}  // namespace
}  // namespace host
