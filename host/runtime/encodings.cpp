// Decodes to code points, and encodes those.
#include "runtime/encodings.h"

#include <algorithm>
#include <array>
#include <bit>

#include "frame/host_interface.h"

namespace host {

namespace {

// The upper half of an encoding whose lower half is ASCII. 0: no character.
using UpperHalf = std::array<char16_t, 128>;

// As Apple publishes it: unicode.org/Public/MAPPINGS/VENDORS/APPLE/ROMAN.TXT.
constexpr UpperHalf macRoman = {
    0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1, 0x00E0, 0x00E2, 0x00E4, 0x00E3, 0x00E5,
    0x00E7, 0x00E9, 0x00E8, 0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3, 0x00F2, 0x00F4,
    0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC, 0x2020, 0x00B0, 0x00A2, 0x00A3, 0x00A7, 0x2022, 0x00B6,
    0x00DF, 0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0x2260, 0x00C6, 0x00D8, 0x221E, 0x00B1, 0x2264, 0x2265,
    0x00A5, 0x00B5, 0x2202, 0x2211, 0x220F, 0x03C0, 0x222B, 0x00AA, 0x00BA, 0x03A9, 0x00E6, 0x00F8, 0x00BF,
    0x00A1, 0x00AC, 0x221A, 0x0192, 0x2248, 0x2206, 0x00AB, 0x00BB, 0x2026, 0x00A0, 0x00C0, 0x00C3, 0x00D5,
    0x0152, 0x0153, 0x2013, 0x2014, 0x201C, 0x201D, 0x2018, 0x2019, 0x00F7, 0x25CA, 0x00FF, 0x0178, 0x2044,
    0x20AC, 0x2039, 0x203A, 0xFB01, 0xFB02, 0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1,
    0x00CB, 0x00C8, 0x00CD, 0x00CE, 0x00CF, 0x00CC, 0x00D3, 0x00D4, 0xF8FF, 0x00D2, 0x00DA, 0x00DB, 0x00D9,
    0x0131, 0x02C6, 0x02DC, 0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7};

constexpr UpperHalf ascii = {};

constexpr UpperHalf isoLatin1 = [] {
  UpperHalf half{};
  for (std::size_t i = 0; i < half.size(); ++i) half[i] = static_cast<char16_t>(0x80 + i);
  return half;
}();

constexpr UpperHalf windowsLatin1 = [] {
  UpperHalf half = isoLatin1;
  constexpr char16_t ownCharacters[] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                        0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                        0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                        0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};
  std::copy(std::begin(ownCharacters), std::end(ownCharacters), half.begin());
  return half;
}();

// How texts of an encoding are made: of units of so many bytes.
struct Form {
  unsigned width = 1;
  bool bigEndian = false;
  const UpperHalf* half = nullptr;  // null: Unicode
};

std::optional<Form> formOf(std::uint32_t textEncoding) {
  constexpr bool isBigHere = std::endian::native == std::endian::big;
  switch (textEncoding) {
    case encoding::macRoman:
      return Form{.half = &macRoman};
    case encoding::isoLatin1:
      return Form{.half = &isoLatin1};
    case encoding::windowsLatin1:
      return Form{.half = &windowsLatin1};
    case encoding::ascii:
      return Form{.half = &ascii};
    case encoding::utf8:
      return Form{};
    case encoding::utf16:
      return Form{.width = 2, .bigEndian = isBigHere};
    case encoding::utf16BigEndian:
      return Form{.width = 2, .bigEndian = true};
    case encoding::utf16LittleEndian:
      return Form{.width = 2};
    case encoding::utf32:
      return Form{.width = 4, .bigEndian = isBigHere};
    case encoding::utf32BigEndian:
      return Form{.width = 4, .bigEndian = true};
    case encoding::utf32LittleEndian:
      return Form{.width = 4};
    default:
      return std::nullopt;
  }
}

constexpr char32_t mostCodePoint = 0x10FFFF;
constexpr char32_t replacement = 0xFFFD;
bool isSurrogate(char32_t c) { return c >= 0xD800 && c < 0xE000; }
bool isHighSurrogate(char32_t c) { return c >= 0xD800 && c < 0xDC00; }
bool isLowSurrogate(char32_t c) { return c >= 0xDC00 && c < 0xE000; }

// A character at the beginning of a text, and its bytes; nothing where these mean none.
struct Character {
  char32_t code;
  std::size_t size;
};
using Decoded = std::optional<Character>;

std::uint8_t byteAt(std::string_view text, std::size_t at) { return static_cast<std::uint8_t>(text[at]); }
bool isContinuation(std::uint8_t byte) { return (byte & 0xC0) == 0x80; }

Decoded decodeUtf8(std::string_view text) {
  const std::uint8_t lead = byteAt(text, 0);
  if (lead < 0x80) return Character{lead, 1};
  const std::size_t size = lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
  if (size == 0 || size > text.size()) return std::nullopt;
  char32_t code = lead & (0x7FU >> size);
  for (std::size_t i = 1; i < size; ++i) {
    if (!isContinuation(byteAt(text, i))) return std::nullopt;
    code = code << 6 | (byteAt(text, i) & 0x3FU);
  }
  const char32_t least = size == 2 ? 0x80 : size == 3 ? 0x800 : 0x10000;
  if (code < least || code > mostCodePoint || isSurrogate(code)) return std::nullopt;
  return Character{code, size};
}

char32_t unitAt(std::string_view text, std::size_t at, const Form& form) {
  char32_t unit = 0;
  for (unsigned i = 0; i < form.width; ++i) {
    const unsigned place = form.bigEndian ? form.width - 1 - i : i;
    unit |= char32_t{byteAt(text, at + i)} << (8 * place);
  }
  return unit;
}

Decoded decodeWide(std::string_view text, const Form& form) {
  if (text.size() < form.width) return std::nullopt;
  const char32_t unit = unitAt(text, 0, form);
  if (form.width == 2 && isHighSurrogate(unit) && text.size() >= 4) {
    const char32_t second = unitAt(text, 2, form);
    if (isLowSurrogate(second)) return Character{0x10000 + ((unit - 0xD800) << 10) + (second - 0xDC00), 4};
  }
  if (isSurrogate(unit) || unit > mostCodePoint) return std::nullopt;
  return Character{unit, form.width};
}

Decoded decode(std::string_view text, const Form& form) {
  if (form.width > 1) return decodeWide(text, form);
  if (!form.half) return decodeUtf8(text);
  const std::uint8_t byte = byteAt(text, 0);
  const char32_t code = byte < 0x80 ? byte : static_cast<char32_t>((*form.half)[byte - 0x80U]);
  if (code == 0 && byte != 0) return std::nullopt;
  return Character{code, 1};
}

void appendUnit(std::string& text, char32_t unit, const Form& form) {
  for (unsigned i = 0; i < form.width; ++i) {
    const unsigned place = form.bigEndian ? form.width - 1 - i : i;
    text += static_cast<char>(unit >> (8 * place) & 0xFF);
  }
}

// False where the encoding has no such character.
bool append(std::string& text, char32_t code, const Form& form) {
  if (form.width == 2 && code > 0xFFFF) {
    appendUnit(text, 0xD800 + ((code - 0x10000) >> 10), form);
    appendUnit(text, 0xDC00 + ((code - 0x10000) & 0x3FF), form);
  } else if (code < 0x80 || form.width > 1) {
    appendUnit(text, code, form);
  } else if (form.half) {
    const auto found = std::find(form.half->begin(), form.half->end(), code);
    if (found == form.half->end()) return false;
    text += static_cast<char>(0x80 + (found - form.half->begin()));
  } else {
    const int more = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    text += static_cast<char>((0xF00U >> (more + 1) & 0xFF) | code >> (6 * more));
    for (int i = more - 1; i >= 0; --i) text += static_cast<char>(0x80 | (code >> (6 * i) & 0x3F));
  }
  return true;
}

}  // namespace

std::optional<std::string> recoded(std::string_view bytes, std::uint32_t from, std::uint32_t to) {
  const std::optional<Form> source = formOf(from), target = formOf(to);
  if (!source || !target) return std::nullopt;
  if (source->width == 1 && target->width == 1 &&
      std::none_of(bytes.begin(), bytes.end(), [](char c) { return (c & 0x80) != 0; })) {
    return std::string(bytes);
  }
  std::string result;
  while (!bytes.empty()) {
    const Decoded character = decode(bytes, *source);
    if (character && append(result, character->code, *target)) {
      bytes.remove_prefix(character->size);
      continue;
    }
    append(result, target->half ? U'?' : replacement, *target);
    // Past the whole character: the continuation bytes of UTF-8, or one unit of a wide encoding.
    bytes.remove_prefix(std::min<std::size_t>(source->width, bytes.size()));
    if (source->width == 1 && !source->half) {
      while (!bytes.empty() && isContinuation(byteAt(bytes, 0))) bytes.remove_prefix(1);
    }
  }
  return result;
}

}  // namespace host
