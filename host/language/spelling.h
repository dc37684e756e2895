// Names without regard to case, and names that are like a wrong one.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host {

std::string lowerCase(std::string_view text);  // of ASCII

// Levenshtein's distance, in which two letters that have changed places count as one mistake.
std::size_t editsBetween(const std::string& wanted, const std::string& other);

// The candidate that a wrong name may have meant: spelled as another language has it, nearly so, going on
// from it, or made of the same words. Empty if there is none.
std::string nearest(std::string_view name, const std::vector<std::string>& candidates);

// "an Integer", "a String", but "Nil": a type in a sentence.
std::string withArticle(const std::string& type);

// "; did you mean 'Name'?", or nothing.
std::string suggestion(std::string_view name, const std::vector<std::string>& candidates);

}  // namespace host
