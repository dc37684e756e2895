// Articles.
#include "runtime/wording.h"

namespace host {

std::string withArticle(const std::string& type) {
  if (type == "Nil") return type;
  const bool isSpokenWithVowel = type.find_first_of("AEIOaeio") == 0;  // not the U of UInt8
  return (isSpokenWithVowel ? "an " : "a ") + type;
}

std::string withLargeArticle(const std::string& type) {
  std::string text = withArticle(type);
  if (text[0] == 'a') text[0] = 'A';
  return text;
}

}  // namespace host
