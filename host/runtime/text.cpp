// Makes texts, and carries them from one encoding to another.
#include "runtime/text.h"

#include <iconv.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <mutex>
#include <optional>
#include <vector>

#include "runtime/class.h"
#include "runtime/settings.h"
#include "runtime/throwing.h"

namespace host {

namespace {

constexpr std::size_t mostBytes = std::size_t{1} << 28;  // keeps a runaway program from taking the machine
constexpr std::size_t alwaysGranted = 256;               // whatever the settings: messages are texts

const char* iconvName(std::uint32_t textEncoding) {
  constexpr bool little = std::endian::native == std::endian::little;
  switch (textEncoding) {
    case encoding::macRoman:
      return "MACINTOSH";
    case encoding::isoLatin1:
      return "ISO-8859-1";
    case encoding::windowsLatin1:
      return "CP1252";
    case encoding::ascii:
      return "ASCII";
    case encoding::utf8:
      return "UTF-8";
    case encoding::utf16:
      return little ? "UTF-16LE" : "UTF-16BE";
    case encoding::utf16BigEndian:
      return "UTF-16BE";
    case encoding::utf16LittleEndian:
      return "UTF-16LE";
    case encoding::utf32:
      return little ? "UTF-32LE" : "UTF-32BE";
    case encoding::utf32BigEndian:
      return "UTF-32BE";
    case encoding::utf32LittleEndian:
      return "UTF-32LE";
    default:
      return nullptr;
  }
}

// Whether these encodings write ASCII in the same bytes.
bool sharesAscii(std::uint32_t textEncoding) {
  return textEncoding == encoding::utf8 || textEncoding == encoding::ascii ||
         textEncoding == encoding::isoLatin1 || textEncoding == encoding::windowsLatin1 ||
         textEncoding == encoding::macRoman;
}

// The C library loads what it needs for a conversion, and unloads it, under a lock that a thread sanitizer
// does not see: so it has one of ours as well. Leaked on purpose: threads may still run at the end of the
// process.
class Converter {
 public:
  Converter(const char* target, const char* source) {
    const std::lock_guard guard(lock_);
    handle_ = iconv_open(target, source);
  }
  ~Converter() {
    if (!isOpen()) return;
    const std::lock_guard guard(lock_);
    iconv_close(handle_);
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  bool isOpen() const { return handle_ != reinterpret_cast<iconv_t>(-1); }
  iconv_t handle() const { return handle_; }

 private:
  static std::mutex& lock_;
  iconv_t handle_;
};
std::mutex& Converter::lock_ = *new std::mutex;

// The bytes in the other encoding. What the source cannot mean becomes U+FFFD or '?';
// what the target cannot express becomes '?'.
std::optional<std::string> recode(std::string_view bytes, std::uint32_t from, std::uint32_t to) {
  if (sharesAscii(from) && sharesAscii(to) &&
      std::none_of(bytes.begin(), bytes.end(), [](char c) { return (c & 0x80) != 0; })) {
    return std::string(bytes);
  }
  const char* source = iconvName(from);
  const char* target = iconvName(to);
  if (!source || !target) return std::nullopt;
  const Converter converter(target, source);
  if (!converter.isOpen()) return std::nullopt;

  std::string result;
  const auto append = [&](char* input, std::size_t left) -> std::pair<std::size_t, int> {
    while (left > 0) {
      char buffer[1024];
      char* output = buffer;
      std::size_t room = sizeof buffer;
      const std::size_t done = iconv(converter.handle(), &input, &left, &output, &room);
      result.append(buffer, sizeof buffer - room);
      if (done != static_cast<std::size_t>(-1)) return {0, 0};
      if (errno != E2BIG) return {left, errno};
    }
    return {0, 0};
  };
  std::string input(bytes);
  std::size_t at = 0;
  while (at < input.size()) {
    const auto [left, error] = append(input.data() + at, input.size() - at);
    if (left == 0) break;
    at = input.size() - left;
    // A character that the target lacks, or bytes that mean nothing in the source.
    const bool targetIsUnicode = to != encoding::ascii && to != encoding::macRoman &&
                                 to != encoding::isoLatin1 && to != encoding::windowsLatin1;
    const std::optional<std::string> substitute =
        targetIsUnicode ? recode("\xEF\xBF\xBD", encoding::utf8, to) : std::optional<std::string>("?");
    result += substitute.value_or("?");
    // Past the whole character: the continuation bytes of UTF-8, or one unit of a wide encoding.
    std::size_t width = 1;
    const std::string_view name = source;
    if (name.starts_with("UTF-16")) width = 2;
    if (name.starts_with("UTF-32")) width = 4;
    at = std::min(at + width, input.size());
    if (from == encoding::utf8) {
      while (at < input.size() && (input[at] & 0xC0) == 0x80) ++at;
    }
    iconv(converter.handle(), nullptr, nullptr, nullptr, nullptr);
  }
  return result;
}

}  // namespace

Ref<Text> makeText(std::string_view bytes, std::uint32_t textEncoding) {
  if (bytes.empty() && textEncoding == encoding::utf8) return nullptr;
  const bool isTooLarge =
      bytes.size() > alwaysGranted && (bytes.size() > mostBytes || bytes.size() > settings().mostBytes);
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
  return recode(bytes, text->encoding, encoding::utf8).value_or(std::string(bytes));
}

Ref<Text> converted(const Text* text, std::uint32_t textEncoding) {
  if (!text) return nullptr;
  const std::uint32_t from = text->encoding == encoding::none ? encoding::macRoman : text->encoding;
  const std::optional<std::string> bytes =
      from == textEncoding ? std::string(bytesOf(text)) : recode(bytesOf(text), from, textEncoding);
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
