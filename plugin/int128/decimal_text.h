// Decimal text of 128-bit integers: formatting, and a lenient parser.
#pragma once

#include <string_view>

#include "int128/wide_integer.h"

namespace qtx {

// Room for the longest text, that of −2^127: a minus sign and 39 digits.
using DecimalBuffer = char[40];

// The digits without leading zeros, "-" in front of a negative value; "0" for 0. The text lies in the buffer
// and is not terminated.
std::string_view uint128_to_string(UInt128 value, DecimalBuffer& buffer);
std::string_view int128_to_string(Int128 value, DecimalBuffer& buffer);

// Reads blanks, at most one sign and the digits that follow, modulo 2^128; whatever else ends the number.
// "  -42xyz" is −42, and "", "abc" and "- 5" are 0. Read as unsigned, a "-" is skipped: "-5" is 5.
template <typename Value>
Value parseDecimal(std::string_view text);
extern template UInt128 parseDecimal<UInt128>(std::string_view);
extern template Int128 parseDecimal<Int128>(std::string_view);

}  // namespace qtx
