// The rule of every host operation: looked up once, cached, and a silent nothing while the host lacks it.
#include "frame/host_operations.h"

#include "fake_host.h"

namespace qtx {
namespace {

TEST(HostOperation, IsLookedUpOnceAndCached) {
  FakeHost host;
  const REALobject object = host.makeObject("Thing");
  REALLockObject(object);
  REALLockObject(object);
  EXPECT_EQ(host.object(object).references, 3);
  EXPECT_EQ(host.lookUps["REALLockObject"], 1);
  for (int i = 0; i < 3; ++i) REALUnlockObject(object);
}

TEST(HostOperation, ThatIsMissingGivesNothingSilentlyAndIsLookedUpAgain) {
  FakeHost host;
  host.withhold("PluginNewInstance");
  const std::string log = logOf([] {
    debugging = true;
    EXPECT_EQ(REALnewInstance("Thing"), nullptr);
    EXPECT_EQ(REALnewInstance("Thing"), nullptr);
  });
  EXPECT_EQ(log, "");
  EXPECT_EQ(host.lookUps["PluginNewInstance"], 2);
}

TEST(HostOperation, ThatAppearsLaterIsFound) {
  FakeHost host;
  host.withhold("RuntimeUBound");
  EXPECT_EQ(REALGetArrayUBound(nullptr), 0);
  host.offer(
      "RuntimeUBound", +[](REALarray) -> RBInteger { return 7; });
  EXPECT_EQ(REALGetArrayUBound(nullptr), 7);
  host.withhold("RuntimeUBound");
  EXPECT_EQ(REALGetArrayUBound(nullptr), 7) << "the cached entry point stays";
}

TEST(HostOperation, WithoutAResolverGivesNothing) {
  EXPECT_EQ(REALnewInstance("Thing"), nullptr);
  EXPECT_EQ(VariantToDouble(nullptr), 0.0);
  EXPECT_FALSE(REALObjectIsA(nullptr, nullptr));
}

TEST(HostOperation, OfTheHostsLanguageIsLoadedOnceByItsDeclaration) {
  FakeHost host;
  const REALstring text = host.makeString("four");
  EXPECT_EQ(LenB(text), 4);
  EXPECT_EQ(LenB(text), 4);
  EXPECT_EQ(host.lookUps["REALLoadGlobalMethod"], 1);
  EXPECT_EQ(host.lookUps["LenB( s as string ) as integer"], 1);
  host.unlock(text);
}

TEST(HostOperation, OfTheHostsLanguageIsZeroWithoutTheLoader) {
  FakeHost host;
  host.withhold("REALLoadGlobalMethod");
  const REALstring text = host.makeString("four");
  EXPECT_EQ(LenB(text), 0);
  EXPECT_EQ(LenB(text), 0);
  EXPECT_EQ(host.lookUps["REALLoadGlobalMethod"], 2);
  host.unlock(text);
}

// Every operation goes to the host under exactly its name.
TEST(HostOperation, HasTheHostsName) {
  FakeHost host;
  host.withhold("REALLoadGlobalMethod");
  const auto nothing = [&](auto& operation, const char* name) {
    host.withhold(name);
    operation.resolve();
    EXPECT_EQ(host.lookUps[name], 1) << name;
  };
  nothing(REALRegisterClass, "PluginRegisterClass");
  nothing(REALRegisterModule, "PluginRegisterModule");
  nothing(REALRegisterMethod, "PluginRegisterMethod");
  nothing(REALnewInstance, "PluginNewInstance");
  nothing(REALLockObject, "REALLockObject");
  nothing(REALUnlockObject, "REALUnlockObject");
  nothing(REALObjectIsA, "RuntimeObjectIsa");
  nothing(REALGetClassRef, "pluginObjectType");
  nothing(REALSetPropValueString, "REALSetPropValueString");
  nothing(REALSetPropValueInteger, "REALSetPropValueInteger");
  nothing(REALGetPropValueString, "REALGetPropValueString");
  nothing(REALGetPropValueDouble, "REALGetPropValueDouble");
  nothing(REALGetPropValueInt64, "REALGetPropValueInt64");
  nothing(REALGetPropValueUInt64, "REALGetPropValueUInt64");
  nothing(REALGetPropValueInteger, "REALGetPropValueInteger");
  nothing(REALRaiseException, "RuntimeRaiseException");
  nothing(REALLoadFrameworkMethod, "REALLoadGlobalMethod");
  nothing(REALLockString, "REALLockString");
  nothing(REALUnlockString, "REALUnlockString");
  nothing(REALGetStringData, "PluginGetStringData");
  nothing(REALDisposeStringData, "PluginDisposeStringData");
  nothing(REALGetStringContents, "StringGetCString");
  nothing(REALGetStringEncoding, "REALGetStringEncoding");
  nothing(originalREALBuildString, "REALBuildString");
  nothing(REALBuildStringWithEncoding, "REALBuildStringWithEncoding");
  nothing(REALSetStringEncoding, "REALSetStringEncoding");
  nothing(REALConvertString, "REALConvertString");
  nothing(REALCompareStrings, "RuntimeStringCompare");
  nothing(VariantToString, "VariantToString");
  nothing(VariantToDouble, "VariantToDouble");
  nothing(VariantToInt64, "VariantToInt64");
  nothing(VariantToUInt64, "VariantToUInt64");
  nothing(REALGetArrayUBound, "RuntimeUBound");
  nothing(REALCreateArray, "RuntimeArrayCreateSingleDimBoundedArray");
  nothing(REALGetArrayValueInteger, "PluginIntegerArrayGetProc");
  nothing(REALSetArrayValueInteger, "PluginIntegerArraySetProc");
  nothing(REALGetArrayValueDouble, "PluginDoubleArrayGetProc");
  nothing(REALInsertArrayValueObject, "PluginObjectArrayInsertProc");
}

}  // namespace
}  // namespace qtx
