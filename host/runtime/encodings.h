// Texts carried from one encoding to another, with the same result on every platform.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace host {

// The bytes in the other encoding; nothing where one of the two is not known. What the source cannot mean
// becomes U+FFFD or '?'; what the target cannot express becomes '?'.
std::optional<std::string> recoded(std::string_view bytes, std::uint32_t from, std::uint32_t to);

}  // namespace host
