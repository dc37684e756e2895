// Calls of C functions by declared types.
#include "runtime/call.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "runtime/exception.h"
#include "runtime/host_classes.h"

namespace host {
namespace {

template <typename Result, typename... Arguments>
Call callOf(Result (*function)(Arguments...), const std::vector<Passing>& arguments, Type result) {
  return {reinterpret_cast<REALproc>(function), arguments, result};
}

TEST(Call, WidensNarrowResults) {
  const std::vector<Passing> none;
  EXPECT_EQ(callOf(+[]() -> std::int8_t { return -5; }, none, {Kind::Int8})({}).integer, -5);
  EXPECT_EQ(callOf(+[]() -> std::uint8_t { return 251; }, none, {Kind::UInt8})({}).integer, 251);
  EXPECT_EQ(callOf(+[]() -> std::int16_t { return -300; }, none, {Kind::Int16})({}).integer, -300);
  EXPECT_EQ(callOf(+[]() -> std::uint16_t { return 65535; }, none, {Kind::UInt16})({}).integer, 65535);
  EXPECT_EQ(callOf(+[]() -> std::int32_t { return -70000; }, none, {Kind::Int32})({}).integer, -70000);
  EXPECT_EQ(callOf(+[]() -> std::uint32_t { return 4000000000; }, none, {Kind::UInt32})({}).integer,
            4000000000);
  EXPECT_EQ(callOf(+[]() -> std::int64_t { return INT64_MIN; }, none, {Kind::Int64})({}).integer, INT64_MIN);
  EXPECT_EQ(callOf(+[]() -> std::uint64_t { return UINT64_MAX; }, none, {Kind::UInt64})({}).word, UINT64_MAX);
  EXPECT_EQ(callOf(+[] { return true; }, none, {Kind::Boolean})({}).integer, 1);
  EXPECT_EQ(callOf(+[] { return 2.5; }, none, {Kind::Double})({}).number, 2.5);
  EXPECT_EQ(callOf(+[] { return 2.5f; }, none, {Kind::Single})({}).single, 2.5f);
}

TEST(Call, PassesEveryKindByValue) {
  static std::string seen;
  const Call call = callOf(
      +[](std::int8_t a, std::uint16_t b, std::int32_t c, std::uint64_t d, float e, double f, bool g) {
        seen = std::to_string(a) + " " + std::to_string(b) + " " + std::to_string(c) + " " +
               std::to_string(d) + " " + std::to_string(e) + " " + std::to_string(f) + " " +
               std::to_string(g);
      },
      {{{Kind::Int8}},
       {{Kind::UInt16}},
       {{Kind::Int32}},
       {{Kind::UInt64}},
       {{Kind::Single}},
       {{Kind::Double}},
       {{Kind::Boolean}}},
      {});
  const Slot arguments[] = {{.integer = -1},  {.integer = 65535}, {.integer = -2}, {.word = UINT64_MAX},
                            {.single = 1.5f}, {.number = -2.25},  {.integer = 1}};
  call(arguments);
  EXPECT_EQ(seen, "-1 65535 -2 18446744073709551615 1.500000 -2.250000 1");
}

TEST(Call, KeepsTheBitsOfASignallingSingle) {
  const Call same = callOf(+[](float value) { return value; }, {{{Kind::Single}}}, {Kind::Single});
  Slot argument = {};
  const std::uint32_t pattern = 0x7F800001;
  std::memcpy(&argument, &pattern, sizeof pattern);
  const Slot result = same({&argument, 1});
  std::uint32_t back;
  std::memcpy(&back, &result, sizeof back);
  EXPECT_EQ(back, pattern);
}

// Up to three words and Doubles are passed without libffi, in every order; four are not.
TEST(Call, PassesWordsAndDoublesInEveryOrder) {
  constexpr Type word{Kind::Int64}, real{Kind::Double};
  const Slot words[] = {{.integer = -7}, {.number = 0.5}, {.integer = 3}, {.number = 8}};
  const Slot reals[] = {{.number = 0.25}, {.integer = 4}, {.number = -2}, {.integer = 5}};
  const Call first = callOf(
      +[](std::int64_t a, double b, std::int64_t c) {
        return static_cast<double>(a) + b * static_cast<double>(c);
      },
      {{word}, {real}, {word}}, real);
  EXPECT_EQ(first({words, 3}).number, -5.5);
  const Call second = callOf(
      +[](double a, std::int64_t b, double c) { return b * static_cast<std::int64_t>(4 * a * c); },
      {{real}, {word}, {real}}, word);
  EXPECT_EQ(second({reals, 3}).integer, -8);
  const Call third = callOf(
      +[](std::int64_t a, double b, std::int64_t c, double d) {
        return static_cast<double>(a) + b * static_cast<double>(c) + d;
      },
      {{word}, {real}, {word}, {real}}, real);
  EXPECT_EQ(third(words).number, 2.5);
  const Call fourth = callOf(+[](std::uint64_t a, void* b) { return b == nullptr && a > INT64_MAX; },
                             {{{Kind::UInt64}}, {{Kind::Pointer}}}, {Kind::Boolean});
  const Slot unsignedAndNil[] = {{.word = UINT64_MAX}, {.pointer = nullptr}};
  EXPECT_EQ(fourth(unsignedAndNil).integer, 1);
}

TEST(Call, TakesAnyByteForTrue) {
  const Call call = callOf(+[](std::int64_t a) { return static_cast<std::uint8_t>(a); }, {{{Kind::Int64}}},
                           {Kind::Boolean});
  const Slot two = {.integer = 2}, none = {.integer = 256};
  EXPECT_EQ(call({&two, 1}).integer, 1);
  EXPECT_EQ(call({&none, 1}).integer, 0);
}

TEST(Call, PassesVariablesByReference) {
  const Call call = callOf(+[](std::int64_t* value) { *value += 5; }, {{{Kind::Int64}, true}}, {});
  std::int64_t variable = 37;
  const Slot argument = {.pointer = &variable};
  call({&argument, 1});
  EXPECT_EQ(variable, 42);
}

TEST(Call, ThrowsWhatWasLeftPendingAndGivesTheResultBack) {
  startRuntime();
  static Object* made = nullptr;
  const Call call = callOf(
      +[]() -> void* {
        setPending(HostException("NilObjectException", "left behind").exception);
        made = makeObject(*hostClasses().date).detach();
        retain(made);
        return made;
      },
      {}, {Kind::Object});
  try {
    call({});
    ADD_FAILURE();
  } catch (const HostException& exception) {
    EXPECT_EQ(messageOf(*exception.exception), "left behind");
  }
  EXPECT_EQ(made->references.load(), 1);
  release(made);
  EXPECT_FALSE(takePending());
}

TEST(Call, ThatIsEmptyIsNoCall) {
  EXPECT_FALSE(Call());
  EXPECT_FALSE(Call(nullptr, {}, {}));
}

TEST(Call, TakesAnyByteForTrueThroughLibffiToo) {
  const Call call = callOf(+[](std::int8_t a, std::int8_t b) { return static_cast<std::uint8_t>(a + b); },
                           {{{Kind::Int8}}, {{Kind::Int8}}}, {Kind::Boolean});
  const Slot three[] = {{.integer = 1}, {.integer = 2}}, none[] = {{.integer = 1}, {.integer = -1}};
  EXPECT_EQ(call(three).integer, 1);
  EXPECT_EQ(call(none).integer, 0);
}

}  // namespace
}  // namespace host
