// Parts, characters and letters of texts. A position counts characters; the letters that have cases are those
// from A to Z.
#include <algorithm>
#include <string>

#include "language/spelling.h"
#include "language/words.h"

namespace host {

namespace {

// In the encoding of the text that it comes from.
REALstring part(const Text* of, std::string_view bytes) {
  return made(bytes, of && of->encoding == encoding::ascii ? encoding::ascii : encoding::utf8);
}

// Where the first character of a UTF-8 text starts that stands at `from` or behind it; or its end.
std::size_t characterFrom(std::string_view text, std::size_t from) {
  while (from < text.size() && (text[from] & 0xC0) == 0x80) ++from;
  return from;
}
// So many characters behind one, as far as there are so many.
std::size_t behind(std::string_view text, std::size_t at, std::int64_t count) {
  for (; count > 0 && at < text.size(); --count) at = characterFrom(text, at + 1);
  return at;
}

// `count` characters from the one at `start` (from 0), as far as there are so many.
std::string cut(const std::string& text, std::int64_t start, std::int64_t count) {
  const std::size_t first = behind(text, characterFrom(text, 0), start);
  return text.substr(first, behind(text, first, count) - first);
}

RBInteger len(REALstring s) {
  const std::string text = utf8Of(textOf(s));
  return std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; });
}
RBInteger lenB(REALstring s) { return static_cast<RBInteger>(bytesOf(textOf(s)).size()); }
REALstring left(REALstring s, RBInteger count) { return part(textOf(s), cut(utf8Of(textOf(s)), 0, count)); }
REALstring right(REALstring s, RBInteger count) {
  return part(textOf(s),
              cut(utf8Of(textOf(s)), std::max<RBInteger>(len(s) - std::max<RBInteger>(count, 0), 0), count));
}
REALstring middle(REALstring s, RBInteger start, RBInteger count) {
  return part(textOf(s), cut(utf8Of(textOf(s)), start, count));
}
REALstring mid(REALstring s, RBInteger start, RBInteger count) {
  return middle(s, std::max<RBInteger>(start, 1) - 1, count);
}

// The same with bytes. What they mean alone is not known, but the encoding is that of the whole text.
REALstring middleB(REALstring s, RBInteger start, RBInteger count) {
  const std::string_view bytes = bytesOf(textOf(s));
  const auto length = static_cast<RBInteger>(bytes.size());
  start = std::clamp<RBInteger>(start, 0, length);
  count = std::clamp<RBInteger>(count, 0, length - start);
  return made(bytes.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(count)),
              textOf(s) ? textOf(s)->encoding : encoding::utf8);
}
REALstring leftB(REALstring s, RBInteger count) { return middleB(s, 0, count); }
REALstring rightB(REALstring s, RBInteger count) {
  return middleB(s, lenB(s) - std::clamp<RBInteger>(count, 0, lenB(s)), count);
}
REALstring midB(REALstring s, RBInteger start, RBInteger count) {
  return middleB(s, std::max<RBInteger>(start, 1) - 1, count);
}

REALstring trimmed(REALstring s, bool atStart, bool atEnd) {
  constexpr const char* blanks = " \t\r\n";
  std::string text = utf8Of(textOf(s));
  if (atEnd) text.erase(text.find_last_not_of(blanks) + 1);
  if (atStart) text.erase(0, text.find_first_not_of(blanks));
  return part(textOf(s), text);
}
REALstring trim(REALstring s) { return trimmed(s, true, true); }
REALstring trimLeft(REALstring s) { return trimmed(s, true, false); }
REALstring trimRight(REALstring s) { return trimmed(s, false, true); }

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

REALstring uppercase(REALstring s) {
  std::string text = utf8Of(textOf(s));
  std::transform(text.begin(), text.end(), text.begin(), upper);
  return made(text);
}
REALstring lowercase(REALstring s) { return made(lowerCase(utf8Of(textOf(s)))); }
// A word goes on behind letters, digits, apostrophes and all that is not ASCII.
REALstring titlecase(REALstring s) {
  std::string text = lowerCase(utf8Of(textOf(s)));
  bool inWord = false;
  for (char& c : text) {
    if (!inWord) c = upper(c);
    inWord = isLetter(c) || (c >= '0' && c <= '9') || (c & 0x80) != 0 || (inWord && c == '\'');
  }
  return made(text);
}

REALstring chr(RBInteger code) {
  std::string text;
  const auto c = static_cast<std::uint32_t>(code);
  const auto put = [&](std::uint32_t byte) { text += static_cast<char>(byte); };
  if (code < 0 || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) {
    setPending(HostException("OutOfBoundsException", "There is no character " + std::to_string(code) + ".")
                   .exception);
    return nullptr;
  }
  if (c < 0x80) {
    put(c);
  } else if (c < 0x800) {
    put(0xC0 | c >> 6);
    put(0x80 | (c & 0x3F));
  } else {
    if (c < 0x10000) {
      put(0xE0 | c >> 12);
    } else {
      put(0xF0 | c >> 18);
      put(0x80 | (c >> 12 & 0x3F));
    }
    put(0x80 | (c >> 6 & 0x3F));
    put(0x80 | (c & 0x3F));
  }
  return made(text);
}
REALstring chrB(RBInteger byte) { return made(std::string(1, static_cast<char>(byte)), encoding::none); }
RBInteger ascB(REALstring s) {
  const std::string_view bytes = bytesOf(textOf(s));
  return bytes.empty() ? 0 : static_cast<unsigned char>(bytes[0]);
}
RBInteger asc(REALstring s) {
  const std::string text = utf8Of(textOf(s));
  if (text.empty()) return 0;
  const auto first = static_cast<unsigned char>(text[0]);
  if (first < 0x80) return first;
  RBInteger code = first < 0xE0 ? first & 0x1F : first < 0xF0 ? first & 0x0F : first & 0x07;
  for (std::size_t i = 1; i < text.size() && (text[i] & 0xC0) == 0x80; ++i)
    code = code << 6 | (text[i] & 0x3F);
  return code;
}
REALstring endOfLine() { return made("\n"); }

}  // namespace

void registerTextWords() {
  static REALmethodDefinition table[] = {
      hostMethod("Len(s as String) as Integer", &len),
      hostMethod("Length(s as String) as Integer", &len),
      hostMethod("LenB(s as String) as Integer", &lenB),
      hostMethod("Bytes(s as String) as Integer", &lenB),
      hostMethod("Left(s as String, count as Integer) as String", &left),
      hostMethod("Right(s as String, count as Integer) as String", &right),
      hostMethod("Mid(s as String, start as Integer, count as Integer = 2147483647) as String", &mid),
      hostMethod("Middle(s as String, start as Integer, count as Integer = 2147483647) as String", &middle),
      hostMethod("LeftB(s as String, count as Integer) as String", &leftB),
      hostMethod("LeftBytes(s as String, count as Integer) as String", &leftB),
      hostMethod("RightB(s as String, count as Integer) as String", &rightB),
      hostMethod("RightBytes(s as String, count as Integer) as String", &rightB),
      hostMethod("MidB(s as String, start as Integer, count as Integer = 2147483647) as String", &midB),
      hostMethod("MiddleBytes(s as String, start as Integer, count as Integer = 2147483647) as String",
                 &middleB),
      hostMethod("Trim(s as String) as String", &trim),
      hostMethod("LTrim(s as String) as String", &trimLeft),
      hostMethod("TrimLeft(s as String) as String", &trimLeft),
      hostMethod("RTrim(s as String) as String", &trimRight),
      hostMethod("TrimRight(s as String) as String", &trimRight),
      hostMethod("Uppercase(s as String) as String", &uppercase),
      hostMethod("Lowercase(s as String) as String", &lowercase),
      hostMethod("Titlecase(s as String) as String", &titlecase),
      hostMethod("Chr(code as Integer) as String", &chr),
      hostMethod("ChrB(code as Integer) as String", &chrB),
      hostMethod("Asc(s as String) as Integer", &asc),
      hostMethod("AscB(s as String) as Integer", &ascB),
      hostMethod("EndOfLine as String", &endOfLine),
  };
  registerFunctions(table);
}

}  // namespace host
