// Global functions of numbers, and the atomic counter.
#include <Imath/half.h>
#include <gsl/gsl_cdf.h>

#include <atomic>
#include <bit>
#include <boost/math/distributions/normal.hpp>
#include <cmath>
#include <random>

#include "limits.h"
#include "subjects.h"

namespace bench {
namespace {

constexpr std::size_t sampleCount = 1000;

// --- Half floats: all within their range, where truncating is rounding toward zero. ---

float randomSingle(std::mt19937_64& engine) {
  std::lognormal_distribution<float> magnitude(0, 2);
  const float value = std::fmin(magnitude(engine), 60000.0f);
  return engine() % 2 ? value : -value;
}
std::uint16_t randomHalf(std::mt19937_64& engine) {
  return static_cast<std::uint16_t>((engine() % 0x7C00) | (engine() % 2) << 15);  // any finite one
}
Inputs<float> singles() {
  return inputs<float>(sampleCount, [engine = std::mt19937_64(2)]() mutable { return randomSingle(engine); });
}
// Those that need no rounding, about which a rounding peer agrees.
Inputs<float> exactSingles() {
  return inputs<float>(sampleCount, [engine = std::mt19937_64(3)]() mutable {
    return imath_half_to_float(randomHalf(engine));
  });
}
Inputs<std::uint16_t> halves() {
  return inputs<std::uint16_t>(sampleCount,
                               [engine = std::mt19937_64(3)]() mutable { return randomHalf(engine); });
}
float widenByImath(std::uint16_t half) { return imath_half_to_float(half); }
std::uint16_t narrowByImath(float value) { return imath_float_to_half(value); }

// --- Bits ---

Inputs<std::uint64_t> words() { return inputs<std::uint64_t>(sampleCount, std::mt19937_64(4)); }
RBInteger countByStandard(std::uint64_t value) { return std::popcount(static_cast<std::uint32_t>(value)); }

Inputs<std::uint64_t, RBInteger, RBInteger, RBInteger> rotations() {
  std::mt19937_64 engine(6);
  std::vector<std::tuple<std::uint64_t, RBInteger, RBInteger, RBInteger>> all;
  for (std::size_t i = 0; i < sampleCount; ++i) {
    const auto offset = static_cast<RBInteger>(engine() % 24);
    const auto width = 2 + static_cast<RBInteger>(engine() % static_cast<std::uint64_t>(31 - offset));
    all.emplace_back(engine(), static_cast<RBInteger>(engine() % 64) - 32, offset, width);
  }
  return inputs(std::move(all));
}
std::uint64_t rotatePlainly(std::uint64_t value, RBInteger count, RBInteger offset, RBInteger width) {
  RBInteger bits = width + std::min<RBInteger>(offset, 0);
  const RBInteger start = std::max<RBInteger>(offset, 0);
  if (bits + start > 32) bits = 32 - start;
  if (count == 0 || bits < 2) return value;
  const RBInteger right = ((-count % bits) + bits) % bits;
  const std::uint64_t mask = ((std::uint64_t{1} << bits) - 1) << start;
  const std::uint64_t field = value & mask;
  return (((field >> right) | (field << (bits - right))) & mask) | (value & ~mask);
}

// --- Elementary functions ---

Inputs<double> coordinates() {
  return inputs<double>(sampleCount, [engine = std::mt19937_64(7)]() mutable {
    return std::uniform_real_distribution<double>(-100, 100)(engine);
  });
}
double floorOfLibrary(double x) { return std::floor(x); }
double sinOfLibrary(double x) { return std::sin(x); }

// --- The normal quantile ---

Inputs<double, double, double> probabilities() {
  std::mt19937_64 engine(3);
  std::uniform_real_distribution<double> uniform(1e-9, 1);
  std::vector<std::tuple<double, double, double>> all;
  for (std::size_t i = 0; i < sampleCount; ++i) all.emplace_back(uniform(engine), 0.0, 1.0);
  return inputs(std::move(all));
}
double quantileByGsl(double p, double mu, double sigma) { return sigma * gsl_cdf_ugaussian_Pinv(p) + mu; }
double quantileByBoost(double p, double mu, double sigma) {
  return boost::math::quantile(boost::math::normal_distribution<double>(mu, sigma), p);
}

// Acklam's approximation and one step of Halley's method, without a look at the far ends.
double quantileByFormula(double p, double mu, double sigma) {
  static constexpr double a[] = {-39.69683028665376, 220.9460984245205,  -275.9285104469687,
                                 138.3577518672690,  -30.66479806614716, 2.506628277459239};
  static constexpr double b[] = {-54.47609879822406, 161.5858368580409,  -155.6989798598866,
                                 66.80131188771972,  -13.28068155288572, 1};
  static constexpr double c[] = {-0.007784894002430293, -0.3223964580411365, -2.400758277161838,
                                 -2.549732539343734,    4.374664141464968,   2.938163982698783};
  static constexpr double d[] = {
      0, 0.007784695709041462, 0.3224671290700398, 2.445134137142996, 3.754408661907416, 1};
  const auto polynomial = [](const double(&k)[6], double x) {
    return ((((k[0] * x + k[1]) * x + k[2]) * x + k[3]) * x + k[4]) * x + k[5];
  };
  double q;
  if (p < 0.02425 || p > 0.97575) {
    const double t = std::sqrt(-2 * std::log(p < 0.5 ? p : 1 - p));
    q = polynomial(c, t) / polynomial(d, t);
    if (p > 0.5) q = -q;
  } else {
    const double r = p - 0.5, s = r * r;
    q = polynomial(a, s) * r / polynomial(b, s);
  }
  const double e = 0.5 * std::erfc(-q / 1.4142135623730951) - p;
  const double u = e * 2.5066282746310002 * std::exp(q * q / 2);
  return sigma * (q - u / (1 + q * u / 2)) + mu;
}

// --- Random draws. What is compared is the mean of many. ---

std::mt19937& engine() {
  static std::mt19937 all(4);
  return all;
}
template <typename Result, typename... Arguments>
Contender drawing(std::string name, Result (*draw)(Arguments...), std::tuple<Arguments...> arguments) {
  const auto once = inputs(std::vector{arguments});
  Contender all = contender(std::move(name), opaque(draw), once, once);
  all.result = [draw, arguments](std::size_t) {
    constexpr int count = 40000;
    double sum = 0;
    for (int i = 0; i < count; ++i) sum += static_cast<double>(std::apply(draw, arguments));
    return inWords(sum / count);
  };
  return all;
}
// A distribution kept from draw to draw, or made for each, which is prescribed; both on a generator without a
// lock.
template <typename Result, typename... Arguments>
Subject draws(std::string name, std::string declaration, std::tuple<Arguments...> arguments,
              Result (*kept)(Arguments...), Result (*anew)(Arguments...), double tolerance) {
  return {.name = std::move(name),
          .contenders =
              [=] {
                return std::vector{drawing("own", function<Result(Arguments...)>(declaration), arguments),
                                   drawing("std (kept)", kept, arguments), drawing("std", anew, arguments)};
              },
          .same = within(tolerance),
          .prescribed = true};
}

double normalKept(double mean, double deviation) {
  static std::normal_distribution<double> all(mean, deviation);
  return all(engine());
}
double normalAnew(double mean, double deviation) {
  return std::normal_distribution<double>(mean, deviation)(engine());
}
double exponentialKept(double lambda) {
  static std::exponential_distribution<double> all(lambda);
  return all(engine());
}
double exponentialAnew(double lambda) { return std::exponential_distribution<double>(lambda)(engine()); }
template <RBInteger mean>
RBInteger poissonKept(RBInteger) {
  static std::poisson_distribution<std::int32_t> all(mean);
  return all(engine());
}
RBInteger poissonAnew(RBInteger mean) {
  return std::poisson_distribution<std::int32_t>(static_cast<double>(mean))(engine());
}

// --- The atomic counter ---

std::int64_t incrementByStandard(REALobject self) {
  return reinterpret_cast<std::atomic<std::int64_t>*>(dataOf(self))->fetch_add(1);
}
std::vector<Contender> counters() {
  std::vector<Contender> all;
  for (const auto& each : std::vector<Named<std::int64_t(REALobject)>>{
           {"own", method<std::int64_t(REALobject)>("AtomicIntegerQTX", "Increment")},
           {"std::atomic", &incrementByStandard},
           {"limit", &limits::increment}}) {
    const auto counter = inputs(std::vector{std::tuple(host.newInstance("AtomicIntegerQTX"))});
    all.push_back(contender(each.name, opaque(each.function), counter, counter));
  }
  return all;
}

}  // namespace

std::vector<Subject> mathSubjects() {
  Subject quantile = functionSubject<double, double, double, double>(
      "NormInvQTX", "NormInvQTX(", &probabilities,
      {{"GSL", &quantileByGsl}, {"Boost", &quantileByBoost}, {"limit", &quantileByFormula}});
  quantile.same = within(1e-9);
  quantile.prescribed = true;
  return {
      functionSubject<float, std::uint16_t>("ConvertFromFloat16QTX", "ConvertFromFloat16QTX(", &halves,
                                            {{"Imath", &widenByImath}, {"limit", &limits::fromHalf}}),
      functionSubject<std::uint16_t, float>("ConvertToFloat16QTX", "ConvertToFloat16QTX(", &singles,
                                            {{"Imath", &narrowByImath}, {"limit", &limits::toHalf}},
                                            &exactSingles),
      functionSubject<RBInteger, std::uint64_t>(
          "BitCountQTX", "BitCountQTX(", &words,
          {{"std::popcount", &countByStandard}, {"limit", &limits::bitCount}}),
      functionSubject<std::uint64_t, std::uint64_t, RBInteger, RBInteger, RBInteger>(
          "BitwiseRotateQTX", "BitwiseRotateQTX(", &rotations,
          {{"plain function", &rotatePlainly}, {"limit", &limits::rotate}}),
      functionSubject<double, double>("FloorQTX", "FloorQTX(", &coordinates,
                                      {{"std::floor", &floorOfLibrary}, {"limit", &limits::floor}}),
      functionSubject<double, double>("SinQTX", "SinQTX(", &coordinates, {{"std::sin", &sinOfLibrary}}),
      std::move(quantile),
      draws<double, double, double>("RandomNormalDistributionQTX", "RandomNormalDistributionQTX(", {1.0, 2.0},
                                    &normalKept, &normalAnew, 0.1),
      draws<double, double>("RandomExponentialDistributionQTX", "RandomExponentialDistributionQTX(", {2.0},
                            &exponentialKept, &exponentialAnew, 0.03),
      draws<RBInteger, RBInteger>("RandomPoissonDistributionQTX, mean 4", "RandomPoissonDistributionQTX(",
                                  {4}, &poissonKept<4>, &poissonAnew, 0.03),
      draws<RBInteger, RBInteger>("RandomPoissonDistributionQTX, mean 100", "RandomPoissonDistributionQTX(",
                                  {100}, &poissonKept<100>, &poissonAnew, 0.01),
      {.name = "AtomicIntegerQTX.Increment", .contenders = &counters},
  };
}

}  // namespace bench
