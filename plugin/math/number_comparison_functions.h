// CompareNumbersQTX as the host calls it.
#pragma once

#include "frame/host_interface.h"

namespace qtx {

// 1, 0 or −1 as the left value is greater than, equal to or smaller than the right one; where the left one is
// text, what the host says of both as text. Raises, and gives −1, where the kinds are not compared.
RBInteger CompareNumberVariants(REALobject left, REALobject right);

}  // namespace qtx
