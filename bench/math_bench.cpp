// The global functions: currency text, half floats, the normal quantile, random draws, bits and check digits.
#include <benchmark/benchmark.h>
#include <gsl/gsl_cdf.h>
#if defined(__x86_64__)
#include <immintrin.h>
#endif

#include <atomic>
#include <boost/math/distributions/normal.hpp>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "bench_host.h"
#include "math/bits.h"
#include "math/currency.h"
#include "math/half_float.h"
#include "math/luhn.h"
#include "math/normal_quantile.h"
#include "math/random_draws.h"

namespace {

using namespace qtx;

// --- A host that knows nothing but text. ---

struct Text {
  explicit Text(const std::string& text) : bytes(text) {}
  std::string bytes;
  std::atomic<int> references = 1;
};
Text* textOf(REALstring s) { return reinterpret_cast<Text*>(s); }

void lock(REALstring s) { ++textOf(s)->references; }
void unlock(REALstring s) { --textOf(s)->references; }
const char* bytesOf(REALstring s) { return textOf(s)->bytes.c_str(); }
RBInteger lenB(REALstring s) { return static_cast<RBInteger>(textOf(s)->bytes.size()); }
std::uint32_t encodingOf(REALstring) { return encoding::utf8; }
void* loadGlobalMethod(const char*, const char* declaration) {
  return std::string_view(declaration).starts_with("LenB") ? reinterpret_cast<void*>(&lenB) : nullptr;
}

// A global function of the library, loaded into that host.
template <typename Signature>
Signature* find(std::string_view start) {
  bench::offer("REALLockString", &lock);
  bench::offer("REALUnlockString", &unlock);
  bench::offer("StringGetCString", &bytesOf);
  bench::offer("REALGetStringEncoding", &encodingOf);
  bench::offer("REALLoadGlobalMethod", &loadGlobalMethod);
  return bench::function<Signature>(start);
}

// Calls the function, which the compiler cannot see through, on one sample after the other.
template <typename Result, typename Argument, typename Sample>
void overSamples(benchmark::State& state, Result (*function)(Argument), std::vector<Sample>& samples) {
  benchmark::DoNotOptimize(function);
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(function(static_cast<Argument>(samples[i])));
    if (++i == samples.size()) i = 0;
  }
}

// --- Currency text ---

std::vector<std::string> amounts() {
  std::mt19937_64 engine(1);
  std::vector<std::string> all;
  for (int i = 0; i < 1000; ++i) {
    const std::uint64_t count = engine() >> (1 + engine() % 50);
    std::string decimals = std::to_string(10000 + count % 10000).substr(1, 1 + engine() % 4);
    all.push_back((engine() % 4 ? "" : "-") + std::to_string(count / 10000) + "." + decimals);
  }
  return all;
}

void currencyValue(benchmark::State& state, std::int64_t (*function)(REALstring)) {
  std::vector<REALstring> texts;
  static std::deque<Text> storage;
  for (const std::string& amount : amounts()) storage.emplace_back(amount);
  for (Text& text : storage) texts.push_back(reinterpret_cast<REALstring>(&text));
  overSamples(state, function, texts);
}

// The calls of the host that one text takes, through pointers, and nothing else.
struct HostCalls {
  void (*lock)(REALstring) = &::lock;
  std::uint32_t (*encoding)(REALstring) = &encodingOf;
  const char* (*bytes)(REALstring) = &bytesOf;
  RBInteger (*length)(REALstring) = &lenB;
  void (*unlock)(REALstring) = &::unlock;
} volatile hostCalls;

std::int64_t hostCallsAlone(REALstring text) {
  hostCalls.lock(text);
  std::int64_t sum = hostCalls.encoding(text);
  sum += *hostCalls.bytes(text) + hostCalls.length(text);
  hostCalls.unlock(text);
  return sum;
}

void currencyBinding(benchmark::State& state) {
  currencyValue(state, find<std::int64_t(REALstring)>("CurrencyValueQTX("));
}
void currencyFloor(benchmark::State& state) { currencyValue(state, &hostCallsAlone); }
BENCHMARK(currencyBinding)->Name("CurrencyValueQTX");
BENCHMARK(currencyFloor)->Name("CurrencyValueQTX vs the host's calls alone");

std::int64_t parseOwn(const std::string& text) { return parseCurrency(text).count; }
double parseFromChars(const std::string& text) {
  double value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}
double parseStrtod(const std::string& text) { return std::strtod(text.c_str(), nullptr); }

template <typename Result>
void parse(benchmark::State& state, Result (*function)(const std::string&)) {
  static std::vector<std::string> texts = amounts();
  overSamples(state, function, texts);
}
BENCHMARK_CAPTURE(parse, own, &parseOwn)->Name("parse currency");
BENCHMARK_CAPTURE(parse, fromChars, &parseFromChars)->Name("parse currency vs std::from_chars");
BENCHMARK_CAPTURE(parse, strtod, &parseStrtod)->Name("parse currency vs strtod");

// --- Half floats ---

std::vector<float> singles() {
  std::mt19937_64 engine(2);
  std::lognormal_distribution<float> magnitude(0, 2);
  std::vector<float> all;
  for (int i = 0; i < 1000; ++i) all.push_back(engine() % 2 ? magnitude(engine) : -magnitude(engine));
  return all;
}
std::vector<std::uint16_t> halves() {
  std::vector<std::uint16_t> all;
  for (const float single : singles()) all.push_back(toHalf(single));
  return all;
}

void narrow(benchmark::State& state, std::uint16_t (*function)(float)) {
  static std::vector<float> samples = singles();
  overSamples(state, function, samples);
}
void widen(benchmark::State& state, float (*function)(std::uint16_t)) {
  static std::vector<std::uint16_t> samples = halves();
  overSamples(state, function, samples);
}
void ownNarrow(benchmark::State& state) { narrow(state, find<std::uint16_t(float)>("ConvertToFloat16QTX(")); }
void ownWiden(benchmark::State& state) { widen(state, find<float(std::uint16_t)>("ConvertFromFloat16QTX(")); }
BENCHMARK(ownNarrow)->Name("ConvertToFloat16QTX");
BENCHMARK(ownWiden)->Name("ConvertFromFloat16QTX");
#if defined(__x86_64__)
__attribute__((target("f16c"))) std::uint16_t hardwareNarrow(float x) {
  return static_cast<std::uint16_t>(_cvtss_sh(x, _MM_FROUND_TO_ZERO));
}
__attribute__((target("f16c"))) float hardwareWiden(std::uint16_t half) { return _cvtsh_ss(half); }
BENCHMARK_CAPTURE(narrow, hardware, &hardwareNarrow)->Name("ConvertToFloat16QTX vs F16C");
BENCHMARK_CAPTURE(widen, hardware, &hardwareWiden)->Name("ConvertFromFloat16QTX vs F16C");
#endif

// --- The normal quantile ---

void quantile(benchmark::State& state, double (*function)(double)) {
  static std::vector<double> samples = [] {
    std::mt19937_64 engine(3);
    std::uniform_real_distribution<double> uniform(1e-9, 1);
    std::vector<double> all(1000);
    for (double& p : all) p = uniform(engine);
    return all;
  }();
  overSamples(state, function, samples);
}
double boostQuantile(double p) {
  return boost::math::quantile(boost::math::normal_distribution<double>(), p);
}
BENCHMARK_CAPTURE(quantile, own, &normalQuantile)->Name("NormInv");
BENCHMARK_CAPTURE(quantile, boost, &boostQuantile)->Name("NormInv vs Boost.Math");
BENCHMARK_CAPTURE(quantile, gsl, &gsl_cdf_ugaussian_Pinv)->Name("NormInv vs GSL");

// --- Random draws: the standard's distributions, as fresh for each draw, on a bare std::mt19937. ---

template <typename Draw>
void drawOwn(benchmark::State& state, Draw draw) {
  RandomDraws draws(4);
  for (auto _ : state) benchmark::DoNotOptimize(draw(draws));
}
template <typename Draw>
void drawStandard(benchmark::State& state, Draw draw) {
  std::mt19937 engine(4);
  for (auto _ : state) benchmark::DoNotOptimize(draw(engine));
}
void normalOwn(benchmark::State& state) {
  drawOwn(state, [](RandomDraws& draws) { return draws.normal(1, 2); });
}
void normalStandard(benchmark::State& state) {
  drawStandard(state, [](std::mt19937& engine) { return std::normal_distribution<double>(1, 2)(engine); });
}
void exponentialOwn(benchmark::State& state) {
  drawOwn(state, [](RandomDraws& draws) { return draws.exponential(2); });
}
void exponentialStandard(benchmark::State& state) {
  drawStandard(state, [](std::mt19937& engine) { return std::exponential_distribution<double>(2)(engine); });
}
template <int mean>
void poissonOwn(benchmark::State& state) {
  drawOwn(state, [](RandomDraws& draws) { return draws.poisson(mean); });
}
template <int mean>
void poissonStandard(benchmark::State& state) {
  drawStandard(state, [](std::mt19937& engine) { return std::poisson_distribution<int>(mean)(engine); });
}
BENCHMARK(normalOwn)->Name("normal draw");
BENCHMARK(normalStandard)->Name("normal draw vs std::normal_distribution");
BENCHMARK(exponentialOwn)->Name("exponential draw");
BENCHMARK(exponentialStandard)->Name("exponential draw vs std::exponential_distribution");
BENCHMARK(poissonOwn<4>)->Name("Poisson draw, mean 4");
BENCHMARK(poissonStandard<4>)->Name("Poisson draw, mean 4 vs std::poisson_distribution");
BENCHMARK(poissonOwn<100>)->Name("Poisson draw, mean 100");
BENCHMARK(poissonStandard<100>)->Name("Poisson draw, mean 100 vs std::poisson_distribution");

// --- Check digits and rotation, beside the plain loops. ---

bool luhnOwn(const std::string& number) { return passesLuhn(number); }
bool luhnLoop(const std::string& number) {
  int sum = 0;
  bool twice = false;
  for (std::size_t i = number.size(); i-- > 0; twice = !twice) {
    if (number[i] < '0' || number[i] > '9') return false;
    int digit = number[i] - '0';
    if (twice) digit = digit * 2 > 9 ? digit * 2 - 9 : digit * 2;
    sum += digit;
  }
  return sum % 10 == 0;
}
void luhn(benchmark::State& state, bool (*function)(const std::string&)) {
  static std::vector<std::string> numbers = [] {
    std::mt19937_64 engine(5);
    std::vector<std::string> all(1000);
    for (std::string& number : all) number = std::to_string(1000000000000000 + engine() % 9000000000000000);
    return all;
  }();
  overSamples(state, function, numbers);
}
BENCHMARK_CAPTURE(luhn, own, &luhnOwn)->Name("Luhn check");
BENCHMARK_CAPTURE(luhn, loop, &luhnLoop)->Name("Luhn check vs a plain loop");

struct Rotation {
  std::uint64_t value;
  std::int64_t count, offset, width;
};
std::uint64_t rotateOwn(const Rotation& r) { return rotateField(r.value, r.count, r.offset, r.width); }
std::uint64_t rotateLoop(const Rotation& r) {
  std::uint64_t result = r.value;
  for (std::int64_t i = 0; i < r.width; ++i) {
    const std::int64_t to = r.offset + ((i + r.count) % r.width + r.width) % r.width;
    const std::uint64_t bit = r.value >> (r.offset + i) & 1;
    result = (result & ~(std::uint64_t{1} << to)) | bit << to;
  }
  return result;
}
void rotate(benchmark::State& state, std::uint64_t (*function)(const Rotation&)) {
  static std::vector<Rotation> rotations = [] {
    std::mt19937_64 engine(6);
    std::vector<Rotation> all(1000);
    for (Rotation& each : all) {
      const auto offset = static_cast<std::int64_t>(engine() % 24);
      each = {engine(), static_cast<std::int64_t>(engine() % 64) - 32, offset,
              2 + static_cast<std::int64_t>(engine() % static_cast<std::uint64_t>(31 - offset))};
    }
    return all;
  }();
  overSamples(state, function, rotations);
}
BENCHMARK_CAPTURE(rotate, own, &rotateOwn)->Name("BitwiseRotate");
BENCHMARK_CAPTURE(rotate, loop, &rotateLoop)->Name("BitwiseRotate vs a loop over the bits");

}  // namespace
