// CurrencyDivQTX and CurrencyValueQTX: errors of the kernel, raised.
#include "math/currency_functions.h"

#include "frame/raise.h"
#include "frame/text_bridge.h"
#include "math/currency.h"

namespace qtx {

std::int64_t CurrencyDiv(std::int64_t amount, RBInteger divisor) {
  if (divisor == 0) {
    RaiseException("UnsupportedOperationException", "Division by zero.");
    return 0;
  }
  return divideCurrency(amount, divisor);
}

namespace {

void raise(const ParsedCurrency& parsed) {
  const auto refuse = [](const char* message) { RaiseException("UnsupportedFormatException", message); };
  switch (parsed.error) {
    case CurrencyError::none:
      break;
    case CurrencyError::tooLong:
      refuse("Number too long!");
      break;
    case CurrencyError::tooBig:
      refuse("Number too big!");
      break;
    case CurrencyError::invalidCharacter: {
      char message[] = "Invalid character found: ?";
      message[sizeof message - 2] = parsed.offending;
      refuse(message);
      break;
    }
  }
}

}  // namespace

std::int64_t CurrencyValue(REALstring text) {
  const ParsedCurrency parsed = parseCurrency(rbText(text).plain());
  if (parsed.error != CurrencyError::none) [[unlikely]] {
    raise(parsed);
  }
  return parsed.count;
}

}  // namespace qtx
