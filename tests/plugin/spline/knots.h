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
