// Patterns, and numbers as they show them.
#include "language/formats.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <vector>

#include "language/node.h"
#include "runtime/text.h"
#include "runtime/variant.h"

namespace host {

namespace {

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
  std::string whole;  // what no pattern changes
  double value;
  std::string exact;  // digits without the sign, in units of the last of `scale` decimals; empty of a Double
  int scale = 0;
};

std::string withoutSign(std::string digits) {
  if (digits.starts_with('-')) digits.erase(0, 1);
  return digits;
}

Shown shownOf(Slot number, Kind kind) {
  Shown shown{display(number, {kind}), convert(number, {kind}, {Kind::Double}).number, "", 0};
  if (kind == Kind::Double) return shown;
  shown.exact = withoutSign(display(number, {kind == Kind::Currency ? Kind::Int64 : kind}));
  shown.scale = kind == Kind::Currency ? 4 : 0;
  return shown;
}

// Of decimal digits, a number that is greater by 1.
void increment(std::string& digits) {
  std::size_t at = digits.find_last_not_of('9');
  if (at == std::string::npos) {
    digits.insert(0, 1, '0');
    at = 0;
  }
  ++digits[at];
  std::fill(digits.begin() + static_cast<std::ptrdiff_t>(at) + 1, digits.end(), '0');
}

// With so many decimals of a number that has `scale` of them, or ends with zeros where that is negative.
std::string withDecimals(std::string digits, int scale, int precision) {
  const bool isZero = digits.find_first_not_of('0') == std::string::npos;
  if (scale < 0 && !isZero) digits.append(static_cast<std::size_t>(-scale), '0');
  scale = std::max(scale, 0);
  if (scale > precision) {
    const auto dropped = static_cast<std::size_t>(scale - precision);
    if (digits.size() <= dropped) digits.insert(0, dropped + 1 - digits.size(), '0');
    const bool isUp = digits[digits.size() - dropped] >= '5';
    digits.erase(digits.size() - dropped);
    if (isUp) increment(digits);
    scale = precision;
  }
  const auto decimals = static_cast<std::size_t>(scale);
  if (digits.size() <= decimals) digits.insert(0, decimals + 1 - digits.size(), '0');
  if (precision > 0) digits.insert(digits.size() - decimals, 1, '.');
  return digits.append(static_cast<std::size_t>(precision - scale), '0');
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
    } else if (!number.exact.empty()) {
      text = withDecimals(number.exact, number.scale - (percent ? 2 : 0), precision);
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

std::string formatted(const Shown& number, const std::string& spec) {
  const double value = number.value;
  const std::vector<std::string> sections = sectionsOf(spec);
  const bool bySection = value < 0 && sections.size() > 1 && !sections[1].empty();
  const bool isZeroSection = value == 0 && sections.size() > 2 && !sections[2].empty();
  const Pattern pattern(sections[bySection ? 1 : isZeroSection ? 2 : 0]);
  const bool isEmpty = sections[0].empty() && sections.size() == 1;
  if (isEmpty) return number.whole;
  const double shown = pattern.percent ? value * 100 : value;
  if (!std::isfinite(shown)) return display(Slot{.number = shown}, {Kind::Double});
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
  return text + digits + pattern.behind;
}

const Method* conversionOf(const Class& its, Type to) {
  for (const Method* method : its.findMethods("Operator_Convert")) {
    if (method->declaration.parameters.empty() && method->declaration.result == to) return method;
  }
  return nullptr;
}

// Of an object that stands for a whole number, which its text has all digits of.
std::optional<Shown> wholeNumberIn(Heap& object) {
  const Class& its = *object.objectClass;
  if (!isWholeNumber(its)) return std::nullopt;
  const Slot self = {.heap = &object};
  const Ref<Text> text =
      Ref<Text>::adopt(static_cast<Text*>(conversionOf(its, {Kind::String})->call({&self, 1}).heap));
  std::string digits = utf8Of(text.get());
  if (withoutSign(digits).find_first_not_of("0123456789") != std::string::npos || digits.size() < 1) {
    return std::nullopt;
  }
  return Shown{digits, std::strtod(digits.c_str(), nullptr), withoutSign(digits), 0};
}

}  // namespace

bool isWholeNumber(const Class& type) {
  return conversionOf(type, {Kind::String}) &&
         (conversionOf(type, {Kind::Int64}) || conversionOf(type, {Kind::UInt64}));
}

std::string formatted(Slot value, Kind kind, const std::string& pattern) {
  return formatted(shownOf(value, kind), pattern);
}

std::string formatted(Heap* variant, const std::string& pattern) {
  const Type inside = typeIn(variant);
  if (isPlainObject(inside)) {
    if (const std::optional<Shown> number = wholeNumberIn(*variant)) return formatted(*number, pattern);
  }
  const Kind kind = inside.kind == Kind::UInt64 || inside.kind == Kind::Currency ? inside.kind
                    : inside.isInteger()                                         ? Kind::Int64
                                                                                 : Kind::Double;
  return formatted(convert(Slot{.heap = variant}, {Kind::Variant}, {kind}), kind, pattern);
}

}  // namespace host
