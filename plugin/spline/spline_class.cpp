// The spline's members: points in, coefficients and values out.
#include "spline/spline_class.h"

#include <atomic>
#include <memory>
#include <optional>
#include <utility>

#include "frame/array_access.h"
#include "frame/host_operations.h"
#include "frame/records.h"
#include "spline/constrained_spline.h"

namespace qtx {
namespace {

// What an accessor reads: every `stride`th double from `first` on.
struct Sequence {
  const double* first = nullptr;
  std::size_t size = 0;
  std::size_t stride = 1;
};

// The X or Y values as they were given.
struct PointSequence : Sequence {
  std::unique_ptr<double[]> storage;
  bool isLeftBehind = false;
  const PointSequence* nextLeftBehind = nullptr;
};

// The constant coefficients, and the curve that all four coefficient sequences lie in.
struct CurveSequence : Sequence {
  std::optional<ConstrainedSpline> curve;
};

// The instance data, handed over as zeros. No sequence exists before the constructor has passed its size
// check.
struct SplineData {
  CurveSequence* a;
  Sequence *b, *c, *d;
  PointSequence *x, *y;
  std::int64_t count;  // the host program may set it, which changes nothing else
};
static_assert(sizeof(SplineData) == 56 && offsetof(SplineData, count) == 48);

SplineData& dataOf(REALobject self) { return instanceData<SplineData>(self, splineClass); }

template <typename Kind>
void release(Kind*& sequence) {
  delete sequence;
  sequence = nullptr;
}

void releaseCoefficients(SplineData& data) {
  release(data.a);
  release(data.b);
  release(data.c);
  release(data.d);
}

// The destructor releases the coefficients only: a spline's points stay for the life of the process. They are
// chained here, so that a leak checker, which finds them in use, reports whatever else should be lost.
std::atomic<const PointSequence*> leftBehind{nullptr};

void leaveBehind(PointSequence* points) {
  if (!points || std::exchange(points->isLeftBehind, true)) return;
  points->nextLeftBehind = leftBehind.load(std::memory_order_relaxed);
  while (!leftBehind.compare_exchange_weak(points->nextLeftBehind, points, std::memory_order_release,
                                           std::memory_order_relaxed)) {
  }
}

RBInteger upperBoundOf(REALarrayDouble array) {
  return array ? REALGetArrayUBound(reinterpret_cast<REALarray>(array)) : -1;
}

void Constructor(REALobject self, REALarrayDouble X, REALarrayDouble Y) {
  const RBInteger upperBound = upperBoundOf(X);
  if (upperBound != upperBoundOf(Y)) {
    RaiseException("UnsupportedOperationException", "X and Y arrays must have same size");
    return;
  }
  SplineData& data = dataOf(self);
  // Of an earlier construction, nothing is left: the object has one set of sequences at a time.
  releaseCoefficients(data);
  release(data.x);
  release(data.y);

  data.count = static_cast<std::int64_t>(static_cast<std::uint64_t>(upperBound) + 1);
  data.x = new PointSequence;
  data.y = new PointSequence;
  data.a = new CurveSequence;
  data.b = new Sequence;
  data.c = new Sequence;
  data.d = new Sequence;

  const std::size_t n = elementCount(upperBound);
  for (PointSequence* points : {data.x, data.y}) {
    points->storage.reset(new double[n]());
    points->first = points->storage.get();
  }
  // An array that shrinks meanwhile ends in zeros, and in one exception.
  bool within = true;
  for (std::size_t i = 0; i < n; ++i) {
    within &= REALGetArrayValue(X, static_cast<long long>(i), &data.x->storage[i], within);
    within &= REALGetArrayValue(Y, static_cast<long long>(i), &data.y->storage[i], within);
  }
  data.x->size = data.y->size = n;
  if (n < 3) return;

  const double* coefficients = data.a->curve.emplace(data.x->first, data.y->first, n).coefficients();
  for (Sequence* sequence : {static_cast<Sequence*>(data.a), data.b, data.c, data.d}) {
    *sequence = {coefficients++, n, ConstrainedSpline::stride};
  }
}

void SplineDestructor(REALobject self) noexcept {
  SplineData& data = dataOf(self);
  releaseCoefficients(data);
  leaveBehind(data.x);
  leaveBehind(data.y);
}

double refuseUninitialized() {
  RaiseException("NilObjectException", "Not initialized");
  return 0.0;
}

// An accessor: one element of a sequence, which the message of a wrong index names by its letter.
template <auto sequenceOf, char letter>
double element(REALobject self, RBInteger index) {
  static constexpr char name[] = {letter, '\0'};
  const Sequence* sequence = dataOf(self).*sequenceOf;
  if (!sequence) return refuseUninitialized();
  if (index < 0 || static_cast<std::size_t>(index) >= sequence->size) {
    RaiseOutOfBoundsException(index, static_cast<long long>(sequence->size), "index", name);
    return 0.0;
  }
  return sequence->first[static_cast<std::size_t>(index) * sequence->stride];
}

double calcY(REALobject self, double x) {
  const SplineData& data = dataOf(self);
  if (!data.a || !data.b || !data.c || !data.d) return refuseUninitialized();
  if (!data.a->curve) {  // there were fewer than three points
    RaiseException("UnsupportedOperationException", "empty array");
    return 0.0;
  }
  return (*data.a->curve)(x);
}

REALproperty properties[] = {fieldProperty<&SplineData::count>("count", "Integer")};

REALmethodDefinition methods[] = {
    method<&Constructor>("Constructor(X() as Double, Y() as Double)"),
    method<&element<&SplineData::a, 'a'>>("a(index as integer) as double"),
    method<&element<&SplineData::b, 'b'>>("b(index as integer) as double"),
    method<&element<&SplineData::c, 'c'>>("c(index as integer) as double"),
    method<&element<&SplineData::d, 'd'>>("d(index as integer) as double"),
    method<&element<&SplineData::x, 'x'>>("x(index as integer) as double"),
    method<&element<&SplineData::y, 'y'>>("y(index as integer) as double"),
    method<&calcY>("calc(x as double) as double"),
};

}  // namespace

REALclassDefinition splineClass = classDefinition({.name = "SplineQTX",
                                                   .dataSize = sizeof(SplineData),
                                                   .destructor = entryOf<&SplineDestructor>(),
                                                   .properties = properties,
                                                   .methods = methods});

}  // namespace qtx
