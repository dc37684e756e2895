// Mathematics.
#include <algorithm>
#include <cmath>
#include <iterator>

#include "language/words.h"
#include "runtime/array.h"
#include "runtime/random.h"

namespace host {

namespace {

template <double (*function)(double)>
double of(double value) {
  return function(value);
}
template <double (*function)(double, double)>
double ofTwo(double a, double b) {
  return function(a, b);
}

// NaN where one of them is.
double smaller(double a, double b) { return std::isnan(a) || a < b ? a : b; }
double larger(double a, double b) { return std::isnan(a) || a > b ? a : b; }
template <typename Integer>
Integer smallerOf(Integer a, Integer b) {
  return std::min(a, b);
}
template <typename Integer>
Integer largerOf(Integer a, Integer b) {
  return std::max(a, b);
}
// Wraps around, as the language's integers do.
RBInteger absoluteInteger(RBInteger value) {
  const auto word = static_cast<std::uint64_t>(value);
  return static_cast<RBInteger>(value < 0 ? 0 - word : word);
}

RBInteger signOf(double value) { return (value > 0) - (value < 0); }
std::uint64_t unchanged(std::uint64_t value) { return value; }
std::uint64_t bothOf(std::uint64_t a, std::uint64_t b) { return a & b; }
std::uint64_t eitherOf(std::uint64_t a, std::uint64_t b) { return a | b; }
std::uint64_t differenceOf(std::uint64_t a, std::uint64_t b) { return a ^ b; }
std::uint64_t complement(std::uint64_t value) { return ~value; }
std::uint64_t shiftRight(std::uint64_t value, RBInteger bits);
std::uint64_t shiftLeft(std::uint64_t value, RBInteger bits) {
  return bits < 0 ? shiftRight(value, bits > -64 ? -bits : 64) : bits < 64 ? value << bits : 0;
}
std::uint64_t shiftRight(std::uint64_t value, RBInteger bits) {
  return bits < 0 ? shiftLeft(value, bits > -64 ? -bits : 64) : bits < 64 ? value >> bits : 0;
}

double random() { return sharedGenerator().fraction(); }

}  // namespace

void registerMathWords() {
  static REALmethodDefinition table[] = {
      hostMethod("Abs(value as Double) as Double", &of<&std::fabs>),
      hostMethod("Abs(value as Integer) as Integer", &absoluteInteger),
      hostMethod("Abs(value as Currency) as Currency", &absoluteInteger),
      hostMethod("Abs(value as UInt64) as UInt64", &unchanged),
      hostMethod("Sign(value as Double) as Integer", &signOf),
      hostMethod("Min(a as Double, b as Double) as Double", &smaller),
      hostMethod("Min(a as Integer, b as Integer) as Integer", &smallerOf<RBInteger>),
      hostMethod("Min(a as Currency, b as Currency) as Currency", &smallerOf<std::int64_t>),
      hostMethod("Min(a as UInt64, b as UInt64) as UInt64", &smallerOf<std::uint64_t>),
      hostMethod("Max(a as Double, b as Double) as Double", &larger),
      hostMethod("Max(a as Integer, b as Integer) as Integer", &largerOf<RBInteger>),
      hostMethod("Max(a as Currency, b as Currency) as Currency", &largerOf<std::int64_t>),
      hostMethod("Max(a as UInt64, b as UInt64) as UInt64", &largerOf<std::uint64_t>),
      hostMethod("Floor(value as Double) as Double", &of<&std::floor>),
      hostMethod("Ceil(value as Double) as Double", &of<&std::ceil>),
      hostMethod("Ceiling(value as Double) as Double", &of<&std::ceil>),
      hostMethod("Round(value as Double) as Double", &of<&std::round>),
      hostMethod("Sqrt(value as Double) as Double", &of<&std::sqrt>),
      hostMethod("Exp(value as Double) as Double", &of<&std::exp>),
      hostMethod("Log(value as Double) as Double", &of<&std::log>),
      hostMethod("Pow(base as Double, exponent as Double) as Double", &ofTwo<&std::pow>),
      hostMethod("Sin(angle as Double) as Double", &of<&std::sin>),
      hostMethod("Cos(angle as Double) as Double", &of<&std::cos>),
      hostMethod("Tan(angle as Double) as Double", &of<&std::tan>),
      hostMethod("Asin(value as Double) as Double", &of<&std::asin>),
      hostMethod("Acos(value as Double) as Double", &of<&std::acos>),
      hostMethod("Atan(value as Double) as Double", &of<&std::atan>),
      hostMethod("Atan2(y as Double, x as Double) as Double", &ofTwo<&std::atan2>),
      hostMethod("Rnd as Double", &random),
  };
  registerFunctions(table);

  static REALmethodDefinition bits[] = {
      hostMethod("BitAnd(a as UInt64, b as UInt64) as UInt64", &bothOf),
      hostMethod("BitOr(a as UInt64, b as UInt64) as UInt64", &eitherOf),
      hostMethod("BitXor(a as UInt64, b as UInt64) as UInt64", &differenceOf),
      hostMethod("OnesComplement(value as UInt64) as UInt64", &complement),
      hostMethod("ShiftLeft(value as UInt64, bits as Integer) as UInt64", &shiftLeft),
      hostMethod("ShiftRight(value as UInt64, bits as Integer) as UInt64", &shiftRight),
  };
  static REALmoduleDefinition module = {};
  module.name = "Bitwise";
  module.methods = bits;
  module.methodCount = std::size(bits);
  registry().addModule(module, false);
}

}  // namespace host
