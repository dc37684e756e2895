// The normal quantile as the host calls it.
#pragma once

namespace qtx {

// mu + sigma · Φ⁻¹(p); raises where p is outside of 0 to 1.
double NormInv(double p, double mu, double sigma);

}  // namespace qtx
