// 80-bit numbers in strings, as the host calls them.
#pragma once

#include "frame/host_interface.h"

namespace qtx {

// The ten bytes are the platform's own record where it has one, and big-endian elsewhere. Strings of any
// other length are read as 0.
double ExtendedStrToDouble(REALstring bytes);
REALstring DoubleToExtendedStr(double x);

}  // namespace qtx
