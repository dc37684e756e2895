// What the frame costs: a call through a record, an atomic counter, loading, and tracing while it is off.
#include <benchmark/benchmark.h>

#include <atomic>
#include <bit>
#include <cmath>
#include <cstring>
#include <string_view>
#include <vector>

#include "frame/debug_log.h"
#include "frame/host_interface.h"

extern "C" void REALPluginMain(REALresolver resolver);

namespace {

// A host that takes what is registered and offers nothing else.
std::vector<REALclassDefinition*> classes;
REALmoduleDefinition* module = nullptr;

void* resolve(const char* name) {
  const std::string_view wanted = name;
  const auto offer = [](auto* function) { return reinterpret_cast<void*>(function); };
  if (wanted == "REALGetRBVersion") return offer(+[] { return 2024.01; });
  if (wanted == "RegisterPluginVersion") return offer(+[](std::int32_t) {});
  if (wanted == "PluginRegisterClass") {
    return offer(+[](REALclassDefinition* record) {
      record->dataOffset = 32;
      classes.push_back(record);
    });
  }
  if (wanted == "PluginRegisterModule") return offer(+[](REALmoduleDefinition* record) { module = record; });
  return nullptr;
}

// Not during static initialisation, when the records may not be there yet.
void load() {
  if (classes.empty()) REALPluginMain(&resolve);
}

template <typename Signature>
Signature* find(const REALmethodDefinition* records, std::size_t count, std::string_view name) {
  for (std::size_t i = 0; i < count; ++i) {
    if (std::string_view(records[i].declaration).starts_with(name)) {
      return reinterpret_cast<Signature*>(records[i].function);
    }
  }
  return nullptr;
}

void runMath(benchmark::State& state, double (*function)(double)) {
  benchmark::DoNotOptimize(function);
  double x = 0.75;
  for (auto _ : state) {
    benchmark::DoNotOptimize(x);
    benchmark::DoNotOptimize(function(x));
  }
}
void runRegistered(benchmark::State& state, std::string_view name) {
  load();
  runMath(state, find<double(double)>(module->methods, module->methodCount, name));
}
BENCHMARK_CAPTURE(runRegistered, floor, "FloorQTX(")->Name("FloorQTX");
BENCHMARK_CAPTURE(runMath, floor, &std::floor)->Name("FloorQTX vs floor");
BENCHMARK_CAPTURE(runRegistered, sin, "SinQTX(")->Name("SinQTX");
BENCHMARK_CAPTURE(runMath, sin, &std::sin)->Name("SinQTX vs sin");

alignas(16) char object[64];

void increment(benchmark::State& state) {
  load();
  auto* function = find<std::int64_t(REALobject)>(classes[0]->methods, classes[0]->methodCount, "Increment");
  benchmark::DoNotOptimize(function);
  for (auto _ : state) benchmark::DoNotOptimize(function(reinterpret_cast<REALobject>(object)));
}
BENCHMARK(increment)->Name("Increment");

std::int64_t incrementStandard(std::atomic<std::int64_t>* counter) { return counter->fetch_add(1); }
void incrementPeer(benchmark::State& state) {
  std::atomic<std::int64_t> counter{0};
  auto* function = &incrementStandard;
  benchmark::DoNotOptimize(function);
  for (auto _ : state) benchmark::DoNotOptimize(function(&counter));
}
BENCHMARK(incrementPeer)->Name("Increment vs std::atomic");

// The whole of loading but the dynamic linker's part. Every round leaves its module record behind.
void loading(benchmark::State& state) {
  for (auto _ : state) {
    classes.clear();
    REALPluginMain(&resolve);
  }
}
BENCHMARK(loading)->Name("REALPluginMain")->Iterations(500);

__attribute__((noinline)) int untraced(std::uint64_t value) {
  return std::popcount(value * 0x9E3779B97F4A7C15);
}
__attribute__((noinline)) int traced(std::uint64_t value) {
  qtx::Trace("PopCount");
  return std::popcount(value * 0x9E3779B97F4A7C15);
}
void runPopCount(benchmark::State& state, int (*function)(std::uint64_t)) {
  benchmark::DoNotOptimize(function);
  std::uint64_t value = 12345;
  for (auto _ : state) {
    benchmark::DoNotOptimize(value);
    benchmark::DoNotOptimize(function(value));
  }
}
BENCHMARK_CAPTURE(runPopCount, traced, &traced)->Name("tracing off");
BENCHMARK_CAPTURE(runPopCount, untraced, &untraced)->Name("tracing off vs no tracing");

}  // namespace
