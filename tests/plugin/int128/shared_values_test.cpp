// The objects that results from 0 to 15 share: which results they are, who detaches them, and that threads
// may do all of it at once.
#include <atomic>
#include <chrono>
#include <functional>
#include <thread>
#include <utility>

#include "int128_host.h"

namespace qtx {
namespace {

template <typename Value>
class SharedSmallValues : public testing::Test {
 protected:
  static constexpr bool isSigned = std::is_signed_v<typename Value::Word>;
  static std::string typed(std::string text) {  // "V" → "Int128QTX", "W" → "Int64"
    for (std::size_t at; (at = text.find('V')) != std::string::npos;) text.replace(at, 1, classOf<Value>);
    for (std::size_t at; (at = text.find('W')) != std::string::npos;)
      text.replace(at, 1, isSigned ? "Int64" : "UInt64");
    return text;
  }
  NumberHost numbers_;
};
using Values = testing::Types<Int128, UInt128>;
TYPED_TEST_SUITE(SharedSmallValues, Values);

TYPED_TEST(SharedSmallValues, AreTheResultsFrom0To15) {
  NumberHost& numbers = this->numbers_;
  for (int i = 0; i <= 15; ++i) {
    const REALobject first = numbers.template sharedFor<TypeParam>(i);
    EXPECT_EQ(numbers.template value<TypeParam>(first), TypeParam(i));
    EXPECT_EQ(numbers.references(first), 2) << "the caller's and the table's";
    const REALobject second = numbers.template sharedFor<TypeParam>(i);
    EXPECT_EQ(first, second);
    EXPECT_EQ(numbers.references(first), 3);
    numbers.host.unlock(first);
    numbers.host.unlock(second);
    EXPECT_TRUE(numbers.host.isAlive(first));
  }
  for (const TypeParam value : {TypeParam(16), TypeParam(-1), TypeParam(0, 1)}) {
    const REALobject self = numbers.make(value - TypeParam(1));
    const auto next = [&] {
      return numbers.template call<TypeParam, REALobject>(this->typed("Inc as V"), self);
    };
    const REALobject first = next(), second = next();
    EXPECT_NE(first, second);
    EXPECT_EQ(numbers.references(first), 1);
    for (const REALobject object : {self, first, second}) numbers.host.unlock(object);
  }
}

TYPED_TEST(SharedSmallValues, AreTheSameByEveryWay) {
  NumberHost& numbers = this->numbers_;
  const char* names[] = {"zero", "one", "two"};
  for (int i = 0; i < 3; ++i) {
    const REALobject byName = numbers.template shared<TypeParam>(names[i]);
    const REALobject byResult = numbers.template sharedFor<TypeParam>(i);
    EXPECT_EQ(byName, byResult);
    numbers.host.unlock(byName);
    numbers.host.unlock(byResult);
  }
  // An operator with nil gives a copy of its receiver: for a small one, the shared object.
  const REALobject self = numbers.make(TypeParam(7));
  const REALobject copy = numbers.template call<TypeParam, REALobject>(
      this->typed("Operator_Add(other as V) as V"), self, REALobject(nullptr));
  const REALobject seven = numbers.template sharedFor<TypeParam>(7);
  EXPECT_EQ(copy, seven);
  EXPECT_NE(copy, self);
  for (const REALobject object : {self, copy, seven}) numbers.host.unlock(object);
}

TEST(SharedSmallValuesOfBothClasses, AreEachClassesOwn) {
  NumberHost numbers;
  const REALobject ofSigned = numbers.shared<Int128>("one"), ofUnsigned = numbers.shared<UInt128>("one");
  EXPECT_NE(ofSigned, ofUnsigned);
  // Unary minus of an unsigned 0 is the signed class's shared 0.
  const REALobject zero = numbers.make(UInt128(0)), signedZero = numbers.shared<Int128>("zero");
  const REALobject negated = numbers.call<UInt128, REALobject>("Operator_Negate as Int128QTX", zero);
  EXPECT_EQ(negated, signedZero);
  for (const REALobject object : {ofSigned, ofUnsigned, zero, signedZero, negated})
    numbers.host.unlock(object);
}

// Every way to change an object in place takes it out of the table first.
TYPED_TEST(SharedSmallValues, AreDetachedBeforeTheyChange) {
  using Word = typename TypeParam::Word;
  NumberHost& numbers = this->numbers_;
  FakeHost& host = numbers.host;
  const REALstring text = host.makeString("99");
  const REALobject other = numbers.make(TypeParam(99));
  const REALobject otherSigned = numbers.make(Int128(99));
  const REALobject otherUnsigned = numbers.make(UInt128(99));
  const auto calls = [&](const char* declaration, auto... arguments) {
    return [this, &numbers, declaration, arguments...](REALobject self) {
      numbers.template call<TypeParam, void>(this->typed(declaration), self, arguments...);
    };
  };
  struct Change {
    const char* name;
    std::function<void(REALobject)> make;
    TypeParam result;
  };
  const Change changes[] = {
      {"IncMethod", calls("Inc"), TypeParam(8)},
      {"DecMethod", calls("Dec"), TypeParam(6)},
      {"Operator_Assign", calls("Operator_Convert(value as W)", Word{99}), TypeParam(99)},
      {"Operator_Assign_String", calls("Operator_Convert(value as String)", text), TypeParam(99)},
      {"Constructor of a word", calls("Constructor(value as W)", Word{99}), TypeParam(99)},
      {"Constructor of Int64", calls("Constructor(value as Int64)", std::int64_t{99}), TypeParam(99)},
      {"Constructor_Int128", calls("Constructor(value as Int128QTX)", otherSigned), TypeParam(99)},
      {"Constructor_UInt128", calls("Constructor(value as UInt128QTX)", otherUnsigned), TypeParam(99)},
      {"Constructor of nil", calls("Constructor(value as V)", REALobject(nullptr)), TypeParam(7)},
      {"ConstructorString", calls("Constructor(value as String)", text), TypeParam(99)},
      {"getData", [&](REALobject self) { numbers.template get<TypeParam, void*>(self, "Data"); },
       TypeParam(7)},
      {"setLowValue",
       [&](REALobject self) { numbers.template set<TypeParam>(self, "LowValue", std::uint64_t{99}); },
       TypeParam(99)},
      {"setHighValue", [&](REALobject self) { numbers.template set<TypeParam>(self, "HighValue", Word{1}); },
       TypeParam(7, 1)},
      {"setStringValue", [&](REALobject self) { numbers.template set<TypeParam>(self, "stringValue", text); },
       TypeParam(99)},
  };
  for (const Change& change : changes) {
    SCOPED_TRACE(change.name);
    const REALobject first = numbers.template sharedFor<TypeParam>(7),
                     alias = numbers.template sharedFor<TypeParam>(7);
    ASSERT_EQ(first, alias);
    ASSERT_EQ(numbers.references(first), 3);
    change.make(first);
    EXPECT_EQ(numbers.references(first), 2) << "the table's reference is dropped, once";
    EXPECT_EQ(numbers.template value<TypeParam>(alias), change.result)
        << "who took it earlier sees the change";
    const REALobject next = numbers.template sharedFor<TypeParam>(7);
    EXPECT_NE(next, first);
    EXPECT_EQ(numbers.template value<TypeParam>(next), TypeParam(7));
    change.make(first);  // no longer shared: nothing to drop
    EXPECT_EQ(numbers.references(first), 2);
    host.unlock(first);
    host.unlock(alias);
    EXPECT_FALSE(host.isAlive(first));
    host.unlock(next);
  }
  for (const REALobject object : {other, otherSigned, otherUnsigned}) host.unlock(object);
  host.unlock(text);
}

TYPED_TEST(SharedSmallValues, AreLeftAloneByOthersChanges) {
  NumberHost& numbers = this->numbers_;
  const REALobject seven = numbers.template sharedFor<TypeParam>(7);
  const REALobject mine = numbers.make(TypeParam(7));
  numbers.template call<TypeParam, void>("Inc", mine);
  EXPECT_EQ(numbers.references(seven), 2);
  EXPECT_EQ(numbers.template value<TypeParam>(seven), TypeParam(7));
  // Reading, operators and refused conversions detach nothing.
  numbers.template get<TypeParam, std::uint64_t>(seven, "LowValue");
  numbers.host.unlock(numbers.template get<TypeParam, REALstring>(seven, "stringValue"));
  EXPECT_EQ(numbers.references(seven), 2);
  numbers.host.unlock(mine);
  numbers.host.unlock(seven);
}

TYPED_TEST(SharedSmallValues, AreMadeOnceTheHostCan) {
  NumberHost& numbers = this->numbers_;
  FakeHost& host = numbers.host;
  host.unknownClasses.insert(classOf<TypeParam>);
  EXPECT_EQ(numbers.template shared<TypeParam>("one"), nullptr);
  debugging = true;
  EXPECT_EQ(logOf([&] { EXPECT_EQ(numbers.template shared<TypeParam>("one"), nullptr); }),
            "QTX Debug: new constant 1\n");
  debugging = false;
  host.unknownClasses.clear();
  const REALobject one = numbers.template shared<TypeParam>("one");
  EXPECT_EQ(numbers.template value<TypeParam>(one), TypeParam(1));
  EXPECT_EQ(numbers.references(one), 2);
  // What is there is given out although the host can make no more.
  host.unknownClasses.insert(classOf<TypeParam>);
  const REALobject again = numbers.template shared<TypeParam>("one");
  EXPECT_EQ(again, one);
  host.unlock(one);
  host.unlock(again);
  host.unknownClasses.clear();
}

TYPED_TEST(SharedSmallValues, AreGivenOutWithoutAReferenceWhereTheHostHasNone) {
  NumberHost& numbers = this->numbers_;
  numbers.host.withhold("REALLockObject");
  const REALobject one = numbers.template shared<TypeParam>("one");
  EXPECT_EQ(numbers.template shared<TypeParam>("one"), one);
  EXPECT_EQ(numbers.references(one), 1);
  numbers.host.lock(one);  // the one that the caller should have got
  numbers.host.offer(
      "REALLockObject", +[](REALobject handle) { FakeHost::current->lock(handle); });
  numbers.host.unlock(one);
}

// A host of real memory and atomic reference counts, whose objects are freed with their last reference: what
// uses one after that is found by the address sanitizer, what races by the thread sanitizer.
struct CountedObject {
  std::atomic<int> references{1};
  alignas(16) unsigned char data[16] = {};
};
std::atomic<int> alive{0};
CountedObject* counted(REALobject handle) { return reinterpret_cast<CountedObject*>(handle); }
std::function<void()> beforeNextLock;  // run between finding an object and adding the reference
void lock(REALobject handle) {
  if (beforeNextLock) std::exchange(beforeNextLock, nullptr)();
  counted(handle)->references.fetch_add(1, std::memory_order_relaxed);
}
void unlock(REALobject handle) {
  if (counted(handle)->references.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
  delete counted(handle);
  --alive;
}
REALclassDefinition* signedRecord = nullptr;

void* resolve(const char* name) {
  const std::string_view wanted = name;
  const auto offer = [](auto* function) { return reinterpret_cast<void*>(function); };
  if (wanted == "RegisterPluginVersion") return offer(+[](std::int32_t) {});
  if (wanted == "PluginRegisterClass") {
    return offer(+[](REALclassDefinition* record) {
      record->dataOffset = offsetof(CountedObject, data);
      if (record->name == std::string_view("Int128QTX")) signedRecord = record;
    });
  }
  if (wanted == "PluginNewInstance") {
    return offer(+[](const char*) {
      ++alive;
      return reinterpret_cast<REALobject>(new CountedObject);
    });
  }
  if (wanted == "REALLockObject") return offer(&lock);
  if (wanted == "REALUnlockObject") return offer(&unlock);
  return nullptr;
}

struct Members {
  REALobject (*one)();
  REALobject (*plusOne)(REALobject);
  void (*step)(REALobject);

  Members() {
    REALPluginMain(&resolve);
    one =
        find<REALobject()>(signedRecord->sharedMethods, signedRecord->sharedMethodCount, "one as Int128QTX");
    plusOne =
        find<REALobject(REALobject)>(signedRecord->methods, signedRecord->methodCount, "Inc as Int128QTX");
    step = find<void(REALobject)>(signedRecord->methods, signedRecord->methodCount, "Inc");
  }
  template <typename Signature>
  static Signature* find(const REALmethodDefinition* records, std::size_t count,
                         std::string_view declaration) {
    for (std::size_t i = 0; i < count; ++i) {
      if (records[i].declaration == declaration) return reinterpret_cast<Signature*>(records[i].function);
    }
    ADD_FAILURE() << "nothing registered as " << declaration;
    return nullptr;
  }
};

TEST(SharedSmallValuesAmongThreads, AreNotDroppedWhileSomeoneTakesThem) {
  const Members members;
  const REALobject shared = members.one();
  ASSERT_EQ(counted(shared)->references, 2);
  std::atomic<bool> detached{false};
  std::thread other;
  beforeNextLock = [&] {
    other = std::thread([&] {
      members.step(shared);
      detached = true;
      unlock(shared);
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_FALSE(detached) << "its last reference could be gone by now";
  };
  const REALobject taken = members.one();
  other.join();
  EXPECT_EQ(taken, shared);
  EXPECT_EQ(counted(taken)->references, 1);
  EXPECT_EQ(counted(taken)->data[0], 2) << "taken before the change: sees it";
  unlock(taken);
  EXPECT_EQ(alive, 0);
}

TEST(SharedSmallValuesAmongThreads, AreTakenAndDetachedAtOnce) {
  const Members members;
  constexpr int rounds = 20'000;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&, i] {
      for (int round = 0; round < rounds; ++round) {
        const REALobject taken = members.one();
        if (i % 2 == 0) members.step(taken);
        unlock(members.plusOne(taken));
        unlock(taken);
      }
    });
  }
  for (auto& thread : threads) thread.join();
  // The shared objects that are left have one reference each: the table's.
  EXPECT_LE(alive, 16);
  const REALobject left = members.one();
  EXPECT_EQ(counted(left)->references, 2);
  unlock(left);
}

}  // namespace
}  // namespace qtx
