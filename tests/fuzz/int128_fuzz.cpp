// 128-bit integers, through their registered members: arithmetic beside the compiler's 128-bit type and
// beside schoolbook arithmetic on 16-bit digits; roots, powers and bit counts by what they mean; decimal text
// as read and written digit by digit.
#include <cmath>

#include "fuzz.h"

using namespace fuzz;

namespace {

__extension__ typedef unsigned __int128 Bits;
__extension__ typedef __int128 Signed;
constexpr Bits topBit = Bits{1} << 127;

// Eight digits of 16 bits, the lowest first.
struct Digits {
  std::uint32_t digit[8];
  explicit Digits(Bits bits) {
    for (std::uint32_t& each : digit) {
      each = static_cast<std::uint16_t>(bits);
      bits >>= 16;
    }
  }
  Bits bits() const {
    Bits bits = 0;
    for (int i = 7; i >= 0; --i) bits = bits << 16 | digit[i];
    return bits;
  }
};

Bits schoolbookProduct(Bits a, Bits b) {
  const Digits left(a), right(b);
  Digits product(0);
  for (int i = 0; i < 8; ++i) {
    std::uint32_t carry = 0;
    for (int k = 0; i + k < 8; ++k) {
      const std::uint32_t sum = left.digit[i] * right.digit[k] + product.digit[i + k] + carry;
      product.digit[i + k] = sum & 0xFFFF;
      carry = sum >> 16;
    }
  }
  return product.bits();
}

struct Quotient {
  Bits quotient, remainder;
};

// Bit by bit. By 0: 0, and the dividend remains.
Quotient schoolbookQuotient(Bits a, Bits b) {
  if (b == 0) return {0, a};
  Quotient result = {0, 0};
  for (int i = 127; i >= 0; --i) {
    const bool carry = result.remainder & topBit;
    result.remainder = result.remainder << 1 | (a >> i & 1);
    result.quotient <<= 1;
    if (carry || result.remainder >= b) {
      result.remainder -= b;
      result.quotient |= 1;
    }
  }
  return result;
}

bool isNegative(Bits value, bool isSigned) { return isSigned && (value & topBit) != 0; }
Bits magnitudeOf(Bits value, bool isSigned) { return isNegative(value, isSigned) ? -value : value; }

Quotient divided(Bits a, Bits b, bool isSigned) {
  Quotient result = schoolbookQuotient(magnitudeOf(a, isSigned), magnitudeOf(b, isSigned));
  if (isSigned && ((a ^ b) & topBit)) result.quotient = -result.quotient;
  if (isNegative(a, isSigned)) result.remainder = -result.remainder;
  return result;
}

double toDouble(Bits value, bool isSigned) {
  const Bits magnitude = magnitudeOf(value, isSigned);
  const double sum =
      static_cast<double>(static_cast<std::uint64_t>(magnitude >> 64)) * 18446744073709551616.0 +
      static_cast<double>(static_cast<std::uint64_t>(magnitude));
  return isNegative(value, isSigned) ? -sum : sum;
}

std::string textOf(Bits value, bool isSigned) {
  const Bits magnitude = magnitudeOf(value, isSigned);
  std::string text;
  for (Bits rest = magnitude; rest != 0 || text.empty(); rest /= 10) {
    text.insert(text.begin(), static_cast<char>('0' + static_cast<int>(rest % 10)));
  }
  return isNegative(value, isSigned) ? "-" + text : text;
}

Bits readText(std::string_view text, bool isSigned) {
  std::size_t i = std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size());
  const char sign = i < text.size() ? text[i] : ' ';
  if (sign == '-' || sign == '+') ++i;
  Bits value = 0;
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
    value = (value << 3) + (value << 1) + static_cast<Bits>(text[i] - '0');
  }
  return isSigned && sign == '-' ? -value : value;
}

// The members of one of the two classes.
class Members {
 public:
  explicit Members(bool isSigned)
      : isSigned_(isSigned), name_(isSigned ? "Int128QTX" : "UInt128QTX"), record_(*host.findClass(name_)) {}

  void check(Bits a, Bits b, std::uint64_t exponent) const {
    const REALobject self = make(a), other = make(b);
    const auto binary = [&](const Binary& operation) { return take(operation.function(self, other)); };
    require(binary(add_) == static_cast<Bits>(a + b), "sum");
    require(binary(subtract_) == static_cast<Bits>(a - b), "difference");
    require(binary(multiply_) == schoolbookProduct(a, b), "product by schoolbook");
    require(binary(multiply_) == static_cast<Bits>(a * b), "product by the compiler");
    const Bits quotient = binary(divide_), remainder = binary(modulo_);
    const Quotient expected = divided(a, b, isSigned_);
    require(quotient == expected.quotient && remainder == expected.remainder, "quotient by schoolbook");
    const bool wraps = isSigned_ && a == topBit && b == ~Bits{0};
    if (b != 0 && !wraps) {
      const auto signedQuotient = [](Bits x, Bits y) {
        return static_cast<Bits>(static_cast<Signed>(x) / static_cast<Signed>(y));
      };
      require(quotient == (isSigned_ ? signedQuotient(a, b) : a / b), "quotient by the compiler");
    }
    require(binary(and_) == (a & b) && binary(or_) == (a | b) && binary(xor_) == (a ^ b), "bitwise");
    const int count = static_cast<int>(b & 127);
    require(binary(left_) == a << count, "shift to the left");
    require(binary(right_) == (isSigned_ ? static_cast<Bits>(static_cast<Signed>(a) >> count) : a >> count),
            "shift to the right");
    const bool less = isSigned_ ? static_cast<Signed>(a) < static_cast<Signed>(b) : a < b;
    require(compare_(self, other) == (a == b ? 0 : less ? -1 : 1), "comparison");
    require(equals_(self, other) == (a == b), "equality");
    require(take(pow_(self, exponent)) == power(a, exponent), "power");
    checkRoot(self, a);
    checkQueries(self, a);
    host.unlock(self);
    host.unlock(other);
  }

  void checkText(std::string_view text, Bits a) const {
    const REALobject self = make(0);
    const REALstring given = host.makeString(text);
    constructFromText_(self, given);
    host.unlock(given);
    require(bitsOf(self) == readText(text, isSigned_), "text as read");
    host.unlock(self);

    const REALobject written = make(a);
    const REALstring result = toText_(written);
    require(bytesOf(result) == textOf(a, isSigned_), "text as written");
    require(of(result)->encoding == encoding::ascii, "its encoding");
    constructFromText_(written, result);
    require(bitsOf(written) == a, "text read back");
    host.unlock(result);
    host.unlock(written);
  }

 private:
  struct Binary {
    REALobject (*function)(REALobject, REALobject);
  };
  // "Name(other as Class) as Class"
  Binary binaryNamed(std::string name, const char* parameter = "other") const {
    return {host.function<REALobject(REALobject, REALobject)>(
        name_, name + "(" + parameter + " as " + name_ + ") as " + name_)};
  }
  template <typename Value>
  Value get(REALobject self, std::string_view name) const {
    for (std::size_t i = 0; i < record_.propertyCount; ++i) {
      if (record_.properties[i].name != name) continue;
      return reinterpret_cast<Value (*)(REALobject, RBInteger)>(record_.properties[i].getter)(self, 0);
    }
    require(false, name);
    return {};
  }

  REALobject make(Bits value) const {
    const REALobject object = host.makeObject(name_);
    std::memcpy(of(object)->data(), &value, sizeof value);
    return object;
  }
  static Bits bitsOf(REALobject object) {
    Bits value;
    std::memcpy(&value, of(object)->data(), sizeof value);
    return value;
  }
  static Bits take(REALobject result) {
    require(result != nullptr, "no result");
    const Bits value = bitsOf(result);
    host.unlock(result);
    return value;
  }

  static Bits power(Bits base, std::uint64_t exponent) {
    Bits result = 1;
    for (int i = 63; i >= 0; --i) {
      result *= result;
      if (exponent >> i & 1) result *= base;
    }
    return result;
  }

  void checkRoot(REALobject self, Bits a) const {
    host.clear();
    const REALobject result = sqrt_(self);
    if (isNegative(a, isSigned_)) {
      require(!result && host.raised == "UnsupportedOperationException", "root of a negative number");
      return;
    }
    const Bits root = take(result);
    require(root >> 64 == 0 && root * root <= a, "root too big");
    require(root == UINT64_MAX || (root + 1) * (root + 1) > a, "root too small");
  }

  void checkQueries(REALobject self, Bits a) const {
    int ones = 0, width = 0, zeros = 128;
    for (int i = 0; i < 128; ++i) {
      if ((a >> i & 1) == 0) continue;
      ++ones;
      width = i + 1;
      zeros = std::min(zeros, i);
    }
    require(get<RBInteger>(self, "PopCount") == ones, "PopCount");
    require(get<RBInteger>(self, "BitWidth") == width, "BitWidth");
    require(get<RBInteger>(self, "CountLeftZeros") == 128 - width, "CountLeftZeros");
    require(get<RBInteger>(self, "CountRightZeros") == zeros, "CountRightZeros");
    require(same(get<double>(self, "doubleValue"), toDouble(a, isSigned_)), "doubleValue");
    if (!isSigned_) return;
    require(get<RBInteger>(self, "Sign") == (a & topBit ? -1 : a != 0), "Sign");
    require(take(get<REALobject>(self, "Abs")) == magnitudeOf(a, true), "Abs");
  }

  bool isSigned_;
  const char* name_;
  const REALclassDefinition& record_;
  Binary add_ = binaryNamed("Operator_Add"), subtract_ = binaryNamed("Operator_Subtract"),
         multiply_ = binaryNamed("Operator_Multiply"), divide_ = binaryNamed("Operator_Divide"),
         modulo_ = binaryNamed("Operator_Modulo"), left_ = binaryNamed("ShiftLeft"),
         right_ = binaryNamed("ShiftRight"), and_ = binaryNamed("BitwiseAnd", "Value"),
         or_ = binaryNamed("BitwiseOr", "Value"), xor_ = binaryNamed("BitwiseXOr", "Value");
  RBInteger (*compare_)(REALobject, REALobject) = host.function<RBInteger(REALobject, REALobject)>(
      name_, std::string("Operator_Compare(other as ") + name_ + ") as Integer");
  bool (*equals_)(REALobject, REALobject) = host.function<bool(REALobject, REALobject)>(
      name_, std::string("Equals(other as ") + name_ + ") as Boolean");
  REALobject (*pow_)(REALobject, std::uint64_t) = host.function<REALobject(REALobject, std::uint64_t)>(
      name_, std::string("Pow(exp as UInt64) as ") + name_);
  REALobject (*sqrt_)(REALobject) = host.function<REALobject(REALobject)>(name_,
                                                                          std::string("Sqrt as ") + name_);
  void (*constructFromText_)(REALobject, REALstring) =
      host.function<void(REALobject, REALstring)>(name_, "Constructor(value as String)");
  REALstring (*toText_)(REALobject) = host.function<REALstring(REALobject)>(name_,
                                                                            "Operator_Convert as String");
};

Bits operand(Bytes& bytes) {
  const auto low = bytes.word(), high = bytes.word();
  const Bits bits = static_cast<Bits>(high) << 64 | low;
  return bytes.below(2) == 0 ? bits : -bits;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  Host::load();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
  static const Members all[] = {Members(true), Members(false)};
  Bytes bytes(data, size);
  const Bits a = operand(bytes), b = operand(bytes);
  const std::uint64_t exponent = bytes.word();
  const std::string_view text = bytes.rest();
  for (const Members& members : all) {
    members.check(a, b, exponent);
    members.checkText(text, a);
  }
  require(host.strings == 0 && host.objects <= 32, "something is left");  // the small values' own
  return 0;
}
