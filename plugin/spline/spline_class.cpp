// The spline's members: points in, coefficients and values out.
#include "spline/spline_class.h"

#include <atomic>
#include <memory>
#include <new>
#include <utility>

#if defined(__linux__)
#include <sys/mman.h>
#endif

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

// Stands for every sequence without elements, so that a spline has its sequences before there is memory for
// what is in them.
constinit Sequence noElements;

// X and, within, Y as they were given.
struct Points : Sequence {
  Sequence y;
  bool areLeftBehind = false;
  const Points* nextLeftBehind = nullptr;
};

// The constant coefficients and, within, the others and the curve that all of them are of.
struct Curve : Sequence {
  Sequence b, c, d;
  ConstrainedSpline spline;

  // Throws nothing, because its memory is there.
  Curve(const Sequence& x, const Sequence& y, double* storage) noexcept
      : Sequence{}, spline(x.first, y.first, x.size, storage) {
    const double* coefficients = spline.coefficients();
    for (Sequence* sequence : {static_cast<Sequence*>(this), &b, &c, &d}) {
      *sequence = {coefficients++, x.size, ConstrainedSpline::stride};
    }
  }
};

// The instance data, handed over as zeros. No sequence exists before the constructor has passed its size
// check.
struct SplineData {
  alignas(8) Sequence* a, *b, *c, *d, *x, *y;
  std::int64_t count;  // the host program may set it, which changes nothing else
};
static_assert(sizeof(SplineData) == 56 && offsetof(SplineData, count) == 48);

SplineData& dataOf(REALobject self) { return instanceData<SplineData>(self, splineClass); }

// Points and Curve each lie in one block of memory with the doubles that they are made of, behind them.
template <typename Kind>
struct FreeBlock {
  void operator()(Kind* kind) const {
    kind->~Kind();
    operator delete(kind);
  }
};
template <typename Kind>
void* blockOf(std::size_t doubles) {
  const std::size_t size = sizeof(Kind) + doubles * sizeof(double);
  void* const block = operator new(size);
#if defined(__linux__)
  // Taking over fresh memory by small pages costs more than computing a long curve that fills it.
  constexpr std::size_t largePage = std::size_t{2} << 20;
  const std::size_t start = roundUp(reinterpret_cast<std::uintptr_t>(block), largePage);
  const std::size_t end = (reinterpret_cast<std::uintptr_t>(block) + size) / largePage * largePage;
  if (size >= 2 * largePage) madvise(reinterpret_cast<void*>(start), end - start, MADV_HUGEPAGE);
#endif
  return block;
}
template <typename Kind>
double* behind(void* block) {
  return reinterpret_cast<double*>(static_cast<char*>(block) + sizeof(Kind));
}

template <typename Kind>
void release(Sequence* sequence) {
  if (sequence && sequence != &noElements) FreeBlock<Kind>()(static_cast<Kind*>(sequence));
}

void releaseCoefficients(SplineData& data) {
  release<Curve>(data.a);
  data.a = data.b = data.c = data.d = nullptr;
}

// Of an earlier construction, nothing is left: the object has one set of sequences at a time.
void empty(SplineData& data) {
  releaseCoefficients(data);
  release<Points>(data.x);
  data.x = data.y = data.a = data.b = data.c = data.d = &noElements;
}

// The destructor releases the coefficients only: a spline's points stay for the life of the process. They are
// chained here, so that a leak checker, which finds them in use, reports whatever else should be lost.
std::atomic<const Points*> leftBehind{nullptr};

void leaveBehind(Sequence* sequence) {
  if (!sequence || sequence == &noElements) return;
  auto* const points = static_cast<Points*>(sequence);
  if (std::exchange(points->areLeftBehind, true)) return;
  points->nextLeftBehind = leftBehind.load(std::memory_order_relaxed);
  while (!leftBehind.compare_exchange_weak(points->nextLeftBehind, points, std::memory_order_release,
                                           std::memory_order_relaxed)) {
  }
}

RBInteger upperBoundOf(REALarrayDouble array) {
  return array ? REALGetArrayUBound(reinterpret_cast<REALarray>(array)) : -1;
}

using OwnedPoints = std::unique_ptr<Points, FreeBlock<Points>>;

// Not inlined, so that all it needs stays in registers between the host's calls.
__attribute__((noinline)) void readInto(double* x, double* y, REALarrayDouble X, REALarrayDouble Y,
                                        std::size_t n) {
  ElementReader read;
  for (std::size_t i = 0; i < n; ++i) {
    x[i] = read(X, static_cast<long long>(i));
    y[i] = read(Y, static_cast<long long>(i));
  }
}

OwnedPoints readPoints(REALarrayDouble X, REALarrayDouble Y, std::size_t n) {
  void* const block = blockOf<Points>(2 * n);
  OwnedPoints points(new (block) Points);
  double* const x = behind<Points>(block);
  readInto(x, x + n, X, Y, n);
  static_cast<Sequence&>(*points) = {x, n};
  points->y = {x + n, n};
  return points;
}

void Constructor(REALobject self, REALarrayDouble X, REALarrayDouble Y) {
  const RBInteger upperBound = upperBoundOf(X);
  if (upperBound != upperBoundOf(Y)) {
    RaiseException("UnsupportedOperationException", "X and Y arrays must have same size");
    return;
  }
  SplineData& data = dataOf(self);
  empty(data);
  data.count = static_cast<std::int64_t>(static_cast<std::uint64_t>(upperBound) + 1);
  const std::size_t n = elementCount(upperBound);
  if (n == 0) return;
  if (n > SIZE_MAX / 128) throw std::bad_alloc();  // sizes in bytes would overflow

  OwnedPoints points = readPoints(X, Y, n);
  empty(data);  // the host may have run code of the program that constructed this object
  data.y = &points->y;
  data.x = points.release();
  if (n < 3) return;

  void* const block = blockOf<Curve>(ConstrainedSpline::size(n));
  auto* const curve = new (block) Curve(*data.x, *data.y, behind<Curve>(block));
  data.a = curve;
  data.b = &curve->b;
  data.c = &curve->c;
  data.d = &curve->d;
}

void SplineDestructor(REALobject self) noexcept {
  SplineData& data = dataOf(self);
  releaseCoefficients(data);
  leaveBehind(data.x);
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
  const Sequence* const a = dataOf(self).a;  // all four are there, or none
  if (!a) return refuseUninitialized();
  if (a->size == 0) {  // there were fewer than three points
    RaiseException("UnsupportedOperationException", "empty array");
    return 0.0;
  }
  return static_cast<const Curve*>(a)->spline(x);
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
