// 128-bit integers: the kernels beside the compiler's own integers, Boost.Multiprecision and {fmt}, and the
// members beside the least that a call through a record can cost.
#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <atomic>
#include <boost/multiprecision/cpp_int.hpp>
#include <cstddef>
#include <cstring>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "bench_host.h"
#include "int128/decimal_text.h"
#include "int128/division.h"
#include "int128/wide_functions.h"

namespace {

using namespace qtx;
using Boost = boost::multiprecision::uint128_t;
using BoostSigned = boost::multiprecision::int128_t;

Boost toBoost(NativeUInt128 value) { return Boost(value); }

constexpr std::size_t sampleCount = 1024;

// Random values of up to `width` bits, every length as often.
std::vector<NativeUInt128> samples(int width, unsigned seed) {
  std::mt19937_64 engine(seed);
  std::vector<NativeUInt128> values(sampleCount);
  for (NativeUInt128& value : values) {
    const int shift = 128 - width + static_cast<int>(engine() % static_cast<unsigned>(width));
    value = (NativeUInt128{engine()} << 64 | engine()) >> shift;
    value |= 1;
  }
  return values;
}
// Random values of exactly `width` bits.
std::vector<NativeUInt128> samplesOfWidth(int width, unsigned seed) {
  std::mt19937_64 engine(seed);
  std::vector<NativeUInt128> values(sampleCount);
  for (NativeUInt128& value : values) {
    value = ((NativeUInt128{engine()} << 64 | engine()) | NativeUInt128{1} << 127) >> (128 - width);
  }
  return values;
}

template <typename Number, typename Convert>
std::vector<Number> converted(const std::vector<NativeUInt128>& values, Convert convert) {
  std::vector<Number> all;
  for (const NativeUInt128 value : values) all.push_back(convert(value));
  return all;
}
UInt128 own(NativeUInt128 value) { return UInt128::fromBits(value); }
NativeUInt128 native(NativeUInt128 value) { return value; }

// Runs operation(a, b) over the samples.
template <typename A, typename Operation>
void overPairs(benchmark::State& state, const std::vector<A>& a, const std::vector<A>& b,
               Operation operation) {
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(operation(a[i], b[i]));
    i = (i + 1) % sampleCount;
  }
}
template <typename A, typename Operation>
void overAll(benchmark::State& state, const std::vector<A>& a, Operation operation) {
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(operation(a[i]));
    i = (i + 1) % sampleCount;
  }
}

// --- Division: 128 by 64 bits, where one division instruction can serve, and 128 by 128.

struct Divide {
  template <typename Number>
  Number operator()(const Number& a, const Number& b) const {
    return a / b;
  }
};
template <typename Number, typename Convert>
void divideBy(benchmark::State& state, int divisorWidth, Convert convert) {
  overPairs(state, converted<Number>(samplesOfWidth(120, 1), convert),
            converted<Number>(samplesOfWidth(divisorWidth, 2), convert), Divide());
}
void division(const char* name, int divisorWidth) {
  const std::string text = name;
  benchmark::RegisterBenchmark(name, [=](benchmark::State& s) { divideBy<UInt128>(s, divisorWidth, own); });
  benchmark::RegisterBenchmark((text + " vs native").c_str(), [=](benchmark::State& s) {
    divideBy<NativeUInt128>(s, divisorWidth, native);
  });
  benchmark::RegisterBenchmark((text + " vs Boost").c_str(),
                               [=](benchmark::State& s) { divideBy<Boost>(s, divisorWidth, toBoost); });
}

// --- Decimal text.

void format(const char* name, int width) {
  const std::string text = name;
  benchmark::RegisterBenchmark(name, [=](benchmark::State& state) {
    overAll(state, converted<UInt128>(samplesOfWidth(width, 3), own), [](UInt128 value) {
      DecimalBuffer buffer;
      const std::size_t length = uint128_to_string(value, buffer).size();
      benchmark::DoNotOptimize(buffer);
      return length;
    });
  });
  benchmark::RegisterBenchmark((text + " vs fmt").c_str(), [=](benchmark::State& state) {
    overAll(state, samplesOfWidth(width, 3), [](NativeUInt128 value) {
      char buffer[40];
      const char* end = fmt::format_to(buffer, "{}", value);
      benchmark::DoNotOptimize(buffer);
      return end - buffer;
    });
  });
  benchmark::RegisterBenchmark((text + " vs Boost").c_str(), [=](benchmark::State& state) {
    overAll(state, converted<Boost>(samplesOfWidth(width, 3), toBoost),
            [](const Boost& value) { return value.str(); });
  });
}

std::vector<std::string> texts(int width) {
  return converted<std::string>(samplesOfWidth(width, 4), [](NativeUInt128 value) {
    DecimalBuffer buffer;
    return std::string(uint128_to_string(UInt128::fromBits(value), buffer));
  });
}
__attribute__((noinline)) NativeUInt128 digitAtATime(std::string_view text) {
  NativeUInt128 value = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') break;
    value = value * 10 + static_cast<unsigned>(c - '0');
  }
  return value;
}
void parse(const char* name, int width) {
  const std::string text = name;
  benchmark::RegisterBenchmark(name, [=](benchmark::State& state) {
    overAll(state, texts(width), [](const std::string& digits) { return parseDecimal<UInt128>(digits); });
  });
  benchmark::RegisterBenchmark((text + " vs digit at a time").c_str(), [=](benchmark::State& state) {
    overAll(state, texts(width), [](const std::string& digits) { return digitAtATime(digits); });
  });
  benchmark::RegisterBenchmark((text + " vs Boost").c_str(), [=](benchmark::State& state) {
    overAll(state, texts(width), [](const std::string& digits) { return Boost(digits); });
  });
}

// --- Square root and power.

__attribute__((noinline)) std::uint64_t rootBySearch(NativeUInt128 value) {
  NativeUInt128 low = 0, high = NativeUInt128{1} << 64;
  while (low < high) {
    const NativeUInt128 middle = (low + high) >> 1;
    if (value < middle * middle) {
      high = middle;
    } else {
      low = middle + 1;
    }
  }
  return static_cast<std::uint64_t>(low - 1);
}
void root(const char* name, int width) {
  const std::string text = name;
  benchmark::RegisterBenchmark(name, [=](benchmark::State& state) {
    overAll(state, converted<UInt128>(samplesOfWidth(width, 5), own),
            [](UInt128 value) { return squareRoot(value); });
  });
  benchmark::RegisterBenchmark((text + " vs bit by bit").c_str(), [=](benchmark::State& state) {
    overAll(state, samplesOfWidth(width, 5), [](NativeUInt128 value) { return rootBySearch(value); });
  });
  benchmark::RegisterBenchmark((text + " vs Boost").c_str(), [=](benchmark::State& state) {
    overAll(state, converted<Boost>(samplesOfWidth(width, 5), toBoost),
            [](const Boost& value) -> Boost { return sqrt(value); });
  });
}
void powers() {
  benchmark::RegisterBenchmark("power", [](benchmark::State& state) {
    std::uint64_t exponent = 38;
    overAll(state, converted<UInt128>(samples(10, 6), own), [&](UInt128 value) {
      benchmark::DoNotOptimize(exponent);
      return power(value, exponent);
    });
  });
  benchmark::RegisterBenchmark("power vs Boost", [](benchmark::State& state) {
    unsigned exponent = 38;
    overAll(state, converted<Boost>(samples(10, 6), toBoost), [&](const Boost& value) -> Boost {
      benchmark::DoNotOptimize(exponent);
      return pow(value, exponent);
    });
  });
}

// --- Members through their records, on a host that does no more than it must: an object is an allocation
// and a reference count.

struct HostObject {
  std::atomic<int> references{1};
  alignas(16) unsigned char data[16] = {};
};
static_assert(offsetof(HostObject, data) == bench::dataOffset);

HostObject* hostObject(REALobject object) { return reinterpret_cast<HostObject*>(object); }
__attribute__((noinline)) REALobject newInstance(const char*) {
  return reinterpret_cast<REALobject>(new HostObject);
}
__attribute__((noinline)) void lock(REALobject object) {
  hostObject(object)->references.fetch_add(1, std::memory_order_relaxed);
}
__attribute__((noinline)) void unlock(REALobject object) {
  if (hostObject(object)->references.fetch_sub(1, std::memory_order_acq_rel) == 1) delete hostObject(object);
}

using Binary = REALobject (*)(REALobject, REALobject);
Binary operation(std::string_view declaration) {
  bench::offer("PluginNewInstance", &newInstance);
  bench::offer("REALLockObject", &lock);
  bench::offer("REALUnlockObject", &unlock);
  return bench::method<REALobject(REALobject, REALobject)>("Int128QTX", declaration);
}

// An indirect call, making the instance, storing 16 bytes. (Giving the result back is in all of these.)
REALobject freshFloor(REALobject self, REALobject other) {
  static REALobject (*volatile make)(const char*) = &newInstance;
  const REALobject made = make("Int128QTX");
  NativeUInt128 a, b;
  std::memcpy(&a, reinterpret_cast<HostObject*>(self)->data, 16);
  std::memcpy(&b, reinterpret_cast<HostObject*>(other)->data, 16);
  a += b;
  std::memcpy(reinterpret_cast<HostObject*>(made)->data, &a, 16);
  return made;
}
// An indirect call and adding a reference.
REALobject cachedFloor(REALobject self, REALobject) {
  static void (*volatile addReference)(REALobject) = &lock;
  addReference(self);
  return self;
}

void runBinary(benchmark::State& state, Binary function, std::int64_t value) {
  HostObject a, b;
  std::memcpy(a.data, &value, 8);
  std::memcpy(b.data, &value, 8);
  benchmark::DoNotOptimize(function);
  for (auto _ : state) {
    unlock(function(reinterpret_cast<REALobject>(&a), reinterpret_cast<REALobject>(&b)));
  }
}
void members() {
  constexpr std::string_view add = "Operator_Add(other as Int128QTX) as Int128QTX";
  benchmark::RegisterBenchmark("add, fresh result",
                               [=](benchmark::State& s) { runBinary(s, operation(add), 1000); });
  benchmark::RegisterBenchmark("add, fresh result vs floor",
                               [](benchmark::State& s) { runBinary(s, &freshFloor, 1000); });
  benchmark::RegisterBenchmark("add, shared result",
                               [=](benchmark::State& s) { runBinary(s, operation(add), 3); });
  benchmark::RegisterBenchmark("add, shared result vs floor",
                               [](benchmark::State& s) { runBinary(s, &cachedFloor, 3); });
}

[[maybe_unused]] const bool registered = [] {
  division("divide 128 by 64 bits", 64);
  division("divide 128 by 60 bits", 60);
  division("divide 128 by 30 bits", 30);
  division("divide 128 by 100 bits", 100);
  format("format 39 digits", 128);
  format("format 19 digits", 62);
  format("format 5 digits", 16);
  parse("parse 39 digits", 128);
  parse("parse 19 digits", 62);
  parse("parse 5 digits", 16);
  root("root of 128 bits", 128);
  root("root of 60 bits", 60);
  powers();
  members();
  return true;
}();

}  // namespace
