// Makes texts, converts and compares them.
#include "runtime/text.h"

#include <algorithm>
#include <optional>

#include "runtime/class.h"
#include "runtime/encodings.h"
#include "runtime/settings.h"
#include "runtime/throwing.h"

namespace host {

namespace {

constexpr std::size_t alwaysGranted = 256;  // whatever the settings: messages are texts

}  // namespace

Ref<Text> makeText(std::string_view bytes, std::uint32_t textEncoding) {
  if (bytes.empty() && textEncoding == encoding::utf8) return nullptr;
  const bool isTooLarge =
      bytes.size() > alwaysGranted && (bytes.size() > mostTextBytes || bytes.size() > settings().mostBytes);
  Heap* thing = isTooLarge ? nullptr : allocate(*hostClasses().text, sizeof(Text) + bytes.size() + 1);
  if (!thing) throwException("OutOfMemoryException", "There is no memory for the text.");
  auto* text = static_cast<Text*>(thing);
  text->encoding = textEncoding;
  text->length = bytes.size();
  char* content = reinterpret_cast<char*>(text + 1);
  *std::copy(bytes.begin(), bytes.end(), content) = '\0';
  return Ref<Text>::adopt(text);
}

std::string utf8Of(const Text* text, std::size_t mostBytesRead) {
  const std::string_view bytes = bytesOf(text).substr(0, mostBytesRead);
  if (!text || text->encoding == encoding::none) return std::string(bytes);
  return recoded(bytes, text->encoding, encoding::utf8).value_or(std::string(bytes));
}

Ref<Text> converted(const Text* text, std::uint32_t textEncoding) {
  if (!text) return nullptr;
  const std::uint32_t from = text->encoding == encoding::none ? encoding::macRoman : text->encoding;
  const std::optional<std::string> bytes =
      from == textEncoding ? std::string(bytesOf(text)) : recoded(bytesOf(text), from, textEncoding);
  return bytes ? makeText(*bytes, textEncoding) : nullptr;
}

int compareText(const Text* left, const Text* right) {
  const auto folded = [](const Text* text) {
    std::string bytes = !text || text->encoding == encoding::ascii || text->encoding == encoding::none
                            ? std::string(bytesOf(text))
                            : utf8Of(text);
    for (char& c : bytes) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return bytes;
  };
  const int order = folded(left).compare(folded(right));
  return (order > 0) - (order < 0);
}

}  // namespace host
