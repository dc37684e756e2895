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

// One without bytes yet; null where there is no memory.
Ref<Text> emptyText(std::size_t room, std::uint32_t textEncoding) {
  const bool isTooLarge = room > alwaysGranted && (room > mostTextBytes || room > settings().mostBytes);
  Heap* thing = isTooLarge ? nullptr : allocate(*hostClasses().text, sizeof(Text) + room + 1);
  if (!thing) return nullptr;
  auto* text = static_cast<Text*>(thing);
  text->encoding = textEncoding;
  text->room = static_cast<std::uint32_t>(room);
  text->length = 0;
  return Ref<Text>::adopt(text);
}

Ref<Text> emptyTextOrThrow(std::size_t room, std::uint32_t textEncoding) {
  Ref<Text> text = emptyText(room, textEncoding);
  if (!text) throwException("OutOfMemoryException", "There is no memory for the text.");
  return text;
}

// Where there is the room.
void append(Text& text, std::string_view bytes) {
  char* const end = reinterpret_cast<char*>(&text + 1) + text.length;
  *std::copy(bytes.begin(), bytes.end(), end) = '\0';
  text.length += bytes.size();
}

}  // namespace

Ref<Text> makeText(std::string_view bytes, std::uint32_t textEncoding) {
  if (bytes.empty() && textEncoding == encoding::utf8) return nullptr;
  Ref<Text> text = emptyTextOrThrow(bytes.size(), textEncoding);
  append(*text, bytes);
  return text;
}

Ref<Text> joined(const Text* left, const Text* right) {
  if (left && right && left->encoding != right->encoding) return makeText(utf8Of(left) + utf8Of(right));
  if (!left || !right)
    return makeText(bytesOf(left ? left : right), left    ? left->encoding
                                                  : right ? right->encoding
                                                          : encoding::utf8);
  Ref<Text> text = emptyTextOrThrow(left->length + right->length, left->encoding);
  append(*text, bytesOf(left));
  append(*text, bytesOf(right));
  return text;
}

// Not where a library may hold a text without counting it, nor where misuse of counts is looked for.
bool Growth::isHeldOnce() const {
  static const bool areCounted = destroysAnything();
  return text && text->references.load(std::memory_order_acquire) == 2 && areCounted &&
         !settings().keepsMemory;
}

bool Growth::isOfOneEncoding() const {
  return std::all_of(more.begin(), more.end(),
                     [&](const Ref<Text>& each) { return !each || each->encoding == text->encoding; });
}

std::size_t Growth::length() const {
  std::size_t sum = text->length;
  for (const Ref<Text>& each : more) sum += each ? each->length : 0;
  return sum;
}

bool Growth::happensIn(const Heap* variable) const {
  if (variable != text.get() || !isHeldOnce() || !isOfOneEncoding() || length() > text->room) return false;
  for (const Ref<Text>& each : more) append(*text, bytesOf(each.get()));
  return true;
}

Ref<Text> Growth::copy() const {
  if (isHeldOnce() && isOfOneEncoding()) {
    const std::size_t whole = length();
    if (Ref<Text> grown = emptyText(whole + whole / 2, text->encoding)) {
      append(*grown, bytesOf(text.get()));
      for (const Ref<Text>& each : more) append(*grown, bytesOf(each.get()));
      return grown;
    }
  }
  Ref<Text> all = text;
  for (const Ref<Text>& each : more) all = joined(all.get(), each.get());
  return all;
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
