// The check of credit card numbers as the host calls it.
#pragma once

#include "frame/host_interface.h"

namespace qtx {

bool IsValidCreditCardNumber(REALstring number);  // nil is not valid, the empty text is

}  // namespace qtx
