// Currency text is read as a plain reading of the rules reads it: the same count, or the same exception and
// message.
#include <optional>

#include "fuzz.h"

using namespace fuzz;

namespace {

struct Expected {
  std::int64_t count = 0;
  std::string message;
};

// Digit by digit in 128 bits, which no text of 21 characters fills.
Expected read(std::string_view text) {
  text = text.substr(0, text.find('\0'));
  const bool minus = text.starts_with('-');
  if (minus) text.remove_prefix(1);
  const bool plus = text.starts_with('+');
  if (plus) text.remove_prefix(1);
  if (text.size() > 21) return {0, "Number too long!"};
  __extension__ using Wide = __int128;
  constexpr Wide most = INT64_MAX;
  Wide value = 0;
  int decimals = -1;
  for (const char c : text) {
    if (c == '.') {
      decimals = std::max(decimals, 0);
    } else if (c >= '0' && c <= '9') {
      value = value * 10 + (c - '0');
      if (value > most) return {0, "Number too big!"};
      if (decimals >= 0 && ++decimals == 4) break;
    } else {
      return {0, std::string("Invalid character found: ") + c};
    }
  }
  for (decimals = std::max(decimals, 0); decimals < 4; ++decimals) value *= 10;
  if (value > most) return {0, "Number too big!"};
  return {static_cast<std::int64_t>(minus && !plus ? -value : value), ""};
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  Host::load();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
  static auto* const parse =
      host.function<std::int64_t(REALstring)>("", "CurrencyValueQTX(value as string) as Currency");
  host.clear();
  const REALstring text = host.makeString({data, size});
  const std::int64_t count = parse(text);
  host.unlock(text);
  const Expected expected = read({data, size});
  require(count == expected.count, "another amount");
  require(host.raises == (expected.message.empty() ? 0 : 1), "an exception too many or too few");
  require(expected.message.empty() || host.raised == "UnsupportedFormatException", "another exception");
  require(host.message == expected.message, "another message");
  require(host.strings == 0 && host.objects == 0, "something is left");
  return 0;
}
