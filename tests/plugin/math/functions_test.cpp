// The registered functions, called through their records as the host calls them.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <set>

#include "frame/fake_host.h"
#include "math/function_table.h"

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
