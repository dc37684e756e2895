// Builds host strings from bytes.
#pragma once

#include <string_view>

#include "frame/reference.h"

namespace qtx {

bool isASCII(std::string_view bytes);

// A new host string; nothing where count is below 1 or at least 2^31, bytes is null, or the host cannot build
// it. Encodings 0, ISO Latin 1, Windows Latin 1 and "none" become ASCII where every byte is; UTF-16 is
// converted to UTF-8.
Reference<REALstring> buildString(const void* bytes, long long count, std::uint32_t encoding);

}  // namespace qtx
