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

// Of each line that nobody would read to its end, the beginning and the end.
std::string withoutMiddle(const std::string& text);

// "; did you mean 'Name'?", or nothing. Each takes time, so there are some hundreds of them, until more are
// allowed.
std::string suggestion(std::string_view name, const std::vector<std::string>& candidates);
bool hasSuggestionsLeft();
void allowSuggestions();

}  // namespace host
