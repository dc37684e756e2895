// 128-bit decimal text: whatever is read has a text that is read as the same.
#include <cstdlib>

#include "int128/decimal_text.h"

namespace {

template <typename Value, typename Write>
void check(std::string_view text, Write write) {
  const Value value = qtx::parseDecimal<Value>(text);
  qtx::DecimalBuffer buffer;
  if (!(qtx::parseDecimal<Value>(write(value, buffer)) == value)) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
  check<qtx::UInt128>({data, size}, qtx::uint128_to_string);
  check<qtx::Int128>({data, size}, qtx::int128_to_string);
  return 0;
}
