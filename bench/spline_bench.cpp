// The spline beside its peers: GSL's natural cubic and Steffen splines with accelerator, and Boost's PCHIP.
// Evaluation at random x and construction, over n points; time is per evaluation and per construction.
#include <benchmark/benchmark.h>
#include <gsl/gsl_spline.h>
#include <math.h>  // Boost 1.74 wants isnan in the global namespace

#include <algorithm>
#include <boost/math/interpolators/pchip.hpp>
#include <random>
#include <vector>

#include "spline/constrained_spline.h"
#include "spline/knot_index.h"

namespace {

struct Points {
  std::vector<double> x, y;
};

// Irregularly spaced, mostly rising.
Points pointsOf(std::size_t n) {
  std::mt19937_64 engine(n);
  std::uniform_real_distribution<double> step(0.1, 2.0), rise(-0.5, 2.0);
  Points points{std::vector<double>(n), std::vector<double>(n)};
  double x = 0, y = 0;
  for (std::size_t i = 0; i < n; ++i) {
    points.x[i] = x += step(engine);
    points.y[i] = y += rise(engine);
  }
  return points;
}

// Enough of them that the branch predictor cannot learn their order.
std::vector<double> coordinatesIn(const Points& points) {
  std::mt19937_64 engine(7);
  std::uniform_real_distribution<double> anywhere(points.x.front(), points.x.back());
  std::vector<double> coordinates(1 << 16);
  for (double& x : coordinates) x = anywhere(engine);
  return coordinates;
}

// Each peer is a curve made from points, called with x.
class Constrained {
 public:
  explicit Constrained(const Points& points) : curve_(points.x.data(), points.y.data(), points.x.size()) {}
  double operator()(double x) const { return curve_(x); }

 private:
  qtx::ConstrainedSpline curve_;
};

template <const gsl_interp_type* const& type>
class Gsl {
 public:
  explicit Gsl(const Points& points)
      : curve_(gsl_spline_alloc(type, points.x.size())), accelerator_(gsl_interp_accel_alloc()) {
    gsl_spline_init(curve_, points.x.data(), points.y.data(), points.x.size());
  }
  ~Gsl() {
    gsl_spline_free(curve_);
    gsl_interp_accel_free(accelerator_);
  }
  Gsl(const Gsl&) = delete;
  Gsl& operator=(const Gsl&) = delete;
  double operator()(double x) const { return gsl_spline_eval(curve_, x, accelerator_); }

 private:
  gsl_spline* curve_;
  gsl_interp_accel* accelerator_;
};

// Takes its points over, so each construction begins with a copy, as GSL's does inside.
class BoostPchip {
 public:
  explicit BoostPchip(const Points& points)
      : curve_(std::vector<double>(points.x), std::vector<double>(points.y)) {}
  double operator()(double x) const { return curve_(x); }

 private:
  boost::math::interpolators::pchip<std::vector<double>> curve_;
};

template <typename Curve>
void evaluate(benchmark::State& state) {
  const Points points = pointsOf(static_cast<std::size_t>(state.range(0)));
  const std::vector<double> coordinates = coordinatesIn(points);
  const Curve curve(points);
  std::size_t i = 0;
  for (auto _ : state) benchmark::DoNotOptimize(curve(coordinates[i++ % coordinates.size()]));
}

template <typename Curve>
void construct(benchmark::State& state) {
  const Points points = pointsOf(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    const Curve curve(points);
    benchmark::DoNotOptimize(&curve);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

// The share of the construction that the search structure takes, for points in order and in disorder.
template <bool shuffled>
void constructIndex(benchmark::State& state) {
  Points points = pointsOf(static_cast<std::size_t>(state.range(0)));
  if (shuffled) std::shuffle(points.x.begin(), points.x.end(), std::mt19937_64(1));
  std::vector<double> maxima(qtx::KnotIndex(points.x.size()).size());
  for (auto _ : state) {
    qtx::KnotIndex index(points.x.size());
    index.fill(points.x.data(), maxima.data());
    benchmark::DoNotOptimize(&index);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void forEachSize(const char* name, void (*run)(benchmark::State&)) {
  auto* const bench = benchmark::RegisterBenchmark(name, run);
  for (const std::int64_t n : {10, 1'000, 100'000, 1'000'000}) bench->Arg(n);
}

const bool registered = [] {
  forEachSize("calc", evaluate<Constrained>);
  forEachSize("calc vs GSL cspline", evaluate<Gsl<gsl_interp_cspline>>);
  forEachSize("calc vs GSL steffen", evaluate<Gsl<gsl_interp_steffen>>);
  forEachSize("calc vs Boost pchip", evaluate<BoostPchip>);
  forEachSize("construction", construct<Constrained>);
  forEachSize("construction vs GSL cspline", construct<Gsl<gsl_interp_cspline>>);
  forEachSize("construction vs GSL steffen", construct<Gsl<gsl_interp_steffen>>);
  forEachSize("construction vs Boost pchip", construct<BoostPchip>);
  forEachSize("search index", constructIndex<false>);
  forEachSize("search index vs construction", construct<Constrained>);
  forEachSize("search index of shuffled knots", constructIndex<true>);
  forEachSize("search index of shuffled knots vs construction", construct<Constrained>);
  return true;
}();

}  // namespace
