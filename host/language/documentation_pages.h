// The pages of docs/ that the build has put into the program.
#pragma once

#include <span>
#include <string_view>

namespace host {

std::span<const std::string_view> documentationPages();

}  // namespace host
