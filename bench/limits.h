// The least that a subject can cost: the calls of the host that are asked for, and the computation written
// out with the best instructions of the machine that builds this. As users' processors may lack them, the
// library has to do without, or to ask first.
#pragma once

#include "host.h"

namespace bench::limits {

void int128FromText(REALobject self, REALstring text);
REALstring textOfInt128(REALobject self, RBInteger);
std::int64_t currencyValue(REALstring text);
bool isValidCreditCardNumber(REALstring number);

float fromHalf(std::uint16_t half);
std::uint16_t toHalf(float value);
RBInteger bitCount(std::uint64_t value);
std::uint64_t rotate(std::uint64_t value, RBInteger count, RBInteger offset, RBInteger width);
double floor(double x);
std::int64_t increment(REALobject self);

REALobject add(REALobject a, REALobject b);
REALobject multiply(REALobject a, REALobject b);
REALobject divideSigned(REALobject a, REALobject b);
REALobject remainderSigned(REALobject a, REALobject b);
REALobject divideUnsigned(REALobject a, REALobject b);
REALobject remainderUnsigned(REALobject a, REALobject b);

// The coefficients of the n - 1 intervals of a curve from its points, four to an interval, from the one
// before the first on.
void splineCoefficients(std::size_t n, const double* x, const double* y, double* cubic);

// The first i from 1 to n - 1 with not (at > x[i]), or n - 1: an interval's number. The search begins in a
// table of n + 1 equal steps, each with the number of an interval that is not behind the step's first
// coordinate's.
struct Intervals {
  const double* x;  // with room for 8 more
  std::size_t n;
  const std::uint32_t* table;
  double scale;  // steps per unit of x
};
double splineValue(const Intervals& intervals, const double* cubic, double at);

}  // namespace bench::limits
