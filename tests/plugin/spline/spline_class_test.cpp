// SplineQTX through its records.
#include "spline/spline_class.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <thread>
#include <utility>

#include "frame/failing_allocation.h"
#include "frame/raise.h"
#include "host_arrays.h"

namespace qtx {
namespace {

using Values = std::vector<double>;

struct Fixture {
  FakeHost host;
  HostArrays arrays;
  explicit Fixture(double version = 2024.01, bool usualShape = true)
      : host(version), arrays(host, usualShape) {
    host.load();
  }
};

struct Spline {
  Fixture& fixture;
  REALobject self;

  explicit Spline(Fixture& f) : fixture(f), self(f.host.makeObject("SplineQTX")) {}
  Spline(Fixture& f, const Values& x, const Values& y) : Spline(f) { construct(x, y); }
  ~Spline() { fixture.host.unlock(self); }
  Spline(const Spline&) = delete;
  Spline& operator=(const Spline&) = delete;

  template <typename Signature>
  Signature* method(const char* declaration) {
    return fixture.host.function<Signature>("SplineQTX", declaration);
  }
  void construct(REALarrayDouble x, REALarrayDouble y) {
    method<void(REALobject, REALarrayDouble, REALarrayDouble)>("Constructor(X() as Double, Y() as Double)")(
        self, x, y);
  }
  void construct(const Values& x, const Values& y) {
    const REALarrayDouble xs = fixture.arrays.doubles(x), ys = fixture.arrays.doubles(y);
    construct(xs, ys);
    fixture.arrays.release(xs);
    fixture.arrays.release(ys);
  }
  double calc(double x) { return method<double(REALobject, double)>("calc(x as double) as double")(self, x); }
  double at(char sequence, RBInteger index) {
    const std::string declaration = std::string(1, sequence) + "(index as integer) as double";
    return method<double(REALobject, RBInteger)>(declaration.c_str())(self, index);
  }
  // The field that the host reads and writes itself.
  std::int64_t& count() {
    const auto* property = fixture.host.findProperty("SplineQTX", "count");
    const auto* record = fixture.host.findClass("SplineQTX");
    return *reinterpret_cast<std::int64_t*>(reinterpret_cast<char*>(self) + record->dataOffset +
                                            property->parameter);
  }
  void expectRaised(const char* className, const std::string& message) {
    const RaisedException raised = fixture.host.takeRaised();
    EXPECT_EQ(raised.className, className);
    EXPECT_EQ(raised.message, message);
  }
  void expectUninitialized() {
    for (const char sequence : {'a', 'b', 'c', 'd', 'x', 'y'}) {
      EXPECT_EQ(at(sequence, 0), 0.0);
      expectRaised("NilObjectException", "Not initialized");
    }
    EXPECT_EQ(calc(1), 0.0);
    expectRaised("NilObjectException", "Not initialized");
  }
};

TEST(SplineClass, IsRegisteredMemberByMember) {
  Fixture fixture;
  const REALclassDefinition* record = fixture.host.findClass("SplineQTX");
  const char* declarations[] = {
      "Constructor(X() as Double, Y() as Double)",
      "a(index as integer) as double",
      "b(index as integer) as double",
      "c(index as integer) as double",
      "d(index as integer) as double",
      "x(index as integer) as double",
      "y(index as integer) as double",
      "calc(x as double) as double",
  };
  ASSERT_EQ(record->methodCount, std::size(declarations));
  for (std::size_t i = 0; i < std::size(declarations); ++i) {
    EXPECT_STREQ(record->methods[i].declaration, declarations[i]);
    EXPECT_EQ(record->methods[i].flags, 4u);
  }
  EXPECT_EQ(record->constructor, nullptr);
  EXPECT_NE(record->destructor, nullptr);
  EXPECT_EQ(record->dataSize, 64u) << "56, rounded up at registration";
  ASSERT_EQ(record->propertyCount, 1u);
  EXPECT_STREQ(record->properties[0].name, "count");
  EXPECT_STREQ(record->properties[0].type, "Integer");
  EXPECT_EQ(record->properties[0].flags, 6u);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(record->properties[0].getter), UINTPTR_MAX);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(record->properties[0].setter), UINTPTR_MAX);
  EXPECT_EQ(record->properties[0].parameter, 48);
}

TEST(SplineClass, RunsThroughItsPoints) {
  Fixture fixture;
  Spline spline(fixture, {0, 1, 2}, {0, 1, 4});
  EXPECT_EQ(spline.count(), 3);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(spline.at('x', i), i);
    EXPECT_EQ(spline.at('y', i), i * i);
    EXPECT_NEAR(spline.calc(i), i * i, 1e-12);
  }
  for (const char sequence : {'a', 'b', 'c', 'd'}) EXPECT_EQ(spline.at(sequence, 0), 0.0);
  // Slope 0.75 at 0 and 1.5 at 1: 0.75 x + 0.25 x³.
  EXPECT_NEAR(spline.at('a', 1), 0, 1e-12);
  EXPECT_NEAR(spline.at('b', 1), 0.75, 1e-12);
  EXPECT_NEAR(spline.at('c', 1), 0, 1e-12);
  EXPECT_NEAR(spline.at('d', 1), 0.25, 1e-12);
}

// So many that their memory is taken over by large pages where the system has them.
TEST(SplineClass, RunsThroughManyPoints) {
  Fixture fixture;
  constexpr std::size_t count = 300'000;
  Values x(count), y(count);
  for (std::size_t i = 0; i < count; ++i) {
    x[i] = static_cast<double>(i);
    y[i] = static_cast<double>(i % 7);
  }
  Spline spline(fixture, x, y);
  EXPECT_EQ(spline.count(), static_cast<std::int64_t>(count));
  for (const std::size_t i : {std::size_t{0}, std::size_t{1}, std::size_t{7}, count - 1}) {
    EXPECT_EQ(spline.at('x', static_cast<RBInteger>(i)), x[i]);
    EXPECT_EQ(spline.at('y', static_cast<RBInteger>(i)), y[i]);
  }
  // Near zero, where a cubic in the absolute coordinate is exact enough to tell.
  for (const std::size_t i : {1, 2, 3, 4, 5, 6, 7}) EXPECT_NEAR(spline.calc(x[i]), y[i], 1e-9);
  EXPECT_TRUE(fixture.host.raised.empty());
}

TEST(SplineClass, ExtendsItsOuterCubics) {
  Fixture fixture;
  Spline spline(fixture, {0, 1, 2}, {3, 2, 0});
  const auto cubic = [&](RBInteger i, double x) {
    return spline.at('d', i) * x * x * x +
           (spline.at('c', i) * x * x + (spline.at('b', i) * x + spline.at('a', i)));
  };
  for (const double x : {-5.0, 0.0, 0.5, 1.0}) EXPECT_EQ(spline.calc(x), cubic(1, x)) << x;
  for (const double x : {std::nextafter(1.0, 2.0), 1.5, 2.0, 9.0})
    EXPECT_EQ(spline.calc(x), cubic(2, x)) << x;
}

struct IndexRow {
  char sequence;
  RBInteger index;
  const char* message;
};

TEST(SplineClass, ChecksIndexes) {
  Fixture fixture;
  Spline spline(fixture, {0, 1, 2, 3, 4}, {5, 6, 7, 8, 9});
  const IndexRow rows[] = {
      {'a', 9, "The parameter index to method a is too big. Range is 0 to 4, but value is 9."},
      {'b', 5, "The parameter index to method b is too big. Range is 0 to 4, but value is 5."},
      {'c', -1, "The parameter index to method c is too small. Range is 0 to 4, but value is -1."},
      {'d', INT64_MAX,
       "The parameter index to method d is too big. Range is 0 to 4, but value is 9223372036854775807."},
      {'x', INT64_MIN,
       "The parameter index to method x is too small. Range is 0 to 4, but value is -9223372036854775808."},
      {'y', 5, "The parameter index to method y is too big. Range is 0 to 4, but value is 5."},
  };
  for (const IndexRow& row : rows) {
    EXPECT_EQ(spline.at(row.sequence, row.index), 0.0);
    spline.expectRaised("OutOfBoundsException", row.message);
  }
  EXPECT_EQ(spline.at('x', 4), 4);
  EXPECT_EQ(spline.at('y', 0), 5);
}

TEST(SplineClass, HasNoCurveThroughFewerThanThreePoints) {
  Fixture fixture;
  for (const Values& points : {Values{}, Values{7}, Values{7, 8}}) {
    Spline spline(fixture, points, points);
    const auto n = static_cast<RBInteger>(points.size());
    EXPECT_EQ(spline.count(), n);
    for (RBInteger i = 0; i < n; ++i) {
      EXPECT_EQ(spline.at('x', i), points[static_cast<std::size_t>(i)]);
      EXPECT_EQ(spline.at('y', i), points[static_cast<std::size_t>(i)]);
    }
    spline.at('x', n);
    spline.expectRaised("OutOfBoundsException", "The parameter index to method x is too big. Range is 0 to " +
                                                    std::to_string(n - 1) + ", but value is " +
                                                    std::to_string(n) + ".");
    EXPECT_EQ(spline.calc(7), 0.0);
    spline.expectRaised("UnsupportedOperationException", "empty array");
    EXPECT_EQ(spline.at('a', 0), 0.0);
    spline.expectRaised("OutOfBoundsException",
                        "The parameter index to method a is too big. Range is 0 to -1, but value is 0.");
  }
}

TEST(SplineClass, TakesNilForAnEmptyArray) {
  Fixture fixture;
  Spline spline(fixture);
  spline.construct(nullptr, nullptr);
  EXPECT_EQ(spline.count(), 0);
  spline.calc(0);
  spline.expectRaised("UnsupportedOperationException", "empty array");
  const REALarrayDouble one = fixture.arrays.doubles({1}), none = fixture.arrays.doubles({});
  for (const auto& [x, y] : {std::pair{REALarrayDouble(), one}, {one, REALarrayDouble()}}) {
    Spline other(fixture);
    other.construct(x, y);
    other.expectRaised("UnsupportedOperationException", "X and Y arrays must have same size");
  }
  spline.construct(nullptr, none);
  EXPECT_TRUE(fixture.host.raised.empty());
  fixture.arrays.release(one);
  fixture.arrays.release(none);
}

TEST(SplineClass, StaysUninitializedWithoutAValidConstruction) {
  Fixture fixture;
  Spline spline(fixture);
  spline.expectUninitialized();
  spline.construct(Values{1, 2, 3}, Values{1, 2});
  spline.expectRaised("UnsupportedOperationException", "X and Y arrays must have same size");
  spline.expectUninitialized();
  EXPECT_EQ(spline.count(), 0);
  spline.construct(Values{1, 2, 3}, Values{1, 2, 3});
  EXPECT_NEAR(spline.calc(2), 2, 1e-12);
}

TEST(SplineClass, IsConstructedAnew) {
  Fixture fixture;
  Spline spline(fixture, {0, 1, 2}, {0, 1, 4});
  spline.construct(Values{0, 1, 2, 3}, Values{0, 10, 20, 30});
  EXPECT_EQ(spline.count(), 4);
  EXPECT_NEAR(spline.calc(2.5), 25, 1e-12);
  spline.construct(Values{0, 1}, Values{0, 1, 2});
  spline.expectRaised("UnsupportedOperationException", "X and Y arrays must have same size");
  EXPECT_NEAR(spline.calc(2.5), 25, 1e-12) << "the curve before stays";
  spline.construct(Values{0, 1}, Values{0, 1});
  spline.calc(2.5);
  spline.expectRaised("UnsupportedOperationException", "empty array");
}

TEST(SplineClass, LetsItsCountBeSet) {
  Fixture fixture;
  Spline spline(fixture, {0, 1, 2}, {0, 10, 20});
  spline.count() = 99;
  EXPECT_EQ(spline.at('x', 2), 2);
  EXPECT_NEAR(spline.calc(1.5), 15, 1e-12);
  spline.at('x', 3);
  spline.expectRaised("OutOfBoundsException",
                      "The parameter index to method x is too big. Range is 0 to 2, but value is 3.");
  EXPECT_EQ(spline.count(), 99);
}

// Each spline's x and y, which are one block, and nothing else: not those of a construction that was
// replaced.
TEST(SplineClass, LeavesItsPointsBehind) {
  Fixture fixture;
  { Spline lookUps(fixture, {0, 1, 2}, {0, 1, 4}); }
  const long before = livingAllocations();
  { Spline spline(fixture, {0, 1, 2}, {0, 1, 4}); }
  EXPECT_EQ(livingAllocations(), before + 1);
  {
    Spline spline(fixture, {0, 1, 2}, {0, 1, 4});
    spline.construct(Values{0, 1}, Values{0, 1});
  }
  EXPECT_EQ(livingAllocations(), before + 2);
  { Spline neverConstructed(fixture); }
  EXPECT_EQ(livingAllocations(), before + 2);
}

// The four coefficient sequences go, and are seen to be gone; the points stay.
TEST(SplineClass, ReleasesItsCoefficientsAlone) {
  Fixture fixture;
  { Spline other(fixture, {0, 1, 2}, {0, 1, 4}); }
  auto object = std::make_unique<FakeObject>();
  const auto self = reinterpret_cast<REALobject>(object.get());
  const REALarrayDouble x = fixture.arrays.doubles({0, 1, 2}), y = fixture.arrays.doubles({0, 1, 4});
  fixture.host.function<void(REALobject, REALarrayDouble, REALarrayDouble)>(
      "SplineQTX", "Constructor(X() as Double, Y() as Double)")(self, x, y);
  const auto destroy =
      reinterpret_cast<void (*)(REALobject)>(fixture.host.findClass("SplineQTX")->destructor);
  destroy(self);
  const long living = livingAllocations();
  destroy(self);  // a host's mistake, which loses nothing: a leak checker finds what is left behind
  EXPECT_EQ(livingAllocations(), living);
  void* pointers[6];
  std::memcpy(pointers, object->data, sizeof pointers);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(pointers[i], nullptr) << i;
  EXPECT_NE(pointers[4], nullptr);
  EXPECT_NE(pointers[5], nullptr);
  const auto at = [&](const char* declaration) {
    return fixture.host.function<double(REALobject, RBInteger)>("SplineQTX", declaration)(self, 2);
  };
  EXPECT_EQ(at("x(index as integer) as double"), 2);
  EXPECT_EQ(at("y(index as integer) as double"), 4);
  EXPECT_EQ(at("a(index as integer) as double"), 0);
  EXPECT_EQ(fixture.host.takeRaised().message, "Not initialized");
  fixture.arrays.release(x);
  fixture.arrays.release(y);
}

void readsArraysOn(double version, bool usualShape) {
  Fixture fixture(version, usualShape);
  Spline spline(fixture, {0, 1, 2, 4}, {0, 10, 20, 40});
  for (int i = 0; i < 3; ++i) EXPECT_EQ(spline.at('y', i), 10 * i);
  EXPECT_NEAR(spline.calc(3), 30, 1e-12);
  EXPECT_EQ(fixture.arrays.getterCalls, usualShape ? 0 : 8);
}

TEST(SplineClass, ReadsArraysOfHostsBefore2021) { readsArraysOn(2019.0, true); }
TEST(SplineClass, ReadsArraysOfHostsSince2021) { readsArraysOn(2021.0, true); }
TEST(SplineClass, ReadsArraysOfAnotherShape) { readsArraysOn(2024.01, false); }

TEST(SplineClass, TakesZerosWhereArraysCannotBeRead) {
  Fixture fixture(2024.01, false);
  fixture.host.withhold("PluginDoubleArrayGetProc");
  Spline spline(fixture, {1, 2, 3}, {4, 5, 6});
  EXPECT_EQ(spline.count(), 3);
  EXPECT_EQ(spline.at('x', 2), 0.0);
  EXPECT_TRUE(std::isnan(spline.calc(1)));
}

// Other code of the program may shorten an array while it is read: what is missing is zero, and the program
// learns of it once.
TEST(SplineClass, RaisesOnceForArraysThatShrink) {
  Fixture fixture;
  static int calls;
  calls = 0;
  fixture.host.offer(
      "RuntimeUBound", +[](REALarray) -> RBInteger { return ++calls <= 2 ? 4 : 1; });
  Spline spline(fixture, {1, 2, 3, 4, 5}, {4, 5, 6, 7, 8});
  spline.expectRaised("OutOfBoundsException",
                      "The parameter index  is too big. Range is 0 to 1, but value is 2.");
  EXPECT_EQ(spline.count(), 5);
  EXPECT_EQ(spline.at('x', 1), 2);
  EXPECT_EQ(spline.at('y', 1), 5);
  for (const RBInteger index : {2, 3, 4}) {
    EXPECT_EQ(spline.at('x', index), 0);
    EXPECT_EQ(spline.at('y', index), 0);
  }
}

// The same where elements are read from memory: nothing beyond the bound of the moment is looked at.
TEST(SplineClass, RaisesOnceForArraysThatShrinkInMemory) {
  Fixture fixture;
  static int calls;
  static auto* const upperBoundOf =
      reinterpret_cast<RBInteger (*)(REALarray)>(FakeHost::resolve("RuntimeUBound"));
  calls = 0;
  fixture.host.offer(
      "RuntimeUBound", +[](REALarray array) -> RBInteger {
        ++calls;
        return calls > 20 ? 1 : upperBoundOf(array);
      });
  { Spline lookUps(fixture, {0, 1, 2}, {0, 1, 4}); }
  ASSERT_EQ(calls, 2 + 6 + 1);
  calls = 20 - 2 - 4;  // two elements of each before the arrays shrink
  Spline spline(fixture, {1, 2, 3, 4, 5}, {4, 5, 6, 7, 8});
  spline.expectRaised("OutOfBoundsException",
                      "The parameter index  is too big. Range is 0 to 1, but value is 2.");
  EXPECT_EQ(calls, 20 - 4 + 10);
  EXPECT_EQ(spline.count(), 5);
  for (const RBInteger index : {0, 1, 2, 3, 4}) {
    EXPECT_EQ(spline.at('x', index), index < 2 ? index + 1 : 0) << index;
    EXPECT_EQ(spline.at('y', index), index < 2 ? index + 4 : 0) << index;
  }
  EXPECT_EQ(fixture.arrays.getterCalls, 0);
}

// What the host is asked for, in order: both upper bounds, then an upper bound for each element, X and Y in
// turn. The first element asks for the self-test besides.
TEST(SplineClass, AsksForTheUpperBoundBeforeEachElement) {
  static std::vector<REALarray> asked;
  Fixture fixture;
  static auto* const upperBoundOf =
      reinterpret_cast<RBInteger (*)(REALarray)>(FakeHost::resolve("RuntimeUBound"));
  fixture.host.offer(
      "RuntimeUBound", +[](REALarray array) -> RBInteger {
        asked.push_back(array);
        return upperBoundOf(array);
      });
  Spline spline(fixture);
  for (const bool first : {true, false}) {
    for (const std::size_t n : {2u, 3u, 50u}) {
      asked.clear();
      const REALarrayDouble xs = fixture.arrays.doubles(Values(n, 1)),
                            ys = fixture.arrays.doubles(Values(n, 2));
      spline.construct(xs, ys);
      std::vector<REALarray> expected;
      for (std::size_t i = 0; i <= n; ++i) {
        expected.push_back(reinterpret_cast<REALarray>(xs));
        if (first && n == 2 && i == 1) expected.push_back(asked.at(3));  // the self-test's own array
        expected.push_back(reinterpret_cast<REALarray>(ys));
      }
      EXPECT_EQ(asked, expected) << n;
      fixture.arrays.release(xs);
      fixture.arrays.release(ys);
    }
  }
}

// Other code of the program may construct the object anew while it is constructed.
TEST(SplineClass, IsConstructedFromWithinItsConstruction) {
  Fixture fixture;
  static Spline* within;
  static int toGo;
  static auto* const upperBoundOf =
      reinterpret_cast<RBInteger (*)(REALarray)>(FakeHost::resolve("RuntimeUBound"));
  within = nullptr;
  fixture.host.offer(
      "RuntimeUBound", +[](REALarray array) -> RBInteger {
        if (within && --toGo == 0)
          std::exchange(within, nullptr)->construct(Values{5, 6, 7, 8}, Values{1, 2, 3, 4});
        return upperBoundOf(array);
      });
  {
    Spline lookUps(fixture, {0, 1, 2}, {0, 1, 4});
    lookUps.at('x', 3);
    fixture.host.takeRaised();
  }
  const long before = livingAllocations();
  for (int call = 1; call <= 8; ++call) {
    Spline spline(fixture);
    toGo = call;
    within = &spline;
    spline.construct(Values{0, 1, 2}, Values{0, 10, 20});
    EXPECT_EQ(within, nullptr);
    EXPECT_EQ(spline.at('x', 2), 2);
    EXPECT_NEAR(spline.calc(1.5), 15, 1e-12);
    spline.at('x', 3);
    EXPECT_EQ(fixture.host.takeRaised().className, "OutOfBoundsException");
  }
  EXPECT_EQ(livingAllocations(), before + 8) << "the points of eight objects";
}

// After the construction, everything is only read.
TEST(SplineClass, IsSharedByThreads) {
  Fixture fixture;
  Values x(1000), y(1000);
  for (std::size_t i = 0; i < x.size(); ++i) {
    x[i] = static_cast<double>(i) + static_cast<double>(i % 3) * 0.25;
    y[i] = std::sin(x[i]);
  }
  Values shuffled = x;
  std::reverse(shuffled.begin(), shuffled.end());
  for (const Values& points : {x, shuffled}) {
    Spline spline(fixture, points, y);
    auto* const calc = spline.method<double(REALobject, double)>("calc(x as double) as double");
    const auto sum = [&] {
      double total = 0;
      for (int i = -50; i < 4200; ++i) total += calc(spline.self, i * 0.25) * (i % 7);
      return total;
    };
    const double alone = sum();
    double sums[4];
    std::vector<std::thread> threads;
    for (double& result : sums) threads.emplace_back([&] { result = sum(); });
    for (auto& thread : threads) thread.join();
    for (const double result : sums) EXPECT_EQ(result, alone);
  }
}

// No memory holds as many points as the greatest bounds there are stand for. Below −1 there are none.
TEST(SplineClass, TakesEveryUpperBound) {
  Fixture fixture;
  static RBInteger upperBound;
  fixture.host.offer(
      "RuntimeUBound", +[](REALarray) { return upperBound; });
  const struct {
    RBInteger upperBound;
    std::int64_t count;
    const char* refusal;
  } rows[] = {
      {INT64_MAX, INT64_MIN, "OutOfMemoryException"},
      {INT64_MAX - 1, INT64_MAX, "OutOfMemoryException"},
      {-2, -1, nullptr},
      {INT64_MIN, INT64_MIN + 1, nullptr},
  };
  for (const auto& row : rows) {
    upperBound = row.upperBound;
    Spline spline(fixture, {0, 1, 2}, {0, 1, 4});
    if (row.refusal) {
      EXPECT_EQ(fixture.host.takeRaised().className, row.refusal);
    }
    EXPECT_EQ(spline.count(), row.count);
    EXPECT_EQ(spline.calc(1), 0.0);
    spline.expectRaised("UnsupportedOperationException", "empty array");
  }
}

// All allocations fail in turn. What exists afterwards is usable, and a construction that succeeds replaces
// it.
TEST(SplineClass, SurvivesFailingAllocations) {
  static std::optional<FailAllocationsOf> failing;
  Fixture fixture;
  // The fake host allocates as well: from the exception's making on, nothing fails.
  fixture.host.offer(
      "REALBuildStringWithEncoding", +[](const char* bytes, std::int32_t length, std::uint32_t textEncoding) {
        failing.reset();
        return FakeHost::current->makeString({bytes, static_cast<std::size_t>(length)}, textEncoding);
      });
  { Spline lookUps(fixture, {0, 1, 2}, {0, 10, 20}); }
  RaiseException("RuntimeException", "makes itself known");
  fixture.host.takeRaised();

  const REALarrayDouble x = fixture.arrays.doubles({0, 1, 2}), y = fixture.arrays.doubles({0, 10, 20});
  Spline spline(fixture);
  auto* construct = spline.method<void(REALobject, REALarrayDouble, REALarrayDouble)>(
      "Constructor(X() as Double, Y() as Double)");
  int failures = 0;
  for (;; ++failures) {
    ASSERT_LT(failures, 100);
    failing.emplace(std::size_t{0}, SIZE_MAX, failures);
    construct(spline.self, x, y);
    failing.reset();
    if (fixture.host.raised.empty()) break;
    EXPECT_EQ(fixture.host.takeRaised().className, "OutOfMemoryException");
    EXPECT_EQ(spline.calc(1), 0.0);
    const RaisedException raised = fixture.host.takeRaised();
    EXPECT_EQ(raised.message, "empty array") << "the sequences are there, without elements";
    EXPECT_EQ(spline.count(), 3);
  }
  EXPECT_EQ(failures, 2) << "the points, and the curve";
  EXPECT_NEAR(spline.calc(1.5), 15, 1e-12);
  fixture.arrays.release(x);
  fixture.arrays.release(y);
}

}  // namespace
}  // namespace qtx
