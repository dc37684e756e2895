// Array elements, directly and through the host, and the self-test that decides which.
#include "frame/array_access.h"

#include "fake_host.h"
#include "frame/debug_log.h"

namespace qtx {
namespace {

static_assert(elementCount(INT64_MIN) == 0);
static_assert(elementCount(-1) == 0);
static_assert(elementCount(0) == 1);
static_assert(elementCount(INT64_MAX) == std::size_t{1} << 63);

// An array object with the host's shape; what the operations answer can be bent apart from it.
struct FakeArray {
  std::vector<std::int64_t> elements;
  std::int64_t operationUpperBound;
  int references = 1;
  alignas(8) std::byte object[96] = {};

  FakeArray(double hostVersion, std::size_t count)
      : elements(count), operationUpperBound(RBInteger(count) - 1) {
    // What lies around the fields is not looked at.
    std::memset(object, 0x5A, sizeof object);
    put(24, std::int64_t{1});
    put(56, elements.data());
    if (hostVersion >= 2021.0) {
      put(64, std::int64_t{1});
      put(84, std::int32_t(count) - 1);
    } else {
      put(64, std::int32_t{1});
      put(76, std::int32_t(count) - 1);
    }
  }
  template <typename Field>
  void put(std::size_t offset, Field field) {
    std::memcpy(object + offset, &field, sizeof field);
  }
  template <typename Handle>
  Handle handle() {
    return reinterpret_cast<Handle>(object);
  }
};

// The array that the host makes for the self-test, and how it misbehaves.
FakeArray* made = nullptr;
void (*bend)(FakeArray&) = nullptr;
std::int64_t (*readBent)(RBInteger index, std::int64_t value) = nullptr;
int getterCalls = 0;
std::map<const void*, FakeArray*> arrays;

void offerArrays(FakeHost& host) {
  host.offer(
      "RuntimeUBound", +[](REALarray array) -> RBInteger { return arrays.at(array)->operationUpperBound; });
  host.offer(
      "RuntimeArrayCreateSingleDimBoundedArray", +[](std::int32_t type, RBInteger upperBound) {
        EXPECT_EQ(type, 11);
        EXPECT_EQ(upperBound, 1234);
        made = new FakeArray(FakeHost::current->version, static_cast<std::size_t>(upperBound) + 1);
        arrays[made->object] = made;
        if (bend) bend(*made);
        return made->handle<REALarray>();
      });
  host.offer(
      "PluginIntegerArraySetProc", +[](REALarrayInteger) {
        return +[](REALarrayInteger, std::int64_t value, RBInteger index) {
          made->elements.at(static_cast<std::size_t>(index)) = value;
        };
      });
  host.offer(
      "PluginIntegerArrayGetProc", +[](REALarrayInteger) {
        return +[](REALarrayInteger, RBInteger index) -> std::int64_t {
          const std::int64_t value = made->elements.at(static_cast<std::size_t>(index));
          return readBent ? readBent(index, value) : value;
        };
      });
  host.offer(
      "PluginDoubleArrayGetProc", +[](REALarrayDouble) {
        return +[](REALarrayDouble array, RBInteger index) -> double {
          ++getterCalls;
          double value;
          std::memcpy(&value, &arrays.at(array)->elements.at(static_cast<std::size_t>(index)), sizeof value);
          return value;
        };
      });
  host.offer(
      "REALUnlockObject", +[](REALobject handle) {
        if (made && handle == made->handle<REALobject>()) {
          --made->references;
        } else {
          FakeHost::current->unlock(handle);
        }
      });
}

struct Doubles : FakeArray {
  explicit Doubles(const std::vector<double>& values) : FakeArray(FakeHost::current->version, values.size()) {
    std::memcpy(elements.data(), values.data(), values.size() * sizeof(double));
    arrays[object] = this;
  }
};

class ArrayGenerations : public testing::TestWithParam<double> {};

TEST_P(ArrayGenerations, AreReadDirectlyAfterTheSelfTest) {
  FakeHost host(GetParam());
  offerArrays(host);
  Doubles array({1.5, 2.5, 3.5});
  for (int i = 0; i < 3; ++i) {
    double value = 0;
    REALGetArrayValue(array.handle<REALarrayDouble>(), i, &value);
    EXPECT_EQ(value, 1.5 + i);
  }
  EXPECT_EQ(getterCalls, 0);
  EXPECT_EQ(made->references, 0) << "the test array is given back";
  EXPECT_EQ(made->elements[0], 12345);
  EXPECT_EQ(made->elements[9], 123456);
  EXPECT_EQ(host.lookUps["RuntimeArrayCreateSingleDimBoundedArray"], 1);
  EXPECT_EQ(directElements(array.handle<REALarray>()), array.elements.data());
}
INSTANTIATE_TEST_SUITE_P(Versions, ArrayGenerations, testing::Values(2013.0, 2020.99, 2021.0, 2024.01));

TEST(ArrayValue, IsNotWrittenForANilArray) {
  FakeHost host;
  debugging = true;
  double value = 7;
  EXPECT_EQ(logOf([&] { REALGetArrayValue(nullptr, 0, &value); }),
            "QTX Debug: REALGetArrayValue Array is nil\n");
  EXPECT_EQ(value, 7);
  EXPECT_TRUE(host.raised.empty());
}

TEST(ArrayValue, OutsideTheBoundsRaises) {
  FakeHost host;
  offerArrays(host);
  Doubles array({1, 2, 3});
  double value = 7;
  REALGetArrayValue(array.handle<REALarrayDouble>(), 2, &value);
  EXPECT_EQ(value, 3) << "the upper bound itself is inside";
  REALGetArrayValue(array.handle<REALarrayDouble>(), 3, &value);
  EXPECT_EQ(host.takeRaised().message, "The parameter index  is too big. Range is 0 to 2, but value is 3.");
  REALGetArrayValue(array.handle<REALarrayDouble>(), -1, &value);
  EXPECT_EQ(host.takeRaised().message,
            "The parameter index  is too small. Range is 0 to 2, but value is -1.");
  EXPECT_EQ(value, 3);
}

TEST(ArrayValue, OutsideTheBoundsNeedsNoSelfTest) {
  FakeHost host;
  offerArrays(host);
  Doubles array({1, 2, 3});
  double value = 7;
  REALGetArrayValue(array.handle<REALarrayDouble>(), 3, &value);
  EXPECT_EQ(host.takeRaised().className, "OutOfBoundsException");
  EXPECT_EQ(host.lookUps["RuntimeArrayCreateSingleDimBoundedArray"], 0);
}

TEST(ArrayValue, WithoutUpperBoundsHasIndexZeroOnly) {
  FakeHost host;
  offerArrays(host);
  host.withhold("RuntimeUBound");
  Doubles array({1, 2, 3});
  double value = 0;
  REALGetArrayValue(array.handle<REALarrayDouble>(), 1, &value);
  EXPECT_EQ(host.takeRaised().message, "The parameter index  is too big. Range is 0 to 0, but value is 1.");
  REALGetArrayValue(array.handle<REALarrayDouble>(), 0, &value);
  EXPECT_EQ(value, 1);
}

TEST(ArrayValue, ComesFromTheHostWhereThereIsNoStorage) {
  FakeHost host;
  offerArrays(host);
  Doubles array({4.5});
  array.put(arrayShape::storage, static_cast<void*>(nullptr));
  double value = 0;
  REALGetArrayValue(array.handle<REALarrayDouble>(), 0, &value);
  EXPECT_EQ(value, 4.5);
  EXPECT_EQ(getterCalls, 1);
}

TEST(ElementReader, RaisesOnceForAllThatIsOutside) {
  FakeHost host;
  offerArrays(host);
  Doubles array({1, 2, 3});
  ElementReader read;
  EXPECT_EQ(read(array.handle<REALarrayDouble>(), 3), 0);
  EXPECT_EQ(host.takeRaised().message, "The parameter index  is too big. Range is 0 to 2, but value is 3.");
  EXPECT_EQ(host.lookUps["RuntimeArrayCreateSingleDimBoundedArray"], 0) << "outside needs no self-test";
  EXPECT_EQ(read(array.handle<REALarrayDouble>(), 4), 0);
  EXPECT_EQ(read(array.handle<REALarrayDouble>(), 1), 2);
  EXPECT_EQ(read(array.handle<REALarrayDouble>(), 3), 0);
  EXPECT_TRUE(host.raised.empty());
  EXPECT_EQ(getterCalls, 0);
}

// The host may shorten an array, move its storage or take it away between any two elements.
TEST(ElementReader, LooksAtTheArrayAnewForEachElement) {
  FakeHost host;
  offerArrays(host);
  Doubles array({1, 2, 3});
  const auto handle = array.handle<REALarrayDouble>();
  ElementReader read;
  EXPECT_EQ(read(handle, 0), 1);
  std::vector<std::int64_t> elsewhere;
  for (const double value : {10.0, 20.0, 30.0}) elsewhere.push_back(std::bit_cast<std::int64_t>(value));
  array.put(arrayShape::storage, elsewhere.data());
  EXPECT_EQ(read(handle, 1), 20);
  array.put(arrayShape::storage, static_cast<void*>(nullptr));
  EXPECT_EQ(read(handle, 2), 3);
  EXPECT_EQ(getterCalls, 1);
  array.put(arrayShape::storage, elsewhere.data());
  EXPECT_EQ(read(handle, 2), 30);
  array.operationUpperBound = 1;
  EXPECT_EQ(read(handle, 2), 0);
  EXPECT_EQ(host.takeRaised().message, "The parameter index  is too big. Range is 0 to 1, but value is 2.");
}

TEST(ElementReader, GivesZeroWhereTheHostHasNoGetter) {
  FakeHost host;
  offerArrays(host);
  host.withhold("RuntimeArrayCreateSingleDimBoundedArray");
  Doubles array({4.5});
  ElementReader read;
  host.withhold("PluginDoubleArrayGetProc");
  EXPECT_EQ(read(array.handle<REALarrayDouble>(), 0), 0);
}

TEST(ElementReader, AsksTheHostForEachElementWhereTheSelfTestHasFailed) {
  FakeHost host;
  offerArrays(host);
  host.withhold("RuntimeArrayCreateSingleDimBoundedArray");
  Doubles array({1, 2, 3});
  ElementReader read;
  for (int i = 0; i < 3; ++i) EXPECT_EQ(read(array.handle<REALarrayDouble>(), i), 1 + i);
  EXPECT_EQ(getterCalls, 3);
}

TEST(SelfTest, IsMadeAgainWhereTheHostHasThrown) {
  FakeHost host;
  offerArrays(host);
  void* const create = FakeHost::resolve("RuntimeArrayCreateSingleDimBoundedArray");
  static bool throws = true;
  static auto* const createArray = reinterpret_cast<REALarray (*)(std::int32_t, RBInteger)>(create);
  host.offer(
      "RuntimeArrayCreateSingleDimBoundedArray", +[](std::int32_t type, RBInteger upperBound) {
        if (throws) throw 5;
        return createArray(type, upperBound);
      });
  Doubles array({1, 2, 3});
  EXPECT_THROW(directElements(array.handle<REALarray>()), int);
  throws = false;
  EXPECT_EQ(directElements(array.handle<REALarray>()), array.elements.data());
}

// The self-test makes an array, and what the host does then may read one itself.
TEST(ArrayValue, ComesFromTheHostWithinTheSelfTest) {
  FakeHost host;
  offerArrays(host);
  static REALarrayDouble other;
  static double inside;
  static auto* const create = reinterpret_cast<REALarray (*)(std::int32_t, RBInteger)>(
      FakeHost::resolve("RuntimeArrayCreateSingleDimBoundedArray"));
  Doubles array({1, 2, 3});
  other = array.handle<REALarrayDouble>();
  host.offer(
      "RuntimeArrayCreateSingleDimBoundedArray", +[](std::int32_t type, RBInteger upperBound) {
        REALGetArrayValue(other, 1, &inside);
        return create(type, upperBound);
      });
  double value = 0;
  REALGetArrayValue(other, 2, &value);
  EXPECT_EQ(inside, 2);
  EXPECT_EQ(getterCalls, 1);
  EXPECT_EQ(value, 3);
  EXPECT_EQ(getterCalls, 1) << "passed, so that its memory is read";
}

TEST(ArrayValue, IsNotWrittenWhereTheHostHasNoGetter) {
  FakeHost host;
  offerArrays(host);
  host.withhold("RuntimeArrayCreateSingleDimBoundedArray");
  host.offer(
      "PluginDoubleArrayGetProc", +[](REALarrayDouble) -> DoubleGetter { return nullptr; });
  Doubles array({4.5});
  double value = 7;
  REALGetArrayValue(array.handle<REALarrayDouble>(), 0, &value);
  EXPECT_EQ(value, 7);
}

struct Failure {
  const char* name;
  const char* log;  // behind the line that opens the test
  void (*bendArray)(FakeArray&);
  std::int64_t (*bendReading)(RBInteger, std::int64_t);
  const char* withheld;
};

const Failure failures[] = {
    {"Creation", "Failed to allocate array", nullptr, nullptr, "RuntimeArrayCreateSingleDimBoundedArray"},
    {"UBound", "ubound failed 99", +[](FakeArray& a) { a.operationUpperBound = 99; }, nullptr, nullptr},
    {"NoSetter", "Index 0 failed 0", nullptr, nullptr, "PluginIntegerArraySetProc"},
    {"NoGetter", "Index 0 failed 0", nullptr, nullptr, "PluginIntegerArrayGetProc"},
    {"Reading0", "Index 0 failed 1", nullptr, +[](RBInteger i, std::int64_t v) { return i == 0 ? 1 : v; },
     nullptr},
    {"Reading1", "Index 1 failed 5", nullptr, +[](RBInteger i, std::int64_t v) { return i == 1 ? 5 : v; },
     nullptr},
    {"Reading9", "Index 9 failed 9", nullptr, +[](RBInteger i, std::int64_t v) { return i == 9 ? 9 : v; },
     nullptr},
    {"ReferenceCount", "refCount wrong 2",
     +[](FakeArray& a) { a.put(arrayShape::referenceCount, std::int64_t{2}); }, nullptr, nullptr},
    {"Dimensions", "DimensionCount wrong 3",
     +[](FakeArray& a) { a.put(arrayShape::dimensions, std::int64_t{3}); }, nullptr, nullptr},
    {"UpperBound", "ubound wrong 1233",
     +[](FakeArray& a) { a.put(arrayShape::upperBoundSince2021, std::int32_t{1233}); }, nullptr, nullptr},
    {"ReferenceCountOf64Bits", "refCount wrong 4294967297",
     +[](FakeArray& a) { a.put(24, (std::int64_t{1} << 32) + 1); }, nullptr, nullptr},
    {"DimensionsOf64Bits", "DimensionCount wrong 4294967297",
     +[](FakeArray& a) { a.put(64, (std::int64_t{1} << 32) + 1); }, nullptr, nullptr},
    {"ReferenceCountFirst", "refCount wrong 2",
     +[](FakeArray& a) {
       a.put(24, std::int64_t{2});
       a.put(64, std::int64_t{3});
       a.put(84, std::int32_t{4});
       a.put(56, static_cast<void*>(nullptr));
     },
     nullptr, nullptr},
    {"DimensionsSecond", "DimensionCount wrong 3",
     +[](FakeArray& a) {
       a.put(64, std::int64_t{3});
       a.put(84, std::int32_t{4});
       a.put(56, static_cast<void*>(nullptr));
     },
     nullptr, nullptr},
    {"UpperBoundThird", "ubound wrong -1",
     +[](FakeArray& a) {
       a.put(84, std::int32_t{-1});
       a.put(56, static_cast<void*>(nullptr));
     },
     nullptr, nullptr},
    {"Storage", "data is nil", +[](FakeArray& a) { a.put(arrayShape::storage, static_cast<void*>(nullptr)); },
     nullptr, nullptr},
    {"Stored0", "Index 0 failed 8",
     +[](FakeArray& a) {
       static std::int64_t other[10] = {8, 0, 0, 0, 0, 0, 0, 0, 0, 123456};
       a.put(arrayShape::storage, &other[0]);
     },
     nullptr, nullptr},
    {"Stored9", "Index 9 failed 8",
     +[](FakeArray& a) {
       static std::int64_t other[10] = {12345, 0, 0, 0, 0, 0, 0, 0, 0, 8};
       a.put(arrayShape::storage, &other[0]);
     },
     nullptr, nullptr},
};

void PrintTo(const Failure& failure, std::ostream* out) { *out << failure.log; }

class SelfTest : public testing::TestWithParam<Failure> {};

TEST_P(SelfTest, FailureLeavesTheHostsWay) {
  FakeHost host(2021.01);
  offerArrays(host);
  if (GetParam().withheld) host.withhold(GetParam().withheld);
  bend = GetParam().bendArray;
  readBent = GetParam().bendReading;
  debugging = true;
  Doubles array({1.5, 2.5});
  double value = 0;
  EXPECT_EQ(logOf([&] { REALGetArrayValue(array.handle<REALarrayDouble>(), 1, &value); }),
            std::string("QTX Debug: TestArray 2021.010000\nQTX Debug: ") + GetParam().log + "\n");
  EXPECT_EQ(value, 2.5);
  EXPECT_EQ(getterCalls, 1);
  EXPECT_TRUE(host.raised.empty());
  if (made) {
    EXPECT_EQ(made->references, 0);
  }
  EXPECT_EQ(logOf([&] { REALGetArrayValue(array.handle<REALarrayDouble>(), 0, &value); }), "")
      << "tested once";
  EXPECT_EQ(directElements(array.handle<REALarray>()), nullptr);
}
const Failure olderFailures[] = {
    {"DimensionsOf32Bits", "DimensionCount wrong 65537",
     +[](FakeArray& a) { a.put(64, std::int32_t{65537}); }, nullptr, nullptr},
    {"NegativeDimensions", "DimensionCount wrong -1", +[](FakeArray& a) { a.put(64, std::int32_t{-1}); },
     nullptr, nullptr},
    {"UpperBoundOf32Bits", "ubound wrong 66770", +[](FakeArray& a) { a.put(76, std::int32_t{66770}); },
     nullptr, nullptr},
    {"NewerShape", "ubound wrong 0",
     +[](FakeArray& a) {
       a.put(64, std::int64_t{1});
       a.put(76, std::int32_t{0});
       a.put(84, std::int32_t{1234});
     },
     nullptr, nullptr},
};

class SelfTestBefore2021 : public testing::TestWithParam<Failure> {};

TEST_P(SelfTestBefore2021, LooksAtNarrowerFields) {
  FakeHost host(2020.99);
  offerArrays(host);
  bend = GetParam().bendArray;
  debugging = true;
  Doubles array({1.5});
  double value = 0;
  EXPECT_EQ(logOf([&] { REALGetArrayValue(array.handle<REALarrayDouble>(), 0, &value); }),
            std::string("QTX Debug: TestArray 2020.990000\nQTX Debug: ") + GetParam().log + "\n");
  EXPECT_EQ(value, 1.5);
  EXPECT_EQ(getterCalls, 1);
}
INSTANTIATE_TEST_SUITE_P(Each, SelfTestBefore2021, testing::ValuesIn(olderFailures),
                         [](const auto& each) { return std::string(each.param.name); });

INSTANTIATE_TEST_SUITE_P(Each, SelfTest, testing::ValuesIn(failures),
                         [](const auto& each) { return std::string(each.param.name); });

}  // namespace
}  // namespace qtx
