// The spline: its construction from the host's arrays, and its values at random and at rising x. The peers
// draw other curves through the same points, so that values are compared at the points.
#include <gsl/gsl_interp.h>
#include <math.h>  // Boost 1.74 wants isnan in the global namespace

#include <algorithm>
#include <boost/math/interpolators/pchip.hpp>
#include <limits>
#include <memory>
#include <optional>
#include <random>

#include "limits.h"
#include "subjects.h"

namespace bench {
namespace {

// What makes a curve of points, in place of the one before, and gives its values; all as the host calls it.
struct CurveKind {
  const char* name;
  REALobject (*make)();
  void (*destroy)(REALobject);
  void (*construct)(REALobject, REALarrayDouble, REALarrayDouble);
  double (*valueAt)(REALobject, double);
  bool isPeer;
};

CurveKind ownKind() {
  return {"own",
          [] { return host.newInstance("SplineQTX"); },
          host.unlockObject,
          method<void(REALobject, REALarrayDouble, REALarrayDouble)>("SplineQTX", "Constructor("),
          method<double(REALobject, double)>("SplineQTX", "calc("),
          false};
}
template <typename Curve>
CurveKind kind(const char* name, bool isPeer = true) {
  return {name,
          [] { return reinterpret_cast<REALobject>(new Curve); },
          [](REALobject self) { delete reinterpret_cast<Curve*>(self); },
          [](REALobject self, REALarrayDouble x, REALarrayDouble y) {
            reinterpret_cast<Curve*>(self)->construct(x, y);
          },
          [](REALobject self, double x) { return (*reinterpret_cast<Curve*>(self))(x); },
          isPeer};
}

struct Points {
  std::vector<double> x, y;
};
// The host's points as a peer's own.
Points pointsIn(REALarrayDouble x, REALarrayDouble y) {
  const auto count = static_cast<std::size_t>(host.upperBoundOf(reinterpret_cast<REALarray>(x)) + 1);
  Points points = {std::vector<double>(count), std::vector<double>(count)};
  readPoints(x, y, [&](std::size_t i, double xi, double yi) {
    points.x[i] = xi;
    points.y[i] = yi;
  });
  return points;
}

template <const gsl_interp_type* const& type>
class Gsl {
 public:
  void construct(REALarrayDouble x, REALarrayDouble y) {
    curve_.reset();
    points_ = pointsIn(x, y);
    curve_.reset(gsl_interp_alloc(type, points_.x.size()));
    gsl_interp_init(curve_.get(), points_.x.data(), points_.y.data(), points_.x.size());
    gsl_interp_accel_reset(accelerator_.get());
  }
  double operator()(double x) const {
    return gsl_interp_eval(curve_.get(), points_.x.data(), points_.y.data(), x, accelerator_.get());
  }

 private:
  struct Free {
    void operator()(gsl_interp* curve) const { gsl_interp_free(curve); }
    void operator()(gsl_interp_accel* accelerator) const { gsl_interp_accel_free(accelerator); }
  };
  Points points_;
  std::unique_ptr<gsl_interp, Free> curve_;
  std::unique_ptr<gsl_interp_accel, Free> accelerator_{gsl_interp_accel_alloc()};
};

class BoostPchip {
 public:
  void construct(REALarrayDouble x, REALarrayDouble y) {
    curve_.reset();
    Points points = pointsIn(x, y);
    curve_.emplace(std::move(points.x), std::move(points.y));
  }
  double operator()(double x) const { return (*curve_)(x); }

 private:
  std::optional<boost::math::interpolators::pchip<std::vector<double>>> curve_;
};

// The same curve as the library's. The table for the search is no part of the construction that is measured.
class Bare {
 public:
  void construct(REALarrayDouble x, REALarrayDouble y) {
    const auto n = static_cast<std::size_t>(host.upperBoundOf(reinterpret_cast<REALarray>(x)) + 1);
    x_.reset(new double[n + padding]);
    y_.reset(new double[n]);
    cubic_.reset(new double[4 * n]);
    readPoints(x, y, [&](std::size_t i, double xi, double yi) {
      x_[i] = xi;
      y_[i] = yi;
    });
    std::fill_n(x_.get() + n, padding, std::numeric_limits<double>::infinity());
    limits::splineCoefficients(n, x_.get(), y_.get(), cubic_.get());
    intervals_ = {x_.get(), n, nullptr, 0};
  }
  double operator()(double at) {
    if (!intervals_.table) [[unlikely]]
      makeTable();
    return limits::splineValue(intervals_, cubic_.get(), at);
  }

 private:
  static constexpr std::size_t padding = 8;

  void makeTable() {
    const std::size_t n = intervals_.n;
    intervals_.scale = static_cast<double>(n) / (x_[n - 1] - x_[0]);
    table_.assign(n + 2, 1);
    // The interval of the last knot before a step; the knot's own step is computed as a coordinate's will be.
    for (std::size_t i = 1; i < n; ++i) {
      const auto step = static_cast<std::size_t>((x_[i - 1] - x_[0]) * intervals_.scale);
      table_[step + 1] = static_cast<std::uint32_t>(i);
    }
    for (std::size_t step = 1; step < table_.size(); ++step)
      table_[step] = std::max(table_[step], table_[step - 1]);
    intervals_.table = table_.data();
  }

  std::unique_ptr<double[]> x_, y_, cubic_;
  std::vector<std::uint32_t> table_;
  limits::Intervals intervals_ = {};
};

std::vector<CurveKind> kinds() {
  return {ownKind(), kind<Gsl<gsl_interp_cspline>>("GSL cspline"),
          kind<Gsl<gsl_interp_steffen>>("GSL steffen"), kind<BoostPchip>("Boost pchip"),
          kind<Bare>("limit", false)};
}

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

// Enough of them that the branch predictor cannot learn their order; or rising by a third of an interval at
// most.
Inputs<double> coordinatesIn(const Points& points, bool rising) {
  constexpr std::size_t count = 1 << 16;
  const double first = points.x.front(), last = points.x.back();
  const double step = (last - first) / static_cast<double>(std::max(count + 1, 3 * points.x.size()));
  std::uniform_real_distribution<double> anywhere(first, last);
  return inputs<double>(count, [=, engine = std::mt19937_64(7), x = first]() mutable {
    return rising ? x += step : anywhere(engine);
  });
}
// The first points: far from zero, a cubic in the absolute coordinate cannot be as exact as the peers'.
constexpr std::size_t comparedCount = 50;
Inputs<double> firstPoints(const Points& points) {
  return inputs<double>(std::min(points.x.size() - 1, comparedCount),
                        [&points, i = std::size_t{0}]() mutable { return points.x[i++]; });
}

Subject calc(std::size_t n, bool rising) {
  return {.name = rising ? "SplineQTX.calc, rising x" : "SplineQTX.calc, random x",
          .contenders =
              [=] {
                const Points points = pointsOf(n);
                const REALarrayDouble x = arrayOf(points.x.data(), n), y = arrayOf(points.y.data(), n);
                const auto timed = coordinatesIn(points, rising), compared = firstPoints(points);
                // The limit is the same curve, and so the same everywhere.
                const std::size_t comparedWithPeers = compared->size();
                compared->insert(compared->end(), timed->begin(), timed->begin() + 1000);
                std::vector<Contender> all;
                for (const CurveKind& each : kinds()) {
                  const std::shared_ptr<REALobjectStruct> curve(each.make(), each.destroy);
                  each.construct(curve.get(), x, y);
                  const auto call = [curve, valueAt = opaque(each.valueAt)](double at) {
                    return valueAt(curve.get(), at);
                  };
                  all.push_back(contender(each.name, call, timed, compared));
                  if (each.isPeer) all.back().inputs = comparedWithPeers;
                }
                return all;
              },
          .size = static_cast<std::int64_t>(n),
          .unit = "points",
          .same = within(1e-6)};
}

Subject construction(std::size_t n) {
  return {.name = "SplineQTX construction, per point",
          .contenders =
              [=] {
                const Points points = pointsOf(n);
                const auto compared = firstPoints(points);
                const auto arrays =
                    inputs(std::vector{std::tuple(arrayOf(points.x.data(), n), arrayOf(points.y.data(), n))});
                std::vector<Contender> all;
                for (const CurveKind& each : kinds()) {
                  const std::shared_ptr<REALobjectStruct> curve(each.make(), each.destroy);
                  const auto call = [curve, construct = opaque(each.construct)](REALarrayDouble x,
                                                                                REALarrayDouble y) {
                    construct(curve.get(), x, y);
                    return 0;
                  };
                  all.push_back(contender(each.name, call, arrays, arrays));
                  all.back().result = [=](std::size_t) {
                    call(std::get<0>(arrays->front()), std::get<1>(arrays->front()));
                    std::string values;
                    for (const auto& [x] : *compared) values += inWords(each.valueAt(curve.get(), x)) + " ";
                    return values;
                  };
                }
                return all;
              },
          .size = static_cast<std::int64_t>(n),
          .unit = "points",
          .parts = static_cast<double>(n),
          .same = within(1e-6)};
}

}  // namespace

std::vector<Subject> splineSubjects() {
  constexpr std::size_t sizes[] = {10, 1'000, 100'000, 1'000'000};
  std::vector<Subject> all;
  for (const std::size_t n : sizes) all.push_back(construction(n));
  for (const bool rising : {false, true}) {
    for (const std::size_t n : sizes) all.push_back(calc(n, rising));
  }
  return all;
}

}  // namespace bench
