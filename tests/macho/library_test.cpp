// The library for macOS in this process, and a library made for the loader: imports, exceptions,
// thread-locals, and results beside those of the library for Linux. Where the libraries lie stands in the
// environment; see cross/CMakeLists.txt.
#include <gtest/gtest.h>

#include <atomic>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <thread>

#include "frame/fake_host.h"
#include "macho/load.h"
#include "macho/mach_o.h"
#include "math/extended.h"

namespace macho {
namespace {

std::string given(const char* variable) {
  const char* value = std::getenv(variable);
  if (!value) throw std::runtime_error(std::string("the environment has no ") + variable);
  return value;
}

// Memory for the image, refused on request.
std::atomic<long> refusedFrom{-1};  // this allocation and the later ones; −1: none
std::atomic<long> allocations{0};
bool refused() {
  const long number = allocations.fetch_add(1);
  const long from = refusedFrom.load();
  return from >= 0 && number >= from;
}
void* allocate(std::size_t size) { return refused() ? nullptr : std::malloc(size); }
void* allocateAligned(std::size_t alignment, std::size_t size) {
  return refused() ? nullptr : std::aligned_alloc(alignment, size);
}

// A host that has loaded the library for macOS.
struct MacHost : qtx::FakeHost {
  MacHost()
      : library(macho::load(given("QTX_MACOS_LIBRARY"),
                            {{"_malloc", reinterpret_cast<void*>(&allocate)},
                             {"_aligned_alloc", reinterpret_cast<void*>(&allocateAligned)}})) {
    reinterpret_cast<void (*)(REALresolver)>(library.find("REALPluginMain"))(&resolve);
  }
  const LoadedLibrary& library;
};

TEST(MacLibrary, RegistersEverything) {
  MacHost host;
  EXPECT_EQ(host.controlVersion, 13);
  EXPECT_EQ(host.classes.size(), 6u);
  ASSERT_TRUE(host.module);
  EXPECT_EQ(host.module->methodCount, 62u);
  EXPECT_EQ(host.library.image().installName, "@rpath/libqtx.dylib");
  EXPECT_EQ(host.library.find("REALPluginMain2"), nullptr);
  EXPECT_EQ(host.library.find("malloc"), nullptr);
}

// Whichever allocation fails: the host gets its exception, and afterwards everything works.
TEST(MacLibrary, TurnsARefusedAllocationIntoAHostException) {
  MacHost host;
  auto* add = host.function<void(REALobject, REALobject)>("AtomicQueueQTX", "Push(value as Variant)");
  auto* count = reinterpret_cast<RBInteger (*)(REALobject, RBInteger)>(
      host.findProperty("AtomicQueueQTX", "Count")->getter);
  int failures = 0;
  for (long nth = 0; nth < 4; ++nth) {
    const REALobject queue = host.makeObject("AtomicQueueQTX"), element = host.makeObject("Thing");
    allocations = 0;
    refusedFrom = nth;
    RBInteger pushed = 0;
    for (int i = 0; i < 2000 && host.raised.empty(); ++i) {
      add(queue, element);
      if (host.raised.empty()) ++pushed;
    }
    refusedFrom = -1;
    if (!host.raised.empty()) {
      ++failures;
      const qtx::RaisedException exception = host.takeRaised();
      EXPECT_EQ(exception.className, "OutOfMemoryException");
      EXPECT_EQ(exception.message, "Failed to allocate memory: std::bad_alloc");
    }
    EXPECT_EQ(count(queue, 0), pushed);
    add(queue, element);
    EXPECT_EQ(count(queue, 0), pushed + 1);
    host.unlock(queue);
    host.unlock(element);
  }
  EXPECT_GT(failures, 1);
}

// The library has a C++ runtime of its own, so that it does not know what other code throws, whatever it is.
template <typename Exception>
bool throwIt(REALstring, std::uint32_t, REALstringData*) {
  throw Exception(Exception());
}
struct Named : std::runtime_error {
  Named() : std::runtime_error("named") {}
};
template <typename Exception>
struct Texted : Exception {
  Texted() : Exception("text") {}
};
TEST(MacLibrary, DoesNotKnowWhatAHostOperationThrows) {
  MacHost host;
  auto* value = host.function<std::int64_t(REALstring)>("", "CurrencyValueQTX(value as string) as Currency");
  const REALstring text = host.makeString("é1", 0x201);  // not ASCII, so that it is converted
  bool (*const throwers[])(REALstring, std::uint32_t, REALstringData*) = {
      &throwIt<std::bad_alloc>,
      &throwIt<Texted<std::range_error>>,
      &throwIt<Texted<std::out_of_range>>,
      &throwIt<Texted<std::overflow_error>>,
      &throwIt<Texted<std::underflow_error>>,
      &throwIt<Named>,
      &throwIt<int>};
  for (auto* each : throwers) {
    host.offer("PluginGetStringData", each);
    EXPECT_EQ(value(text), 0);
    const qtx::RaisedException exception = host.takeRaised();
    EXPECT_EQ(exception.className, "RuntimeException");
    EXPECT_EQ(exception.message, "Sorry, but there was an unnamed C++ Exception.");
  }
  host.unlock(text);
}

TEST(MacLibrary, WritesTracesThroughTheSystemLog) {
  MacHost host;
  ASSERT_TRUE(host.module);
  const auto set = reinterpret_cast<void (*)(bool)>(host.module->properties[0].setter);
  auto* bitCount = host.function<RBInteger(std::uint64_t)>("", "BitCountQTX(value as UInt64) as Integer");
  EXPECT_EQ(qtx::logOf([&] { set(true); }), "QTX Debug: QTX debug logging enabled.\n");
  set(false);
  EXPECT_EQ(qtx::logOf([&] { bitCount(3); }), "");
}

TEST(MacLibrary, ConvertsTenByteNumbersAsElsewhere) {
  MacHost host;
  auto* encode = host.function<REALstring(double)>("", "DoubleToExtendedStrQTX(x as double) as string");
  auto* decode = host.function<double(REALstring)>("", "ExtendedStrToDoubleQTX(v as string) as double");
  std::uint64_t word = 88172645463325252;  // Marsaglia, Xorshift RNGs, 2003
  std::vector<double> values = {
      0.0,      -0.0,      1.0,         44100.0, 5e-324, 2.2250738585072014e-308, 1.7976931348623157e308,
      HUGE_VAL, -HUGE_VAL, std::nan("")};
  for (int i = 0; i < 2000; ++i) {
    word ^= word << 13;
    word ^= word >> 7;
    word ^= word << 17;
    values.push_back(std::bit_cast<double>(word));
  }
  for (const double x : values) {
    const REALstring text = encode(x);
    const qtx::ExtendedRecord own = qtx::encodeExtended(x);
    EXPECT_EQ(host.bytesOf(text), std::string_view(reinterpret_cast<const char*>(own.data()), own.size()))
        << x;
    EXPECT_EQ(std::bit_cast<std::uint64_t>(decode(text)),
              std::bit_cast<std::uint64_t>(qtx::decodeExtended(own)))
        << x;
    host.unlock(text);
  }
}

class Fixture : public testing::TestWithParam<const char*> {
 protected:
  template <typename Signature>
  Signature* find(const char* symbol) {
    void* const found = library.find(symbol);
    if (!found) throw std::runtime_error(std::string("the fixture has no ") + symbol);
    return reinterpret_cast<Signature*>(found);
  }
  const LoadedLibrary& library = macho::load(given(GetParam()));
};
INSTANTIATE_TEST_SUITE_P(LinkedWith, Fixture,
                         testing::Values("QTX_MACOS_FIXTURE", "QTX_MACOS_CHAINED_FIXTURE"),
                         [](const auto& each) {
                           return each.param == std::string("QTX_MACOS_FIXTURE") ? "opcodes" : "chains";
                         });

TEST_P(Fixture, HasItsPointersFilledIn) {
  EXPECT_EQ(find<int()>("fixtureInitialised")(), 12);
  const int expected[] = {10, 13, 11};
  for (int i = 0; i < 3; ++i) EXPECT_EQ(find<int(int)>("fixtureNumber")(i), expected[i]);
  EXPECT_EQ(find<int()>("fixtureMissing")(), 1);
  EXPECT_EQ(find<int()>("fixtureSharedValue")(), 77);
  EXPECT_EQ(find<int()>("fixtureSpaces")(), 6);
  EXPECT_EQ(find<int()>("fixtureErrorNumber")(), 34);
  // Behind the system's own data, by the addend.
  const auto* classes = static_cast<const std::uint32_t*>(find<const void*()>("fixturePastRuneLocale")());
  EXPECT_EQ(classes[std::size_t{'a'}] & 0x100u, 0x100u);
  EXPECT_EQ(classes[std::size_t{'1'}] & 0x400u, 0x400u);
}

TEST_P(Fixture, GivesEachThreadItsOwnVariables) {
  auto* count = find<int()>("fixtureCount");
  EXPECT_EQ(count(), 41);
  EXPECT_EQ(count(), 42);
  EXPECT_EQ(find<int()>("fixtureThreadText")(), 1);
  int elsewhere = 0, text = 0;
  std::thread([&] {
    elsewhere = count();
    text = find<int()>("fixtureThreadText")();
  }).join();
  EXPECT_EQ(elsewhere, 41);
  EXPECT_EQ(text, 1);
  EXPECT_EQ(count(), 43);
  using Among =
      double(double, double, double, double, std::int64_t, std::int64_t, std::int64_t, std::int64_t);
  EXPECT_EQ(find<Among>("fixtureThreadLocalAmong")(1, 2, 3, 4, 5, 6, 7, 8),
            1 + 4 + 9 + 16 + 5 + 30 + 42 + 56);
}

TEST_P(Fixture, PassesVariableArguments) {
  char text[200] = {};
  const int length = find<int(char*, std::size_t)>("fixtureFormat")(text, sizeof text);
  EXPECT_EQ(std::string(text), "1 two 3.250 -4 5 6 7.50 8 9 10 11.5 end");
  EXPECT_EQ(length, static_cast<int>(std::strlen(text)));
}

TEST_P(Fixture, UnwindsThroughFramesOfEachKind) {
  auto* unwinds = find<bool(std::int64_t, int)>("fixtureUnwinds");
  for (int depth = 0; depth < 40; ++depth) EXPECT_TRUE(unwinds(depth * 1234567 - 999, depth)) << depth;
  std::vector<std::thread> threads;
  std::atomic<int> wrong{0};
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&, i] {
      for (int j = 0; j < 200; ++j) wrong += !unwinds(i * 1000 + j, j % 7);
    });
  }
  for (std::thread& each : threads) each.join();
  EXPECT_EQ(wrong, 0);
}

TEST_P(Fixture, TurnsEachExceptionIntoTheHostsOwn) {
  qtx::FakeHost host;
  find<void(REALresolver)>("REALPluginMain")(&qtx::FakeHost::resolve);
  auto* throwOfKind = reinterpret_cast<void (*)(std::int64_t)>(find<void*()>("fixtureThrower")());
  const struct {
    const char *className, *message;
  } expected[] = {
      {"OutOfMemoryException", "Failed to allocate memory: std::bad_alloc"},
      {"OutOfBoundsException", "C++ reports range error: range"},
      {"OutOfBoundsException", "C++ reports range error: out of range"},
      {"OutOfBoundsException", "C++ reports overflow error."},
      {"OutOfBoundsException", "C++ reports underflow error: underflow"},
      {"RuntimeException", "C++ Exception: logic"},
      {"RuntimeException", "Sorry, but there was an unnamed C++ Exception."},
  };
  for (std::int64_t kind = 0; kind < 7; ++kind) {
    throwOfKind(kind);
    const qtx::RaisedException exception = host.takeRaised();
    EXPECT_EQ(exception.className, expected[kind].className);
    EXPECT_EQ(exception.message, expected[kind].message);
    EXPECT_EQ(exception.errorNumber, 0);
  }
  throwOfKind(7);
  EXPECT_TRUE(host.raised.empty());
}

}  // namespace
}  // namespace macho
