// NormInvQTX: the range of p, checked.
#include "math/normal_quantile_functions.h"

#include "frame/raise.h"
#include "math/normal_quantile.h"

namespace qtx {

double NormInv(double p, double mu, double sigma) {
  if (p < 0 || p > 1) {
    RaiseException("OutOfBoundsException", "Invalid value for p");
    return 0;
  }
  return sigma * normalQuantile(p) + mu;
}

}  // namespace qtx
