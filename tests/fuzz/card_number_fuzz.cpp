// Card numbers pass exactly where the sum of digits, every second from the right doubled, ends in 0.
#include "fuzz.h"

using namespace fuzz;

namespace {

bool passes(std::string_view text) {
  int sum = 0;
  bool doubled = false;
  for (auto digit = text.rbegin(); digit != text.rend(); ++digit, doubled = !doubled) {
    if (*digit < '0' || *digit > '9') return false;
    const int value = (*digit - '0') * (doubled ? 2 : 1);
    sum += value / 10 + value % 10;
  }
  return sum % 10 == 0;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  Host::load();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
  static auto* const isValid =
      host.function<bool(REALstring)>("", "IsValidCreditCardNumberQTX(Number as String) as boolean");
  const REALstring text = host.makeString({data, size});
  require(isValid(text) == passes({data, size}), "another answer");
  host.unlock(text);
  require(host.strings == 0, "a string is left");
  return 0;
}
