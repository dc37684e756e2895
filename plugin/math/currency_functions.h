// Currency arithmetic and parsing as the host calls them. Amounts are counts of ten-thousandths.
#pragma once

#include "frame/host_interface.h"

namespace qtx {

std::int64_t CurrencyDiv(std::int64_t amount, RBInteger divisor);  // raises where the divisor is 0
std::int64_t CurrencyValue(REALstring text);                       // raises where the text is no amount

}  // namespace qtx
