// AtomicQueueQTX through its records.
#include "atomic/atomic_queue.h"

#include <atomic>
#include <chrono>
#include <cstring>
#include <optional>
#include <thread>
#include <type_traits>

#include "frame/failing_allocation.h"
#include "frame/raise.h"
#include "host_arrays.h"

namespace qtx {
namespace {

using Handles = std::vector<REALobject>;

// A host with arrays and a few values to put into queues, 1 to 9; 0 is nil.
struct Fixture {
  FakeHost host;
  HostArrays arrays;
  std::vector<REALobject> values{nullptr};

  explicit Fixture(double version = 2024.01, bool usualShape = true)
      : host(version), arrays(host, usualShape) {
    host.load();
    for (int i = 1; i <= 9; ++i) values.push_back(host.makeObject("Value"));
  }
  ~Fixture() {
    for (const REALobject value : values) {
      if (!value) continue;
      EXPECT_EQ(host.object(value).references, 1) << "a queue kept or dropped a reference";
      host.unlock(value);
    }
  }

  int numberOf(REALobject handle) {
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (values[i] == handle) return static_cast<int>(i);
    }
    return -1;
  }
};

struct Queue {
  Fixture& fixture;
  REALobject self;

  explicit Queue(Fixture& f, std::initializer_list<int> numbers = {})
      : fixture(f), self(f.host.makeObject("AtomicQueueQTX")) {
    for (const int number : numbers) push(number);
  }
  ~Queue() { fixture.host.unlock(self); }
  Queue(const Queue&) = delete;
  Queue& operator=(const Queue&) = delete;

  template <typename Signature>
  Signature* method(const char* declaration) {
    return fixture.host.function<Signature>("AtomicQueueQTX", declaration);
  }
  void clear() { method<void(REALobject)>("Clear")(self); }
  void push(int number) {
    method<void(REALobject, REALobject)>("Push(value as Variant)")(self, value(number));
  }
  void insert(int number) {
    method<void(REALobject, REALobject)>("Insert(value as Variant)")(self, value(number));
  }
  int popFirst() { return given(method<REALobject(REALobject)>("PopFirst as Variant")(self)); }
  int popLast() { return given(method<REALobject(REALobject)>("PopLast as Variant")(self)); }
  void add(REALobject other) {
    method<void(REALobject, REALobject)>("Add(values as AtomicQueueQTX)")(self, other);
  }
  void addArray(REALarrayObject array) {
    method<void(REALobject, REALarrayObject)>("Add(values() as Variant)")(self, array);
  }
  REALarrayObject array(const char* declaration = "Values as Variant()") {
    return method<REALarrayObject(REALobject)>(declaration)(self);
  }
  REALobject plus(int number) {
    return method<REALobject(REALobject, REALobject)>("Operator_Add(value as Variant) as AtomicQueueQTX")(
        self, value(number));
  }
  RBInteger compare(REALobject other) {
    return method<RBInteger(REALobject, REALobject)>("Operator_Compare(other as AtomicQueueQTX) as Integer")(
        self, other);
  }
  RBInteger count() {
    return reinterpret_cast<RBInteger (*)(REALobject, RBInteger)>(property("Count")->getter)(self, 0);
  }
  int topValue() {
    return given(
        reinterpret_cast<REALobject (*)(REALobject, RBInteger)>(property("TopValue")->getter)(self, 0));
  }
  void setTopValue(int number) {
    reinterpret_cast<void (*)(REALobject, RBInteger, REALobject)>(property("TopValue")->setter)(
        self, 0, value(number));
  }

  // The contents by number, front first.
  std::vector<int> contents(const char* declaration = "Values as Variant()") {
    const REALarrayObject values = array(declaration);
    std::vector<int> numbers;
    for (const REALobject handle : fixture.arrays.handlesIn(values)) {
      numbers.push_back(fixture.numberOf(handle));
    }
    EXPECT_EQ(fixture.arrays.referencesOf(values), 1);
    fixture.arrays.release(values);
    return numbers;
  }

  REALobject value(int number) { return fixture.values[static_cast<std::size_t>(number)]; }
  REALproperty* property(const char* name) { return fixture.host.findProperty("AtomicQueueQTX", name); }
  // The number of a value that came with a reference, which is given back.
  int given(REALobject handle) {
    const int number = fixture.numberOf(handle);
    fixture.host.unlock(handle);
    return number;
  }
};

using Numbers = std::vector<int>;

TEST(AtomicQueue, IsRegisteredMemberByMember) {
  Fixture fixture;
  const REALclassDefinition* record = fixture.host.findClass("AtomicQueueQTX");
  const char* declarations[] = {
      "Clear",
      "Insert(value as Variant)",
      "Push(value as Variant)",
      "PopFirst as Variant",
      "PopLast as Variant",
      "Values as Variant()",
      "Add(values as AtomicQueueQTX)",
      "Add(values() as Variant)",
      "Operator_Convert as Variant()",
      "Operator_Add(value as Variant) as AtomicQueueQTX",
      "Operator_Compare(other as AtomicQueueQTX) as Integer",
  };
  ASSERT_EQ(record->methodCount, std::size(declarations));
  for (std::size_t i = 0; i < std::size(declarations); ++i) {
    EXPECT_STREQ(record->methods[i].declaration, declarations[i]);
    EXPECT_EQ(record->methods[i].flags, 4u);
  }
  ASSERT_EQ(record->propertyCount, 2u);
  EXPECT_STREQ(record->properties[0].name, "Count");
  EXPECT_STREQ(record->properties[0].type, "Integer");
  EXPECT_EQ(record->properties[0].setter, nullptr);
  EXPECT_STREQ(record->properties[1].name, "TopValue");
  EXPECT_STREQ(record->properties[1].type, "Variant");
  EXPECT_NE(record->properties[1].setter, nullptr);
  EXPECT_NE(record->constructor, nullptr);
  EXPECT_NE(record->destructor, nullptr);
  EXPECT_EQ(record->methods[5].function, record->methods[8].function);
}

TEST(AtomicQueue, TakesFromBothEnds) {
  Fixture fixture;
  Queue queue(fixture, {1, 2, 3});
  EXPECT_EQ(queue.popFirst(), 1);
  EXPECT_EQ(queue.popLast(), 3);
  EXPECT_EQ(queue.count(), 1);
  EXPECT_EQ(queue.topValue(), 2);
}

TEST(AtomicQueue, InsertsAtTheFront) {
  Fixture fixture;
  Queue queue(fixture);
  queue.insert(1);
  queue.insert(2);
  EXPECT_EQ(queue.contents(), (Numbers{2, 1}));
  EXPECT_EQ(queue.contents("Operator_Convert as Variant()"), (Numbers{2, 1}));
}

TEST(AtomicQueue, GivesNilWhenEmpty) {
  Fixture fixture;
  Queue queue(fixture);
  EXPECT_EQ(queue.popFirst(), 0);
  EXPECT_EQ(queue.popLast(), 0);
  EXPECT_EQ(queue.topValue(), 0);
  EXPECT_EQ(queue.count(), 0);
  EXPECT_EQ(queue.contents(), Numbers{});
  queue.clear();
  EXPECT_TRUE(fixture.host.raised.empty());
}

TEST(AtomicQueue, HoldsNil) {
  Fixture fixture;
  Queue queue(fixture, {0, 1, 0});
  EXPECT_EQ(queue.count(), 3);
  EXPECT_EQ(queue.popFirst(), 0);
  EXPECT_EQ(queue.contents(), (Numbers{1, 0}));
}

TEST(AtomicQueue, ClearsAndReleases) {
  Fixture fixture;
  Queue queue(fixture, {1, 1, 2});
  EXPECT_EQ(fixture.host.object(fixture.values[1]).references, 3);
  queue.clear();
  EXPECT_EQ(queue.count(), 0);
  EXPECT_EQ(fixture.host.object(fixture.values[1]).references, 1);
}

struct TopValueRow {
  std::initializer_list<int> before;
  Numbers after;
};

TEST(AtomicQueue, RefillsAllButOneWithTheTopValue) {
  Fixture fixture;
  const TopValueRow rows[] = {
      {{}, {9}}, {{1}, {}}, {{1, 2}, {9}}, {{1, 2, 3}, {9, 9}}, {{9, 9, 9, 9}, {9, 9, 9}}};
  for (const TopValueRow& row : rows) {
    Queue queue(fixture, row.before);
    queue.setTopValue(9);
    EXPECT_EQ(queue.contents(), row.after);
  }
}

TEST(AtomicQueue, AddsAnotherQueue) {
  Fixture fixture;
  Queue queue(fixture, {1, 2}), other(fixture, {3, 0, 4});
  queue.add(other.self);
  EXPECT_EQ(queue.contents(), (Numbers{1, 2, 3, 0, 4}));
  EXPECT_EQ(other.contents(), (Numbers{3, 0, 4}));
  queue.add(nullptr);
  EXPECT_EQ(queue.count(), 5);
  EXPECT_TRUE(fixture.host.raised.empty());
}

TEST(AtomicQueue, AddsItselfOnce) {
  Fixture fixture;
  Queue queue(fixture, {1, 2, 3});
  queue.add(queue.self);
  EXPECT_EQ(queue.contents(), (Numbers{1, 2, 3, 1, 2, 3}));
  for (int i = 0; i < 6; ++i) queue.add(queue.self);  // grows on the way
  EXPECT_EQ(queue.count(), 6 * 64);
}

void addsArraysOn(double version) {
  Fixture fixture(version);
  Queue queue(fixture, {1});
  const REALarrayObject array = fixture.arrays.objects({fixture.values[2], nullptr, fixture.values[3]});
  queue.addArray(array);
  EXPECT_EQ(queue.contents(), (Numbers{1, 2, 0, 3}));
  fixture.arrays.release(array);
  EXPECT_EQ(queue.contents(), (Numbers{1, 2, 0, 3})) << "with references of its own";
}

TEST(AtomicQueue, AddsArraysOfHostsBefore2021) { addsArraysOn(2019.0); }
TEST(AtomicQueue, AddsArraysOfHostsSince2021) { addsArraysOn(2021.0); }

TEST(AtomicQueue, IgnoresEmptyAndNilArrays) {
  Fixture fixture(2024.01, false);  // not even the shape of arrays is looked at
  Queue queue(fixture, {1});
  const REALarrayObject empty = fixture.arrays.objects({});
  queue.addArray(empty);
  queue.addArray(nullptr);
  EXPECT_EQ(queue.contents(), Numbers{1});
  EXPECT_TRUE(fixture.host.raised.empty());
  fixture.arrays.release(empty);
}

TEST(AtomicQueue, RefusesArraysOfAnotherShape) {
  Fixture fixture(2024.01, false);
  Queue queue(fixture, {1});
  const REALarrayObject array = fixture.arrays.objects({fixture.values[2]});
  queue.addArray(array);
  const RaisedException raised = fixture.host.takeRaised();
  EXPECT_EQ(raised.className, "UnsupportedOperationException");
  EXPECT_EQ(raised.message, "Failed to access array.");
  EXPECT_EQ(queue.contents(), Numbers{1});
  fixture.arrays.release(array);
}

TEST(AtomicQueue, RefusesAnArrayWithoutStorage) {
  Fixture fixture;
  Queue queue(fixture, {1});
  const REALarrayObject array = fixture.arrays.objects({fixture.values[2], fixture.values[3]});
  std::memset(reinterpret_cast<std::byte*>(array) + 56, 0, sizeof(void*));
  queue.addArray(array);
  const RaisedException raised = fixture.host.takeRaised();
  EXPECT_EQ(raised.className, "UnsupportedOperationException");
  EXPECT_EQ(raised.message, "Failed to access array.");
  EXPECT_EQ(queue.contents(), Numbers{1});
  fixture.arrays.release(array);
}

// Before any look at its shape, so that no array is made for the self-test.
TEST(AtomicQueue, IgnoresAnEmptyArrayWithoutTheSelfTest) {
  Fixture fixture;
  Queue queue(fixture);
  const REALarrayObject empty = fixture.arrays.objects({});
  fixture.host.withhold("RuntimeArrayCreateSingleDimBoundedArray");
  queue.addArray(empty);
  EXPECT_EQ(fixture.host.lookUps["RuntimeArrayCreateSingleDimBoundedArray"], 0);
  fixture.arrays.release(empty);
}

// 4 is the host's code for Variant elements.
TEST(AtomicQueue, MakesAnEmptyVariantArray) {
  Fixture fixture;
  static int calls = 0;
  fixture.host.offer(
      "RuntimeArrayCreateSingleDimBoundedArray", +[](std::int32_t type, RBInteger upperBound) -> REALarray {
        ++calls;
        EXPECT_EQ(type, 4);
        EXPECT_EQ(upperBound, -1);
        return nullptr;
      });
  Queue queue(fixture, {1});
  EXPECT_EQ(queue.array(), nullptr);
  EXPECT_EQ(calls, 1);
}

TEST(AtomicQueue, GivesNilWhereTheHostMakesNoArrays) {
  Fixture fixture;
  fixture.host.withhold("RuntimeArrayCreateSingleDimBoundedArray");
  Queue queue(fixture, {1, 2});
  EXPECT_EQ(queue.array(), nullptr);
  EXPECT_TRUE(fixture.host.raised.empty()) << "nothing is asked of nil";
  EXPECT_EQ(queue.count(), 2);
}

TEST(AtomicQueue, GivesAnEmptyArrayWhereTheHostInsertsNothing) {
  Fixture fixture;
  fixture.host.withhold("PluginObjectArrayInsertProc");
  Queue queue(fixture, {1, 2});
  EXPECT_EQ(queue.contents(), Numbers{});
}

// Without the operation the upper bound reads 0, so every element goes to index 1.
TEST(AtomicQueue, InsertsAtIndex1WhereTheHostTellsNoUpperBound) {
  Fixture fixture;
  fixture.host.withhold("RuntimeUBound");
  Queue queue(fixture, {1, 2, 3});
  EXPECT_EQ(queue.contents(), (Numbers{1, 3, 2}));
}

TEST(AtomicQueue, IsItsOwnSum) {
  Fixture fixture;
  Queue queue(fixture, {1});
  EXPECT_EQ(queue.plus(2), queue.self);
  EXPECT_EQ(fixture.host.object(queue.self).references, 2) << "one of them the caller's";
  fixture.host.unlock(queue.self);
  EXPECT_EQ(queue.contents(), (Numbers{1, 2}));
}

TEST(AtomicQueue, ComparesSizesThenIdentities) {
  Fixture fixture;
  int lower = 1, higher = 2;
  if (std::less<>()(fixture.values[2], fixture.values[1])) std::swap(lower, higher);
  Queue empty(fixture), alsoEmpty(fixture), low(fixture, {lower}), alsoLow(fixture, {lower}),
      high(fixture, {higher}), lowLow(fixture, {lower, lower}), lowHigh(fixture, {lower, higher});
  EXPECT_EQ(empty.compare(empty.self), 0);
  EXPECT_EQ(empty.compare(alsoEmpty.self), 0);
  EXPECT_EQ(empty.compare(low.self), -1);
  EXPECT_EQ(high.compare(lowLow.self), -1) << "a shorter queue is less, whatever is in it";
  EXPECT_EQ(lowLow.compare(high.self), 1);
  EXPECT_EQ(low.compare(alsoLow.self), 0);
  EXPECT_EQ(low.compare(high.self), -1);
  EXPECT_EQ(high.compare(low.self), 1);
  EXPECT_EQ(lowLow.compare(lowHigh.self), -1);
  EXPECT_EQ(lowHigh.compare(lowLow.self), 1);
}

TEST(AtomicQueue, RefusesToCompareWithNil) {
  Fixture fixture;
  Queue queue(fixture, {1});
  EXPECT_EQ(queue.compare(nullptr), 0);
  const RaisedException raised = fixture.host.takeRaised();
  EXPECT_EQ(raised.className, "NilObjectException");
  EXPECT_EQ(raised.message, "Other is nil");
}

template <typename Body>
std::vector<std::string> traceOf(const Body& body) {
  debugging = true;
  const std::string log = logOf(body);
  debugging = false;
  std::vector<std::string> lines;
  for (std::size_t start = 0, end; (end = log.find('\n', start)) != std::string::npos; start = end + 1) {
    std::string line = log.substr(start, end - start);
    EXPECT_EQ(line.substr(0, 11), "QTX Debug: ");
    lines.push_back(line.substr(11));
  }
  return lines;
}

using Lines = std::vector<std::string>;

const char* const construction = "REALObject::REALObject(REALobject)";
const char* const copyConstruction = "REALObject::REALObject(const REALObject &)";
const char* const moveConstruction = "REALObject::REALObject(REALObject &&)";
const char* const copyAssignment = "REALObject &REALObject::operator=(const REALObject &)";
const char* const moveAssignment = "REALObject &REALObject::operator=(REALObject &&)";
const char* const get = "REALobject REALObject::get() const";
const char* const destruction = "REALObject::~REALObject()";

TEST(AtomicQueue, TracesMembersAndElements) {
  Fixture fixture;
  Queue queue(fixture, {1, 2, 3}), other(fixture, {4});
  EXPECT_EQ(traceOf([&] { queue.push(4); }),
            (Lines{"void Push(REALobject, REALobject)", construction, moveConstruction}));
  EXPECT_EQ(traceOf([&] { queue.insert(5); }),
            (Lines{"void Insert(REALobject, REALobject)", construction, moveConstruction, moveAssignment,
                   moveAssignment, moveAssignment, moveAssignment}));
  EXPECT_EQ(traceOf([&] { queue.popFirst(); }), (Lines{"REALobject PopFirst(REALobject)", get, moveAssignment,
                                                       moveAssignment, moveAssignment, moveAssignment}));
  EXPECT_EQ(traceOf([&] { queue.popLast(); }), (Lines{"REALobject PopLast(REALobject)", get, destruction}));
  EXPECT_EQ(traceOf([&] { queue.count(); }), (Lines{"RBInteger getCount(REALobject, long)"}));
  EXPECT_EQ(traceOf([&] { queue.topValue(); }), (Lines{"REALobject getTopValue(REALobject, long)", get}));
  EXPECT_EQ(traceOf([&] { queue.add(other.self); }),
            (Lines{"void Add(REALobject, REALobject)", copyConstruction}));
  EXPECT_EQ(traceOf([&] { queue.add(nullptr); }), (Lines{"void Add(REALobject, REALobject)"}));
  EXPECT_EQ(traceOf([&] { queue.setTopValue(6); }),
            (Lines{"void setTopValue(REALobject, long, REALobject)", construction, copyAssignment,
                   copyAssignment, copyAssignment, destruction, destruction}));
  EXPECT_EQ(traceOf([&] { queue.clear(); }),
            (Lines{"void clear(REALobject)", destruction, destruction, destruction}));
  EXPECT_EQ(traceOf([&] { queue.setTopValue(6); }), (Lines{"void setTopValue(REALobject, long, REALobject)",
                                                           construction, copyConstruction, destruction}));
  EXPECT_EQ(traceOf([&] { queue.popFirst(); }), (Lines{"REALobject PopFirst(REALobject)", get, destruction}));
  EXPECT_EQ(traceOf([&] { queue.popFirst(); }), (Lines{"REALobject PopFirst(REALobject)"}));
  EXPECT_EQ(traceOf([&] {
              queue.plus(1);
              fixture.host.unlock(queue.self);
            }),
            (Lines{"REALobject Operator_Add(REALobject, REALobject)", "void Push(REALobject, REALobject)",
                   construction, moveConstruction}));
  EXPECT_EQ(traceOf([&] { fixture.arrays.release(queue.array()); }),
            (Lines{"REALarrayObject Values(REALobject)"}));
}

TEST(AtomicQueue, TracesArrays) {
  Fixture fixture;
  Queue queue(fixture);
  const REALarrayObject array = fixture.arrays.objects({fixture.values[1], fixture.values[2]});
  EXPECT_EQ(traceOf([&] { queue.addArray(array); }),
            (Lines{"void AddA(REALobject, REALarrayObject)", "TestArray 2024.010000", construction,
                   moveConstruction, construction, moveConstruction}));
  fixture.arrays.release(array);
  EXPECT_EQ(traceOf([&] { queue.addArray(nullptr); }), (Lines{"void AddA(REALobject, REALarrayObject)"}));
}

TEST(AtomicQueue, TracesItsLifetime) {
  Fixture fixture;
  EXPECT_EQ(traceOf([&] {
              Queue queue(fixture, {1, 0});
            }),
            (Lines{"void Initializer(REALobject)", "void Push(REALobject, REALobject)", construction,
                   moveConstruction, "void Push(REALobject, REALobject)", construction, moveConstruction,
                   "void Deinitializer(REALobject)", destruction}));
}

TEST(AtomicQueue, TracesGrowth) {
  Fixture fixture;
  Queue queue(fixture), front(fixture);
  for (int i = 0; i < 100; ++i) {
    queue.push(1);
    front.push(1);
  }
  Lines expected(103, moveConstruction);
  expected[0] = "void Push(REALobject, REALobject)";
  expected[1] = construction;
  EXPECT_EQ(traceOf([&] { queue.push(2); }), expected);
  expected[0] = "void Insert(REALobject, REALobject)";
  EXPECT_EQ(traceOf([&] { front.insert(2); }), expected);
}

TEST(AtomicQueue, TracesComparison) {
  Fixture fixture;
  Queue one(fixture, {1, 2}), other(fixture, {1, 3}), shorter(fixture, {1}), empty(fixture),
      alsoEmpty(fixture);
  const std::string name = "RBInteger Operator_Compare(REALobject, REALobject)";
  const auto line = [&](const char* operation, int left, int right) {
    char text[200];
    std::snprintf(text, sizeof text, "bool REALObject::operator%s(const REALObject &) const %p, %p",
                  operation, static_cast<void*>(fixture.values[static_cast<std::size_t>(left)]),
                  static_cast<void*>(fixture.values[static_cast<std::size_t>(right)]));
    return std::string(text);
  };
  EXPECT_EQ(traceOf([&] { one.compare(one.self); }), (Lines{name}));
  EXPECT_EQ(traceOf([&] { one.compare(shorter.self); }), (Lines{name}));
  EXPECT_EQ(
      traceOf([&] { one.compare(other.self); }),
      (Lines{name, "same size 2", line("==", 1, 1), line("==", 2, 3), "mismatch at 1", line("<", 2, 3)}));
  EXPECT_EQ(traceOf([&] { empty.compare(alsoEmpty.self); }), (Lines{name, "same size 0"}));
  EXPECT_EQ(traceOf([&] { one.compare(nullptr); }), (Lines{name, "other is nil"}));
  fixture.host.takeRaised();
}

// Runs what allocates, with each allocation failing in turn.
struct OutOfMemory : Fixture {
  static inline std::optional<FailAllocationsOf> failing;

  OutOfMemory() {
    // The fake host allocates as well: from the exception's making on, nothing fails, and what is looked up
    // by name has to be known before.
    host.offer(
        "REALBuildStringWithEncoding",
        +[](const char* bytes, std::int32_t length, std::uint32_t textEncoding) {
          failing.reset();
          return FakeHost::current->makeString({bytes, static_cast<std::size_t>(length)}, textEncoding);
        });
    RaiseException("RuntimeException", "makes itself known");
    host.takeRaised();
  }

  void useEveryMember() {
    Queue one(*this, {1}), other(*this, {2});
    one.compare(other.self);
    host.unlock(one.plus(2));
    one.popFirst();
    arrays.release(one.array());
    const REALarrayObject array = arrays.objects({values[2]});
    one.addArray(array);
    arrays.release(array);
  }

  // Until `body` comes through; `check` after each failure. How many there were.
  template <typename Body, typename Check>
  int failEach(const Body& body, const Check& check) {
    for (int failures = 0; failures < 100; ++failures) {
      failing.emplace(std::size_t{0}, SIZE_MAX, failures);
      body();
      failing.reset();
      if (host.raised.empty()) return failures;
      const RaisedException raised = host.takeRaised();
      EXPECT_EQ(raised.className, "OutOfMemoryException");
      EXPECT_EQ(raised.message.substr(0, 27), "Failed to allocate memory: ");
      check();
    }
    ADD_FAILURE() << "no end of failures";
    return 100;
  }
};

TEST(AtomicQueueOutOfMemory, LeavesTheQueueAsItWas) {
  OutOfMemory memory;
  memory.useEveryMember();
  const auto failGrowth = [&]<typename Signature>(std::type_identity<Signature>, const char* declaration,
                                                  bool fromQueue) {
    SCOPED_TRACE(declaration);
    Queue full(memory), one(memory, {7});
    for (int i = 0; i < 100; ++i) full.push(1 + i % 3);
    const Numbers before = full.contents();
    auto* member = full.method<Signature>(declaration);
    const REALobject argument = fromQueue ? one.self : memory.values[7];
    EXPECT_EQ(memory.failEach([&] { member(full.self, argument); },
                              [&] {
                                EXPECT_EQ(full.contents(), before) << "and the lock is free";
                                EXPECT_EQ(memory.host.object(full.self).references, 1);
                                EXPECT_EQ(memory.host.object(memory.values[7]).references, 2);
                              }),
              1);
    EXPECT_EQ(full.count(), 101);
    if (memory.host.object(full.self).references == 2) memory.host.unlock(full.self);  // the sum
  };
  using Member = void(REALobject, REALobject);
  using Operator = REALobject(REALobject, REALobject);
  failGrowth(std::type_identity<Member>(), "Push(value as Variant)", false);
  failGrowth(std::type_identity<Member>(), "Insert(value as Variant)", false);
  failGrowth(std::type_identity<Member>(), "Add(values as AtomicQueueQTX)", true);
  failGrowth(std::type_identity<Operator>(), "Operator_Add(value as Variant) as AtomicQueueQTX", false);
}

TEST(AtomicQueueOutOfMemory, KeepsWhatWasAddedBefore) {
  OutOfMemory memory;
  memory.useEveryMember();
  const REALarrayObject array = memory.arrays.objects(Handles(150, memory.values[5]));
  Queue source(memory), target(memory), fromArray(memory);
  for (int i = 0; i < 150; ++i) source.push(5);
  auto* add = source.method<void(REALobject, REALobject)>("Add(values as AtomicQueueQTX)");
  auto* addArray = source.method<void(REALobject, REALarrayObject)>("Add(values() as Variant)");
  const auto expectFilled = [](Queue& queue) {
    EXPECT_EQ(queue.count(), 100);
    queue.clear();
  };
  EXPECT_EQ(memory.failEach([&] { add(target.self, source.self); }, [&] { expectFilled(target); }), 1);
  EXPECT_EQ(memory.failEach([&] { addArray(fromArray.self, array); }, [&] { expectFilled(fromArray); }), 1);
  EXPECT_EQ(target.count(), 150);
  EXPECT_EQ(fromArray.count(), 150);
  memory.arrays.release(array);
}

// The elements' owner and their storage.
TEST(AtomicQueueOutOfMemory, MakesAFailedInitializationGood) {
  OutOfMemory memory;
  const REALclassDefinition* record = memory.host.findClass("AtomicQueueQTX");
  const auto initialize = reinterpret_cast<void (*)(REALobject)>(record->constructor);
  const auto destroy = reinterpret_cast<void (*)(REALobject)>(record->destructor);
  const REALobject self = memory.host.makeObject("Raw");
  const auto dataOf = [&](REALobject object) {
    void* data;
    std::memcpy(&data, reinterpret_cast<std::byte*>(object) + record->dataOffset, sizeof data);
    return data;
  };
  const auto isEmpty = [&] { EXPECT_EQ(dataOf(self), nullptr); };
  EXPECT_EQ(memory.failEach([&] { initialize(self); }, isEmpty), 2);
  destroy(self);
  EXPECT_EQ(memory.failEach([&] { initialize(self); }, isEmpty), 2);
  destroy(self);
  isEmpty();
  destroy(self);  // nothing left to do

  // One whose initializer has failed is empty, and gets its elements when it is used.
  auto* values = memory.host.function<REALarrayObject(REALobject)>("AtomicQueueQTX", "Values as Variant()");
  auto* push = memory.host.function<void(REALobject, REALobject)>("AtomicQueueQTX", "Push(value as Variant)");
  const REALarrayObject array = values(self);
  EXPECT_TRUE(memory.arrays.handlesIn(array).empty());
  memory.arrays.release(array);
  push(self, nullptr);
  destroy(self);
  memory.host.unlock(self);
}

// A queue in a queue goes with it: no lock is taken that is held already.
TEST(AtomicQueue, ReleasesAQueueThatItHolds) {
  Fixture fixture;
  Queue outer(fixture);
  const REALobject inner = fixture.host.makeObject("AtomicQueueQTX");
  outer.method<void(REALobject, REALobject)>("Push(value as Variant)")(inner, fixture.values[3]);
  outer.method<void(REALobject, REALobject)>("Push(value as Variant)")(outer.self, inner);
  fixture.host.unlock(inner);
  EXPECT_TRUE(fixture.host.isAlive(inner));
  outer.clear();
  EXPECT_FALSE(fixture.host.isAlive(inner));
}

// Host objects for many threads, each with its count.
struct Cell {
  std::atomic<int> references{1};
  std::atomic<int> arrivals{0};
};
constexpr int producers = 3, consumers = 3, perProducer = 20000;
Cell cells[producers * perProducer];

bool isCell(REALobject handle) {
  const auto* address = reinterpret_cast<Cell*>(handle);
  return address >= std::begin(cells) && address < std::end(cells);
}

// Nothing lost, nothing twice, every reference given back. `queues` is used by all producers and consumers.
void exchangeThrough(std::size_t queueCount, bool atFront) {
  FakeHost host;
  host.offer(
      "REALLockObject", +[](REALobject handle) {
        if (isCell(handle)) ++reinterpret_cast<Cell*>(handle)->references;
      });
  host.offer(
      "REALUnlockObject", +[](REALobject handle) {
        if (isCell(handle)) --reinterpret_cast<Cell*>(handle)->references;
      });
  host.load();
  std::vector<REALobject> queues;
  for (std::size_t i = 0; i < queueCount; ++i) queues.push_back(host.makeObject("AtomicQueueQTX"));
  auto* push = host.function<void(REALobject, REALobject)>(
      "AtomicQueueQTX", atFront ? "Insert(value as Variant)" : "Push(value as Variant)");
  auto* popFirst = host.function<REALobject(REALobject)>("AtomicQueueQTX", "PopFirst as Variant");
  auto* popLast = host.function<REALobject(REALobject)>("AtomicQueueQTX", "PopLast as Variant");
  auto* compare = host.function<RBInteger(REALobject, REALobject)>(
      "AtomicQueueQTX", "Operator_Compare(other as AtomicQueueQTX) as Integer");

  std::atomic<int> received{0};
  std::vector<std::thread> threads;
  for (int p = 0; p < producers; ++p) {
    threads.emplace_back([&, p] {
      for (int i = 0; i < perProducer; ++i) {
        push(queues[static_cast<std::size_t>(i) % queueCount],
             reinterpret_cast<REALobject>(&cells[p * perProducer + i]));
      }
    });
  }
  for (int c = 0; c < consumers; ++c) {
    threads.emplace_back([&, c] {
      for (std::size_t turn = 0; received < producers * perProducer; ++turn) {
        const REALobject queue = queues[turn % queueCount];
        const REALobject value = (c % 2 == 0 ? popFirst : popLast)(queue);
        if (turn % 100 == 0) compare(queue, queues[(turn + 1) % queueCount]);
        if (!value) {
          std::this_thread::yield();
          continue;
        }
        auto* cell = reinterpret_cast<Cell*>(value);
        ++cell->arrivals;
        --cell->references;
        ++received;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (Cell& cell : cells) {
    ASSERT_EQ(cell.arrivals, 1);
    ASSERT_EQ(cell.references, 1);
  }
  for (const REALobject queue : queues) host.unlock(queue);
}

// One thread holds the lock, because the host keeps it in REALLockObject; what another thread then calls, on
// another queue, has to wait for it.
struct Gate {
  static inline std::atomic<bool> closed{true}, reached{false};
  static REALobject handle() { return reinterpret_cast<REALobject>(&closed); }
};

TEST(AtomicQueueThreads, WaitForOneLockInEveryMember) {
  using namespace std::chrono_literals;
  static void (*lockOthers)(REALobject);
  static void (*unlockOthers)(REALobject);
  Fixture fixture;
  lockOthers = reinterpret_cast<void (*)(REALobject)>(FakeHost::resolve("REALLockObject"));
  unlockOthers = reinterpret_cast<void (*)(REALobject)>(FakeHost::resolve("REALUnlockObject"));
  fixture.host.offer(
      "REALLockObject", +[](REALobject handle) {
        if (handle != Gate::handle()) return lockOthers(handle);
        Gate::reached = true;
        while (Gate::closed) std::this_thread::sleep_for(std::chrono::milliseconds(1));
      });
  fixture.host.offer(
      "REALUnlockObject", +[](REALobject handle) {
        if (handle != Gate::handle()) unlockOthers(handle);
      });
  Queue holder(fixture), queue(fixture, {1, 2}), other(fixture, {3, 4});
  const REALarrayObject array = fixture.arrays.objects({fixture.values[5]});
  queue.addArray(array);  // the self-test

  const std::pair<const char*, std::function<void()>> members[] = {
      {"Clear", [&] { queue.clear(); }},
      {"Insert", [&] { queue.insert(1); }},
      {"Push", [&] { queue.push(1); }},
      {"PopFirst", [&] { queue.popFirst(); }},
      {"PopLast", [&] { queue.popLast(); }},
      {"Values", [&] { queue.contents(); }},
      {"Add", [&] { queue.add(other.self); }},
      {"Add, of an array", [&] { queue.addArray(array); }},
      {"Operator_Add", [&] { fixture.host.unlock(queue.plus(1)); }},
      {"Operator_Compare", [&] { queue.compare(other.self); }},
      {"Count", [&] { queue.count(); }},
      {"TopValue", [&] { queue.topValue(); }},
      {"TopValue, assigned", [&] { queue.setTopValue(1); }},
  };
  for (const auto& [name, member] : members) {
    Gate::closed = true;
    Gate::reached = false;
    std::thread holding([&] {
      holder.method<void(REALobject, REALobject)>("Push(value as Variant)")(holder.self, Gate::handle());
    });
    while (!Gate::reached) std::this_thread::yield();
    std::atomic<bool> done{false};
    std::thread waiting([&, &run = member] {
      run();
      done = true;
    });
    std::this_thread::sleep_for(30ms);
    EXPECT_FALSE(done) << name;
    Gate::closed = false;
    holding.join();
    waiting.join();
    EXPECT_TRUE(done) << name;
  }
  fixture.arrays.release(array);
}

TEST(AtomicQueueThreads, ShareOneQueue) { exchangeThrough(1, false); }
TEST(AtomicQueueThreads, ShareOneQueueFromItsFront) { exchangeThrough(1, true); }
TEST(AtomicQueueThreads, ShareSeveralQueues) { exchangeThrough(5, false); }

}  // namespace
}  // namespace qtx
