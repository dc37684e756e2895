// Declarations and property types against what is behind them: all of it happens while compiling.
#include "frame/checked_declaration.h"

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

#include "frame/records.h"

namespace qtx {
namespace {

template <typename Signature>
constexpr bool fits(std::string_view declaration) {
  return detail::Fit<Signature>::check(declaration);
}

// The object in front of a method's parameters is not declared.
static_assert(fits<void (*)(REALobject)>("Clear"));
static_assert(fits<bool (*)(REALobject) noexcept>("Test as Boolean"));
static_assert(fits<std::int64_t (*)(REALobject, std::int64_t)>("Add(Value as Int64) as Int64"));
static_assert(fits<double (*)(double, double)>("NormInvQTX(p as Double, mu as double = 0.0) as double"));
static_assert(!fits<void (*)(REALstring)>("Clear"));
static_assert(!fits<void (*)(REALobject, REALobject)>("Clear"));

// Results.
static_assert(!fits<void (*)(REALobject)>("Test as Boolean"));
static_assert(!fits<bool (*)(REALobject)>("Clear"));
static_assert(!fits<std::int64_t (*)(REALobject)>("Operator_Convert as UInt64"));

// Parameters: number, kind, order, default, reference, array.
static_assert(!fits<double (*)()>("FacQTX(x as integer) as double"));
static_assert(!fits<double (*)(double)>("FacQTX(x as integer) as double"));
static_assert(
    fits<double (*)(double, RBInteger)>("RoundQTX(x as double, decimals as integer = 0) as double"));
static_assert(
    !fits<double (*)(RBInteger, double)>("RoundQTX(x as double, decimals as integer = 0) as double"));
static_assert(
    fits<double (*)(double, RBInteger*)>("FRExpQTX(inputx as double, byref expValue as integer) as double"));
static_assert(
    !fits<double (*)(double, RBInteger)>("FRExpQTX(inputx as double, byref expValue as integer) as double"));
static_assert(
    !fits<double (*)(double, RBInteger*)>("FRExpQTX(inputx as double, expValue as integer) as double"));
static_assert(fits<void (*)(REALobject, REALarrayDouble)>("Set(values() as Double)"));
static_assert(fits<void (*)(REALobject, REALarrayObject)>("Add(Values as Variant())"));
static_assert(!fits<void (*)(REALobject, REALobject)>("Add(Values as Variant())"));
static_assert(!fits<void (*)(REALobject, double)>("Set(values() as Double)"));

// Each type of the host's language.
static_assert(fits<REALstring (*)(void*)>("A(p as Ptr) as String"));
static_assert(fits<float (*)(std::uint16_t)>("A(n as UInt16) as Single"));
static_assert(fits<std::int64_t (*)(std::uint64_t)>("A(n as UInt64) as Currency"));
static_assert(fits<REALobject (*)(REALobject)>("A(v as Variant) as Int128QTX"));
static_assert(!fits<double (*)(float)>("A(x as Double) as Double"));
static_assert(!fits<REALstring (*)(REALobject)>("A(s as String) as String"));

// A wrong declaration does not compile where it is written, nor does a wrong type.
template <std::size_t size>
struct Literal {
  char text[size];
  consteval Literal(const char (&literal)[size]) { std::copy_n(literal, size, text); }
};
template <typename Checked, Literal text>
concept Takes = requires {
  typename std::bool_constant<(Checked(text.text), true)>;
};

static_assert(Takes<CheckedDeclaration<void (*)(REALobject)>, "Clear">);
static_assert(!Takes<CheckedDeclaration<void (*)(REALobject)>, "Clear as Boolean">);

// Two forms of a function: of one type, so that the declaration fits both.
struct Forms {
  static double tuned(double x) noexcept { return x + x; }
  static double portable(double x) noexcept { return 2 * x; }
  static double throwing(double x) { return x; }
  static float narrower(float x) noexcept { return x; }
};
template <auto tuned, auto portable>
concept AreForms = requires(DeclarationOf<portable> declaration) {
  method<tuned, portable>(true, declaration);
};
static_assert(AreForms<&Forms::tuned, &Forms::portable>);
static_assert(!AreForms<&Forms::narrower, &Forms::portable>);
static_assert(!AreForms<&Forms::throwing, &Forms::portable>);

TEST(MethodRecord, HoldsTheFormThatCanRun) {
  for (const bool canRun : {false, true}) {
    const REALmethodDefinition record =
        method<&Forms::tuned, &Forms::portable>(canRun, "A(x as Double) as Double");
    EXPECT_EQ(record.function, canRun ? entryOf<&Forms::tuned>() : entryOf<&Forms::portable>());
    EXPECT_STREQ(record.declaration, "A(x as Double) as Double");
    EXPECT_EQ(record.flags, 4u);
  }
}

// What the checks are made of, at the edges of their texts.
static_assert(detail::lower('A') == 'a' && detail::lower('Z') == 'z');
static_assert(detail::lower('@') == '@' && detail::lower('[') == '[' && detail::lower('(') == '(');
static_assert(detail::lower('a') == 'a' && detail::lower('z') == 'z');
static_assert(detail::same("INTEGER", "integer"));
static_assert(!detail::same("Int", "Integer") && !detail::same("Integer", "Int"));
static_assert(!detail::same("Unt64", "Int64") && !detail::same("Int64", "Int6x"));
// Blanks on either side of the text are not the text's.
static_assert(detail::trimmed(std::string_view("    ").substr(1, 2)).empty());
static_assert(detail::trimmed(std::string_view("  a b  ").substr(1, 5)) == "a b");
static_assert(detail::findWord("x as ", " as ") == 1);
static_assert(detail::findWord("x as", " as ") == std::string_view::npos);

static_assert(detail::parseParameter("() as Integer") == detail::Passed{detail::Travel::array});
static_assert(detail::parseParameter("byref x as Integer") == detail::Passed{detail::Travel::int64, true});

// A parenthesis in front of the text is none of its own.
static_assert(detail::parseDeclaration(std::string_view("(Clear").substr(1)).count == 0);
static_assert(detail::parseDeclaration("F(byref x as Integer,byref y as Double)").parameters[0] ==
              detail::Passed{detail::Travel::int64, true});
static_assert(detail::parseDeclaration("F(byref x as Integer,byref y as Double)").parameters[1] ==
              detail::Passed{detail::Travel::real64, true});
static_assert(detail::parseDeclaration("F(grid(,) as Double)").count == 1);

// The same when it runs, for each of the types.
TEST(Declaration, IsReadAlikeWhenItRuns) {
  using detail::Passed, detail::Travel;
  const struct {
    std::string_view text;
    std::vector<Passed> parameters;
    Travel result;
  } rows[] = {
      {"Clear", {}, Travel::none},
      {"A as Integer", {}, Travel::int64},
      {"A as  Int64 ", {}, Travel::int64},
      {"A(x as Int64) as CURRENCY", {{Travel::int64}}, Travel::int64},
      {"A(x as UInt64, y as UInt16) as UInt64", {{Travel::uint64}, {Travel::uint16}}, Travel::uint64},
      {"A( byref x as Double ,y as single = 0.0)", {{Travel::real64, true}, {Travel::real32}}, Travel::none},
      {"A(x as Boolean, y as String, z as Ptr)",
       {{Travel::boolean}, {Travel::string}, {Travel::pointer}},
       Travel::none},
      {"A(x as Variant, y as Int128QTX) as Variant", {{Travel::object}, {Travel::object}}, Travel::object},
      {"A(x() as Double, y as Variant()) as Double()", {{Travel::array}, {Travel::array}}, Travel::array},
      {"A as Boolean", {}, Travel::boolean},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.text);
    const detail::ParsedDeclaration parsed = detail::parseDeclaration(row.text);
    EXPECT_EQ(parsed.result, Passed{row.result});
    ASSERT_EQ(parsed.count, row.parameters.size());
    EXPECT_TRUE(std::equal(row.parameters.begin(), row.parameters.end(), parsed.parameters.begin()));
  }
}

TEST(Passed, DiffersByTypeAndByReference) {
  using detail::Passed, detail::Travel;
  EXPECT_NE((Passed{Travel::int64}), (Passed{Travel::uint64}));
  EXPECT_NE((Passed{Travel::int64}), (Passed{Travel::int64, true}));
}

TEST(Declaration, HasBlanksAloneTrimmed) { EXPECT_EQ(detail::trimmed("  "), ""); }

// What is thrown while compiling ends that.
TEST(Declaration, IsRefusedWhereItIsNone) {
  EXPECT_THROW(detail::parseParameter("x"), const char*);
  EXPECT_THROW(detail::parseDeclaration("F(x as Integer"), const char*);
  EXPECT_THROW(detail::parseDeclaration("F(x as Integer) of Integer"), const char*);
  EXPECT_THROW(detail::parseDeclaration("F of Integer"), const char*);
}

// Properties. A getter's and a setter's functions are read off their types alone.
struct Accessors {
  static double getDouble(REALobject, RBInteger) { return 0; }
  static std::uint64_t getUInt64(REALobject, RBInteger) noexcept { return 0; }
  static void setUInt64(REALobject, RBInteger, std::uint64_t) noexcept {}
  static REALstring getString(REALobject, RBInteger) { return nullptr; }
  static void setString(REALobject, RBInteger, REALstring) {}
  static bool getBoolean(REALobject, RBInteger) { return false; }
  static void setByte(REALobject, RBInteger, std::uint8_t) {}
  static REALobject getObject(REALobject, RBInteger) { return nullptr; }
  static void* getPointer(REALobject, RBInteger) { return nullptr; }
  static double getWithoutParameter(REALobject) { return 0; }
  static double getNeither() { return 0; }
  static void setNeither(double) {}
  static void setInOtherOrder(REALobject, std::uint64_t, RBInteger) {}
  static std::uint64_t setWithResult(REALobject, RBInteger, std::uint64_t) { return 0; }
};
using A = Accessors;

template <auto getter, auto setter, Literal type>
constexpr bool isProperty =
    Takes<CheckedType<detail::PropertyFit<detail::PropertyKind::instance, getter, setter>>, type>;
static_assert(isProperty<&A::getDouble, nullptr, "Double">);
static_assert(!isProperty<&A::getDouble, nullptr, "UInt64">);
static_assert(!isProperty<&A::getUInt64, nullptr, "Double">);
static_assert(isProperty<&A::getUInt64, &A::setUInt64, "uint64">);
static_assert(!isProperty<&A::getUInt64, &A::setUInt64, "Int64">);
static_assert(!isProperty<&A::getUInt64, &A::setString, "UInt64">);
static_assert(!isProperty<&A::getDouble, &A::setUInt64, "UInt64">);
static_assert(isProperty<&A::getString, &A::setString, "String">);
static_assert(!isProperty<&A::getString, &A::setString, "Variant">);
static_assert(isProperty<&A::getBoolean, &A::setByte, "Boolean">);
static_assert(!isProperty<&A::getBoolean, &A::setUInt64, "Boolean">);
static_assert(isProperty<&A::getObject, nullptr, "Int128QTX">);
static_assert(!isProperty<&A::getObject, nullptr, "Variant()">);
static_assert(isProperty<&A::getPointer, nullptr, "Ptr">);
static_assert(!isProperty<&A::getPointer, nullptr, "Integer">);

// What stands in front of the value.
static_assert(!isProperty<&A::getWithoutParameter, nullptr, "Double">);
static_assert(!isProperty<&A::getNeither, &A::setNeither, "Double">);
static_assert(!isProperty<&A::getDouble, &A::setNeither, "Double">);
static_assert(!isProperty<&A::getUInt64, &A::setInOtherOrder, "UInt64">);
static_assert(!isProperty<&A::getUInt64, &A::setWithResult, "UInt64">);
static_assert(!isProperty<&A::setUInt64, nullptr, "UInt64">);

template <auto getter, auto setter, Literal type>
constexpr bool isSharedProperty =
    Takes<CheckedType<detail::PropertyFit<detail::PropertyKind::shared, getter, setter>>, type>;
static_assert(isSharedProperty<&A::getNeither, &A::setNeither, "Double">);
static_assert(isSharedProperty<&A::getNeither, nullptr, "Double">);
static_assert(!isSharedProperty<&A::getNeither, &A::setNeither, "Single">);
static_assert(!isSharedProperty<&A::getDouble, nullptr, "Double">);
static_assert(!isSharedProperty<&A::getNeither, &A::setUInt64, "Double">);

// Fields, which the host reads and writes where they are.
struct Fields {
  double first;
  std::int64_t second;
};
static_assert(Takes<CheckedType<detail::FieldFit<std::int64_t>>, "Integer">);
static_assert(!Takes<CheckedType<detail::FieldFit<std::int64_t>>, "UInt64">);
static_assert(!Takes<CheckedType<detail::FieldFit<double>>, "Single">);

TEST(PropertyRecord, HoldsItsFunctions) {
  const REALproperty both = property<&A::getUInt64, &A::setUInt64>("Value", "UInt64");
  EXPECT_STREQ(both.name, "Value");
  EXPECT_STREQ(both.type, "UInt64");
  EXPECT_EQ(both.flags, 6u);
  EXPECT_EQ(both.getter, entryOf<&A::getUInt64>());
  EXPECT_EQ(both.setter, entryOf<&A::setUInt64>());
  EXPECT_EQ(property<&A::getDouble>("Value", "Double").setter, nullptr) << "read-only";
  EXPECT_EQ((sharedProperty<&A::getNeither, &A::setNeither>("Value", "Double").flags), 0x26u);
  // A host that walks these finds nothing.
  for (const REALproperty& record : {both, fieldProperty<&Fields::second>("second", "Integer")}) {
    EXPECT_EQ(record.group, nullptr);
    EXPECT_EQ(record.editorCount, 0u);
    EXPECT_EQ(record.editors, nullptr);
    EXPECT_EQ(record.attributes, nullptr);
    EXPECT_EQ(record.attributeCount, 0u);
  }
  EXPECT_EQ(both.parameter, 0);
}

TEST(PropertyRecord, LeavesAFieldToTheHost) {
  const REALproperty record = fieldProperty<&Fields::second>("second", "Integer");
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(record.getter), UINTPTR_MAX);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(record.setter), UINTPTR_MAX);
  EXPECT_EQ(record.parameter, 8);
  EXPECT_STREQ(record.name, "second");
  EXPECT_STREQ(record.type, "Integer");
}

}  // namespace
}  // namespace qtx
