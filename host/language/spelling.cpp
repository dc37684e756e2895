// The distance between names.
#include "language/spelling.h"

#include <algorithm>
#include <cctype>
#include <iterator>

namespace host {

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lower;
}

// A row at a time.
std::size_t editsBetween(const std::string& wanted, const std::string& other) {
  std::vector<std::size_t> row(other.size() + 1), above(row.size()), twoAbove(row.size());
  for (std::size_t j = 0; j < row.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= wanted.size(); ++i) {
    twoAbove.swap(above);
    above.swap(row);
    row[0] = i;
    for (std::size_t j = 1; j < row.size(); ++j) {
      const std::size_t substituted = above[j - 1] + (wanted[i - 1] == other[j - 1] ? 0 : 1);
      row[j] = std::min({substituted, above[j] + 1, row[j - 1] + 1});
      const bool isTransposed =
          i > 1 && j > 1 && wanted[i - 1] == other[j - 2] && wanted[i - 2] == other[j - 1];
      if (isTransposed) row[j] = std::min(row[j], twoAbove[j - 2] + 1);
    }
  }
  return row.back();
}

namespace {

// The words of a name such as doubleValue, in lower case, as far as they are long enough to mean something.
std::vector<std::string> wordsOf(std::string_view name) {
  std::vector<std::string> words;
  std::string word;
  const auto end = [&] {
    if (word.size() >= 4) words.push_back(lowerCase(word));
    word.clear();
  };
  for (std::size_t i = 0; i < name.size(); ++i) {
    const bool isUpper = std::isupper(static_cast<unsigned char>(name[i])) != 0;
    if (isUpper && i > 0 && std::islower(static_cast<unsigned char>(name[i - 1]))) end();
    word += name[i];
  }
  end();
  return words;
}

bool shareWord(std::string_view left, std::string_view right) {
  const std::vector<std::string> ofRight = wordsOf(right);
  for (const std::string& word : wordsOf(left)) {
    if (std::find(ofRight.begin(), ofRight.end(), word) != ofRight.end()) return true;
  }
  return false;
}

// What other languages call the same. Null where that is nothing else.
using Group = std::string_view[5];
const Group* groupOf(std::string_view name) {
  static constexpr Group groups[] = {
      {"count", "length", "size"},
      {"add", "append", "push", "enqueue"},
      {"remove", "delete", "erase"},
      {"middle", "substring", "substr"},
      {"uppercase", "ucase", "upper", "toupper", "touppercase"},
      {"lowercase", "lcase", "lower", "tolower", "tolowercase"},
      {"beginswith", "startswith"},
      {"indexof", "find", "search"},
      {"haskey", "containskey", "exists"},
      {"popfirst", "dequeue", "shift"},
      {"floor", "int", "fix"},
      {"tointeger", "cint", "clng", "parseint"},
      {"rnd", "random", "rand"},
      {"removeall", "clear", "empty"},
  };
  for (const Group& group : groups) {
    if (!name.empty() && std::find(std::begin(group), std::end(group), name) != std::end(group)) {
      return &group;
    }
  }
  return nullptr;
}

constexpr std::size_t longestCompared = 100;  // nobody misspells a longer name by a letter
constexpr int mostSuggestions = 200;
thread_local int suggestionsLeft = mostSuggestions;

}  // namespace

std::string nearest(std::string_view name, const std::vector<std::string>& candidates) {
  if (name.size() > longestCompared) return "";
  const std::string wanted = lowerCase(name);
  if (const Group* const group = groupOf(wanted)) {
    for (const std::string& candidate : candidates) {
      if (groupOf(lowerCase(candidate)) == group) return candidate;
    }
  }
  std::string best;
  std::size_t bestDistance = name.size() / 3 + 1;
  for (const std::string& candidate : candidates) {
    // No nearer than their lengths.
    const std::size_t shorter = std::min(wanted.size(), candidate.size());
    if (std::max(wanted.size(), candidate.size()) - shorter >= bestDistance) continue;
    const std::size_t each = editsBetween(wanted, lowerCase(candidate));
    if (each < bestDistance) {
      bestDistance = each;
      best = candidate;
    }
  }
  if (!best.empty() && bestDistance < 2) return best;
  // What is written otherwise: the shortest that goes on from the name, then what shares a word.
  std::string longer;
  for (const std::string& candidate : candidates) {
    if (wanted.size() < 3 || !lowerCase(candidate).starts_with(wanted)) continue;
    if (longer.empty() || candidate.size() < longer.size()) longer = candidate;
  }
  if (!longer.empty()) return longer;
  if (!best.empty()) return best;
  for (const std::string& candidate : candidates) {
    if (shareWord(name, candidate)) return candidate;
  }
  return "";
}

std::string suggestion(std::string_view name, const std::vector<std::string>& candidates) {
  if (suggestionsLeft == 0) return "";
  --suggestionsLeft;
  const std::string near = nearest(name, candidates);
  return near.empty() || near.starts_with('_') ? "" : "; did you mean '" + near + "'?";
}

bool hasSuggestionsLeft() { return suggestionsLeft > 0; }
void allowSuggestions() { suggestionsLeft = mostSuggestions; }

std::string withoutMiddle(const std::string& text) {
  constexpr std::size_t longest = 600, kept = 200;
  const auto startsInside = [&](std::size_t at) { return (text[at] & 0xC0) == 0x80; };  // of a character
  std::string shorter;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = std::min(text.find('\n', start), text.size());
    const std::size_t next = std::min(end + 1, text.size());
    if (end - start <= longest) {
      shorter.append(text, start, next - start);
    } else {
      std::size_t first = start + kept, last = end - kept;
      while (first > start && startsInside(first)) --first;
      while (last < end && startsInside(last)) ++last;
      shorter.append(text, start, first - start).append("…").append(text, last, next - last);
    }
    start = next;
  }
  return shorter;
}

}  // namespace host
