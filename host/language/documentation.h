// What the documentation says about a class, a member, a function or a word of the language.
#pragma once

#include <string>
#include <string_view>

namespace host {

// For a terminal: declarations, what it does, an example. `name` is "Name" or "Class.Name"; empty where
// nothing is known of it.
std::string documentationOf(std::string_view name);

// "unknown name", with the one that may have been meant.
std::string noDocumentationOf(std::string_view name);

}  // namespace host
