// What the frame costs: a call through a record, an atomic counter, loading, and tracing while it is off.
#include <benchmark/benchmark.h>

#include <atomic>
#include <bit>
#include <cmath>
#include <cstring>
#include <string_view>

#include "bench_host.h"
#include "frame/debug_log.h"

namespace {

void runMath(benchmark::State& state, double (*function)(double)) {
  benchmark::DoNotOptimize(function);
  double x = 0.75;
  for (auto _ : state) {
    benchmark::DoNotOptimize(x);
    benchmark::DoNotOptimize(function(x));
  }
}
void runRegistered(benchmark::State& state, std::string_view name) {
  runMath(state, bench::function<double(double)>(name));
}
BENCHMARK_CAPTURE(runRegistered, floor, "FloorQTX(")->Name("FloorQTX");
BENCHMARK_CAPTURE(runMath, floor, &std::floor)->Name("FloorQTX vs floor");
BENCHMARK_CAPTURE(runRegistered, sin, "SinQTX(")->Name("SinQTX");
BENCHMARK_CAPTURE(runMath, sin, &std::sin)->Name("SinQTX vs sin");

alignas(16) char object[64];

void increment(benchmark::State& state) {
  auto* function = bench::method<std::int64_t(REALobject)>("AtomicIntegerQTX", "Increment");
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
  bench::load();
  for (auto _ : state) REALPluginMain(&bench::resolve);
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
