// The random draws as the host calls them.
#pragma once

#include "frame/host_interface.h"

namespace qtx {

double Random_NormalDistribution(double mean, double standardDeviation) noexcept;
RBInteger Random_PoissonDistribution(RBInteger mean) noexcept;  // the mean's low 32 bits count
double Random_ExponentialDistribution(double lambda) noexcept;

}  // namespace qtx
