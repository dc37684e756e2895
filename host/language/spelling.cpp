// The distance between names.
#include "language/spelling.h"

#include <algorithm>
#include <cctype>

namespace host {

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lower;
}

std::string nearest(std::string_view name, const std::vector<std::string>& candidates) {
  std::string best;
  std::size_t bestDistance = name.size() / 3 + 1;
  const std::string wanted = lowerCase(name);
  for (const std::string& candidate : candidates) {
    // Levenshtein's distance, one row at a time.
    const std::string other = lowerCase(candidate);
    std::vector<std::size_t> row(other.size() + 1);
    for (std::size_t j = 0; j < row.size(); ++j) row[j] = j;
    for (std::size_t i = 1; i <= wanted.size(); ++i) {
      std::size_t diagonal = row[0];
      row[0] = i;
      for (std::size_t j = 1; j < row.size(); ++j) {
        const std::size_t substituted = diagonal + (wanted[i - 1] == other[j - 1] ? 0 : 1);
        diagonal = row[j];
        row[j] = std::min({substituted, row[j] + 1, row[j - 1] + 1});
      }
    }
    if (row.back() < bestDistance) {
      bestDistance = row.back();
      best = candidate;
    }
  }
  return best;
}

std::string suggestion(std::string_view name, const std::vector<std::string>& candidates) {
  const std::string near = nearest(name, candidates);
  return near.empty() ? "" : "; did you mean '" + near + "'?";
}

}  // namespace host
