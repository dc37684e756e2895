// What messages say in English: articles and numbers of things.
#pragma once

#include <cstdint>
#include <string>

namespace host {

// "an Integer", "a String", but "Nil": a type in a sentence.
std::string withArticle(const std::string& type);
// "An Integer": at its beginning.
std::string withLargeArticle(const std::string& type);

// "1 byte", "2 bytes"; with a plural of its own, "2 indices".
template <typename Number>
std::string counted(Number number, const std::string& one, const std::string& more = "") {
  return std::to_string(number) + " " + (number == 1 ? one : more.empty() ? one + "s" : more);
}

}  // namespace host
