// Extended-precision strings: any ten bytes become the nearest Double, any Double exactly its ten bytes, by
// integer arithmetic and the C library's exact scaling; other lengths become 0.
#include <cmath>

#include "fuzz.h"

using namespace fuzz;

namespace {

__extension__ typedef unsigned __int128 Wide;
constexpr std::uint64_t integerBit = std::uint64_t{1} << 63;

double decoded(std::string_view bytes) {
  const auto byte = [&](std::size_t i) {
    return static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[i]));
  };
  const double sign = byte(0) & 0x80 ? -1.0 : 1.0;
  const int field = static_cast<int>((byte(0) & 0x7F) << 8 | byte(1));
  std::uint64_t significand = 0;
  for (std::size_t i = 2; i < 10; ++i) significand = significand << 8 | byte(i);
  if (field == 0x7FFF) {
    const std::uint64_t fraction = significand & ~integerBit;
    const std::uint64_t bits = 0x7FF0000000000000 | (fraction ? 0x0008000000000000 | fraction >> 11 : 0);
    return std::bit_cast<double>(bits | (byte(0) & 0x80) << 56);
  }
  if (significand == 0) return sign * 0.0;
  // The value is significand · 2^scale; its top bit stands for 2^top.
  const int scale = std::max(field, 1) - 16383 - 63;
  const int top = scale + 63 - std::countl_zero(significand);
  if (top > 1023) return sign * HUGE_VAL;
  const int unit = std::max(top - 52, -1074);  // of the Double's last place
  const int dropped = unit - scale;
  if (dropped <= 0) return sign * std::ldexp(static_cast<double>(significand), scale);
  if (dropped > 65) return sign * 0.0;
  const Wide one = 1, value = significand;
  Wide quotient = value >> dropped;
  const Wide rest = value - (quotient << dropped), half = one << (dropped - 1);
  if (rest > half || (rest == half && (quotient & 1))) ++quotient;
  return sign * std::ldexp(static_cast<double>(static_cast<std::uint64_t>(quotient)), unit);
}

std::string encoded(double x) {
  int exponent = 0;
  std::uint64_t field = 0, significand = 0;
  if (std::isnan(x)) {
    field = 0x7FFF;
    significand = integerBit | (std::bit_cast<std::uint64_t>(x) | 0x0008000000000000) << 11;
  } else if (std::isinf(x)) {
    field = 0x7FFF;
    significand = integerBit;
  } else if (x != 0) {
    significand = static_cast<std::uint64_t>(std::ldexp(std::frexp(std::fabs(x), &exponent), 64));
    field = static_cast<std::uint64_t>(exponent - 1 + 16383);
  }
  std::string bytes(10, '\0');
  bytes[0] = static_cast<char>((std::signbit(x) ? 0x80 : 0) | field >> 8);
  bytes[1] = static_cast<char>(field);
  for (std::size_t i = 0; i < 8; ++i) bytes[2 + i] = static_cast<char>(significand >> (56 - 8 * i));
  return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  Host::load();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
  static auto* const decode =
      host.function<double(REALstring)>("", "ExtendedStrToDoubleQTX(v as string) as double");
  static auto* const encode =
      host.function<REALstring(double)>("", "DoubleToExtendedStrQTX(x as double) as string");
  const REALstring record = host.makeString({data, size}, encoding::none);
  const double x = decode(record);
  host.unlock(record);
  const double expected = size == 10 ? decoded({data, size}) : 0.0;
  require(std::bit_cast<std::uint64_t>(x) == std::bit_cast<std::uint64_t>(expected), "another number");

  const double given = Bytes(data, size).take<double>();
  const REALstring written = encode(given);
  require(bytesOf(written) == encoded(given), "other bytes");
  require(same(decode(written), given), "another number read back");
  host.unlock(written);
  require(host.strings == 0, "a string is left");
  return 0;
}
