// Declarations as libraries register them.
#include "runtime/declaration.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "runtime/host_classes.h"
#include "runtime/registry.h"

namespace host {
namespace {

// The parsed parts, written back in one plain form.
std::string parsed(const char* text) {
  startRuntime();
  const Declaration declaration = parseDeclaration(text, registry());
  std::string plain = declaration.name + "(";
  for (const Parameter& parameter : declaration.parameters) {
    if (!plain.ends_with("(")) plain += ", ";
    plain += std::string(parameter.byRef ? "ref " : "") + parameter.name + ": " + nameOf(parameter.type);
    if (parameter.defaultValue) plain += "?";
  }
  return plain + "): " + nameOf(declaration.result);
}

TEST(Declaration, IsParsedInEveryForm) {
  const struct {
    const char *text, *expected;
  } rows[] = {
      {"Clear", "Clear(): nothing"},
      {"Constructor", "Constructor(): nothing"},
      {"Increment as Int64", "Increment(): Integer"},
      {"Values as Variant()", "Values(): Variant()"},
      {"Operator_Convert(value as Int64)", "Operator_Convert(value: Integer): nothing"},
      {"Add(values() as Variant)", "Add(values: Variant()): nothing"},
      {"Constructor(X() as Double, Y() as Double)", "Constructor(X: Double(), Y: Double()): nothing"},
      {"CompareExchange(byref expected as Int64, desired as Int64) as Boolean",
       "CompareExchange(ref expected: Integer, desired: Integer): Boolean"},
      {"NormInv(p as Double, mu as double = 0.0, sigma as double = 1.0) as double",
       "NormInv(p: Double, mu: Double?, sigma: Double?): Double"},
      {"Constructor(Data as Ptr, Size as Integer, isUnsigned as boolean = false)",
       "Constructor(Data: Ptr, Size: Integer, isUnsigned: Boolean?): nothing"},
      {"ToHalf(Number as Single) as UInt16", "ToHalf(Number: Single): UInt16"},
      {"Sum(a as Currency, b as UInt8) as Currency", "Sum(a: Currency, b: UInt8): Currency"},
      {"Compare(other as MemoryBlock) as Integer", "Compare(other: MemoryBlock): Integer"},
      {"F(BYVAL a AS INTEGER) AS string", "F(a: Integer): String"},
  };
  for (const auto& row : rows) EXPECT_EQ(parsed(row.text), row.expected);
}

TEST(Declaration, KeepsDefaults) {
  startRuntime();
  const Declaration declaration = parseDeclaration(
      "F(a as Double = -1.5, b as Integer = 7, c as Boolean = true, d as String = \"\", e as Single = 2)",
      registry());
  ASSERT_EQ(declaration.parameters.size(), 5u);
  EXPECT_EQ(declaration.parameters[0].defaultValue->number, -1.5);
  EXPECT_EQ(declaration.parameters[1].defaultValue->integer, 7);
  EXPECT_EQ(declaration.parameters[2].defaultValue->integer, 1);
  EXPECT_EQ(declaration.parameters[3].defaultValue->heap, nullptr);
  EXPECT_EQ(declaration.parameters[4].defaultValue->single, 2.0f);
  EXPECT_EQ(declaration.requiredCount(), 0u);
  const Declaration others = parseDeclaration("F(a as Date = nil, b as Boolean = false)", registry());
  EXPECT_EQ(others.parameters[0].defaultValue->heap, nullptr);
  EXPECT_EQ(others.parameters[1].defaultValue->integer, 0);
}

TEST(Declaration, ThatIsWrongNamesWhatAndWhere) {
  startRuntime();
  const struct {
    const char *text, *message;
  } rows[] = {
      {"", "expected a name at column 1"},
      {"F(", "expected the name of a parameter at column 3"},
      {"F(a as Integer", "expected ')' at column 15"},
      {"F(a Integer)", "expected 'as' at column 5"},
      {"F(a as )", "expected a type at column 8"},
      {"F() Integer", "expected 'as' at column 5"},
      {"F as Integer as Integer", "expected the end at column 14"},
      {"F(a as Integer = x)", "expected a number as the default at column 18"},
      {"F(a as Integer = 1, b as Integer)", "a parameter without a default follows one with a default"},
      {"F as whatever", "expected a type"},
      {"F(a( as Integer)", "expected ')' at column 6"},
      {"F as Integer(", "expected ')' at column 14"},
      {"F(a as String = x)", "expected nil or \"\" as the default at column 17"},
      {"F(a as Boolean = 1)", "expected true or false as the default at column 18"},
  };
  for (const auto& row : rows) {
    try {
      parseDeclaration(row.text, registry());
      ADD_FAILURE() << row.text;
    } catch (const std::runtime_error& error) {
      EXPECT_NE(std::string(error.what()).find(row.message), std::string::npos) << error.what();
      EXPECT_NE(std::string(error.what()).find(row.text), std::string::npos);
    }
  }
}

TEST(TypeNamed, KnowsTheLanguagesTypesInAnyCase) {
  startRuntime();
  EXPECT_EQ(typeNamed("integer"), (Type{Kind::Int64}));
  EXPECT_EQ(typeNamed("BYTE"), (Type{Kind::UInt8}));
  EXPECT_EQ(typeNamed("Double()"), (Type{Kind::Double, true}));
  EXPECT_EQ(typeNamed("thread"), (Type{Kind::Object, false, hostClasses().thread}));
  EXPECT_EQ(typeNamed("Nonsense"), std::nullopt);
  EXPECT_EQ(typeNamed("Nonsense()"), std::nullopt);
}

TEST(TypeNames, AreThoseThatAProgramWrites) {
  startRuntime();
  for (const char* name :
       {"Boolean", "Int8", "Int16", "Int32", "Integer", "UInt8", "UInt16", "UInt32", "UInt64", "Currency",
        "Single", "Double", "Ptr", "String", "Variant", "Object", "Thread", "Double()", "Object()"}) {
    EXPECT_EQ(nameOf(*typeNamed(name)), name);
  }
  EXPECT_EQ(nameOf({Kind::None}), "nothing");
  EXPECT_EQ(nameOf({Kind::Nil}), "Nil");
}

}  // namespace
}  // namespace host
