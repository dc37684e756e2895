// Int128QTX and UInt128QTX: 128-bit integers that host programs use like numbers.
#pragma once

#include "frame/host_interface.h"

namespace qtx {

extern REALclassDefinition int128Class;
extern REALclassDefinition uint128Class;

}  // namespace qtx
