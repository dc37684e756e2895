// The registered functions, called through their records as the host calls them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <string>

#include "frame/fake_host.h"
#include "frame/processor.h"
#include "frame/records.h"
#include "math/bits.h"
#include "math/function_table.h"
#include "math/half_float.h"
#include "math/random_draws.h"

namespace qtx {
namespace {

struct Functions {
  FakeHost host;
  Functions() { host.load(); }

  template <typename Signature>
  Signature* find(std::string_view declaration) {
    return host.function<Signature>("", declaration);
  }
  // Calls with a host string that is released afterwards.
  template <typename Result>
  Result withText(std::string_view declaration, std::string_view text,
                  std::uint32_t encoding = encoding::utf8) {
    const REALstring string = host.makeString(text, encoding);
    const Result result = find<Result(REALstring)>(declaration)(string);
    host.unlock(string);
    return result;
  }
};

constexpr const char* currencyValue = "CurrencyValueQTX(value as string) as Currency";
constexpr const char* isValidCard = "IsValidCreditCardNumberQTX(Number as String) as boolean";
constexpr const char* toExtended = "DoubleToExtendedStrQTX(x as double) as string";
constexpr const char* fromExtended = "ExtendedStrToDoubleQTX(v as string) as double";
constexpr const char* normInv =
    "NormInvQTX(p as Double, mu as double = 0.0, sigma as double = 1.0) as double";

TEST(FunctionTable, Holds62DifferentFunctions) {
  std::set<std::string_view> names;
  for (const REALmethodDefinition& record : mathFunctions()) {
    EXPECT_NE(record.function, nullptr) << record.declaration;
    EXPECT_EQ(record.setterFunction, nullptr);
    EXPECT_EQ(record.flags, 4u);
    EXPECT_EQ(record.attributes, nullptr);
    EXPECT_EQ(record.attributeCount, 0u);
    const std::string_view declaration = record.declaration;
    const std::string_view name = declaration.substr(0, declaration.find('('));
    EXPECT_TRUE(name.ends_with("QTX"));
    names.insert(name);
  }
  EXPECT_EQ(names.size(), 62u);
}

TEST(FunctionTable, HoldsTheFormsForThisProcessor) {
  const auto holds = [](std::string_view name, REALproc function) {
    const auto functions = mathFunctions();
    return std::any_of(functions.begin(), functions.end(), [&](const REALmethodDefinition& record) {
      return std::string_view(record.declaration).starts_with(name) && record.function == function;
    });
  };
  const bool halves = thisProcessor().convertsHalfFloats, bits = thisProcessor().countsBits;
  EXPECT_TRUE(holds("ConvertToFloat16QTX(", halves ? entryOf<&tuned::toHalf>() : entryOf<&toHalf>()));
  EXPECT_TRUE(holds("ConvertFromFloat16QTX(", halves ? entryOf<&tuned::fromHalf>() : entryOf<&fromHalf>()));
  EXPECT_TRUE(holds("BitCountQTX(", bits ? entryOf<&tuned::bitCount>() : entryOf<&bitCount>()));
}

// At arguments where no two of the functions agree. Read at run time, since compilers round their own results
// in other ways than the library.
TEST(LibraryFunctions, AreBoundToTheirNames) {
  Functions functions;
  using Unary = double(double);
  const std::pair<std::string, Unary*> rows[] = {
      {"Floor", &::floor}, {"Cos", &::cos},   {"CosH", &::cosh},   {"Sin", &::sin},     {"SinH", &::sinh},
      {"Tan", &::tan},     {"TanH", &::tanh}, {"ACos", &::acos},   {"ACosH", &::acosh}, {"ASin", &::asin},
      {"ASinH", &::asinh}, {"ATan", &::atan}, {"ATanH", &::atanh}, {"Exp", &::exp},     {"Exp2", &::exp2},
      {"Log", &::log},     {"Log2", &::log2}, {"Log10", &::log10},
  };
  for (const auto& [name, expected] : rows) {
    Unary* function = functions.find<Unary>(name + "QTX(x as double) as double");
    for (const volatile double x : {0.3, -0.7, 2.5}) {
      const double result = function(x), reference = expected(x);
      EXPECT_TRUE(result == reference || (std::isnan(result) && std::isnan(reference)))
          << name << " of " << x << ": " << result << " instead of " << reference;
    }
  }
  const auto binary = [&](const std::string& name, double x, double y) {
    return functions.find<double(double, double)>(name + "QTX(x as double, y as double) as double")(x, y);
  };
  EXPECT_DOUBLE_EQ(binary("Hypot", 3e200, 4e200), 5e200) << "no overflow on the way";
  EXPECT_NEAR(binary("ATan2", 1, -2), 2.677945044588987, 1e-15);
  EXPECT_EQ(binary("Pow", -2, 3), -8);
  EXPECT_NEAR(binary("Sqrt", 27, 3), 3, 1e-14);
}

TEST(Conversions, TakeAndGive64Bits) {
  Functions functions;
  constexpr std::uint64_t top = std::uint64_t{1} << 63;
  auto* toSigned = functions.find<std::int64_t(double)>("DoubleToInt64QTX(value as double) as Int64");
  EXPECT_EQ(toSigned(-9e18), -9000000000000000000);
  EXPECT_EQ(toSigned(1e19), INT64_MAX);
  auto* toUnsigned = functions.find<std::uint64_t(double)>("DoubleToUInt64QTX(value as double) as UInt64");
  EXPECT_EQ(toUnsigned(1.5e19), 15000000000000000000u);
  EXPECT_EQ(toUnsigned(-1), 0u);
  auto* fromSigned = functions.find<double(std::int64_t)>("Int64ToDoubleQTX(value as Int64) as double");
  EXPECT_EQ(fromSigned(INT64_MIN), -0x1p63);
  EXPECT_EQ(fromSigned((std::int64_t{1} << 53) + 1), 0x1p53) << "a tie to even";
  EXPECT_EQ(fromSigned((std::int64_t{1} << 53) + 3), 0x1p53 + 4) << "a tie to even";
  auto* fromUnsigned = functions.find<double(std::uint64_t)>("UInt64ToDoubleQTX(value as UInt64) as double");
  EXPECT_EQ(fromUnsigned(UINT64_MAX), 0x1p64);
  EXPECT_EQ(fromUnsigned(top + 1024), 0x1p63) << "a tie to even";
  EXPECT_EQ(fromUnsigned(top + 1025), 0x1p63 + 2048);
}

// Each would give something else if the Integer lost its upper half on the way.
TEST(Integers, ArriveWithAll64Bits) {
  Functions functions;
  constexpr RBInteger beyond32 = std::int64_t{1} << 32, beyond31 = std::int64_t{1} << 31;
  EXPECT_EQ(functions.find<double(RBInteger)>("FacQTX(x as integer) as double")(beyond32 + 5), 0);
  auto* round =
      functions.find<double(double, RBInteger)>("RoundQTX(x as double, decimals as integer = 0) as double");
  EXPECT_TRUE(std::isnan(round(1.5, beyond32)));
  EXPECT_EQ(functions.find<RBInteger(RBInteger)>("HiWordQTX(i as integer) as integer")(beyond32), 0);

  for (const char* name : {"ArithmeticShiftQTX", "LogicalShiftQTX"}) {
    auto* shift = functions.find<std::uint64_t(std::uint64_t, RBInteger)>(
        std::string(name) + "(value as UInt64, count as Integer) as UInt64");
    EXPECT_EQ(shift(1, 200), 256u) << name;
    EXPECT_EQ(shift(2, beyond31 + 1), 4u) << name;
    EXPECT_EQ(shift(2, -beyond31 - 1), 1u) << name;
  }
  auto* rotate = functions.find<std::uint64_t(std::uint64_t, RBInteger, RBInteger, RBInteger)>(
      "BitwiseRotateQTX(value as UInt64, count as Integer, offset as Integer, width as Integer) as UInt64");
  EXPECT_EQ(rotate(1, beyond32, 0, 3), 2u) << "2^32 modulo 3 is 1";
  EXPECT_EQ(rotate(1, 1, beyond32, 4), 1u);
  EXPECT_EQ(rotate(8, 1, 0, beyond32 + 4), 16u) << "all that is there of the field: 32 bits";

  EXPECT_EQ(functions.find<std::uint64_t(RBInteger)>("BitValQTX(bitNumber as Integer) as UInt64")(beyond32),
            0u);
  for (const char* name : {"BitInclQTX", "BitExclQTX"}) {
    auto* change = functions.find<std::uint64_t(std::uint64_t, RBInteger)>(
        std::string(name) + "(value as UInt64, bitNumber as Integer) as UInt64");
    EXPECT_EQ(change(0b10, beyond32), 0b10u) << name;
    EXPECT_EQ(change(0b11, beyond32), 0b11u) << name;
  }
  EXPECT_FALSE(functions.find<bool(std::uint64_t, RBInteger)>(
      "BitIsSetQTX(value as UInt64, bitNumber as Integer) as Boolean")(1, beyond32));
}

TEST(CurrencyValue, ReadsTextInEveryEncoding) {
  Functions functions;
  for (const std::uint32_t encoding :
       {encoding::utf8, encoding::ascii, encoding::none, encoding::macRoman, encoding::isoLatin1,
        encoding::windowsLatin1, encoding::utf16, encoding::utf32BigEndian, 12345u}) {
    for (const char terminator : {'\0', '9'}) {
      functions.host.terminator = terminator;
      EXPECT_EQ(functions.withText<std::int64_t>(currencyValue, "-12.5", encoding), -125000) << encoding;
      EXPECT_EQ(functions.withText<std::int64_t>(currencyValue, "", encoding), 0) << encoding;
    }
  }
  EXPECT_TRUE(functions.host.raised.empty());
  // Where the host converts, it is to ASCII.
  EXPECT_TRUE(std::count(functions.host.conversions.begin(), functions.host.conversions.end(),
                         "PluginGetStringData 1536"));
}

TEST(CurrencyValue, TakesNilForTheEmptyText) {
  Functions functions;
  EXPECT_EQ(functions.find<std::int64_t(REALstring)>(currencyValue)(nullptr), 0);
  EXPECT_TRUE(functions.host.raised.empty());
}

TEST(CurrencyValue, SaysWhatIsWrong) {
  Functions functions;
  using namespace std::string_view_literals;
  const std::pair<std::string_view, std::string_view> rows[] = {
      {"1234567890123456789012", "Number too long!"}, {"922337203685477.5808", "Number too big!"},
      {"922337203685478", "Number too big!"},         {"1,5", "Invalid character found: ,"},
      {" 1", "Invalid character found:  "},           {"1%s", "Invalid character found: %"},
      {"1\xC3\xA4", "Invalid character found: \xC3"},
  };
  for (const auto& [text, message] : rows) {
    EXPECT_EQ(functions.withText<std::int64_t>(currencyValue, text), 0) << text;
    const RaisedException raised = functions.host.takeRaised();
    EXPECT_EQ(raised.className, "UnsupportedFormatException") << text;
    EXPECT_EQ(raised.message, message);
    EXPECT_EQ(raised.errorNumber, 0);
  }
  EXPECT_EQ(functions.withText<std::int64_t>(currencyValue, "1.5\0x"sv), 15000) << "ends at the NUL";
  EXPECT_TRUE(functions.host.raised.empty());
}

TEST(CurrencyDiv, RefusesTheDivisorZero) {
  Functions functions;
  auto* divide = functions.find<std::int64_t(std::int64_t, RBInteger)>(
      "CurrencyDivQTX(value1 as Currency, value2 as Integer) as Currency");
  EXPECT_EQ(divide(100000, 4), 25000);
  EXPECT_EQ(divide(INT64_MIN, -1), INT64_MIN);
  EXPECT_TRUE(functions.host.raised.empty());
  EXPECT_EQ(divide(100000, 0), 0);
  const RaisedException raised = functions.host.takeRaised();
  EXPECT_EQ(raised.className, "UnsupportedOperationException");
  EXPECT_EQ(raised.message, "Division by zero.");
}

TEST(CreditCardNumber, IsReadInEveryEncoding) {
  Functions functions;
  for (const std::uint32_t encoding :
       {encoding::utf8, encoding::ascii, encoding::none, encoding::macRoman, encoding::utf16}) {
    EXPECT_TRUE(functions.withText<bool>(isValidCard, "4111111111111111", encoding)) << encoding;
    EXPECT_FALSE(functions.withText<bool>(isValidCard, "4111111111111112", encoding)) << encoding;
    EXPECT_FALSE(functions.withText<bool>(isValidCard, "18\xC3", encoding)) << encoding;
    EXPECT_TRUE(functions.withText<bool>(isValidCard, "", encoding)) << encoding;
  }
  EXPECT_FALSE(functions.withText<bool>(isValidCard, std::string_view("18\0", 3)));
}

TEST(CreditCardNumber, IsConvertedToASCII) {
  Functions functions;
  EXPECT_TRUE(functions.withText<bool>(isValidCard, "18", encoding::utf16));
  EXPECT_EQ(functions.host.conversions, std::vector<std::string>{"PluginGetStringData 1536"});
}

// What the host cannot convert counts as the empty text.
TEST(Text, IsEmptyWhereTheHostDoesNotConvert) {
  Functions functions;
  functions.host.withhold("PluginGetStringData");
  EXPECT_TRUE(functions.withText<bool>(isValidCard, "1", encoding::utf16));
  EXPECT_EQ(functions.withText<std::int64_t>(currencyValue, "x", encoding::utf16), 0);
  EXPECT_TRUE(functions.host.raised.empty());
}

TEST(CreditCardNumber, IsNotValidWhereItIsNil) {
  Functions functions;
  EXPECT_FALSE(functions.find<bool(REALstring)>(isValidCard)(nullptr));
}

TEST(ExtendedStrings, AreTenBytesWithoutATextsEncoding) {
  Functions functions;
  for (const double x : {44100.0, 0.0, -0.0, 1e-320, -1.7e308, std::numeric_limits<double>::infinity()}) {
    const REALstring bytes = functions.find<REALstring(double)>(toExtended)(x);
    EXPECT_EQ(functions.host.bytesOf(bytes).size(), 10u);
    EXPECT_EQ(std::signbit(functions.find<double(REALstring)>(fromExtended)(bytes)), std::signbit(x));
    EXPECT_EQ(functions.find<double(REALstring)>(fromExtended)(bytes), x);
    functions.host.unlock(bytes);
  }
  const REALstring bytes = functions.find<REALstring(double)>(toExtended)(44100);
  EXPECT_EQ(functions.host.string(bytes).encoding, encoding::none);
  EXPECT_EQ(functions.host.bytesOf(bytes), std::string_view("\x40\x0E\xAC\x44\0\0\0\0\0\0", 10));
  functions.host.unlock(bytes);
}

TEST(ExtendedStrings, HoldInfinitiesAndNaN) {
  Functions functions;
  const auto thereAndBack = [&](double x) {
    const REALstring bytes = functions.find<REALstring(double)>(toExtended)(x);
    EXPECT_EQ(functions.host.bytesOf(bytes).size(), 10u);
    const double back = functions.find<double(REALstring)>(fromExtended)(bytes);
    functions.host.unlock(bytes);
    return back;
  };
  constexpr double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(thereAndBack(infinity), infinity);
  EXPECT_EQ(thereAndBack(-infinity), -infinity);
  EXPECT_TRUE(std::isnan(thereAndBack(std::numeric_limits<double>::quiet_NaN())));
  EXPECT_TRUE(functions.host.raised.empty());
}

TEST(ExtendedStrings, OfOtherLengthsAreZero) {
  Functions functions;
  for (const std::size_t length : {0u, 1u, 9u, 11u, 1000u}) {
    EXPECT_EQ(functions.withText<double>(fromExtended, std::string(length, '@')), 0) << length;
  }
  EXPECT_NE(functions.withText<double>(fromExtended, std::string(10, '@')), 0);
  EXPECT_EQ(functions.find<double(REALstring)>(fromExtended)(nullptr), 0);
  EXPECT_TRUE(functions.host.raised.empty());
}

TEST(NormInv, ScalesAndShifts) {
  Functions functions;
  auto* quantile = functions.find<double(double, double, double)>(normInv);
  EXPECT_NEAR(quantile(0.025, 10, 2), 6.080072030919891, 1e-14);
  EXPECT_EQ(quantile(0, 0, 1), -1.2533141373155001);
  EXPECT_EQ(quantile(1, 0, 1), 1.2533141373155001);
  EXPECT_TRUE(std::isnan(quantile(std::nan(""), 0, 1)));
  EXPECT_TRUE(functions.host.raised.empty());
}

TEST(NormInv, RefusesWhatIsNoProbability) {
  Functions functions;
  auto* quantile = functions.find<double(double, double, double)>(normInv);
  for (const double p : {-0.0001, 1.0001, -1e-320, std::nextafter(1.0, 2.0), HUGE_VAL, -HUGE_VAL}) {
    EXPECT_EQ(quantile(p, 5, 1), 0) << p;
    const RaisedException raised = functions.host.takeRaised();
    EXPECT_EQ(raised.className, "OutOfBoundsException");
    EXPECT_EQ(raised.message, "Invalid value for p");
  }
}

TEST(Bits, AreBoundToTheirNames) {
  Functions functions;
  const auto both = [&](const char* name, std::uint64_t x, std::uint64_t y) {
    return functions.find<std::uint64_t(std::uint64_t, std::uint64_t)>(name)(x, y);
  };
  EXPECT_EQ(both("BitwiseNOrQTX(x as UInt64, y as UInt64) as UInt64", 0xF0, 0xFF), ~std::uint64_t{0xF0});
  EXPECT_EQ(both("BitwiseNAndQTX(x as UInt64, y as UInt64) as UInt64", 0xF0, 0x0F), ~std::uint64_t{0xFF});
  EXPECT_EQ(both("BitwiseDiffQTX(x as UInt64, y as UInt64) as UInt64", 0xFF, 0x0F), 0xF0u);
  EXPECT_EQ(both("BitClearQTX(value as UInt64, mask as UInt64) as UInt64", 0xFF, 0x0F), 0xF0u);

  const auto bit = [&](const char* name, std::uint64_t value, RBInteger number) {
    return functions.find<std::uint64_t(std::uint64_t, RBInteger)>(name)(value, number);
  };
  constexpr const char* include = "BitInclQTX(value as UInt64, bitNumber as Integer) as UInt64";
  constexpr const char* exclude = "BitExclQTX(value as UInt64, bitNumber as Integer) as UInt64";
  EXPECT_EQ(bit(include, 1, 3), 9u);
  EXPECT_EQ(bit(include, 1, 64), 1u);
  EXPECT_EQ(bit(exclude, 9, 3), 1u);
  EXPECT_EQ(bit(exclude, UINT64_MAX, -1), UINT64_MAX >> 1);
  EXPECT_EQ(bit(exclude, UINT64_MAX, 64), UINT64_MAX);

  auto* isSet = functions.find<bool(std::uint64_t, RBInteger)>(
      "BitIsSetQTX(value as UInt64, bitNumber as Integer) as Boolean");
  EXPECT_TRUE(isSet(1, 0));
  EXPECT_TRUE(isSet(1, -64));
  EXPECT_FALSE(isSet(1, 64));
  EXPECT_TRUE(isSet(std::uint64_t{1} << 63, 63)) << "not lost in a Boolean's byte";
}

// Two processes have the same seed once in 2^32 times.
TEST(RandomDraws, AreOtherOnesInEachProcess) {
  Functions functions;
  auto* draw = functions.find<double(double)>("RandomExponentialDistributionQTX(lambda as Double) as double");
  const double drawn = draw(1);
  for (const std::uint32_t seed : {0u, 1u}) EXPECT_NE(drawn, RandomDraws(seed).exponential(1)) << seed;
}

TEST(RandomPoisson, GoesByTheLow32BitsOfTheMean) {
  Functions functions;
  auto* draw =
      functions.find<RBInteger(RBInteger)>("RandomPoissonDistributionQTX(Mean as Integer) as Integer");
  EXPECT_EQ(draw(0), 0);
  EXPECT_EQ(draw(std::int64_t{1} << 32), 0);
  EXPECT_EQ(draw(std::int64_t{1} << 31), 0) << "a negative mean";
  RBInteger sum = 0;
  for (int i = 0; i < 10000; ++i) sum += draw((std::int64_t{1} << 32) + 3);
  EXPECT_NEAR(static_cast<double>(sum) / 10000, 3, 0.2);  // over eleven standard deviations
}

}  // namespace
}  // namespace qtx
