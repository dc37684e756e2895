// Currency text: an amount that is read comes back from its plainest spelling.
#include <cstdio>
#include <cstdlib>

#include "math/currency.h"

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
  const qtx::ParsedCurrency parsed = qtx::parseCurrency({data, size});
  if (parsed.error != qtx::CurrencyError::none) return parsed.count != 0 ? std::abort(), 0 : 0;
  const auto magnitude = static_cast<unsigned long long>(parsed.count < 0 ? -parsed.count : parsed.count);
  char text[40];
  std::snprintf(text, sizeof text, "%s%llu.%04llu", parsed.count < 0 ? "-" : "", magnitude / 10000,
                magnitude % 10000);
  const qtx::ParsedCurrency again = qtx::parseCurrency(text);
  if (again.error != qtx::CurrencyError::none || again.count != parsed.count) std::abort();
  return 0;
}
