// IsValidCreditCardNumberQTX: the host's text, checked.
#include "math/luhn_functions.h"

#include "frame/text_bridge.h"
#include "math/luhn.h"

namespace qtx {

bool IsValidCreditCardNumber(REALstring number) { return number && passesLuhn(rbText(number).plain()); }

}  // namespace qtx
