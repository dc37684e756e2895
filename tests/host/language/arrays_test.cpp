// Arrays in typed code.
#include "language/arrays.h"

#include "language/intrinsics.h"
#include "typed.h"

namespace host {
namespace {

Exprs bounds(std::int64_t upper) {
  Exprs all;
  all.push_back(integer(upper));
  return all;
}

class Arrays : public testing::Test {
 protected:
  Arrays() : array(frame.variable(integerType.arrayOf())) {
    const Expr made = newArray(array->type, bounds(2));
    array->put(frame, made->evaluate(frame));
  }
  Expr at(std::int64_t index) { return element(array->again(), {}, one(integer(index))); }
  static Exprs one(Expr value) {
    Exprs all;
    all.push_back(std::move(value));
    return all;
  }
  Expr call(const std::string& name, Exprs arguments) {
    return callArrayMethod({name, {}}, array->again(), std::move(arguments));
  }
  std::string all() {
    std::string text;
    const std::int64_t count = call("Count", {})->integer(frame);
    for (std::int64_t i = 0; i < count; ++i) text += shown(at(i), frame) + " ";
    return text;
  }
  TestFrame frame;
  std::unique_ptr<Place> array;
};

TEST_F(Arrays, AreReadAndWrittenByElement) {
  const Expr place = at(1);
  ASSERT_TRUE(place->place());
  place->place()->put(frame, Slot{.integer = 5});
  EXPECT_EQ(all(), "0 5 0 ");
  EXPECT_EQ(failureOf([&] { at(3)->integer(frame); }), "OutOfBoundsException");
  EXPECT_EQ(failureOf([&] { at(-1)->place()->put(frame, Slot{}); }), "OutOfBoundsException");
}

TEST_F(Arrays, AreUpdatedWithOneLookAtTheIndex) {
  std::string log;
  const Expr place = element(array->again(), {}, one(logged(log, "index", 2)));
  EXPECT_EQ(place->place()->again(), nullptr) << "the index may do something";
  place->place()->update(frame, [](Slot current) { return Slot{.integer = current.integer + 7}; });
  place->place()->update(frame, [](Slot) { return std::nullopt; });
  EXPECT_EQ(all(), "0 0 7 ");
  EXPECT_EQ(log, "index index ");
}

TEST_F(Arrays, HaveMethodsWhateverTheCaseOfTheName) {
  call("append", one(integer(9)))->integer(frame);
  EXPECT_EQ(all(), "0 0 0 9 ");
  Exprs both = one(integer(0));
  both.push_back(integer(4));
  call("Insert", std::move(both))->integer(frame);
  EXPECT_EQ(all(), "4 0 0 0 9 ");
  call("REMOVE", one(integer(1)))->integer(frame);
  EXPECT_EQ(call("Pop", {})->integer(frame), 9);
  EXPECT_EQ(all(), "4 0 0 ");
  EXPECT_EQ(call("LastIndex", {})->integer(frame), 2);
  call("RemoveAll", {})->integer(frame);
  EXPECT_EQ(call("Ubound", {})->integer(frame), -1);
  EXPECT_EQ(failureOf([&] { call("Pop", {})->integer(frame); }), "OutOfBoundsException");
  EXPECT_EQ(failureOf([&] { call("Reverse", {}); }), "an array has no member 'Reverse'");
  EXPECT_EQ(failureOf([&] { call("Append", {}); }), "expected 1 argument, found 0");
}

TEST_F(Arrays, ChangeTheirSize) {
  reDim({}, array->again(), bounds(4))->run(frame);
  EXPECT_EQ(all(), "0 0 0 0 0 ");
  const auto sized = [&](std::int64_t bound) {
    return failureOf([&] { reDim({}, array->again(), bounds(bound))->run(frame); });
  };
  EXPECT_EQ(sized(-2), "OutOfBoundsException");
  EXPECT_EQ(sized(INT64_MAX), "OutOfMemoryException");
  EXPECT_EQ(sized(-1), "");
  EXPECT_EQ(all(), "");
}

TEST_F(Arrays, MayBeNil) {
  array->put(frame, Slot{});
  EXPECT_EQ(failureOf([&] { at(0)->integer(frame); }), "NilObjectException");
  EXPECT_EQ(failureOf([&] { call("Count", {})->integer(frame); }), "NilObjectException");
  EXPECT_EQ(failureOf([&] { reDim({}, array->again(), bounds(1))->run(frame); }), "NilObjectException");
}

}  // namespace
}  // namespace host
