// Splines: coefficients and values are, bit for bit, those of the definition written down plainly, with a
// search that looks at one knot after the other.
#include "fuzz.h"

using namespace fuzz;

namespace {

using Values = std::vector<double>;

struct Plain {
  Values x, y, a, b, c, d;

  Plain(Values xs, Values ys) : x(std::move(xs)), y(std::move(ys)) {
    const std::size_t n = x.size();
    if (n < 3) return;
    Values dx(n), dy(n), s(n);
    for (std::size_t i = 1; i < n; ++i) {
      dx[i] = x[i] - x[i - 1];
      dy[i] = y[i] - y[i - 1];
    }
    for (std::size_t i = 1; i + 1 < n; ++i) {
      if (!(dy[i] > 0 && dy[i + 1] > 0)) continue;
      const double q = dx[i] / dy[i] + dx[i + 1] / dy[i + 1];
      if (q > 0) s[i] = 2.0 / q;
    }
    s[0] = 1.5 * dy[1] / dx[1] - 0.5 * s[1];
    s[n - 1] = 1.5 * dy[n - 1] / dx[n - 1] - 0.5 * s[n - 2];
    for (Values* each : {&a, &b, &c, &d}) each->assign(n, 0.0);
    for (std::size_t i = 1; i < n; ++i) {
      const double h = dx[i], left = x[i - 1], right = x[i];
      const double l = 6 * dy[i] / (h * h) - 2 * (s[i] + 2 * s[i - 1]) / h;
      const double r = 2 * (2 * s[i] + s[i - 1]) / h - 6 * dy[i] / (h * h);
      d[i] = (r - l) / (6 * h);
      c[i] = (right * l - left * r) / (2 * h);
      b[i] = (dy[i] - c[i] * (right * right - left * left) -
              d[i] * (right * right * right - left * left * left)) /
             h;
      a[i] = y[i - 1] - b[i] * left - c[i] * (left * left) - d[i] * (left * left * left);
    }
  }

  double operator()(double at) const {
    std::size_t k = 1;
    while (k < x.size() && at > x[k]) ++k;
    k = std::min(k, a.size() - 1);
    return d[k] * at * at * at + (c[k] * at * at + (b[k] * at + a[k]));
  }
};

// Coordinates that ascend, lie anywhere, or repeat.
Values coordinates(Bytes& bytes, std::size_t n) {
  const std::size_t shape = bytes.below(4);
  Values values(n);
  double last = bytes.take<std::int8_t>();
  for (double& value : values) {
    value = shape == 0 ? bytes.real() : shape == 1 ? bytes.take<std::int8_t>() : last + bytes.take();
    last = shape == 2 ? value : value / 1.5;
  }
  return values;
}

REALarrayDouble arrayOf(const Values& values) {
  Array* array = host.makeArray(arrayElement::integer, values.size());
  for (std::size_t i = 0; i < values.size(); ++i) array->storage[i] = std::bit_cast<std::uint64_t>(values[i]);
  return reinterpret_cast<REALarrayDouble>(array);
}

using Accessor = double(REALobject, RBInteger);

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  Host::load();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
  static auto* const construct = host.function<void(REALobject, REALarrayDouble, REALarrayDouble)>(
      "SplineQTX", "Constructor(X() as Double, Y() as Double)");
  static auto* const calc =
      host.function<double(REALobject, double)>("SplineQTX", "calc(x as double) as double");
  static Accessor* const accessors[] = {
      host.function<Accessor>("SplineQTX", "a(index as integer) as double"),
      host.function<Accessor>("SplineQTX", "b(index as integer) as double"),
      host.function<Accessor>("SplineQTX", "c(index as integer) as double"),
      host.function<Accessor>("SplineQTX", "d(index as integer) as double"),
      host.function<Accessor>("SplineQTX", "x(index as integer) as double"),
      host.function<Accessor>("SplineQTX", "y(index as integer) as double")};
  // Constructed anew each time: a spline that ends leaves its points behind.
  static const REALobject spline = host.makeObject("SplineQTX");

  Bytes bytes(data, size);
  // More than the blocks and leaves in which the library works.
  const std::size_t n = bytes.below(4) == 0 ? bytes.take() * 3u : bytes.below(24);
  const Values x = coordinates(bytes, n);
  const Plain plain(x, coordinates(bytes, n));
  const REALarrayDouble xs = arrayOf(plain.x), ys = arrayOf(plain.y);
  host.clear();
  construct(spline, xs, ys);
  host.unlock(reinterpret_cast<Array*>(xs));
  host.unlock(reinterpret_cast<Array*>(ys));
  require(host.raises == 0, "the constructor raised");

  const Values* const sequences[] = {&plain.a, &plain.b, &plain.c, &plain.d, &plain.x, &plain.y};
  for (std::size_t k = 0; k < 6; ++k) {
    host.clear();
    for (std::size_t i = 0; i < sequences[k]->size(); ++i) {
      require(same(accessors[k](spline, static_cast<RBInteger>(i)), (*sequences[k])[i]), "another element");
    }
    require(host.raises == 0, "an accessor raised");
    for (const auto index : {static_cast<RBInteger>(sequences[k]->size()), RBInteger{-1}, bytes.integer()}) {
      host.clear();
      const bool inside = index >= 0 && static_cast<std::size_t>(index) < sequences[k]->size();
      accessors[k](spline, index);
      require((host.raised == "OutOfBoundsException") != inside, "a wrong index");
    }
  }
  for (int i = 0; i < 24; ++i) {
    host.clear();
    double at = bytes.real();
    if (n > 0 && i % 2 == 0) at = x[bytes.take() % n];
    if (i % 6 == 0) at = std::bit_cast<double>(std::bit_cast<std::uint64_t>(at) + bytes.below(3) - 1);
    const double y = calc(spline, at);
    if (n < 3) {
      require(y == 0 && host.raised == "UnsupportedOperationException", "a curve without points");
    } else {
      require(same(y, plain(at)), "another value");
    }
  }
  require(host.arrays == 0 && host.strings == 0 && host.objects == 1, "something is left");
  return 0;
}
