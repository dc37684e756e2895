// SplineQTX: a constrained cubic spline through points given as two arrays.
#pragma once

#include "frame/host_interface.h"

namespace qtx {

extern REALclassDefinition splineClass;

}  // namespace qtx
