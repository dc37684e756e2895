// Loops: how often they go round, and how they end.
#include "language/loops.h"

#include "language/arrays.h"
#include "language/assignments.h"
#include "language/intrinsics.h"
#include "runtime/variant.h"
#include "typed.h"

namespace host {
namespace {

Block blockOf(Stmt statement) {
  Block block;
  block.statements.push_back(std::move(statement));
  return block;
}

// The values of the variable in the rounds of For variable = from To/DownTo end Step step, at most 9 of them.
std::string rounds(std::unique_ptr<Place> variable, TestFrame& frame, Expr from, Expr end, Expr step,
                   bool down) {
  std::string log;
  Expr read = variable->again();
  int count = 0;
  Stmt body = statement({}, [&log, &count, read = std::move(read)](Frame& f) {
    const Type type = read->type;
    log += display(read->evaluate(f), type) + " ";
    return ++count < 9 ? Flow::next : Flow::exitFor;
  });
  const Type type = variable->type;
  const auto converted = [&](Expr value) { return value ? convertTo(std::move(value), type, "x") : nullptr; };
  const Flow flow =
      countingLoop({}, std::move(variable), converted(std::move(from)), converted(std::move(end)),
                   converted(std::move(step)), down, blockOf(std::move(body)))
          ->run(frame);
  EXPECT_EQ(flow, Flow::next);
  return log;
}
std::string rounds(Kind kind, std::int64_t from, std::int64_t end, std::int64_t step = 1, bool down = false) {
  TestFrame frame;
  return rounds(frame.variable({kind}), frame, ofType(kind, from), ofType(kind, end), ofType(kind, step),
                down);
}

TEST(CountingLoop, GoesAsFarAsItsEnd) {
  EXPECT_EQ(rounds(Kind::Int64, 1, 10, 4), "1 5 9 ");
  EXPECT_EQ(rounds(Kind::Int64, 3, 1), "");
  EXPECT_EQ(rounds(Kind::Int64, 3, 1, 1, true), "3 2 1 ");
  EXPECT_EQ(rounds(Kind::Int64, 3, 1, -1), "3 2 1 ") << "a negative step counts down";
  EXPECT_EQ(rounds(Kind::Int64, 1, 3, -1, true), "1 2 3 ") << "and up from DownTo";
  EXPECT_EQ(rounds(Kind::UInt64, 2, 0, 1, true), "2 1 0 ");
}

TEST(CountingLoop, NeverWrapsAround) {
  EXPECT_EQ(rounds(Kind::Int64, INT64_MAX - 1, INT64_MAX), "9223372036854775806 9223372036854775807 ");
  EXPECT_EQ(rounds(Kind::Int64, INT64_MIN + 1, INT64_MIN, 1, true),
            "-9223372036854775807 -9223372036854775808 ");
  EXPECT_EQ(rounds(Kind::Int64, -5, INT64_MAX, INT64_MAX), "-5 9223372036854775802 ");
  EXPECT_EQ(rounds(Kind::Int64, 5, 0, INT64_MIN), "5 ");
  EXPECT_EQ(rounds(Kind::UInt64, -2, -1), "18446744073709551614 18446744073709551615 ");
  EXPECT_EQ(rounds(Kind::UInt8, 253, 255), "253 254 255 ");
  EXPECT_EQ(rounds(Kind::Int8, -127, -128, 1, true), "-127 -128 ");
}

TEST(CountingLoop, StandsStillWithoutAStep) {
  EXPECT_EQ(rounds(Kind::Int64, 1, 1, 0), "1 1 1 1 1 1 1 1 1 ");
  EXPECT_EQ(rounds(Kind::Int64, 2, 1, 0), "");
}

TEST(CountingLoop, CountsInFractions) {
  TestFrame frame;
  EXPECT_EQ(rounds(frame.variable(realType), frame, real(0), real(1), real(0.5), false), "0 0.5 1 ");
  TestFrame other;
  EXPECT_EQ(rounds(other.variable(realType), other, real(1), real(0), nullptr, true), "1 0 ");
}

TEST(CountingLoop, CountsInWhateverPlace) {
  TestFrame frame;
  std::unique_ptr<Place> counter = frame.variable(integerType);
  Slot target = {};
  counter->put(frame, Slot{.pointer = &target});
  EXPECT_EQ(rounds(byRefPlace(integerType, 0), frame, integer(1), integer(3), nullptr, false), "1 2 3 ");
  EXPECT_EQ(target.integer, 3);
  counter->put(frame, Slot{});
}

TEST(CountingLoop, GoesOnFromWhereTheBodyHasPutTheVariable) {
  TestFrame frame;
  std::unique_ptr<Place> variable = frame.variable(integerType);
  std::string log;
  Stmt body = statement({}, [&log, v = variable->again()](Frame& f) {
    log += std::to_string(v->integer(f)) + " ";
    v->put(f, Slot{.integer = v->integer(f) * 3});
  });
  countingLoop({}, variable->again(), integer(1), integer(40), nullptr, false, blockOf(std::move(body)))
      ->run(frame);
  EXPECT_EQ(log, "1 4 13 40 ");
  EXPECT_EQ(variable->integer(frame), 120);
}

TEST(CountingLoop, ComputesItsEndOnce) {
  TestFrame frame;
  std::string log;
  countingLoop({}, frame.variable(integerType), logged(log, "from", 1), logged(log, "end", 3),
               logged(log, "step", 1), false, Block())
      ->run(frame);
  EXPECT_EQ(log, "from end step ");
}

TEST(Loops, PassOnWhatIsNotTheirs) {
  const auto ending = [](Flow flow) { return blockOf(statement({}, [flow](Frame&) { return flow; })); };
  TestFrame frame;
  const auto counted = [&](Flow flow) {
    return countingLoop({}, frame.variable(integerType), integer(1), integer(2), nullptr, false, ending(flow))
        ->run(frame);
  };
  EXPECT_EQ(counted(Flow::exitFor), Flow::next);
  EXPECT_EQ(counted(Flow::continueFor), Flow::next);
  EXPECT_EQ(counted(Flow::exitDo), Flow::exitDo);
  EXPECT_EQ(counted(Flow::continueWhile), Flow::continueWhile);
  EXPECT_EQ(counted(Flow::leave), Flow::leave);
  const auto tested = [&](TestedLoop kind, Flow flow) {
    return testedLoop({}, kind, {}, {}, ending(flow))->run(frame);
  };
  EXPECT_EQ(tested(TestedLoop::whileLoop, Flow::exitWhile), Flow::next);
  EXPECT_EQ(tested(TestedLoop::whileLoop, Flow::exitDo), Flow::exitDo);
  EXPECT_EQ(tested(TestedLoop::doLoop, Flow::exitDo), Flow::next);
  EXPECT_EQ(tested(TestedLoop::doLoop, Flow::exitWhile), Flow::exitWhile);
}

TEST(TestedLoop, TestsBeforeAndAfterItsBody) {
  const auto count = [](bool testsBefore, bool until, std::int64_t limit) {
    int rounds = 0;
    const auto test = [&]() -> LoopTest {
      return {integerNode(booleanType, [&, until, limit](Frame&) { return (rounds < limit) != until; }),
              until};
    };
    Stmt body = statement({}, [&](Frame&) { ++rounds; });
    TestFrame frame;
    testedLoop({}, TestedLoop::doLoop, testsBefore ? test() : LoopTest{}, testsBefore ? LoopTest{} : test(),
               blockOf(std::move(body)))
        ->run(frame);
    return rounds;
  };
  for (const bool until : {false, true}) {
    EXPECT_EQ(count(true, until, 3), 3);
    EXPECT_EQ(count(true, until, 0), 0);
    EXPECT_EQ(count(false, until, 0), 1) << "once before it is asked";
  }
}

TEST(ElementLoop, GoesThroughWhatTheArrayHasByThen) {
  TestFrame frame;
  Exprs values;
  for (int i = 1; i <= 3; ++i) values.push_back(text(std::to_string(i)));
  std::unique_ptr<Place> array = frame.variable(textType.arrayOf());
  assignment({}, array->again(), callIntrinsic({"Array", {}}, values))->run(frame);
  std::unique_ptr<Place> current = frame.variable(textType), seen = frame.variable(textType);
  std::string log;
  Stmt body = statement({}, [&, element = seen->again(), list = array->again()](Frame& f) {
    log += utf8Of(static_cast<const Text*>(element->reference(f).get())) + " ";
    Exprs one;
    one.push_back(text("4"));
    if (log.size() == 2) callArrayMethod({"Append", {}}, array->again(), std::move(one))->integer(f);
  });
  Stmt assign = assignment({}, seen->again(), current->again());
  elementLoop({}, array->again(), std::move(current), std::move(assign), blockOf(std::move(body)))
      ->run(frame);
  EXPECT_EQ(log, "1 2 3 4 ");
}

}  // namespace
}  // namespace host
