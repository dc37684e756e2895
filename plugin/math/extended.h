// 80-bit extended-precision numbers as ten bytes, big-endian: sign and 15-bit exponent (bias 16383), then a
// 64-bit significand whose integer bit is explicit. 44100 is 40 0E AC 44 00 00 00 00 00 00.
#pragma once

#include <array>
#include <cstdint>

namespace qtx {

using ExtendedRecord = std::array<std::uint8_t, 10>;

// Exact. A NaN stays one of the same sign and payload, and becomes quiet.
ExtendedRecord encodeExtended(double x);

// To the nearest Double, ties to even; too large becomes infinity. Numbers are taken at their value whether
// or not the integer bit is set, and exponent 0 counts as 1. With the largest exponent the integer bit does
// not matter: without a fraction it is infinity, otherwise a quiet NaN that keeps the top of its payload.
double decodeExtended(const ExtendedRecord& record);

}  // namespace qtx
