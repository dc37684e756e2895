// Numbers as texts, and texts as numbers.
#include <string>

#include "language/formats.h"
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

REALstring format(Slot value, Kind kind, REALstring pattern) {
  return asPending([&] { return made(formatted(value, kind, utf8Of(textOf(pattern)))); });
}
REALstring formatReal(double value, REALstring spec) { return format({.number = value}, Kind::Double, spec); }
REALstring formatUnsigned(std::uint64_t value, REALstring spec) {
  return format({.integer = static_cast<RBInteger>(value)}, Kind::UInt64, spec);
}
template <Kind kind>
REALstring formatWhole(RBInteger value, REALstring spec) {
  return format({.integer = value}, kind, spec);
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
