// Statements that are neither assignments nor loops.
#include "language/statements.h"

#include "runtime/registry.h"
#include "typed.h"

namespace host {
namespace {

Stmt noting(std::string& log, const std::string& what, Flow flow = Flow::next) {
  return statement({}, [&log, what, flow](Frame&) {
    log += what + " ";
    return flow;
  });
}
Block blockOf(Stmt statement) {
  Block block;
  block.statements.push_back(std::move(statement));
  return block;
}
Stmt throwing(const std::string& className) {
  return statement({}, [className](Frame&) { throw HostException(className, "message"); });
}

TEST(Choice, RunsTheFirstBranchThatFits) {
  const auto chosen = [](bool first, bool second, bool third) {
    std::string log;
    std::vector<Branch> branches(3);
    branches[0].tests.push_back(ofType(Kind::Boolean, first));
    branches[1].tests.push_back(ofType(Kind::Boolean, second));
    branches[1].tests.push_back(ofType(Kind::Boolean, third));
    const char* names[] = {"one", "two", "else"};
    for (std::size_t i = 0; i < 3; ++i) branches[i].body = blockOf(noting(log, names[i], Flow::exitDo));
    TestFrame frame;
    EXPECT_EQ(choice({}, std::move(branches))->run(frame), Flow::exitDo);
    return log;
  };
  EXPECT_EQ(chosen(true, true, false), "one ");
  EXPECT_EQ(chosen(false, false, true), "two ") << "any of its tests";
  EXPECT_EQ(chosen(false, false, false), "else ");
  TestFrame frame;
  EXPECT_EQ(choice({}, {})->run(frame), Flow::next);
}

class TryCatch : public testing::Test {
 protected:
  // Runs Try body, Catch e As `caught`, Finally; the log says which parts ran, and how it ended.
  std::string run(Stmt body, Flow finallyFlow = Flow::next) {
    std::string log;
    std::vector<CatchClause> clauses;
    clauses.push_back({registry().findClass("OutOfBoundsException"),
                       frame.variable({Kind::Object, false, hostClasses().exception}),
                       blockOf(noting(log, "caught"))});
    Stmt attempt = tryCatch({}, blockOf(std::move(body)), std::move(clauses),
                            blockOf(noting(log, "finally", finallyFlow)));
    try {
      log += attempt->run(frame) == Flow::next ? "next" : "left";
    } catch (const HostException& exception) {
      log += exception.exception->objectClass->name;
    }
    return log;
  }
  TestFrame frame;
};

TEST_F(TryCatch, CatchesItsClassAlone) {
  EXPECT_EQ(run(jump({}, Flow::next)), "finally next");
  EXPECT_EQ(run(throwing("OutOfBoundsException")), "caught finally next");
  EXPECT_EQ(run(throwing("NilObjectException")), "finally NilObjectException");
}

TEST_F(TryCatch, LeavesThroughItsFinally) {
  EXPECT_EQ(run(jump({}, Flow::leave)), "finally left");
  EXPECT_EQ(run(throwing("NilObjectException"), Flow::exitFor), "finally left")
      << "which drops the exception";
}

TEST(Raise, TakesExceptions) {
  TestFrame frame;
  const Class& overflow = *registry().findClass("StackOverflowException");
  EXPECT_EQ(failureOf([&] { raise({}, object(overflow))->run(frame); }), "StackOverflowException");
  Expr none = referenceNode({Kind::Object, false, &overflow}, [](Frame&) { return Ref<Heap>(); });
  EXPECT_EQ(failureOf([&] { raise({}, std::move(none))->run(frame); }), "NilObjectException");
  EXPECT_EQ(failureOf([&] { raise({}, object(amountClass())); }),
            "expected an exception after Raise, found Amount");
}

TEST(ReturnValue, KeepsTheLastResult) {
  TestFrame frame;
  Frame& running = frame;
  EXPECT_EQ(returnValue({}, text("one"))->run(frame), Flow::leave);
  returnValue({}, text("two"))->run(frame);
  EXPECT_EQ(bytesOf(static_cast<const Text*>(running.result.heap)), "two");
  release(running.result.heap);
}

TEST(Declaration, StartsAnewEachTime) {
  TestFrame frame;
  std::unique_ptr<Place> number = frame.variable(integerType);
  number->put(frame, Slot{.integer = 5});
  declaration({}, number->again(), nullptr)->run(frame);
  EXPECT_EQ(number->integer(frame), 0);
  declaration({}, number->again(), integer(3))->run(frame);
  EXPECT_EQ(number->integer(frame), 3);
}

TEST(AddHandler, IsForTheRunOfThreads) {
  EXPECT_EQ(failureOf([] { expectEvent(*object(*hostClasses().thread), "run", {}); }), "");
  EXPECT_EQ(failureOf([] { expectEvent(*object(*hostClasses().thread), "Stop", {}); }),
            "a Thread has no event Stop");
  EXPECT_EQ(failureOf([] { expectEvent(*object(amountClass()), "Run", {}); }), "an Amount has no event Run");
  Method work;
  work.declaration.name = "Work";
  work.declaration.parameters = {{"n", integerType, false, {}}};
  EXPECT_EQ(failureOf([&] { addHandler({}, object(*hostClasses().thread), work, nullptr, {}); }),
            "a thread runs a Sub without parameters, or with one parameter As Thread; Work is not");
}

}  // namespace
}  // namespace host
