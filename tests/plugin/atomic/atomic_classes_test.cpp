// AtomicIntegerQTX and AtomicFlagQTX through their records.
#include <atomic>
#include <chrono>
#include <cstring>
#include <functional>
#include <thread>

#include "frame/fake_host.h"

namespace qtx {
namespace {

constexpr std::int64_t smallest = INT64_MIN, largest = INT64_MAX;

struct Counter {
  FakeHost host;
  REALobject self = nullptr;

  Counter() {
    host.load();
    self = host.makeObject("AtomicIntegerQTX");
  }
  ~Counter() { host.unlock(self); }

  template <typename Signature>
  Signature* method(const char* declaration) {
    return host.function<Signature>("AtomicIntegerQTX", declaration);
  }
  std::int64_t value() {
    return reinterpret_cast<std::int64_t (*)(REALobject, RBInteger)>(
        host.findProperty("AtomicIntegerQTX", "Value")->getter)(self, 0);
  }
  void setValue(std::int64_t value) {
    reinterpret_cast<void (*)(REALobject, RBInteger, std::int64_t)>(
        host.findProperty("AtomicIntegerQTX", "Value")->setter)(self, 0, value);
  }
};

TEST(AtomicInteger, IsRegisteredMemberByMember) {
  FakeHost host;
  host.load();
  const REALclassDefinition* record = host.findClass("AtomicIntegerQTX");
  const char* declarations[] = {
      "Increment as Int64",
      "Decrement as Int64",
      "Exchange(Value as Int64) as Int64",
      "Add(Value as Int64) as Int64",
      "Subtract(Value as Int64) as Int64",
      "BitwiseAnd(Value as Int64) as Int64",
      "BitwiseOr(Value as Int64) as Int64",
      "BitwiseXOr(Value as Int64) as Int64",
      "Operator_Convert(value as Int64)",
      "Operator_Convert as Int64",
      "Operator_Add(other as Int64) as Int64",
      "Operator_Subtract(other as Int64) as Int64",
      "CompareExchange(byref expected as Int64, desired as Int64) as Boolean",
      "Operator_Compare(other as AtomicIntegerQTX) as Integer",
  };
  ASSERT_EQ(record->methodCount, std::size(declarations));
  for (std::size_t i = 0; i < std::size(declarations); ++i) {
    EXPECT_STREQ(record->methods[i].declaration, declarations[i]);
  }
  ASSERT_EQ(record->propertyCount, 1u);
  EXPECT_STREQ(record->properties[0].name, "Value");
  EXPECT_STREQ(record->properties[0].type, "Int64");
  EXPECT_NE(record->properties[0].setter, nullptr);
  EXPECT_EQ(record->constructor, nullptr);
  EXPECT_NE(record->destructor, nullptr);
  EXPECT_EQ(record->sharedMethodCount, 0u);
}

TEST(AtomicInteger, StartsAt0) {
  Counter counter;
  EXPECT_EQ(counter.value(), 0);
  EXPECT_EQ(counter.method<std::int64_t(REALobject)>("Operator_Convert as Int64")(counter.self), 0);
}

struct UnaryRow {
  const char* declaration;
  std::int64_t before, after;
};

TEST(AtomicInteger, CountsAndGivesTheValueBefore) {
  Counter counter;
  const UnaryRow rows[] = {
      {"Increment as Int64", 5, 6},
      {"Increment as Int64", largest, smallest},
      {"Decrement as Int64", 0, -1},
      {"Decrement as Int64", smallest, largest},
  };
  for (const UnaryRow& row : rows) {
    SCOPED_TRACE(row.declaration);
    counter.setValue(row.before);
    EXPECT_EQ(counter.method<std::int64_t(REALobject)>(row.declaration)(counter.self), row.before);
    EXPECT_EQ(counter.value(), row.after);
  }
}

struct BinaryRow {
  const char* declaration;
  std::int64_t before, argument, after;
};

TEST(AtomicInteger, ChangesAndGivesTheValueBefore) {
  Counter counter;
  const BinaryRow rows[] = {
      {"Exchange(Value as Int64) as Int64", 5, -9, -9},
      {"Add(Value as Int64) as Int64", 10, 3, 13},
      {"Add(Value as Int64) as Int64", largest, 1, smallest},
      {"Subtract(Value as Int64) as Int64", 10, 3, 7},
      {"Subtract(Value as Int64) as Int64", 5, smallest, smallest + 5},
      {"Subtract(Value as Int64) as Int64", smallest, 1, largest},
      {"BitwiseAnd(Value as Int64) as Int64", 0b1100, 0b1010, 0b1000},
      {"BitwiseAnd(Value as Int64) as Int64", -1, 0, 0},
      {"BitwiseOr(Value as Int64) as Int64", 0b1100, 0b1010, 0b1110},
      {"BitwiseXOr(Value as Int64) as Int64", 0b1100, 0b1010, 0b0110},
      {"Operator_Add(other as Int64) as Int64", 10, 3, 13},
      {"Operator_Subtract(other as Int64) as Int64", 13, 3, 10},
      {"Operator_Subtract(other as Int64) as Int64", 0, smallest, smallest},
  };
  for (const BinaryRow& row : rows) {
    SCOPED_TRACE(row.declaration);
    counter.setValue(row.before);
    EXPECT_EQ(
        counter.method<std::int64_t(REALobject, std::int64_t)>(row.declaration)(counter.self, row.argument),
        row.before);
    EXPECT_EQ(counter.value(), row.after);
  }
}

TEST(AtomicInteger, IsAssignedAndConverted) {
  Counter counter;
  counter.method<void(REALobject, std::int64_t)>("Operator_Convert(value as Int64)")(counter.self, smallest);
  EXPECT_EQ(counter.value(), smallest);
  EXPECT_EQ(counter.method<std::int64_t(REALobject)>("Operator_Convert as Int64")(counter.self), smallest);
}

TEST(AtomicInteger, ComparesAndExchanges) {
  Counter counter;
  auto* exchange = counter.method<bool(REALobject, std::int64_t*, std::int64_t)>(
      "CompareExchange(byref expected as Int64, desired as Int64) as Boolean");
  counter.setValue(5);
  std::int64_t expected = 5;
  EXPECT_TRUE(exchange(counter.self, &expected, 7));
  EXPECT_EQ(counter.value(), 7);
  EXPECT_EQ(expected, 5) << "left alone on success";
  EXPECT_FALSE(exchange(counter.self, &expected, 9));
  EXPECT_EQ(counter.value(), 7);
  EXPECT_EQ(expected, 7) << "what was found instead";
}

TEST(AtomicInteger, ComparesAsSigned) {
  Counter counter;
  auto* compare = counter.method<RBInteger(REALobject, REALobject)>(
      "Operator_Compare(other as AtomicIntegerQTX) as Integer");
  const REALobject other = counter.host.makeObject("AtomicIntegerQTX");
  auto* assign = counter.method<void(REALobject, std::int64_t)>("Operator_Convert(value as Int64)");
  for (const auto& [mine, theirs, expected] : {std::tuple<std::int64_t, std::int64_t, RBInteger>{-1, 1, -1},
                                               {1, -1, 1},
                                               {4, 4, 0},
                                               {smallest, largest, -1},
                                               {largest, smallest, 1}}) {
    counter.setValue(mine);
    assign(other, theirs);
    EXPECT_EQ(compare(counter.self, other), expected);
  }
  EXPECT_EQ(compare(counter.self, counter.self), 0);
  counter.host.unlock(other);
}

TEST(AtomicInteger, RefusesToCompareWithNil) {
  Counter counter;
  auto* compare = counter.method<RBInteger(REALobject, REALobject)>(
      "Operator_Compare(other as AtomicIntegerQTX) as Integer");
  EXPECT_EQ(logOf([&] { EXPECT_EQ(compare(counter.self, nullptr), 0); }), "");
  RaisedException raised = counter.host.takeRaised();
  EXPECT_EQ(raised.className, "NilObjectException");
  EXPECT_EQ(raised.message, "Other is nil");
  debugging = true;
  EXPECT_EQ(logOf([&] { compare(counter.self, nullptr); }), "QTX Debug: other is nil\n");
  counter.host.takeRaised();
}

TEST(AtomicInteger, DoesItsWorkWithoutTraceAndWithoutTheHost) {
  Counter counter;
  counter.host.lookUps.clear();
  debugging = true;
  EXPECT_EQ(logOf([&] {
              counter.setValue(3);
              counter.value();
              counter.method<std::int64_t(REALobject)>("Increment as Int64")(counter.self);
              counter.method<std::int64_t(REALobject, std::int64_t)>("Operator_Add(other as Int64) as Int64")(
                  counter.self, 1);
              counter.method<RBInteger(REALobject, REALobject)>(
                  "Operator_Compare(other as AtomicIntegerQTX) as Integer")(counter.self, counter.self);
            }),
            "");
  EXPECT_TRUE(counter.host.lookUps.empty());
}

// Every read-modify-write, one after the other, from threads that start together and keep at it for a while;
// each thread accounts for what it did. An operation that is two steps loses some.
TEST(AtomicInteger, IsOneStepInEveryMember) {
  Counter counter;
  using Binary = std::int64_t(REALobject, std::int64_t);
  const REALobject self = counter.self;
  auto* exchange = counter.method<Binary>("Exchange(Value as Int64) as Int64");
  auto* keep = counter.method<Binary>("BitwiseAnd(Value as Int64) as Int64");
  auto* put = counter.method<Binary>("BitwiseOr(Value as Int64) as Int64");
  auto* flip = counter.method<Binary>("BitwiseXOr(Value as Int64) as Int64");
  auto* compareExchange = counter.method<bool(REALobject, std::int64_t*, std::int64_t)>(
      "CompareExchange(byref expected as Int64, desired as Int64) as Boolean");

  // Runs `step(thread, account)` in four threads; the sum of the accounts.
  const auto together = [&](const std::function<void(int, std::int64_t&)>& step) {
    std::atomic<int> ready{0};
    std::atomic<std::int64_t> sum{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
      threads.emplace_back([&, t] {
        std::int64_t account = 0;
        for (++ready; ready < 4;) std::this_thread::yield();
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(100);
        do {
          for (int round = 0; round < 1000; ++round) step(t, account);
        } while (std::chrono::steady_clock::now() < end);
        sum += account;
      });
    }
    for (auto& thread : threads) thread.join();
    return sum.load();
  };
  const auto bit = [](int t) { return std::int64_t{1} << (t * 16); };

  struct Sum {
    const char* declaration;
    std::int64_t argument, change;
  };
  for (const Sum& sum : {Sum{"Increment as Int64", 0, 1},
                         {"Decrement as Int64", 0, -1},
                         {"Add(Value as Int64) as Int64", 3, 3},
                         {"Subtract(Value as Int64) as Int64", 3, -3},
                         {"Operator_Add(other as Int64) as Int64", 5, 5},
                         {"Operator_Subtract(other as Int64) as Int64", 5, -5}}) {
    counter.setValue(0);
    const bool takesOne = std::strchr(sum.declaration, '(') != nullptr;
    auto* change = takesOne ? counter.method<Binary>(sum.declaration) : nullptr;
    auto* step = takesOne ? nullptr : counter.method<std::int64_t(REALobject)>(sum.declaration);
    const std::int64_t expected = together([&](int, std::int64_t& account) {
      takesOne ? change(self, sum.argument) : step(self);
      account += sum.change;
    });
    EXPECT_EQ(counter.value(), expected) << sum.declaration;
  }

  counter.setValue(0);
  const std::int64_t exchanges = together([&](int, std::int64_t& account) {
    std::int64_t seen = counter.value();
    while (!compareExchange(self, &seen, seen + 1)) {
    }
    ++account;
  });
  EXPECT_EQ(counter.value(), exchanges) << "CompareExchange";

  counter.setValue(0);
  const std::int64_t left =
      together([&](int t, std::int64_t& account) { account += t + 1 - exchange(self, t + 1); });
  EXPECT_EQ(counter.value(), left) << "Exchange: what went in and did not come out";

  counter.setValue(0);
  EXPECT_EQ(together([&](int t, std::int64_t& wrong) {
              if (put(self, bit(t)) & bit(t)) ++wrong;
              if (!(keep(self, ~bit(t)) & bit(t))) ++wrong;
              if (flip(self, bit(t)) & bit(t)) ++wrong;
              if (!(flip(self, bit(t)) & bit(t))) ++wrong;
            }),
            0)
      << "no thread touches another's bit";
  EXPECT_EQ(counter.value(), 0);
}

struct Flag {
  FakeHost host;
  REALobject self = nullptr;

  Flag() {
    host.load();
    self = host.makeObject("AtomicFlagQTX");
  }
  ~Flag() { host.unlock(self); }

  template <typename Signature>
  Signature* method(const char* declaration) {
    return host.function<Signature>("AtomicFlagQTX", declaration);
  }
  bool test() { return method<bool(REALobject)>("Test as Boolean")(self); }
  bool testAndSet() { return method<bool(REALobject)>("TestAndSet as Boolean")(self); }
  void clear() { method<void(REALobject)>("Clear")(self); }
};

TEST(AtomicFlag, IsRegisteredMemberByMember) {
  FakeHost host;
  host.load();
  const REALclassDefinition* record = host.findClass("AtomicFlagQTX");
  const char* declarations[] = {
      "TestAndSet as Boolean",
      "Test as Boolean",
      "Clear",
      "Operator_Convert(value as Boolean)",
      "Operator_Convert as Boolean",
      "Operator_Compare(other as AtomicFlagQTX) as Integer",
  };
  ASSERT_EQ(record->methodCount, std::size(declarations));
  for (std::size_t i = 0; i < std::size(declarations); ++i) {
    EXPECT_STREQ(record->methods[i].declaration, declarations[i]);
  }
  EXPECT_EQ(record->methods[1].function, record->methods[4].function);
  ASSERT_EQ(record->propertyCount, 1u);
  EXPECT_STREQ(record->properties[0].name, "Value");
  EXPECT_STREQ(record->properties[0].type, "Boolean");
  EXPECT_EQ(record->constructor, nullptr);
  EXPECT_NE(record->destructor, nullptr);
}

TEST(AtomicFlag, IsAcquiredOnce) {
  Flag flag;
  EXPECT_FALSE(flag.test());
  EXPECT_FALSE(flag.testAndSet());
  EXPECT_TRUE(flag.test());
  EXPECT_TRUE(flag.testAndSet());
  flag.clear();
  EXPECT_FALSE(flag.test());
}

TEST(AtomicFlag, IsAssignedByOperatorAndProperty) {
  Flag flag;
  auto* assign = flag.method<void(REALobject, std::uint8_t)>("Operator_Convert(value as Boolean)");
  auto* set = reinterpret_cast<void (*)(REALobject, RBInteger, std::uint8_t)>(
      flag.host.findProperty("AtomicFlagQTX", "Value")->setter);
  auto* get = reinterpret_cast<bool (*)(REALobject, RBInteger)>(
      flag.host.findProperty("AtomicFlagQTX", "Value")->getter);
  for (const bool value : {true, true, false, false, true}) {
    assign(flag.self, value);
    EXPECT_EQ(flag.test(), value);
  }
  for (const bool value : {false, false, true, true, false}) {
    set(flag.self, 0, value);
    EXPECT_EQ(get(flag.self, 0), value);
  }
}

TEST(AtomicFlag, CountsOnlyBit0) {
  Flag flag;
  std::byte& data = flag.host.object(flag.self).data[0];
  data = std::byte{0xFE};
  EXPECT_FALSE(flag.test());
  EXPECT_FALSE(flag.testAndSet());
  EXPECT_EQ(data, std::byte{1});
  data = std::byte{0xFF};
  EXPECT_TRUE(flag.testAndSet());

  data = std::byte{0xFE};
  const REALobject other = flag.host.makeObject("AtomicFlagQTX");
  EXPECT_FALSE(reinterpret_cast<bool (*)(REALobject, RBInteger)>(
      flag.host.findProperty("AtomicFlagQTX", "Value")->getter)(flag.self, 0));
  EXPECT_EQ(flag.method<RBInteger(REALobject, REALobject)>(
                "Operator_Compare(other as AtomicFlagQTX) as Integer")(flag.self, other),
            0);
  EXPECT_EQ(data, std::byte{0xFE}) << "only read";
  flag.clear();
  EXPECT_EQ(data, std::byte{0});
  flag.host.unlock(other);
}

TEST(AtomicFlag, ComparesClearAsLess) {
  Flag flag;
  const REALobject other = flag.host.makeObject("AtomicFlagQTX");
  auto* compare =
      flag.method<RBInteger(REALobject, REALobject)>("Operator_Compare(other as AtomicFlagQTX) as Integer");
  auto* assign = flag.method<void(REALobject, std::uint8_t)>("Operator_Convert(value as Boolean)");
  for (const bool mine : {false, true}) {
    for (const bool theirs : {false, true}) {
      assign(flag.self, mine);
      assign(other, theirs);
      EXPECT_EQ(compare(flag.self, other), int(mine) - int(theirs));
    }
  }
  flag.host.unlock(other);
}

TEST(AtomicFlag, RefusesToCompareWithNil) {
  Flag flag;
  auto* compare =
      flag.method<RBInteger(REALobject, REALobject)>("Operator_Compare(other as AtomicFlagQTX) as Integer");
  debugging = true;
  EXPECT_EQ(logOf([&] { EXPECT_EQ(compare(flag.self, nullptr), 0); }), "QTX Debug: other is nil\n");
  const RaisedException raised = flag.host.takeRaised();
  EXPECT_EQ(raised.className, "NilObjectException");
  EXPECT_EQ(raised.message, "Other is nil");
}

TEST(AtomicFlag, LetsOneThreadInAtATime) {
  Flag flag;
  auto* acquire = flag.method<bool(REALobject)>("TestAndSet as Boolean");
  auto* release = flag.method<void(REALobject)>("Clear");
  constexpr int rounds = 200000;
  std::atomic<int> ready{0};
  int guarded = 0;  // a plain variable: only the flag keeps the threads apart
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (++ready; ready < 4;) std::this_thread::yield();  // start together
      for (int round = 0; round < rounds; ++round) {
        while (acquire(flag.self)) std::this_thread::yield();
        ++guarded;
        release(flag.self);
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(guarded, 4 * rounds);
}

}  // namespace
}  // namespace qtx
