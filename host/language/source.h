// The text of a program as its author sees it: how a file becomes one, and what messages show of it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "language/problem.h"

namespace host {

// A file's bytes as UTF-8 text: UTF-16 of either byte order is converted, and lines end with a line feed.
std::string sourceText(std::string bytes);

// "file:3:7: error: message", and nothing else of it.
std::string describe(const Problem& problem, const std::string& file);
// The same with the line and a caret under the place.
std::string describe(const Problem& problem, const std::string& file, std::string_view text);
// As many as help, each with its line; then how many more errors there are.
std::string describe(const std::vector<Problem>& problems, const std::string& file, std::string_view text);

}  // namespace host
