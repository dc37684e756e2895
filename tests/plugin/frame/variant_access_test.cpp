// The variant readers: primary operation, fallback property, and neither.
#include "frame/variant_access.h"

#include "fake_host.h"

namespace qtx {
namespace {

const auto variant = reinterpret_cast<REALobject>(0x1000);

// Offers a fallback property reader that checks what it is asked for and gives `value`.
template <typename Value, auto value>
bool property(REALobject asked, const char* name, Value* out) {
  EXPECT_EQ(asked, variant);
  EXPECT_EQ(*out, Value()) << "zero before it is read";
  *out = static_cast<Value>(value);
  FakeHost::current->conversions.push_back(name);
  return true;
}

TEST(VariantReaders, UseTheHostsConversion) {
  FakeHost host;
  host.offer(
      "VariantToInt64", +[](REALobject v) -> std::int64_t { return v == variant ? -5 : 0; });
  host.offer(
      "VariantToUInt64", +[](REALobject v) -> std::uint64_t { return v == variant ? UINT64_MAX : 0; });
  host.offer(
      "VariantToDouble", +[](REALobject v) -> double { return v == variant ? 2.5 : 0; });
  host.offer(
      "VariantToString", +[](REALobject) { return FakeHost::current->makeString("text"); });
  EXPECT_EQ(GetVariantInt64(variant), -5);
  EXPECT_EQ(GetVariantUInt64(variant), UINT64_MAX);
  EXPECT_EQ(GetVariantDouble(variant), 2.5);
  const REALstring text = GetVariantString(variant);
  EXPECT_EQ(host.bytesOf(text), "text");
  host.unlock(text);
  EXPECT_EQ(host.lookUps["REALGetPropValueInt64"] + host.lookUps["REALGetPropValueUInt64"] +
                host.lookUps["REALGetPropValueDouble"] + host.lookUps["REALGetPropValueString"],
            0);
}

TEST(VariantReaders, FallBackToProperties) {
  FakeHost host;
  host.offer("REALGetPropValueInt64", &property<std::int64_t, -6>);
  host.offer("REALGetPropValueUInt64", &property<std::uint64_t, 7>);
  host.offer("REALGetPropValueDouble", &property<double, 8>);
  host.offer("REALGetPropValueInteger", &property<RBInteger, 9>);
  host.offer(
      "REALGetPropValueString", +[](REALobject, const char* name, REALstring* out) {
        FakeHost::current->conversions.push_back(name);
        *out = FakeHost::current->makeString("text");
        return true;
      });
  EXPECT_EQ(GetVariantInt64(variant), -6);
  EXPECT_EQ(GetVariantUInt64(variant), 7u);
  EXPECT_EQ(GetVariantDouble(variant), 8.0);
  EXPECT_EQ(GetVariantType(variant), 9);
  const REALstring text = GetVariantString(variant);
  EXPECT_EQ(host.bytesOf(text), "text");
  host.unlock(text);
  EXPECT_EQ(host.conversions,
            std::vector<std::string>({"LongValue", "UInt64Value", "DoubleValue", "Type", "StringValue"}));
}

TEST(VariantReaders, GiveZeroOnAHostWithNeither) {
  FakeHost host;
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(GetVariantInt64(variant), 0);
    EXPECT_EQ(GetVariantUInt64(variant), 0u);
    EXPECT_EQ(GetVariantDouble(variant), 0.0);
    EXPECT_EQ(GetVariantString(variant), nullptr);
    EXPECT_EQ(GetVariantType(variant), 0);
  }
  EXPECT_EQ(host.lookUps["VariantToDouble"], 2) << "asked again";
  EXPECT_EQ(host.lookUps["VarType(value As Variant) As Integer"], 2) << "asked again";
}

TEST(VariantReaders, PassNilOn) {
  FakeHost host;
  host.offer(
      "VariantToInt64", +[](REALobject v) -> std::int64_t { return v == nullptr ? 77 : 0; });
  host.offer(
      "VarType(value As Variant) As Integer",
      +[](REALobject v) -> RBInteger { return v == nullptr ? 78 : 0; });
  EXPECT_EQ(GetVariantInt64(nullptr), 77);
  EXPECT_EQ(GetVariantType(nullptr), 78);
}

// A host that gives `code`, and whose variant is an instance of exactly `instanceOf`.
RBInteger reportedCode = 0;
std::string instanceOf;
const auto unsigned32 = reinterpret_cast<REALclassRef>(0x32),
           unsigned64 = reinterpret_cast<REALclassRef>(0x64);
void offerTypes(FakeHost& host) {
  host.offer(
      "VarType(value As Variant) As Integer", +[](REALobject) { return reportedCode; });
  host.offer(
      "pluginObjectType", +[](const char* name) -> REALclassRef {
        if (std::string_view(name) == "_VariantUInt32") return unsigned32;
        return std::string_view(name) == "_VariantUInt64" ? unsigned64 : nullptr;
      });
  host.offer(
      "RuntimeObjectIsa", +[](REALobject asked, REALclassRef type) {
        return asked == variant && type == (instanceOf == "_VariantUInt32" ? unsigned32 : unsigned64) &&
               !instanceOf.empty();
      });
}

TEST(VariantType, RefinesTheUnsignedKinds) {
  const struct {
    RBInteger reported;
    const char* instance;
    RBInteger expected;
  } rows[] = {
      {3, "_VariantUInt64", 103},
      {3, "", 3},
      {3, "_VariantUInt32", 3},
      {2, "_VariantUInt32", 102},
      {2, "", 2},
      {2, "_VariantUInt64", 2},
      {5, "_VariantUInt64", 5},
      {5, "_VariantUInt32", 5},
      {0, "", 0},
      {8, "", 8},
      {4096 | 3, "_VariantUInt64", 4096 | 3},
      {-1, "", -1},
  };
  FakeHost host;
  offerTypes(host);
  for (const auto& row : rows) {
    reportedCode = row.reported;
    instanceOf = row.instance;
    EXPECT_EQ(GetVariantType(variant), row.expected) << row.reported << " " << row.instance;
  }
  EXPECT_EQ(host.lookUps["pluginObjectType"], 1);
}

TEST(VariantType, RefinesWhatTheFallbackPropertyTells) {
  FakeHost host;
  offerTypes(host);
  host.withhold("VarType(value As Variant) As Integer");
  host.offer("REALGetPropValueInteger", &property<RBInteger, 3>);
  instanceOf = "_VariantUInt64";
  EXPECT_EQ(GetVariantType(variant), 103);
  host.offer(
      "VarType(value As Variant) As Integer", +[](REALobject) -> RBInteger { return 8; });
  EXPECT_EQ(GetVariantType(variant), 8) << "a method that appears later is found";
}

TEST(VariantType, AsksForNoInstanceOfAClassThatTheHostLacks) {
  FakeHost host;
  offerTypes(host);
  host.withhold("pluginObjectType");
  host.offer(
      "RuntimeObjectIsa", +[](REALobject, REALclassRef) {
        ADD_FAILURE() << "asked";
        return true;
      });
  for (const RBInteger code : {2, 3}) {
    reportedCode = code;
    EXPECT_EQ(GetVariantType(variant), code);
  }
}

TEST(VariantType, StaysUnrefinedWithoutTheInstanceTest) {
  FakeHost host;
  offerTypes(host);
  host.withhold("RuntimeObjectIsa");
  instanceOf = "_VariantUInt64";
  reportedCode = 3;
  EXPECT_EQ(GetVariantType(variant), 3);
  reportedCode = 2;
  EXPECT_EQ(GetVariantType(variant), 2);
}

TEST(VariantType, RemembersThatAClassIsMissing) {
  FakeHost host;
  offerTypes(host);
  instanceOf = "_VariantUInt64";
  reportedCode = 3;
  host.offer(
      "pluginObjectType", +[](const char*) -> REALclassRef {
        FakeHost::current->conversions.push_back("asked");
        return nullptr;
      });
  EXPECT_EQ(GetVariantType(variant), 3);
  EXPECT_EQ(GetVariantType(variant), 3);
  EXPECT_EQ(host.conversions.size(), 1u);
}

}  // namespace
}  // namespace qtx
