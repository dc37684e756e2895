// Reads host Variants: the type code and the value as one of four types. No reader raises; where the host
// offers neither of a reader's operations, the result is zero.
#pragma once

#include "frame/host_interface.h"

namespace qtx {

// Type codes the host does not tell apart by itself.
inline constexpr RBInteger variantUInt32 = 102;
inline constexpr RBInteger variantUInt64 = 103;
// Set in the code of an array.
inline constexpr RBInteger variantArrayFlag = 4096;

// The host's VarType code, refined by the two above.
RBInteger GetVariantType(REALobject value);

std::int64_t GetVariantInt64(REALobject value);
std::uint64_t GetVariantUInt64(REALobject value);
double GetVariantDouble(REALobject value);
REALstring GetVariantString(REALobject value);  // a new reference for the caller, or null

}  // namespace qtx
