// The check of the host's own tables, which runs while they are compiled.
#include "runtime/checked_declaration.h"

#include <gtest/gtest.h>

namespace host {
namespace {

using Text = REALstring;
using Object = REALobject;

TEST(CheckedDeclaration, TakesWhatFits) {
  EXPECT_TRUE(declarationFits<void (*)()>("Clear"));
  EXPECT_TRUE(declarationFits<void (*)(Object)>("Clear"));
  EXPECT_TRUE(declarationFits<void (*)()>("Clear()"));
  EXPECT_TRUE(declarationFits<double (*)()>("Microseconds as Double"));
  EXPECT_TRUE(declarationFits<std::int64_t (*)(Text)>("Len(s as String) as Integer"));
  EXPECT_TRUE(declarationFits<std::int64_t (*)(std::int64_t)>("Round(value as Currency) as Currency"));
  EXPECT_TRUE(declarationFits<Text (*)(Text, std::int64_t, std::int64_t)>(
      "Mid(s as String, start as Integer, count as Integer = 2147483647) as String"));
  EXPECT_TRUE(declarationFits<Text (*)(REALarray, Text)>("Join(parts() as String, by as String) as String"));
  EXPECT_TRUE(declarationFits<REALarray (*)(Text, Text)>("Split(s as String, by as String) as String()"));
  EXPECT_TRUE(declarationFits<REALarray (*)()>("Parts as String()"));
  EXPECT_TRUE(declarationFits<void (*)(Object, Object, Object)>("Put(key as Variant, to as Dictionary)"));
  EXPECT_TRUE(declarationFits<bool (*)(void*, float, std::uint8_t)>(
      "F(p as Ptr, s as Single, b as Byte) as Boolean"));
}

TEST(CheckedDeclaration, RefusesWhatDoesNot) {
  EXPECT_FALSE(declarationFits<std::int64_t (*)()>("Clear"));
  EXPECT_FALSE(declarationFits<void (*)()>("Size as Integer"));
  EXPECT_FALSE(declarationFits<void (*)(Text)>("Clear"));  // the object, if anything
  EXPECT_FALSE(declarationFits<void (*)(Object, Object)>("Clear"));
  EXPECT_FALSE(declarationFits<void (*)()>("Put(value as Integer)"));
  EXPECT_FALSE(declarationFits<void (*)(Text)>("Put(value as Integer)"));
  EXPECT_FALSE(declarationFits<void (*)(std::int64_t)>("Put(value as Int32)"));
  EXPECT_FALSE(declarationFits<void (*)(std::int64_t)>("Put(value as UInt64)"));
  EXPECT_FALSE(declarationFits<void (*)(float)>("Put(value as Double)"));
  EXPECT_FALSE(declarationFits<void (*)(std::uint8_t)>("Put(value as Boolean)"));
  EXPECT_FALSE(declarationFits<void (*)(Text)>("Put(value() as String)"));
  EXPECT_FALSE(declarationFits<void (*)(REALarray)>("Put(value as String)"));
  EXPECT_FALSE(declarationFits<double (*)(double, std::int64_t)>("F(a as Integer, b as Double) as Double"));
  EXPECT_FALSE(declarationFits<std::uint64_t (*)(Text)>("Len(s as String) as Integer"));
}

}  // namespace
}  // namespace host
