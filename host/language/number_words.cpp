// Numbers as texts, and texts as numbers.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "language/words.h"
#include "runtime/variant.h"

namespace host {

namespace {

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

Slot read(REALstring s, Kind kind) {
  return convert(Slot{.heap = const_cast<Text*>(textOf(s))}, {Kind::String}, {kind});
}
RBInteger integerIn(REALstring s) { return read(s, Kind::Int64).integer; }
double realIn(REALstring s) { return read(s, Kind::Double).number; }

// Of digits behind "&h", "&o" or "&b" as well.
double val(REALstring s) {
  const std::string text = utf8Of(textOf(s));
  const std::size_t start = text.find_first_not_of(" \t\r\n");
  if (start == std::string::npos || text[start] != '&' || start + 1 == text.size()) return realIn(s);
  const char letter = text[start + 1];
  const int base = letter == 'h' || letter == 'H'   ? 16
                   : letter == 'o' || letter == 'O' ? 8
                   : letter == 'b' || letter == 'B' ? 2
                                                    : 0;
  double number = 0;
  for (std::size_t i = start + 2; base != 0 && i < text.size(); ++i) {
    const char c = text[i];
    const int digit = c >= '0' && c <= '9'   ? c - '0'
                      : c >= 'A' && c <= 'F' ? c - 'A' + 10
                      : c >= 'a' && c <= 'f' ? c - 'a' + 10
                                             : base;
    if (digit >= base) break;
    number = number * base + digit;
  }
  return number;
}

// Halves are rounded away from 0, as Round does; printf would choose the even digit. Only an exact product
// shows one.
double withoutTie(double magnitude, int precision) {
  if (precision > 22) return magnitude;  // whose power of ten is not exact
  double scale = 1;
  for (int i = 0; i < precision; ++i) scale *= 10;
  const double product = magnitude * scale;
  const bool isTie = std::fma(magnitude, scale, -product) == 0 && product - std::floor(product) == 0.5;
  return isTie ? std::nextafter(magnitude, HUGE_VAL) : magnitude;
}

// What a pattern shows. Of whole numbers and Currency each digit counts, and a Double has but 15 of them.
struct Shown {
  Shown(Slot number, Kind ofKind)
      : slot(number), kind(ofKind), value(convert(number, {ofKind}, {Kind::Double}).number) {
    if (kind == Kind::Double) return;
    const bool isNegative = kind != Kind::UInt64 && slot.integer < 0;
    exact =
        isNegative ? 0 - static_cast<std::uint64_t>(slot.integer) : static_cast<std::uint64_t>(slot.integer);
    scale = kind == Kind::Currency ? 4 : 0;
  }
  Slot slot;
  Kind kind;
  double value;
  std::optional<std::uint64_t> exact;  // without the sign, in units of the last of `scale` decimals
  int scale = 0;
};

// With so many decimals of a number that has `scale` of them, or ends with zeros where that is negative.
std::string withDecimals(std::uint64_t number, int scale, int precision) {
  std::uint64_t unit = 1;
  for (; scale > precision; --scale) unit *= 10;
  const std::uint64_t rest = number % unit;
  number = number / unit + (unit > 1 && rest >= unit - rest ? 1 : 0);
  std::string text = std::to_string(number);
  for (; scale < 0; ++scale) text += number == 0 ? "" : "0";
  const auto decimals = static_cast<std::size_t>(scale);
  if (text.size() <= decimals) text.insert(0, decimals + 1 - text.size(), '0');
  if (precision > 0) text.insert(text.size() - decimals, 1, '.');
  return text.append(static_cast<std::size_t>(precision - scale), '0');
}

// What a pattern says. "$#,##0.00 net" has a text in front, the digits' part, and a text behind.
struct Pattern {
  explicit Pattern(std::string_view spec) {
    std::size_t at = 0;
    const auto isDigit = [&](std::size_t i) { return i < spec.size() && (spec[i] == '0' || spec[i] == '#'); };
    const auto startsDigits = [&] {
      return isDigit(at) || ((spec[at] == '.' || spec[at] == ',') && isDigit(at + 1));
    };
    while (at < spec.size() && !startsDigits()) literal(before, spec, at);
    hasDigits = at < spec.size();
    for (; isDigit(at) || (at < spec.size() && (spec[at] == '.' || spec[at] == ',')); ++at) {
      point = point || spec[at] == '.';
      grouped = grouped || spec[at] == ',';
      if (!isDigit(at)) continue;
      if (point) ++decimals;
      if (spec[at] == '0') (point ? minimum : zeros) = point ? decimals : zeros + 1;
    }
    if (hasDigits && at < spec.size() && (spec[at] == 'e' || spec[at] == 'E')) {
      exponent = spec[at++];
      if (at < spec.size() && (spec[at] == '+' || spec[at] == '-')) ++at;
      while (isDigit(at)) ++at;
    }
    while (at < spec.size()) literal(behind, spec, at);
  }

  // Of the number without its sign.
  std::string digits(const Shown& number) const {
    char buffer[512] = "";
    const int precision = static_cast<int>(std::min<std::size_t>(decimals, 100));
    const double magnitude = std::fabs(percent ? number.value * 100 : number.value);
    std::string text;
    if (exponent) {
      std::snprintf(buffer, sizeof buffer, "%.*e", precision, magnitude);
    } else if (number.exact) {
      text = withDecimals(*number.exact, number.scale - (percent ? 2 : 0), precision);
    } else {
      std::snprintf(buffer, sizeof buffer, "%.*f", precision, withoutTie(magnitude, precision));
    }
    text += buffer;
    std::string tail;
    if (const std::size_t e = text.find('e'); e != std::string::npos) {
      tail = exponent + text.substr(e + 1);
      text.erase(e);
    }
    for (std::size_t drop = decimals; drop > minimum && text.ends_with('0'); --drop) text.pop_back();
    if (text.ends_with('.')) text.pop_back();
    std::size_t whole = std::min(text.find('.'), text.size());
    if (zeros == 0 && text.starts_with("0.")) {
      text.erase(0, 1);
      whole = 0;
    }
    if (whole < zeros) text.insert(0, zeros - whole, '0');
    whole = std::max(whole, zeros);
    for (std::size_t comma = whole; grouped && comma > 3; comma -= 3) text.insert(comma - 3, 1, ',');
    return text + tail;
  }

  std::string before, behind;  // with '+' in front where the sign goes
  std::size_t zeros = 0, decimals = 0, minimum = 0;
  bool hasDigits = false, point = false, grouped = false, percent = false;
  char sign = 0;      // '+': shown of every number; '-': of negative ones, at its place
  char exponent = 0;  // as it is spelled
  std::size_t signAt = 0;

 private:
  // Takes one character; a backslash makes a plain one of any.
  void literal(std::string& text, std::string_view spec, std::size_t& at) {
    const char c = spec[at++];
    if (c == '\\' && at < spec.size()) {
      text += spec[at++];
    } else if ((c == '+' || c == '-') && &text == &before && !sign) {
      sign = c;
      signAt = before.size();
    } else {
      percent = percent || c == '%';
      text += c;
    }
  }
};

// The parts between semicolons: for positive numbers, negative ones and zero.
std::vector<std::string> sectionsOf(std::string_view pattern) {
  std::vector<std::string> sections(1);
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    if (pattern[i] == ';') {
      sections.emplace_back();
      continue;
    }
    sections.back() += pattern[i];
    if (pattern[i] == '\\' && i + 1 < pattern.size()) sections.back() += pattern[++i];
  }
  return sections;
}

REALstring format(const Shown& number, REALstring spec) {
  return asPending([&] {
    const double value = number.value;
    const std::vector<std::string> sections = sectionsOf(utf8Of(textOf(spec)));
    const bool bySection = value < 0 && sections.size() > 1 && !sections[1].empty();
    const bool isZeroSection = value == 0 && sections.size() > 2 && !sections[2].empty();
    const Pattern pattern(sections[bySection ? 1 : isZeroSection ? 2 : 0]);
    const bool isEmpty = sections[0].empty() && sections.size() == 1;
    if (isEmpty) return made(display(number.slot, {number.kind}));
    const double shown = pattern.percent ? value * 100 : value;
    if (!std::isfinite(shown)) return made(display(Slot{.number = shown}, {Kind::Double}));
    const std::string digits = pattern.hasDigits ? pattern.digits(number) : "";
    const bool isZero = digits.find_first_of("123456789") == std::string::npos;
    std::string text = pattern.before;
    if (bySection || isZeroSection || !pattern.hasDigits) {  // there it is a character like others
      if (pattern.sign) text.insert(pattern.signAt, 1, pattern.sign);
    } else if (value < 0 && !isZero) {
      text.insert(pattern.sign ? pattern.signAt : 0, 1, '-');
    } else if (pattern.sign == '+') {
      text.insert(pattern.signAt, 1, '+');
    }
    return made(text + digits + pattern.behind);
  });
}
REALstring formatReal(double value, REALstring spec) {
  return format({{.number = value}, Kind::Double}, spec);
}
REALstring formatUnsigned(std::uint64_t value, REALstring spec) {
  return format({{.integer = static_cast<RBInteger>(value)}, Kind::UInt64}, spec);
}
template <Kind kind>
REALstring formatWhole(RBInteger value, REALstring spec) {
  return format({{.integer = value}, kind}, spec);
}

}  // namespace

void registerNumberWords() {
  static REALmethodDefinition table[] = {
      hostMethod("Hex(value as UInt64) as String", &hex),
      hostMethod("Oct(value as UInt64) as String", &oct),
      hostMethod("Bin(value as UInt64) as String", &bin),
      hostMethod("Val(s as String) as Double", &val),
      hostMethod("CDbl(s as String) as Double", &val),
      hostMethod("ToDouble(s as String) as Double", &realIn),
      hostMethod("ToInteger(s as String) as Integer", &integerIn),
      hostMethod("Format(value as Double, pattern as String) as String", &formatReal),
      hostMethod("Format(value as Integer, pattern as String) as String", &formatWhole<Kind::Int64>),
      hostMethod("Format(value as UInt64, pattern as String) as String", &formatUnsigned),
      hostMethod("Format(value as Currency, pattern as String) as String", &formatWhole<Kind::Currency>),
  };
  registerFunctions(table);
}

}  // namespace host
