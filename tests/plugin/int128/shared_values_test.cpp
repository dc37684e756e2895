// The objects that results from 0 to 15 share: which results they are, who detaches them, and that threads
// may do all of it at once.
#include <atomic>
#include <functional>
#include <set>
#include <thread>
#include <utility>

#include "frame/failing_allocation.h"
#include "int128/hazard_pointers.h"
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

// While the text is read, host code runs; here it makes the very object the shared one for 1.
REALobject nextInstance = nullptr;
std::function<void()> whileReading;
TYPED_TEST(SharedSmallValues, AreDetachedAgainAfterTheTextIsRead) {
  NumberHost& numbers = this->numbers_;
  FakeHost& host = numbers.host;
  host.offer(
      "PluginNewInstance", +[](const char* name) {
        if (!nextInstance) return FakeHost::current->makeObject(name);
        FakeHost::current->lock(nextInstance);
        return std::exchange(nextInstance, nullptr);
      });
  host.offer(
      "PluginGetStringData", +[](REALstring, std::uint32_t, REALstringData* out) {
        whileReading();
        ++FakeHost::current->openStringData;
        *out = {"99", 2, encoding::utf8, nullptr};
        return true;
      });
  const REALobject self = numbers.make(TypeParam(5));
  const REALstring text = host.makeString("99", encoding::utf16);
  whileReading = [&] {
    nextInstance = self;
    const REALobject one = numbers.template shared<TypeParam>("one");
    EXPECT_EQ(one, self);
    host.unlock(one);
    EXPECT_EQ(numbers.references(self), 2) << "the test's and the table's";
  };
  numbers.template set<TypeParam>(self, "stringValue", text);
  EXPECT_EQ(numbers.template value<TypeParam>(self), TypeParam(99));
  EXPECT_EQ(numbers.references(self), 1);
  const REALobject one = numbers.template shared<TypeParam>("one");
  EXPECT_NE(one, self);
  EXPECT_EQ(numbers.template value<TypeParam>(one), TypeParam(1));
  host.unlock(one);
  host.unlock(self);
  host.unlock(text);
}

// And before it is read: the host code that runs meanwhile is given another object for the value.
TYPED_TEST(SharedSmallValues, AreDetachedBeforeTheTextIsRead) {
  NumberHost& numbers = this->numbers_;
  FakeHost& host = numbers.host;
  host.offer(
      "PluginGetStringData", +[](REALstring, std::uint32_t, REALstringData* out) {
        whileReading();
        ++FakeHost::current->openStringData;
        *out = {"99", 2, encoding::utf8, nullptr};
        return true;
      });
  const REALobject self = numbers.template sharedFor<TypeParam>(7);
  const REALstring text = host.makeString("99", encoding::utf16);
  whileReading = [&] {
    EXPECT_EQ(numbers.references(self), 1);
    const REALobject seven = numbers.template sharedFor<TypeParam>(7);
    EXPECT_NE(seven, self);
    host.unlock(seven);
  };
  numbers.template set<TypeParam>(self, "stringValue", text);
  EXPECT_EQ(numbers.template value<TypeParam>(self), TypeParam(99));
  host.unlock(self);
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

// Every member that gives an object, made to give `wanted`: what the receiver and the argument must be.
template <typename Value>
struct Giver {
  std::string declaration;  // of a property: its name
  Value self;
  enum { none, object, word, signedWord, nil, exponent, property } argument = none;
  Value other = 0;
};
template <typename Value>
std::vector<Giver<Value>> giversOf(int wanted) {
  using G = Giver<Value>;
  const Value r = wanted;
  const std::string type = classOf<Value>, word = std::is_same_v<Value, Int128> ? "Int64" : "UInt64";
  std::vector<G> all;
  const auto both = [&](const std::string& name, Value self, Value other, const char* argument = "other") {
    all.push_back({name + "(" + argument + " as " + type + ") as " + type, self, G::object, other});
    all.push_back({name + "(" + argument + " as " + word + ") as " + type, self, G::word, other});
    all.push_back({name + "(" + argument + " as " + type + ") as " + type, r, G::nil});
  };
  const auto reflected = [&](const std::string& name, Value self, Value other) {
    all.push_back({name + "(other as " + word + ") as " + type, self, G::word, other});
  };
  both("Operator_Add", r - Value(4), 4);
  all.push_back({"Operator_AddRight(other as " + type + ") as " + type, r - Value(4), G::object, 4});
  all.push_back({"Operator_AddRight(other as " + type + ") as " + type, r, G::nil});
  both("Operator_Subtract", r + Value(3), 3);
  reflected("Operator_SubtractRight", 3, r + Value(3));
  both("Operator_Multiply", r, 1);
  reflected("Operator_MultiplyRight", r, 1);
  both("Operator_Divide", r + r + Value(1), 2);
  reflected("Operator_DivideRight", 2, r + r + Value(1));
  both("Operator_Modulo", r, r + Value(1));
  reflected("Operator_ModuloRight", r + Value(1), r);
  both("BitwiseAnd", r | Value(64), 63, "Value");
  both("BitwiseOr", r, r & Value(5), "Value");
  both("BitwiseXOr", r ^ Value(5), 5, "Value");
  both("ShiftLeft", r, 128);
  both("ShiftRight", r << Value(100), 100);
  if (word == "UInt64") {
    all.push_back({"ShiftLeft(other as Int64) as " + type, r, G::signedWord, 128});
    all.push_back({"ShiftRight(other as Int64) as " + type, r << Value(100), G::signedWord, 100});
  } else {
    all.push_back({"Operator_Negate as " + type, -r});
    all.push_back({"Abs", -r, G::property});
    all.push_back({"Abs", r, G::property});
  }
  all.push_back({"Inc as " + type, r - Value(1)});
  all.push_back({"Dec as " + type, r + Value(1)});
  all.push_back({"Sqrt as " + type, r * r});
  all.push_back({"Pow(exp as UInt64) as " + type, r, G::exponent, 1});
  return all;
}

// For each of them: nil while the host makes none, then one shared object of two references, or a fresh one
// with one.
TYPED_TEST(SharedSmallValues, AreGivenByEveryMember) {
  NumberHost& numbers = this->numbers_;
  FakeHost& host = numbers.host;
  for (const int wanted : {0, 7, 15, 16}) {
    for (const auto& giver : giversOf<TypeParam>(wanted)) {
      using G = Giver<TypeParam>;
      SCOPED_TRACE(giver.declaration + " that gives " + std::to_string(wanted));
      const REALobject self = numbers.make(giver.self), other = numbers.make(giver.other);
      const auto give = [&]() -> REALobject {
        const auto call = [&](auto... arguments) {
          return numbers.template call<TypeParam, REALobject>(giver.declaration, self, arguments...);
        };
        switch (giver.argument) {
          case G::none:
            return call();
          case G::object:
            return call(other);
          case G::word:
            return call(static_cast<typename TypeParam::Word>(giver.other.low));
          case G::signedWord:
            return call(static_cast<std::int64_t>(giver.other.low));
          case G::exponent:
            return call(giver.other.low);
          case G::nil:
            return call(REALobject(nullptr));
          case G::property:
            return numbers.template get<TypeParam, REALobject>(self, giver.declaration.c_str());
        }
        return nullptr;
      };
      host.unknownClasses.insert(classOf<TypeParam>);
      EXPECT_EQ(give(), nullptr);
      EXPECT_EQ(give(), nullptr);
      host.unknownClasses.clear();
      EXPECT_TRUE(host.raised.empty());
      const REALobject first = give(), second = give();
      ASSERT_NE(first, nullptr);
      ASSERT_NE(second, nullptr);
      EXPECT_NE(first, self) << "the receiver itself";
      EXPECT_EQ(numbers.template value<TypeParam>(first), TypeParam(wanted));
      EXPECT_EQ(numbers.template value<TypeParam>(second), TypeParam(wanted));
      if (wanted <= 15) {
        EXPECT_EQ(first, second);
        EXPECT_EQ(numbers.references(first), 3) << "the caller's two and the table's";
        numbers.template get<TypeParam, void*>(first, "Data");  // leaves the next member an empty slot
      } else {
        EXPECT_NE(first, second);
        EXPECT_EQ(numbers.references(first), 1);
      }
      EXPECT_EQ(numbers.template value<TypeParam>(self), giver.self);
      EXPECT_EQ(numbers.references(self), 1);
      EXPECT_EQ(numbers.references(other), 1);
      for (const REALobject object : {self, other, first, second}) host.unlock(object);
    }
  }
}

TYPED_TEST(SharedSmallValues, AreDetachedByConstructorsThatRefuseOrGetNil) {
  NumberHost& numbers = this->numbers_;
  FakeHost& host = numbers.host;
  const REALobject unfit =
      this->isSigned ? numbers.make(UInt128(0, std::uint64_t{1} << 63)) : numbers.make(Int128(-1));
  const char* crossClass =
      this->isSigned ? "Constructor(value as UInt128QTX)" : "Constructor(value as Int128QTX)";
  for (const REALobject argument : {unfit, REALobject(nullptr)}) {
    const REALobject seven = numbers.template sharedFor<TypeParam>(7);
    numbers.template call<TypeParam, void>(crossClass, seven, argument);
    EXPECT_EQ(host.raised.size(), argument ? 1u : 0u);
    host.raised.clear();
    EXPECT_EQ(numbers.template value<TypeParam>(seven), TypeParam(7));
    EXPECT_EQ(numbers.references(seven), 1) << "the table's reference is dropped all the same";
    host.unlock(seven);
  }
  EXPECT_EQ(numbers.references(unfit), 1);
  host.unlock(unfit);
}

// The two constructors that run on new objects only do not look among the shared ones.
TYPED_TEST(SharedSmallValues, AreNotDetachedByTheOtherConstructors) {
  NumberHost& numbers = this->numbers_;
  const REALobject seven = numbers.template sharedFor<TypeParam>(7);
  numbers.template call<TypeParam, void>("Constructor", seven);
  EXPECT_EQ(numbers.references(seven), 2);
  const unsigned char byte = 7;
  const auto read = [&](RBInteger size) {
    numbers.template call<TypeParam, void>(
        "Constructor(Data as Ptr, Size as Integer, isUnsigned as boolean = false)", seven,
        static_cast<const void*>(&byte), size, std::uint8_t{0});
  };
  read(1);
  EXPECT_EQ(numbers.references(seven), 2);
  read(3);
  EXPECT_EQ(numbers.host.takeRaised().message, "Invalid size");
  EXPECT_EQ(numbers.references(seven), 2);
  const REALobject again = numbers.template sharedFor<TypeParam>(7);
  EXPECT_EQ(again, seven);
  numbers.host.unlock(again);
  numbers.host.unlock(seven);
}

// A constructor that is run again, on an object that has come to be shared, changes it for everyone. It is
// found among the shared ones by what it is, not by what it holds.
TYPED_TEST(SharedSmallValues, AreDetachedWhateverTheyHold) {
  NumberHost& numbers = this->numbers_;
  const auto reread = [&](REALobject self, unsigned char byte) {
    numbers.template call<TypeParam, void>(
        "Constructor(Data as Ptr, Size as Integer, isUnsigned as boolean = false)", self,
        static_cast<const void*>(&byte), RBInteger{1}, std::uint8_t{0});
  };
  const REALobject mine = numbers.make(TypeParam(7));
  for (const unsigned char byte : {std::uint8_t{99}, std::uint8_t{3}}) {
    const REALobject seven = numbers.template sharedFor<TypeParam>(7);
    const REALobject three = numbers.template sharedFor<TypeParam>(3);
    reread(seven, byte);
    const REALobject again = numbers.template sharedFor<TypeParam>(7);
    EXPECT_EQ(again, seven);
    EXPECT_EQ(numbers.template value<TypeParam>(seven), TypeParam(byte));
    EXPECT_EQ(numbers.references(seven), 3);
    numbers.template call<TypeParam, void>("Inc", seven);
    EXPECT_EQ(numbers.references(seven), 2) << "the table's reference is dropped";
    EXPECT_EQ(numbers.references(three), 2) << "another's is not";
    for (const REALobject object : {seven, again, three}) numbers.host.unlock(object);
    EXPECT_FALSE(numbers.host.isAlive(seven));
  }
  reread(mine, 8);  // was never a shared one
  EXPECT_EQ(numbers.template value<TypeParam>(mine), TypeParam(8));
  numbers.host.unlock(mine);
}

TYPED_TEST(SharedSmallValues, AreMadeOnceTheHostCan) {
  NumberHost& numbers = this->numbers_;
  FakeHost& host = numbers.host;
  host.unknownClasses.insert(classOf<TypeParam>);
  EXPECT_EQ(numbers.template shared<TypeParam>("one"), nullptr);
  debugging = true;
  EXPECT_EQ(logOf([&] { EXPECT_EQ(numbers.template shared<TypeParam>("one"), nullptr); }),
            "QTX Debug: new constant 1\n");
  EXPECT_EQ(host.nilLocks, 0);
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

// Two shared values, the second made while the host makes the first.
template <typename Value>
std::pair<REALobject, REALobject> madeWithinEachOther(NumberHost& numbers) {
  static std::function<REALobject()> make;
  static REALobject inner;
  static bool within;
  make = [&] { return numbers.template shared<Value>("one"); };
  inner = nullptr;
  within = false;
  numbers.host.offer(
      "PluginNewInstance", +[](const char* name) {
        if (!std::exchange(within, true)) inner = make();
        return FakeHost::current->makeObject(name);
      });
  const REALobject outer = make();
  return {outer, inner};
}

// While an object is made, host code runs, which may make the same one: that is the shared one then, and the
// other is its caller's alone.
TYPED_TEST(SharedSmallValues, AreMadeWithinEachOther) {
  NumberHost& numbers = this->numbers_;
  FakeHost& host = numbers.host;
  const auto [outer, inner] = madeWithinEachOther<TypeParam>(numbers);
  EXPECT_NE(outer, inner);
  EXPECT_EQ(numbers.references(outer), 1);
  EXPECT_EQ(numbers.references(inner), 2);
  host.unlock(outer);
  host.unlock(inner);
}

// Without references nothing is given back of the other.
TYPED_TEST(SharedSmallValues, AreMadeWithinEachOtherWhereTheHostHasNoReferences) {
  NumberHost& numbers = this->numbers_;
  FakeHost& host = numbers.host;
  host.withhold("REALLockObject");
  const auto [outer, inner] = madeWithinEachOther<TypeParam>(numbers);
  EXPECT_NE(outer, inner);
  ASSERT_TRUE(host.isAlive(outer));
  EXPECT_EQ(numbers.references(outer), 1);
  EXPECT_EQ(numbers.references(inner), 1);
  EXPECT_EQ(numbers.template shared<TypeParam>("one"), inner) << "the one that was stored first";
  host.unlock(outer);
  host.lock(inner);  // the one that the caller should have got
  host.offer(
      "REALLockObject", +[](REALobject handle) { FakeHost::current->lock(handle); });
  host.unlock(inner);
}

// Which place a stack has decides how often threads meet there, but it is one of those that there are.
// Each call has a frame of its own, to which the next one holds on.
template <std::size_t frameSize>
void announceBelow(HazardPointers& hazards, std::set<const void*>& places, int depth, const volatile char*) {
  volatile char frame[frameSize] = {};
  HazardPointers::Place* const place = hazards.announce(reinterpret_cast<REALobject>(&hazards));
  if (place) {
    EXPECT_TRUE(place >= static_cast<void*>(&hazards) && place < static_cast<void*>(&hazards + 1));
    places.insert(place);
    HazardPointers::clear(*place);
  }
  if (depth > 0) announceBelow<frameSize>(hazards, places, depth - 1, frame);
  frame[0] = 0;
}
TEST(HazardPlaces, AreSpreadOverTheStacks) {
  HazardPointers hazards;
  std::set<const void*> places;
  announceBelow<16 * 1024>(hazards, places, 64, nullptr);
  EXPECT_GE(places.size(), 24u);
  EXPECT_LE(places.size(), 32u);
  EXPECT_FALSE(hazards.isAnnounced(reinterpret_cast<REALobject>(&hazards)));
}

// So the place's cache line stays with the thread, however deep it calls: few calls cross the border of 16
// KiB.
TEST(HazardPlaces, AreTheSameNearbyOnAStack) {
  HazardPointers hazards;
  std::set<const void*> places;
  announceBelow<64>(hazards, places, 15, nullptr);
  EXPECT_GE(places.size(), 1u);
  EXPECT_LE(places.size(), 2u);
}

// Who has found no place may be about to take any object.
TEST(HazardPlaces, AnnounceEverythingForTheUnnamed) {
  HazardPointers hazards;
  const auto object = reinterpret_cast<REALobject>(&hazards);
  hazards.enterUnnamed();
  hazards.enterUnnamed();
  hazards.leaveUnnamed();
  EXPECT_TRUE(hazards.isAnnounced(object));
  hazards.leaveUnnamed();
  EXPECT_FALSE(hazards.isAnnounced(object));
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
// Threads stay there until told to go on, but for one that is let through.
std::atomic<bool> holdLocks{false};
std::atomic<int> heldInLock{0};
thread_local bool isLetThrough = false;
REALobject makeWhileHeld(const std::function<REALobject()>& make) {
  isLetThrough = true;
  const REALobject made = make();
  isLetThrough = false;
  return made;
}
void lock(REALobject handle) {
  if (beforeNextLock) std::exchange(beforeNextLock, nullptr)();
  if (holdLocks && !isLetThrough) {
    ++heldInLock;
    while (holdLocks) std::this_thread::yield();
  }
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

// A change in place returns at once although another thread, or this very one, has found the object and not
// added its reference yet; the table's reference goes to that one, who gives it back.
TEST(SharedSmallValuesAmongThreads, AreDetachedWithoutWaitingForWhoTakesThem) {
  const Members members;
  for (const bool elsewhere : {true, false}) {
    const long blocks = livingAllocations();
    const REALobject shared = members.one();
    ASSERT_EQ(counted(shared)->references, 2);
    beforeNextLock = [&] {
      const auto change = [&] {
        members.step(shared);
        unlock(shared);
      };
      elsewhere ? std::thread(change).join() : change();
      EXPECT_EQ(counted(shared)->references, 1) << "what was the table's";
    };
    const REALobject taken = members.one();
    EXPECT_EQ(taken, shared);
    EXPECT_EQ(counted(taken)->references, 1);
    EXPECT_EQ(counted(taken)->data[0], 2) << "taken before the change: sees it";
    unlock(taken);
    EXPECT_EQ(alive, 0);
    EXPECT_EQ(livingAllocations(), blocks) << "nor is anything left of the note";
  }
}

// The table's reference is lost rather than dropped too early.
TEST(SharedSmallValuesAmongThreads, StayWhereThereIsNoMemoryToNoteWhatIsToBeGivenBack) {
  const Members members;
  const REALobject shared = members.one();
  beforeNextLock = [&] {
    const FailAllocationsOf failing(2 * sizeof(void*), 2 * sizeof(void*) + 1);
    members.step(shared);
  };
  const REALobject taken = members.one();
  EXPECT_EQ(taken, shared);
  EXPECT_EQ(counted(shared)->references, 3) << "the caller's two, and what was the table's";
  const REALobject other = members.one();
  EXPECT_NE(other, shared) << "it is detached all the same";
  members.step(other);
  for (const REALobject object : {other, shared, taken, shared}) unlock(object);
  EXPECT_EQ(alive, 0);
}

TEST(SharedSmallValuesAmongThreads, AreAllGivenBackByTheLastWhoTakesOne) {
  const Members members;
  const REALobject first = members.one();
  beforeNextLock = [&] {
    members.step(first);
    for (int i = 0; i < 3; ++i) {  // each is made, shared and detached meanwhile, and nobody else takes it
      const REALobject next = members.one();
      EXPECT_NE(next, first);
      EXPECT_EQ(counted(next)->references, 2);
      const REALobject again = members.one();
      EXPECT_EQ(again, next);
      unlock(again);
      members.step(next);
      EXPECT_EQ(counted(next)->references, 1) << "given back at once";
      unlock(next);
    }
    EXPECT_EQ(alive, 1);
    EXPECT_EQ(counted(first)->references, 2) << "the caller's, and what was the table's";
  };
  const REALobject taken = members.one();
  EXPECT_EQ(taken, first);
  EXPECT_EQ(alive, 1);
  EXPECT_EQ(counted(first)->references, 2) << "the caller's two";
  unlock(first);
  unlock(taken);
  EXPECT_EQ(alive, 0);
}

// Within a take another cannot be announced in the same place; what is detached meanwhile is given back by
// that other as well.
TEST(SharedSmallValuesAmongThreads, AreGivenBackByATakerWithinATaker) {
  const Members members;
  const REALobject one = members.one();
  const REALobject two = members.plusOne(one);
  unlock(two);  // the table's alone from here on
  ASSERT_EQ(counted(two)->references, 1);
  beforeNextLock = [&] {
    const int before = alive;
    beforeNextLock = [&] {
      members.step(two);
      ASSERT_EQ(alive, before) << "who takes it has not added a reference yet";
      EXPECT_EQ(counted(two)->references, 1);
    };
    EXPECT_EQ(members.plusOne(one), two);
    EXPECT_EQ(counted(two)->references, 1) << "the caller's; what was the table's is given back";
    unlock(two);
  };
  EXPECT_EQ(members.one(), one);
  EXPECT_EQ(alive, 1);
  members.step(one);
  unlock(one);
  unlock(one);
  EXPECT_EQ(alive, 0);
}

// More threads than have a place of their own to announce what they take, and takers within takers.
TEST(SharedSmallValuesAmongThreads, AreKeptForAllWhoTakeThemAtOnce) {
  const Members members;
  constexpr int takers = 100;
  const REALobject shared = members.one();
  std::vector<std::thread> threads;
  heldInLock = 0;
  holdLocks = true;
  for (int i = 0; i < takers; ++i) {
    threads.emplace_back([&] {
      EXPECT_EQ(members.one(), shared);
      unlock(shared);
    });
  }
  while (heldInLock < takers) std::this_thread::yield();
  members.step(shared);
  EXPECT_EQ(counted(shared)->references, 2) << "nothing is given back while anyone has still to add one";
  const REALobject next = makeWhileHeld([&] { return members.one(); });
  EXPECT_NE(next, shared);
  unlock(shared);
  EXPECT_EQ(counted(shared)->references, 1) << "what was the table's";
  holdLocks = false;
  for (auto& thread : threads) thread.join();
  const REALobject again = members.one();
  EXPECT_EQ(again, next);
  EXPECT_EQ(alive, 1) << "all references to the first are given back";
  EXPECT_EQ(counted(next)->references, 3);
  members.step(next);
  unlock(next);
  unlock(again);
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
