// SplineQTX: a constrained cubic spline through points given as two arrays.
#pragma once

#include <cstddef>

#include "frame/host_interface.h"

namespace qtx {

extern REALclassDefinition splineClass;

// How many sequences of points destroyed splines have left in memory so far.
std::size_t sequencesLeftBehind();

}  // namespace qtx
