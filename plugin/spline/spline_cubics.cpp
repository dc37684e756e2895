// Differences, slopes and coefficients, block by block.
#include "spline/spline_cubics.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

#include "frame/processor.h"

namespace qtx {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

// `width` doubles computed at once, in the compilers' own notation for every processor.
template <std::size_t width>
struct LanesOf {
  using Lanes __attribute__((vector_size(width * sizeof(double)))) = double;
};

// What follows is always inlined, so that it becomes code for the vectors that the calling function may use;
// the results are the same bits. Lanes go by reference, because how they would go by value depends on that.

// Secants between points side by side; Kind is a double or lanes of them.
template <typename Kind>
struct Secants {
  Kind dx, dy;
  Kind
      ratio;  // dx / dy; infinite or NaN where it does not rise, either of which makes the slopes beside it 0

  // The first one is that from x[0] to x[1].
  [[gnu::always_inline]] inline void read(const double* x, const double* y) {
    Kind left, right, bottom, top;
    std::memcpy(&left, x, sizeof left);
    std::memcpy(&right, x + 1, sizeof right);
    std::memcpy(&bottom, y, sizeof bottom);
    std::memcpy(&top, y + 1, sizeof top);
    dx = right - left;
    dy = top - bottom;
    ratio = dx / (dy > Kind{} ? dy : Kind{});
  }
};

// The slope where two secants meet: the harmonic mean of theirs.
template <typename Kind>
[[gnu::always_inline]] inline void slopeBetween(const Kind& ratio, const Kind& nextRatio, Kind& slope) {
  const Kind sum = ratio + nextRatio;
  slope = 2.0 / (sum > Kind{} ? sum : Kind{} + infinity);
}

// The slope at the curve's first or last point, from that at the other end of its interval.
[[gnu::always_inline]] inline double slopeAtEnd(double dx, double dy, double other) {
  return 1.5 * dy / dx - 0.5 * other;
}

// The lanes from `first` on of two that follow each other.
template <int first, typename Lanes, int... i>
[[gnu::always_inline]] inline void takeLanes(const Lanes& left, const Lanes& right, Lanes& taken,
                                             std::integer_sequence<int, i...>) {
  taken = __builtin_shufflevector(left, right, (first + i)...);
}

// What a block of intervals' coefficients are made of: few enough to stay in the first-level cache.
struct Block {
  static constexpr std::size_t size = 128;
  double dx[size], dy[size];
  double slopeLeft[size], slopeRight[size];  // at both ends of each interval
};

// slope: at the left end of the block's first interval, where one lies before it; then at the right end of
// its last. Slopes are shifted by one interval in registers: loading what was stored a moment ago, but at
// another offset, makes the processor wait.
template <std::size_t width>
[[gnu::always_inline]] inline void computeSlopes(const double* x, const double* y, std::size_t intervals,
                                                 bool isFirst, bool isLast, double& slope, Block& block) {
  using Lanes = typename LanesOf<width>::Lanes;
  constexpr std::make_integer_sequence<int, width> each;
  // An interval's right slope needs the interval behind it, which the curve's last has not.
  const std::size_t inner = isLast ? intervals - 1 : intervals;
  std::size_t i = 0;
  if (inner >= width) {
    Secants<Lanes> here, next;
    Lanes before = Lanes{} + slope;
    here.read(x, y);
    for (; i + width <= inner; i += width) {
      Lanes ratioBehind, left, right;
      if (i + 2 * width <= inner) {
        next.read(x + i + width, y + i + width);
        takeLanes<1>(here.ratio, next.ratio, ratioBehind, each);
      } else {
        next.read(x + i + 1, y + i + 1);
        ratioBehind = next.ratio;
      }
      slopeBetween(here.ratio, ratioBehind, right);
      if (isFirst && i == 0) before[width - 1] = slopeAtEnd(here.dx[0], here.dy[0], right[0]);
      takeLanes<width - 1>(before, right, left, each);
      std::memcpy(block.dx + i, &here.dx, sizeof left);
      std::memcpy(block.dy + i, &here.dy, sizeof left);
      std::memcpy(block.slopeLeft + i, &left, sizeof left);
      std::memcpy(block.slopeRight + i, &right, sizeof left);
      before = right;
      here = next;
    }
    slope = before[width - 1];
  }
  for (; i < intervals; ++i) {
    Secants<double> here, next;
    here.read(x + i, y + i);
    double right;
    if (i < inner) {
      next.read(x + i + 1, y + i + 1);
      slopeBetween(here.ratio, next.ratio, right);
      if (isFirst && i == 0) slope = slopeAtEnd(here.dx, here.dy, right);
    } else {
      right = slopeAtEnd(here.dx, here.dy, slope);
    }
    block.dx[i] = here.dx;
    block.dy[i] = here.dy;
    block.slopeLeft[i] = slope;
    block.slopeRight[i] = slope = right;
  }
}

// Four coefficients for each interval, those of interval 1 first.
template <std::size_t width>
[[gnu::always_inline]] inline void computeByLanes(const double* x, const double* y, std::size_t n,
                                                  double* __restrict cubics) {
  Block block;
  double slope = 0;
  for (std::size_t first = 1; first < n; first += Block::size) {
    const std::size_t intervals = std::min(Block::size, n - first);
    const double *left = x + first - 1, *right = x + first, *bottom = y + first - 1;
    computeSlopes<width>(left, bottom, intervals, first == 1, first + intervals == n, slope, block);

    double* const cubic = cubics + 4 * (first - 1);
    for (std::size_t i = 0; i < intervals; ++i) {
      const double x0 = left[i], x1 = right[i], dx = block.dx[i], dy = block.dy[i];
      // Second derivatives at both ends.
      const double curvature = 6 * dy / (dx * dx);
      const double l = curvature - 2 * (block.slopeRight[i] + 2 * block.slopeLeft[i]) / dx;
      const double r = 2 * (2 * block.slopeRight[i] + block.slopeLeft[i]) / dx - curvature;

      const double d = (r - l) / (6 * dx);
      const double c = (x1 * l - x0 * r) / (2 * dx);
      const double b = (dy - c * (x1 * x1 - x0 * x0) - d * (x1 * x1 * x1 - x0 * x0 * x0)) / dx;
      const double a = bottom[i] - b * x0 - c * (x0 * x0) - d * (x0 * x0 * x0);
      cubic[4 * i + 0] = a;
      cubic[4 * i + 1] = b;
      cubic[4 * i + 2] = c;
      cubic[4 * i + 3] = d;
    }
  }
}

}  // namespace

void computeCubicsByTwos(const double* x, const double* y, std::size_t n, double* cubics) {
  computeByLanes<2>(x, y, n, cubics);
}

#if defined(__x86_64__)
__attribute__((target("avx"))) void computeCubicsByFours(const double* x, const double* y, std::size_t n,
                                                         double* cubics) {
  computeByLanes<4>(x, y, n, cubics);
}

__attribute__((target("avx512f,avx512dq,avx512vl"))) void computeCubicsByEights(const double* x,
                                                                                const double* y,
                                                                                std::size_t n,
                                                                                double* cubics) {
  computeByLanes<8>(x, y, n, cubics);
}

void computeCubics(const double* x, const double* y, std::size_t n, double* cubics) {
  // Below, what is left over behind the last eight costs more than they gain.
  constexpr std::size_t many = 32;
  if (n >= many && thisProcessor().hasWidestVectors) {
    computeCubicsByEights(x, y, n, cubics);
  } else if (thisProcessor().hasWideVectors) {
    computeCubicsByFours(x, y, n, cubics);
  } else {
    computeCubicsByTwos(x, y, n, cubics);
  }
}
#else
void computeCubics(const double* x, const double* y, std::size_t n, double* cubics) {
  computeCubicsByTwos(x, y, n, cubics);
}
#endif

}  // namespace qtx
