// Names without regard to case, and names that are like a wrong one.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host {

std::string lowerCase(std::string_view text);  // of ASCII

// The candidate closest to a wrong name, for "did you mean"; empty if none is close.
std::string nearest(std::string_view name, const std::vector<std::string>& candidates);

// "; did you mean 'Name'?", or nothing.
std::string suggestion(std::string_view name, const std::vector<std::string>& candidates);

}  // namespace host
