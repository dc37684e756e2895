// The choice among declarations, and the way of arguments.
#include "language/calls.h"

#include <deque>

#include "language/intrinsics.h"
#include "runtime/host_record.h"
#include "runtime/registry.h"
#include "typed.h"

namespace host {
namespace {

template <typename... Each>
Exprs list(Each... each) {
  Exprs all;
  (all.push_back(std::move(each)), ...);
  return all;
}

// Functions that say which of them was called.
std::string called;
void takeNothing() { called = "nothing"; }
std::int64_t giveNumber() {
  called = "number";
  return 1;
}
void takeInteger(std::int64_t) { called = "integer"; }
void takeIntegers(std::int64_t, std::int64_t) { called = "integers"; }
void takeReal(double) { called = "real"; }
void takeText(REALstring) { called = "text"; }
void change(std::int32_t* value) { *value = -*value; }

const Method& functionOf(REALmethodDefinition record) {
  static std::deque<REALmethodDefinition> records;
  const std::size_t before = registry().functions.size();
  registry().addFunction(records.emplace_back(record), false);
  return registry().functions.at(before);
}

std::string callOne(const std::vector<const Method*>& candidates, Exprs arguments,
                    bool resultUnused = false) {
  TestFrame frame;
  called.clear();
  callMethod(candidates, {"F", {}}, nullptr, std::move(arguments), resultUnused)->integer(frame);
  return called;
}

TEST(CallMethod, ChoosesTheNearestDeclaration) {
  const std::vector<const Method*> all = {&functionOf(hostMethod("F(a as Double)", &takeReal)),
                                          &functionOf(hostMethod("F(a as Int64)", &takeInteger)),
                                          &functionOf(hostMethod("F(a as String)", &takeText))};
  EXPECT_EQ(callOne(all, list(integer(1)), true), "integer");
  EXPECT_EQ(callOne(all, list(real(1)), true), "real");
  EXPECT_EQ(callOne(all, list(text("a")), true), "text");
  EXPECT_EQ(callOne(all, list(object(amountClass())), true), "integer");
  EXPECT_EQ(failureOf([&] { callOne(all, list(nil())); }),
            "F does not take (Nil); expected one of\n  F(a as Double)\n  F(a as Int64)\n  F(a as String)");
}

TEST(CallMethod, PrefersNoResultWhereNoneIsUsed) {
  const std::vector<const Method*> all = {&functionOf(hostMethod("G", &takeNothing)),
                                          &functionOf(hostMethod("G as Int64", &giveNumber))};
  EXPECT_EQ(callOne(all, {}, true), "nothing");
  EXPECT_EQ(callOne(all, {}, false), "number");
}

TEST(CallMethod, SaysHowManyArgumentsAreExpected) {
  const std::vector<const Method*> one = {
      &functionOf(hostMethod("H(a as Int64, b as Int64 = 2)", &takeIntegers))};
  EXPECT_EQ(failureOf([&] { callOne(one, {}); }),
            "wrong number of arguments for F: found 0, expected H(a as Int64, b as Int64 = 2)");
}

TEST(CallMethod, WritesBackWhatGoesByReference) {
  TestFrame frame;
  REALmethodDefinition record =
      {};  // as a library registers it: the host's own functions take nothing by reference
  record.function = reinterpret_cast<REALproc>(&change);
  record.declaration = "C(byref a as Int32)";
  const std::vector<const Method*> one = {&functionOf(record)};
  std::unique_ptr<Place> variable = frame.variable({Kind::Int32});
  variable->put(frame, Slot{.integer = 70000});
  callMethod(one, {"C", {}}, nullptr, list(variable->again()))->integer(frame);
  EXPECT_EQ(variable->integer(frame), -70000) << "sign and all";
  EXPECT_NE(failureOf([&] { callOne(one, list(ofType(Kind::Int32, 1))); }), "") << "a value is no variable";
  EXPECT_NE(failureOf([&] { callOne(one, list(Expr(frame.variable(integerType)))); }), "")
      << "nor another type";
}

// A function of a program, as a declaration there makes it.
class OwnFunction {
 public:
  OwnFunction(const std::string& name, Type result, std::vector<Parameter> parameters) {
    sub.name = method.declaration.name = name;
    sub.result = method.declaration.result = result;
    for (const Parameter& each : parameters) sub.locals.push_back(each.byRef ? Type{} : each.type);
    sub.parameters = method.declaration.parameters = std::move(parameters);
    method.isOwn = true;
    method.sub = &sub;
    method.call = callOf(method);
  }
  Expr call(Exprs arguments) { return callMethod({&method}, {sub.name, {}}, nullptr, std::move(arguments)); }
  Sub sub;
  Method method;
};

class Doubling : public OwnFunction {
 public:
  Doubling()
      : OwnFunction("Twice", integerType, {{"a", integerType, false, {}}, {"b", integerType, true, {}}}) {
    std::unique_ptr<Place> a = localPlace(integerType, 0), b = byRefPlace(integerType, 1);
    sub.body.statements.push_back(statement({}, [a = std::move(a), b = std::move(b)](Frame& f) {
      b->put(f, Slot{.integer = 2 * a->integer(f)});
      f.result.integer = a->integer(f) + 1;
      return Flow::leave;
    }));
  }
};

TEST(CallOfOwn, PassesByValueAndByReference) {
  Doubling twice;
  TestFrame frame;
  std::unique_ptr<Place> variable = frame.variable(integerType);
  EXPECT_EQ(twice.call(list(integer(20), Expr(variable->again())))->integer(frame), 21);
  EXPECT_EQ(variable->integer(frame), 40);
}

TEST(CallOfOwn, SaysWhatIsWrongWithAnArgument) {
  Doubling twice;
  EXPECT_EQ(failureOf([&] { twice.call(list(integer(1), integer(2))); }),
            "the argument b of Twice goes by reference; expected a variable As Integer");
  EXPECT_EQ(failureOf([&] { twice.call(list(integer(1))); }), "the argument b of Twice is missing");
  EXPECT_EQ(failureOf([&] { twice.call(list(integer(1), integer(2), integer(3))); }),
            "Twice takes 2 arguments, found 3");
}

TEST(CallOfOwn, EvaluatesArgumentsFromTheLeftAndStopsWhereOneThrows) {
  OwnFunction function(
      "S", Type{},
      {{"t", textType, false, {}}, {"a", integerType, false, {}}, {"b", integerType, false, {}}});
  std::string log;
  Expr failing = integerNode(
      integerType, [](Frame&) -> std::int64_t { throw HostException("OutOfBoundsException", "x"); });
  TestFrame frame;
  Expr call = function.call(list(text("held"), logged(log, "a", 1), std::move(failing)));
  EXPECT_EQ(failureOf([&] { call->integer(frame); }), "OutOfBoundsException");
  EXPECT_EQ(log, "a ");
}

TEST(NewObject, CallsTheConstructorThatFits) {
  takeAmountLog();
  EXPECT_EQ(shown(newObject(amountClass(), {}, list(integer(5)))), "5");
  EXPECT_EQ(takeAmountLog(), "Constructor ConvertTo ");
  EXPECT_EQ(shown(newObject(amountClass(), {}, {})), "0") << "made without one";
  EXPECT_EQ(takeAmountLog(), "ConvertTo ");
  EXPECT_EQ(failureOf([] { newObject(*hostClasses().thread, {}, list(integer(5))); }),
            "Thread has no Constructor; it is made without arguments");
}

TEST(Intrinsics, TakeAnyType) {
  const auto call = [](const std::string& name, Exprs arguments) {
    return shown(callIntrinsic({name, {}}, arguments));
  };
  EXPECT_EQ(call("STR", list(real(2.5))), "2.5");
  EXPECT_EQ(call("VarType", list(integer(1))), "3");
  Exprs mixed = list(integer(1), real(2.5));
  const Expr made = callIntrinsic({"Array", {}}, mixed);
  EXPECT_EQ(made->type, realType.arrayOf());
  Exprs none;
  EXPECT_EQ(callIntrinsic({"Strange", {}}, none), nullptr);
  EXPECT_EQ(failureOf([&] { callIntrinsic({"Str", {}}, none); }), "Str takes 1 argument, found 0");
  EXPECT_EQ(failureOf([&] {
              callIntrinsic({"Array", {}}, none);
            }),
            "Array needs an element to know its type from");
}

}  // namespace
}  // namespace host
