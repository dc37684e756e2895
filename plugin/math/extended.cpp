// 80-bit records from doubles and back, by bit patterns.
#include "math/extended.h"

#include <bit>

namespace qtx {

namespace {

constexpr int extendedBias = 16383, doubleBias = 1023;
constexpr unsigned extendedSpecial = 0x7FFF, doubleSpecial = 0x7FF;
constexpr int droppedBits = 11;  // of a significand of 64 bits in one of 53
constexpr std::uint64_t integerBit = std::uint64_t{1} << 63;
constexpr std::uint64_t doubleFraction = (std::uint64_t{1} << 52) - 1, doubleQuiet = std::uint64_t{1} << 51;

ExtendedRecord record(bool negative, unsigned exponent, std::uint64_t significand) {
  ExtendedRecord bytes;
  bytes[0] = static_cast<std::uint8_t>((negative ? 0x80 : 0) | exponent >> 8);
  bytes[1] = static_cast<std::uint8_t>(exponent);
  for (unsigned i = 0; i < 8; ++i) bytes[2 + i] = static_cast<std::uint8_t>(significand >> (56 - 8 * i));
  return bytes;
}

// value / 2^shift to the nearest integer, ties to even; shift is 1 or more.
std::uint64_t shiftRounding(std::uint64_t value, int shift) {
  if (shift > 64) return 0;
  const std::uint64_t quotient = shift == 64 ? 0 : value >> shift;
  const std::uint64_t half = std::uint64_t{1} << (shift - 1);
  const std::uint64_t rest = value & (half | (half - 1));
  return quotient + (rest > half || (rest == half && (quotient & 1)));
}

// The bits of significand · 2^(exponent − 63), the significand's top bit set.
std::uint64_t finiteBits(std::uint64_t significand, int exponent) {
  if (exponent > doubleBias) return std::uint64_t{doubleSpecial} << 52;
  if (exponent < 1 - doubleBias) {
    return shiftRounding(significand, droppedBits + 1 - doubleBias - exponent);
  }
  // The integer bit adds one to the exponent field, and so does a carry of the rounding, up to infinity.
  return (static_cast<std::uint64_t>(exponent + doubleBias - 1) << 52) +
         shiftRounding(significand, droppedBits);
}

}  // namespace

ExtendedRecord encodeExtended(double x) {
  const auto bits = std::bit_cast<std::uint64_t>(x);
  const bool negative = bits >> 63;
  const auto exponent = static_cast<unsigned>(bits >> 52) & doubleSpecial;
  const std::uint64_t fraction = bits & doubleFraction;
  if (exponent == doubleSpecial) {
    const std::uint64_t payload = fraction ? fraction | doubleQuiet : 0;
    return record(negative, extendedSpecial, integerBit | payload << droppedBits);
  }
  if (exponent != 0) {
    return record(negative, exponent + extendedBias - doubleBias, integerBit | fraction << droppedBits);
  }
  if (fraction == 0) return record(negative, 0, 0);
  const int zeros = std::countl_zero(fraction);
  const int unbiased = 1 - doubleBias + droppedBits - zeros;
  return record(negative, static_cast<unsigned>(unbiased + extendedBias), fraction << zeros);
}

double decodeExtended(const ExtendedRecord& bytes) {
  const std::uint64_t sign = std::uint64_t{bytes[0] & 0x80u} << 56;
  const int exponent = (bytes[0] & 0x7F) << 8 | bytes[1];
  std::uint64_t significand = 0;
  for (unsigned i = 2; i < 10; ++i) significand = significand << 8 | bytes[i];

  std::uint64_t bits = 0;
  if (exponent == static_cast<int>(extendedSpecial)) {
    const std::uint64_t fraction = significand & ~integerBit;
    bits = std::uint64_t{doubleSpecial} << 52;
    if (fraction) bits |= doubleQuiet | fraction >> droppedBits;
  } else if (significand != 0) {
    const int zeros = std::countl_zero(significand);
    bits = finiteBits(significand << zeros, (exponent ? exponent : 1) - extendedBias - zeros);
  }
  return std::bit_cast<double>(sign | bits);
}

}  // namespace qtx
