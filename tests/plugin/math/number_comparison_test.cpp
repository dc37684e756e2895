// CompareNumbersQTX over every pair of type codes: which values are read, by which of the host's operations,
// and what is made of them.

#include <gtest/gtest.h>

#include <limits>
#include <set>

#include "frame/fake_host.h"
#include "math/number_comparison.h"
#include "math/number_comparison_functions.h"
#include "math/number_kind.h"

namespace qtx {
namespace {

// A variant with a different value for each reader, so that a wrong one is noticed.
struct FakeVariant {
  RBInteger type;
  std::int64_t signedValue;
  double floating;
  std::uint64_t unsignedValue;
  std::string text;
};
FakeVariant left, right;
const auto leftHandle = reinterpret_cast<REALobject>(0x1000),
           rightHandle = reinterpret_cast<REALobject>(0x2000);
std::vector<std::string> reads;  // "left Int64", …, in order

FakeVariant& variant(REALobject handle, const char* reader) {
  reads.push_back((handle == leftHandle ? "left " : "right ") + std::string(reader));
  return handle == leftHandle ? left : right;
}
const auto class32 = reinterpret_cast<REALclassRef>(0x32), class64 = reinterpret_cast<REALclassRef>(0x64);

// The host tells 102 from 2 and 103 from 3 by the object's class alone.
RBInteger reportedType(REALobject handle) {
  const RBInteger type = (handle == leftHandle ? left : right).type;
  return type == 102 ? 2 : type == 103 ? 3 : type;
}

void offerTypes(FakeHost& host) {
  host.offer(
      "pluginObjectType", +[](const char* name) {
        return name == std::string_view("_VariantUInt64")   ? class64
               : name == std::string_view("_VariantUInt32") ? class32
                                                            : nullptr;
      });
  host.offer(
      "RuntimeObjectIsa", +[](REALobject handle, REALclassRef type) {
        return (handle == leftHandle ? left : right).type == (type == class64 ? 103 : 102);
      });
  host.offer(
      "RuntimeStringCompare", +[](REALstring a, REALstring b) -> std::int32_t {
        const auto bytes = [](REALstring s) { return FakeHost::current->bytesOf(s); };
        return 100 * bytes(a).compare(bytes(b));
      });
}
void offerConversions(FakeHost& host) {
  offerTypes(host);
  host.offer("VarType(value As Variant) As Integer", &reportedType);
  host.offer(
      "VariantToInt64", +[](REALobject v) { return variant(v, "Int64").signedValue; });
  host.offer(
      "VariantToDouble", +[](REALobject v) { return variant(v, "Double").floating; });
  host.offer(
      "VariantToUInt64", +[](REALobject v) { return variant(v, "UInt64").unsignedValue; });
  host.offer(
      "VariantToString",
      +[](REALobject v) { return FakeHost::current->makeString(variant(v, "String").text); });
}
void offerProperties(FakeHost& host) {
  offerTypes(host);
  host.offer(
      "REALGetPropValueInteger", +[](REALobject v, const char* name, RBInteger* out) {
        EXPECT_STREQ(name, "Type");
        *out = reportedType(v);
        return true;
      });
  host.offer(
      "REALGetPropValueInt64", +[](REALobject v, const char* name, std::int64_t* out) {
        EXPECT_STREQ(name, "LongValue");
        *out = variant(v, "Int64").signedValue;
        return true;
      });
  host.offer(
      "REALGetPropValueDouble", +[](REALobject v, const char* name, double* out) {
        EXPECT_STREQ(name, "DoubleValue");
        *out = variant(v, "Double").floating;
        return true;
      });
  host.offer(
      "REALGetPropValueUInt64", +[](REALobject v, const char* name, std::uint64_t* out) {
        EXPECT_STREQ(name, "UInt64Value");
        *out = variant(v, "UInt64").unsignedValue;
        return true;
      });
  host.offer(
      "REALGetPropValueString", +[](REALobject v, const char* name, REALstring* out) {
        EXPECT_STREQ(name, "StringValue");
        *out = FakeHost::current->makeString(variant(v, "String").text);
        return true;
      });
}

char groupOf(RBInteger code) {
  static const std::map<char, std::set<RBInteger>> groups = {
      {'s', {0, 2, 3, 11, 16, 102}}, {'f', {4, 5, 6}}, {'t', {8, 18, 19, 20, 21, 23, 37}}, {'u', {26, 103}}};
  for (const auto& [group, codes] : groups) {
    if (codes.contains(code)) return group;
  }
  return 'x';
}

// What is read of each side, and whether that is then compared.
struct Rule {
  const char* left;
  const char* right;
};
const std::map<std::string, Rule> rules = {
    {"ss", {"Int64", "Int64"}},   {"st", {"Int64", "Int64"}},   {"sf", {"Int64", "Double"}},
    {"su", {"Int64", "UInt64"}},  {"sx", {"Int64", nullptr}},   {"fs", {"Double", "Int64"}},
    {"ff", {"Double", "Double"}}, {"ft", {"Double", "Double"}}, {"fu", {"Double", "UInt64"}},
    {"fx", {"Double", nullptr}},  {"us", {"UInt64", "Int64"}},  {"uf", {"UInt64", "Double"}},
    {"uu", {"UInt64", "UInt64"}}, {"ut", {"UInt64", "UInt64"}}, {"ux", {"UInt64", nullptr}},
};

std::string refusalFor(char leftGroup, RBInteger rightCode) {
  static const std::map<RBInteger, std::string> special = {{7, "Can't compare date."},
                                                           {9, "Can't compare objects."},
                                                           {22, "Can't compare WindowPtr."},
                                                           {36, "Can't compare structure."},
                                                           {38, "Can't compare DateTime."}};
  return leftGroup == 'f' && special.contains(rightCode) ? special.at(rightCode) : "Unsupported type.";
}

double valueOf(const FakeVariant& v, std::string_view reader) {
  return reader == "Int64"    ? static_cast<double>(v.signedValue)
         : reader == "Double" ? v.floating
                              : static_cast<double>(v.unsignedValue);
}

// All pairs of codes −1 … 130 and some beyond, with small values of which the left ones are greater, equal
// and smaller, depending on the readers.
void checkMatrix(FakeHost& host) {
  std::vector<RBInteger> codes = {-4097, 1000, 2048, 8192,
                                  std::numeric_limits<RBInteger>::max() & ~RBInteger{4096}};
  for (RBInteger code = 0; code <= 130; ++code) codes.push_back(code);
  for (const RBInteger leftCode : codes) {
    for (const RBInteger rightCode : codes) {
      left = {leftCode, -7, 3.5, 20, "b"};
      right = {rightCode, 20, 3.25, 20, "a"};
      const char leftGroup = groupOf(leftCode), rightGroup = groupOf(rightCode);
      std::vector<std::string> expectedReads;
      RBInteger expected = -1;
      std::string refusal;
      if (leftGroup == 'x') {
        refusal = "Unsupported type.";
      } else if (leftGroup == 't') {
        expectedReads = {"left String", "right String"};
        expected = 100;
      } else {
        const Rule& rule = rules.at({leftGroup, rightGroup});
        expectedReads.push_back("left " + std::string(rule.left));
        if (rule.right) {
          expectedReads.push_back("right " + std::string(rule.right));
          const double a = valueOf(left, rule.left), b = valueOf(right, rule.right);
          expected = a > b ? 1 : a < b ? -1 : 0;
        } else {
          refusal = refusalFor(leftGroup, rightCode);
        }
      }
      reads.clear();
      ASSERT_EQ(CompareNumberVariants(leftHandle, rightHandle), expected) << leftCode << ", " << rightCode;
      ASSERT_EQ(reads, expectedReads) << leftCode << ", " << rightCode;
      if (refusal.empty()) {
        ASSERT_TRUE(host.raised.empty()) << leftCode << ", " << rightCode;
      } else {
        const RaisedException raised = host.takeRaised();
        ASSERT_EQ(raised.className, "UnsupportedOperationException");
        ASSERT_EQ(raised.message, refusal) << leftCode << ", " << rightCode;
      }
    }
  }
}

TEST(CompareNumbers, GoesByBothTypesOnAHostWithConversions) {
  FakeHost host;
  offerConversions(host);
  checkMatrix(host);
}

TEST(CompareNumbers, GoesByBothTypesOnAHostWithPropertiesAlone) {
  FakeHost host;
  offerProperties(host);
  checkMatrix(host);
}

TEST(CompareNumbers, RefusesArraysOnEitherSideUnread) {
  FakeHost host;
  offerConversions(host);
  for (const RBInteger array : {4096, 4096 | 2, 4096 | 8, -1}) {
    for (const RBInteger other : {2, 5, 8, 9, 26, 4096 | 5}) {
      for (const bool swapped : {false, true}) {
        left.type = swapped ? other : array;
        right.type = swapped ? array : other;
        reads.clear();
        EXPECT_EQ(CompareNumberVariants(leftHandle, rightHandle), -1);
        EXPECT_EQ(host.takeRaised().message, "Can't compare arrays.");
        EXPECT_TRUE(reads.empty());
      }
    }
  }
}

TEST(CompareNumbers, IsAlwaysEqualWhereTheHostReadsNothing) {
  FakeHost host;
  offerTypes(host);
  host.offer("VarType(value As Variant) As Integer", &reportedType);
  for (const RBInteger leftCode : {2, 5, 8, 26}) {
    for (const RBInteger rightCode : {2, 5, 8, 26}) {
      left.type = leftCode;
      right.type = rightCode;
      if (leftCode == 8) host.withhold("RuntimeStringCompare");
      EXPECT_EQ(CompareNumberVariants(leftHandle, rightHandle), 0) << leftCode << ", " << rightCode;
    }
  }
}

TEST(CompareNumbers, PassesNilOnAsTheEmptyString) {
  FakeHost host;
  offerConversions(host);
  static std::vector<REALstring> compared;
  compared.clear();
  host.offer(
      "RuntimeStringCompare", +[](REALstring a, REALstring b) -> std::int32_t {
        compared = {a, b};
        return -77;
      });
  left = {8, 0, 0, 0, "text"};
  reads.clear();
  // The host reports the code of nil for the right side.
  host.offer(
      "VarType(value As Variant) As Integer", +[](REALobject v) -> RBInteger { return v ? 8 : 0; });
  EXPECT_EQ(CompareNumberVariants(leftHandle, nullptr), -77) << "the host's own result, unreduced";
  ASSERT_EQ(compared.size(), 2u);
  EXPECT_NE(compared[0], nullptr);
  EXPECT_EQ(compared[1], nullptr);
  EXPECT_EQ(reads, std::vector<std::string>{"left String"});
}

TEST(NumberComparison, GoesByTheMathematicalValue) {
  const std::uint64_t half = std::uint64_t{1} << 63;
  EXPECT_EQ(compareNumbers(std::int64_t{-1}, UINT64_MAX), -1);
  EXPECT_EQ(compareNumbers(UINT64_MAX, std::int64_t{-1}), 1);
  EXPECT_EQ(compareNumbers(half, std::uint64_t{1}), 1);
  EXPECT_EQ(compareNumbers(half, INT64_MAX), 1);
  EXPECT_EQ(compareNumbers(INT64_MAX, half), -1);
  EXPECT_EQ(compareNumbers(half - 1, INT64_MAX), 0);
  EXPECT_EQ(compareNumbers(std::uint64_t{0}, INT64_MIN), 1);
  EXPECT_EQ(compareNumbers(INT64_MIN, INT64_MAX), -1);
}

TEST(NumberComparison, GivesMinusOneBesideNaN) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(compareNumbers(nan, 1.0), -1);
  EXPECT_EQ(compareNumbers(1.0, nan), -1);
  EXPECT_EQ(compareNumbers(nan, nan), -1);
  EXPECT_EQ(compareNumbers(0.0, -0.0), 0);
}

}  // namespace
}  // namespace qtx
