// The language's own global functions and its module Encodings, registered through the same records as a
// library's.
#include <algorithm>
#include <bit>
#include <chrono>
#include <cmath>
#include <string>

#include "language/language.h"
#include "runtime/array.h"
#include "runtime/exception.h"
#include "runtime/host_record.h"
#include "runtime/variant.h"

namespace host {

namespace {

const Text* textOf(REALstring handle) { return reinterpret_cast<const Text*>(handle); }

REALstring made(std::string_view bytes, std::uint32_t textEncoding = encoding::utf8) {
  return asPending([&] { return reinterpret_cast<REALstring>(makeText(bytes, textEncoding).detach()); });
}
// In the encoding of the text that it comes from.
REALstring part(const Text* of, std::string_view bytes) {
  return made(bytes, of && of->encoding == encoding::ascii ? encoding::ascii : encoding::utf8);
}

// Where each character of a UTF-8 text starts, and its end.
std::vector<std::size_t> characters(std::string_view text) {
  std::vector<std::size_t> starts;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if ((text[i] & 0xC0) != 0x80) starts.push_back(i);
  }
  starts.push_back(text.size());
  return starts;
}

// `count` characters from the one at `start` (from 0), as far as there are so many.
std::string cut(const std::string& text, std::int64_t start, std::int64_t count) {
  const std::vector<std::size_t> at = characters(text);
  const auto last = static_cast<std::int64_t>(at.size()) - 1;
  start = std::clamp<std::int64_t>(start, 0, last);
  count = std::clamp<std::int64_t>(count, 0, last - start);
  const std::size_t from = at[static_cast<std::size_t>(start)];
  return text.substr(from, at[static_cast<std::size_t>(start + count)] - from);
}

RBInteger len(REALstring s) { return static_cast<RBInteger>(characters(utf8Of(textOf(s))).size()) - 1; }
RBInteger lenB(REALstring s) { return static_cast<RBInteger>(bytesOf(textOf(s)).size()); }
REALstring left(REALstring s, RBInteger count) { return part(textOf(s), cut(utf8Of(textOf(s)), 0, count)); }
REALstring right(REALstring s, RBInteger count) {
  return part(textOf(s),
              cut(utf8Of(textOf(s)), std::max<RBInteger>(len(s) - std::max<RBInteger>(count, 0), 0), count));
}
REALstring mid(REALstring s, RBInteger start, RBInteger count) {
  return part(textOf(s), cut(utf8Of(textOf(s)), std::max<RBInteger>(start, 1) - 1, count));
}
RBInteger inStr(REALstring s, REALstring wanted) {
  const std::string text = utf8Of(textOf(s));
  const std::size_t found = text.find(utf8Of(textOf(wanted)));
  return found == std::string::npos ? 0 : static_cast<RBInteger>(characters(text.substr(0, found)).size());
}
REALstring replaceAll(REALstring s, REALstring old, REALstring with) {
  const std::string text = utf8Of(textOf(s)), wanted = utf8Of(textOf(old)),
                    replacement = utf8Of(textOf(with));
  std::string replaced;
  std::size_t start = 0;
  for (std::size_t at; !wanted.empty() && (at = text.find(wanted, start)) != std::string::npos;
       start = at + wanted.size()) {
    replaced.append(text, start, at - start) += replacement;
  }
  return made(replaced.append(text, start));
}
REALstring trim(REALstring s) {
  const std::string text = utf8Of(textOf(s));
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  return first == std::string::npos ? nullptr
                                    : made(text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1));
}
REALstring uppercase(REALstring s) {
  std::string text = utf8Of(textOf(s));
  for (char& c : text) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  return made(text);
}
REALstring lowercase(REALstring s) { return made(lowerCase(utf8Of(textOf(s)))); }

REALarray split(REALstring s, REALstring delimiter) {
  return asPending([&] {
    const std::string text = utf8Of(textOf(s)), by = utf8Of(textOf(delimiter));
    Ref<Array> parts = makeArray({Kind::String}, 0);
    std::size_t start = 0;
    while (!text.empty()) {
      const std::size_t end = by.empty() ? std::string::npos : text.find(by, start);
      const Ref<Text> each = makeText(text.substr(start, end - start));
      parts->append(Slot{.heap = each.get()});
      if (end == std::string::npos) break;
      start = end + by.size();
    }
    return reinterpret_cast<REALarray>(parts.detach());
  });
}
REALstring join(REALarray parts, REALstring delimiter) {
  return asPending([&] {
    std::string text;
    auto* array = reinterpret_cast<Array*>(parts);
    for (std::int64_t i = 0; array && i < array->count(); ++i) {
      if (i > 0) text += utf8Of(textOf(delimiter));
      const Ref<> part = Ref<>::adopt(array->get(i).heap);
      text += utf8Of(static_cast<const Text*>(part.get()));
    }
    return made(text);
  });
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

REALstring inBase(std::uint64_t value, unsigned base) {
  std::string digits;
  do {
    digits.insert(digits.begin(), "0123456789ABCDEF"[value % base]);
    value /= base;
  } while (value != 0);
  return made(digits);
}
REALstring hex(std::uint64_t value) { return inBase(value, 16); }
REALstring oct(std::uint64_t value) { return inBase(value, 8); }
REALstring bin(std::uint64_t value) { return inBase(value, 2); }

double val(REALstring s) {
  return convert(Slot{.heap = const_cast<Text*>(textOf(s))}, {Kind::String}, {Kind::Double}).number;
}

// "0.00", "#,##0.0", "-0": at least as many digits as there are zeros, at most as many decimals as places;
// the sign, with '-' or '+' in front; a comma groups thousands; 'e' gives an exponent; other characters stay
// as they are.
REALstring format(double value, REALstring pattern) {
  const std::string spec = utf8Of(textOf(pattern));
  std::size_t zeros = 0, decimals = 0, minimum = 0;
  bool point = false, grouped = false, percent = false;
  const bool exponent = spec.find_first_of("eE") != std::string::npos;
  for (const char c : spec.substr(0, spec.find_first_of("eE"))) {
    point = point || c == '.';
    grouped = grouped || c == ',';
    percent = percent || c == '%';
    if (c == '0' || c == '#') {
      if (point) {
        ++decimals;
        if (c == '0') minimum = decimals;
      } else if (c == '0') {
        ++zeros;
      }
    }
  }
  if (!std::isfinite(value)) return made(display(Slot{.number = value}, {Kind::Double}));
  char buffer[512];
  const int precision = static_cast<int>(std::min<std::size_t>(decimals, 100));
  std::snprintf(buffer, sizeof buffer, exponent ? "%.*e" : "%.*f", precision,
                std::fabs(percent ? value * 100 : value));
  std::string text = buffer;
  std::string tail;
  if (const std::size_t at = text.find('e'); at != std::string::npos) {
    tail = text.substr(at);
    text.erase(at);
  }
  for (std::size_t drop = decimals; drop > minimum && text.ends_with('0'); --drop) text.pop_back();
  if (text.ends_with('.')) text.pop_back();
  std::size_t whole = std::min(text.find('.'), text.size());
  if (zeros == 0 && text.starts_with("0.")) {
    text.erase(0, 1);
    whole = 0;
  }
  for (; whole < zeros; ++whole) text.insert(text.begin(), '0');
  for (std::size_t at = whole; grouped && at > 3; at -= 3) text.insert(at - 3, 1, ',');
  const bool isZero = text.find_first_not_of("0.,") == std::string::npos;
  if (value < 0 && !isZero) {
    text.insert(text.begin(), '-');
  } else if (spec.starts_with('+')) {
    text.insert(text.begin(), '+');
  }
  return made(text + tail + (percent ? "%" : ""));
}

REALstring defineEncoding(REALstring s, RBInteger code) {
  return made(bytesOf(textOf(s)), static_cast<std::uint32_t>(code));
}
REALstring convertEncoding(REALstring s, RBInteger code) {
  return asPending([&] {
    return reinterpret_cast<REALstring>(converted(textOf(s), static_cast<std::uint32_t>(code)).detach());
  });
}
RBInteger encodingOf(REALstring s) { return s ? textOf(s)->encoding : encoding::utf8; }

double absolute(double value) { return std::fabs(value); }
double smaller(double a, double b) { return a < b ? a : b; }
double larger(double a, double b) { return a > b ? a : b; }
double squareRoot(double value) { return std::sqrt(value); }
double floorOf(double value) { return std::floor(value); }
double ceilOf(double value) { return std::ceil(value); }
double roundOf(double value) { return std::round(value); }
double microseconds() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration<double, std::micro>(now).count();
}
REALstring endOfLine() { return made("\n"); }

template <std::uint32_t value>
RBInteger number() {
  return value;
}

}  // namespace

void registerBuiltins() {
  static REALmethodDefinition functions[] = {
      hostMethod("Len(s as String) as Integer", &len),
      hostMethod("Length(s as String) as Integer", &len),
      hostMethod("LenB(s as String) as Integer", &lenB),
      hostMethod("Bytes(s as String) as Integer", &lenB),
      hostMethod("Left(s as String, count as Integer) as String", &left),
      hostMethod("Right(s as String, count as Integer) as String", &right),
      hostMethod("Mid(s as String, start as Integer, count as Integer = 2147483647) as String", &mid),
      hostMethod("InStr(s as String, find as String) as Integer", &inStr),
      hostMethod("ReplaceAll(s as String, find as String, with as String) as String", &replaceAll),
      hostMethod("Trim(s as String) as String", &trim),
      hostMethod("Uppercase(s as String) as String", &uppercase),
      hostMethod("Lowercase(s as String) as String", &lowercase),
      hostMethod("Split(s as String, delimiter as String) as String()", &split),
      hostMethod("Join(parts() as String, delimiter as String) as String", &join),
      hostMethod("Chr(code as Integer) as String", &chr),
      hostMethod("ChrB(code as Integer) as String", &chrB),
      hostMethod("Asc(s as String) as Integer", &asc),
      hostMethod("AscB(s as String) as Integer", &ascB),
      hostMethod("Hex(value as UInt64) as String", &hex),
      hostMethod("Oct(value as UInt64) as String", &oct),
      hostMethod("Bin(value as UInt64) as String", &bin),
      hostMethod("Val(s as String) as Double", &val),
      hostMethod("CDbl(s as String) as Double", &val),
      hostMethod("Format(value as Double, pattern as String) as String", &format),
      hostMethod("DefineEncoding(s as String, encoding as Integer) as String", &defineEncoding),
      hostMethod("ConvertEncoding(s as String, encoding as Integer) as String", &convertEncoding),
      hostMethod("Encoding(s as String) as Integer", &encodingOf),
      hostMethod("Abs(value as Double) as Double", &absolute),
      hostMethod("Min(a as Double, b as Double) as Double", &smaller),
      hostMethod("Max(a as Double, b as Double) as Double", &larger),
      hostMethod("Sqrt(value as Double) as Double", &squareRoot),
      hostMethod("Floor(value as Double) as Double", &floorOf),
      hostMethod("Ceil(value as Double) as Double", &ceilOf),
      hostMethod("Round(value as Double) as Double", &roundOf),
      hostMethod("Microseconds as Double", &microseconds),
      hostMethod("EndOfLine as String", &endOfLine),
  };
  for (REALmethodDefinition& function : functions) registry().addFunction(function, false);

  // Encodings.UTF8 and the like are the numbers that the text functions take.
  static REALmethodDefinition encodings[] = {
      hostMethod("UTF8 as Integer", &number<encoding::utf8>),
      hostMethod("UTF16 as Integer", &number<encoding::utf16>),
      hostMethod("UTF16BE as Integer", &number<encoding::utf16BigEndian>),
      hostMethod("UTF16LE as Integer", &number<encoding::utf16LittleEndian>),
      hostMethod("UTF32 as Integer", &number<encoding::utf32>),
      hostMethod("UTF32BE as Integer", &number<encoding::utf32BigEndian>),
      hostMethod("UTF32LE as Integer", &number<encoding::utf32LittleEndian>),
      hostMethod("ASCII as Integer", &number<encoding::ascii>),
      hostMethod("ISOLatin1 as Integer", &number<encoding::isoLatin1>),
      hostMethod("WindowsLatin1 as Integer", &number<encoding::windowsLatin1>),
      hostMethod("MacRoman as Integer", &number<encoding::macRoman>),
      hostMethod("None as Integer", &number<encoding::none>),
  };
  static REALmoduleDefinition module = {};
  module.name = "Encodings";
  module.methods = encodings;
  module.methodCount = std::size(encodings);
  registry().addModule(module, false);
}

}  // namespace host
