// Reads host Variants: the type code and the value as one of four types. No reader raises; where the host
// offers neither of a reader's operations, the result is zero.
#pragma once

#include "frame/host_interface.h"

namespace qtx {

// The host's VarType code, refined by variantType::uint32 and uint64.
RBInteger GetVariantType(REALobject value);

std::int64_t GetVariantInt64(REALobject value);
std::uint64_t GetVariantUInt64(REALobject value);
double GetVariantDouble(REALobject value);
REALstring GetVariantString(REALobject value);  // a new reference for the caller, or null

}  // namespace qtx
