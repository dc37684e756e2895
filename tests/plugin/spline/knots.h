// Knots of many kinds, and coordinates around them.
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <random>
#include <vector>

namespace qtx {

inline constexpr double infinity = std::numeric_limits<double>::infinity();
inline constexpr double nan = std::numeric_limits<double>::quiet_NaN();

using Values = std::vector<double>;

class Generator {
 public:
  explicit Generator(std::uint64_t seed) : engine_(seed) {}
  std::size_t below(std::size_t limit) { return engine_() % limit; }
  double anywhere() { return std::uniform_real_distribution<double>(-100, 100)(engine_); }
  // Any bit pattern, so any exponent, infinities and NaN.
  double anyBits() { return std::bit_cast<double>(engine_()); }

  enum class Kind { ascending, equalRuns, descending, shuffled, fewValues, withSpecials, anyBits, allNaN };
  static constexpr int kinds = 8;
  Values knots(Kind kind, std::size_t n) {
    Values values(n);
    for (double& value : values) {
      value = kind == Kind::fewValues || kind == Kind::equalRuns ? static_cast<double>(below(5))
              : kind == Kind::anyBits                            ? anyBits()
              : kind == Kind::allNaN                             ? nan
                                                                 : anywhere();
    }
    if (kind == Kind::ascending || kind == Kind::equalRuns || kind == Kind::withSpecials) {
      std::sort(values.begin(), values.end());
    }
    if (kind == Kind::descending) std::sort(values.begin(), values.end(), std::greater<>());
    if (kind == Kind::withSpecials) {
      const double specials[] = {infinity, -infinity, nan, 0.0, -0.0};
      for (double& value : values) {
        if (below(20) == 0) value = specials[below(5)];
      }
    }
    return values;
  }

 private:
  std::mt19937_64 engine_;
};

// Ascending knots on which arithmetic with their range goes as wrong as it can.
enum class Hard {
  even,          // each knot at a border between two
  decades,       // 600 of them: nearly all knots close to the first
  clustered,     // most of them neighbouring doubles in one place
  neighbours,    // all of them neighbouring doubles
  largeOffset,   // neighbouring doubles far from zero
  denormal,      // multiples of the least double
  aroundZero,    // of both signs, with both zeros
  equalRuns,     // several at each place
  allEqual,      // no range at all
  wholeRange,    // from one end of the doubles to the other: the range is infinite
  largestRange,  // that is still a double
  outlierRight,  // one knot far right of the others
  outlierLeft,
  anyBits,  // of all exponents
  infiniteEnds,
};
inline constexpr int hardKinds = 15;

inline Values hardKnots(Hard kind, std::size_t n, Generator& generator) {
  constexpr double least = std::numeric_limits<double>::denorm_min();
  constexpr double greatest = std::numeric_limits<double>::max();
  Values x(n);
  for (std::size_t i = 0; i < n; ++i) {
    const auto at = static_cast<double>(i);
    const auto last = static_cast<double>(n - 1);
    const auto neighbour = [&](double start) {
      return std::bit_cast<double>(std::bit_cast<std::uint64_t>(start) + i);
    };
    switch (kind) {
      case Hard::even:
        x[i] = at;
        break;
      case Hard::decades:
        x[i] = std::pow(10.0, -300 + 600 * at / last);
        break;
      case Hard::clustered:
        x[i] = i < n / 10 ? at / last : i < n - n / 10 ? neighbour(2.0) : 3 + at / last;
        break;
      case Hard::neighbours:
        x[i] = neighbour(1.0);
        break;
      case Hard::largeOffset:
        x[i] = neighbour(1e16);
        break;
      case Hard::denormal:
        x[i] = at * least;
        break;
      case Hard::aroundZero:
        x[i] = (at - std::floor(last / 2)) * least;
        break;
      case Hard::equalRuns:
        x[i] = std::floor(at / 5);
        break;
      case Hard::allEqual:
        x[i] = 7;
        break;
      case Hard::wholeRange:
        x[i] = greatest * (2 * (at / last) - 1);
        break;
      case Hard::largestRange:
        x[i] = greatest * (at / last - 0.5);
        break;
      case Hard::outlierRight:
        x[i] = i + 1 < n ? at / last : 1e300;
        break;
      case Hard::outlierLeft:
        x[i] = i > 1 ? at / last : -1e300;
        break;
      case Hard::anyBits:
        do {
          x[i] = generator.anyBits();
        } while (!std::isfinite(x[i]));
        break;
      case Hard::infiniteEnds:
        x[i] = i < 2 ? -infinity : i + 1 < n ? at : infinity;
        break;
    }
  }
  if (kind == Hard::anyBits) std::sort(x.begin(), x.end());
  if (kind == Hard::aroundZero && n > 4) x[(n - 1) / 2] = n % 2 ? -0.0 : 0.0;
  return x;
}

// The knots, the places where buckets of equal width over their range would end, and the doubles beside them.
inline Values bordersOf(const Values& x, Generator& generator, std::size_t most) {
  Values coordinates{infinity, -infinity, nan, -nan, 0.0, -0.0, 1e308, -1e308, 5e-324, -5e-324};
  const auto add = [&](double at) {
    for (const double near : {at, std::nextafter(at, infinity), std::nextafter(at, -infinity)}) {
      coordinates.push_back(near);
    }
  };
  const std::size_t n = x.size();
  const std::size_t buckets = (n - 1) / 2 + 1;
  for (std::size_t i = 0; i < std::min(n, most); ++i) {
    const std::size_t knot = n <= most ? i : generator.below(n);
    add(x[knot]);
    if (knot > 0) coordinates.push_back(x[knot - 1] / 2 + x[knot] / 2);
    const auto bucket = static_cast<double>(n <= most ? i : generator.below(buckets + 1));
    add(x[1] + bucket * ((x[n - 1] - x[1]) / static_cast<double>(buckets)));
  }
  for (int i = 0; i < 20; ++i) coordinates.push_back(generator.anyBits());
  return coordinates;
}

inline Values coordinatesAround(const Values& x, Generator& generator) {
  Values coordinates{infinity, -infinity, nan, -nan, 0.0, -0.0, 1e308, -1e308, generator.anyBits()};
  for (int i = 0; i < 40; ++i) {
    const double knot = x[generator.below(x.size())];
    for (const double at :
         {knot, std::nextafter(knot, infinity), std::nextafter(knot, -infinity), generator.anywhere()}) {
      coordinates.push_back(at);
    }
  }
  return coordinates;
}

}  // namespace qtx
