// Meeting the host: versions, flag rewriting, and what is registered in which order.
#include "frame/registration.h"

#include <cmath>

#include "failing_allocation.h"
#include "fake_host.h"
#include "frame/debug_log.h"
#include "math/function_table.h"

namespace qtx {
namespace {

constexpr std::size_t functionCount = 62;

TEST(ControlVersion, GoesByTheHostsVersion) {
  const struct {
    double hostVersion;
    std::int32_t expected;
  } rows[] = {
      {0.0, 9},      {-1.0, 9},      {std::nan(""), 9}, {2011.0, 9},   {2011.99, 9},
      {2012.0, 10},  {2012.5, 10},   {2012.99, 10},     {2013.0, 11},  {2013.02, 11},
      {2013.03, 12}, {2013.035, 12}, {2013.04, 13},     {2024.01, 13}, {3000.0, 13},
  };
  for (const auto& row : rows) EXPECT_EQ(controlVersionFor(row.hostVersion), row.expected) << row.hostVersion;
}

TEST(ControlVersion, Is15BeforeTheHostIsMet) { EXPECT_EQ(hostState.controlVersion, 15); }

TEST(PluginMain, ReportsTheControlVersion) {
  FakeHost host(2013.03);
  host.load();
  EXPECT_EQ(host.controlVersion, 12);
  EXPECT_EQ(hostState.version, 2013.03);
}

TEST(PluginMain, TakesAHostThatDoesNotTellItsVersionForVersion0) {
  FakeHost host(2024.01);
  hostState.version = 0.0;  // as before the host was met
  host.withhold("REALGetRBVersion");
  host.load();
  EXPECT_EQ(host.controlVersion, 9);
  EXPECT_EQ(host.module, nullptr);
  EXPECT_EQ(host.functions.size(), functionCount);
}

TEST(PluginMain, WithoutAResolverOnlySettlesTheControlVersion) {
  REALPluginMain(nullptr);
  EXPECT_EQ(hostState.controlVersion, 9);
  EXPECT_EQ(hostState.version, 0.0);
}

const std::vector<std::string> classNames = {"AtomicIntegerQTX", "AtomicFlagQTX", "AtomicQueueQTX",
                                             "SplineQTX",        "Int128QTX",     "UInt128QTX"};

TEST(PluginMain, RegistersTheClassesInOrderBeforeTheFunctions) {
  static std::vector<std::string> order;
  FakeHost host;
  host.offer(
      "RegisterPluginVersion", +[](std::int32_t number) { order.push_back(std::to_string(number)); });
  host.offer(
      "PluginRegisterClass", +[](REALclassDefinition* record) { order.push_back(record->name); });
  host.offer(
      "PluginRegisterModule", +[](REALmoduleDefinition* record) { order.push_back(record->name); });
  host.load();
  std::vector<std::string> expected = {"13"};
  expected.insert(expected.end(), classNames.begin(), classNames.end());
  expected.push_back("MathGlobalsQTX");
  EXPECT_EQ(order, expected);
}

TEST(PluginMain, GivesEveryClassRecordTheControlVersionAndPlainFlags) {
  FakeHost host(2012.5);
  host.load();
  ASSERT_EQ(host.classes.size(), classNames.size());
  for (const REALclassDefinition* record : host.classes) {
    SCOPED_TRACE(record->name);
    EXPECT_EQ(record->version, 10);
    EXPECT_EQ(record->superName, nullptr);
    EXPECT_EQ(record->flags, 0x4u);
    EXPECT_EQ(record->dataSize % 16, 0u);
    EXPECT_EQ(record->eventCount + record->eventInstanceCount + record->constantCount +
                  record->attributeCount + record->sharedPropertyCount,
              0u);
    for (std::size_t i = 0; i < record->methodCount; ++i) {
      EXPECT_EQ(record->methods[i].flags, 0x4u);
      EXPECT_NE(record->methods[i].function, nullptr);
      EXPECT_EQ(record->methods[i].setterFunction, nullptr);
    }
    for (std::size_t i = 0; i < record->sharedMethodCount; ++i)
      EXPECT_EQ(record->sharedMethods[i].flags, 0x4u);
    for (std::size_t i = 0; i < record->propertyCount; ++i) {
      EXPECT_EQ(record->properties[i].flags, 0x6u);
      EXPECT_EQ(record->properties[i].group, nullptr);
      EXPECT_NE(record->properties[i].getter, nullptr);
    }
  }
}

// A host may walk every list of a record and take every pointer for what it says.
void expectPlain(const REALmethodDefinition& record) {
  SCOPED_TRACE(record.declaration);
  EXPECT_EQ(record.setterFunction, nullptr);
  EXPECT_EQ(record.attributes, nullptr);
  EXPECT_EQ(record.attributeCount, 0u);
}

TEST(PluginMain, LeavesWhatItDoesNotUseOfARecordEmpty) {
  FakeHost host;
  host.load();
  for (const REALclassDefinition* record : host.classes) {
    SCOPED_TRACE(record->name);
    EXPECT_EQ(record->superName, nullptr);
    EXPECT_EQ(record->events, nullptr);
    EXPECT_EQ(record->eventCount, 0u);
    EXPECT_EQ(record->eventInstances, nullptr);
    EXPECT_EQ(record->eventInstanceCount, 0u);
    EXPECT_EQ(record->interfaces, nullptr);
    EXPECT_EQ(record->attributes, nullptr);
    EXPECT_EQ(record->attributeCount, 0u);
    EXPECT_EQ(record->constants, nullptr);
    EXPECT_EQ(record->constantCount, 0u);
    EXPECT_EQ(record->sharedProperties, nullptr);
    EXPECT_EQ(record->sharedPropertyCount, 0u);
    EXPECT_EQ(record->reserved, nullptr);
    for (std::size_t i = 0; i < record->methodCount; ++i) expectPlain(record->methods[i]);
    for (std::size_t i = 0; i < record->sharedMethodCount; ++i) expectPlain(record->sharedMethods[i]);
    for (std::size_t i = 0; i < record->propertyCount; ++i) {
      const REALproperty& property = record->properties[i];
      SCOPED_TRACE(property.name);
      EXPECT_EQ(property.group, nullptr);
      // What a field's property has there, where it lies, is a test of its class.
      if (property.getter != reinterpret_cast<REALproc>(~std::uintptr_t{0})) {
        EXPECT_EQ(property.parameter, 0);
      }
      EXPECT_EQ(property.editorCount, 0u);
      EXPECT_EQ(property.editors, nullptr);
      EXPECT_EQ(property.attributes, nullptr);
      EXPECT_EQ(property.attributeCount, 0u);
    }
  }
  ASSERT_NE(host.module, nullptr);
  for (std::size_t i = 0; i < host.module->methodCount; ++i) expectPlain(host.module->methods[i]);
  EXPECT_EQ(host.module->constants, nullptr);
  EXPECT_EQ(host.module->constantCount, 0u);
  EXPECT_EQ(host.module->structures, nullptr);
  EXPECT_EQ(host.module->structureCount, 0u);
  EXPECT_EQ(host.module->reserved, nullptr);
}

TEST(PluginMain, RoundsInstanceDataUpTo16Bytes) {
  FakeHost host;
  host.load();
  EXPECT_EQ(host.findClass("AtomicIntegerQTX")->dataSize, 16u);  // 8 bytes
  EXPECT_EQ(host.findClass("AtomicFlagQTX")->dataSize, 16u);     // 1
  EXPECT_EQ(host.findClass("Int128QTX")->dataSize, 16u);         // 16
  EXPECT_EQ(host.findClass("SplineQTX")->dataSize, 64u);         // 56
}

class FunctionsOneByOne : public testing::TestWithParam<double> {};
class FunctionsAsModule : public testing::TestWithParam<double> {};

TEST_P(FunctionsOneByOne, WithoutTheModule) {
  FakeHost host(GetParam());
  host.load();
  EXPECT_EQ(host.module, nullptr);
  ASSERT_EQ(host.functions.size(), functionCount);
  for (const auto* record : host.functions) EXPECT_EQ(record->flags, 0x4u);
  for (std::size_t i = 0; i < functionCount; ++i) {
    EXPECT_EQ(host.functions[i], &mathFunctions()[i]) << "in the order of the table";
  }
}
INSTANTIATE_TEST_SUITE_P(Versions, FunctionsOneByOne,
                         testing::Values(2009.0, 2012.0, 2012.99, 3000.0, 3001.0));

TEST_P(FunctionsAsModule, WithDebugging) {
  FakeHost host(GetParam());
  host.load();
  EXPECT_TRUE(host.functions.empty());
  ASSERT_NE(host.module, nullptr);
  EXPECT_STREQ(host.module->name, "MathGlobalsQTX");
  EXPECT_EQ(host.module->version, controlVersionFor(GetParam()));
  EXPECT_EQ(host.module->flags, 0x4u);
  ASSERT_EQ(host.module->methodCount, functionCount);
  for (std::size_t i = 0; i < functionCount; ++i) {
    EXPECT_EQ(host.module->methods[i].flags, 0x14u) << host.module->methods[i].declaration;
    EXPECT_NE(host.module->methods[i].function, nullptr);
  }
  ASSERT_EQ(host.module->propertyCount, 1u);
  EXPECT_STREQ(host.module->properties[0].name, "Debugging");
  EXPECT_EQ(host.module->properties[0].flags, 0x26u);
  EXPECT_EQ(host.module->constantCount + host.module->structureCount, 0u);
}
INSTANTIATE_TEST_SUITE_P(Versions, FunctionsAsModule,
                         testing::Values(2013.0, 2013.03, 2013.04, 2020.01, 2020.02, 2024.01, 2999.99));

class WithoutRegistration : public testing::TestWithParam<const char*> {};
TEST_P(WithoutRegistration, IsSilentlySkipped) {
  FakeHost host;
  host.withhold(GetParam());
  EXPECT_EQ(logOf([&] { host.load(); }), "");
}
INSTANTIATE_TEST_SUITE_P(Operations, WithoutRegistration,
                         testing::Values("PluginRegisterClass", "PluginRegisterModule"));

TEST(PluginMain, AsksAgainForTheMissingFunctionRegistrationWithEachFunction) {
  FakeHost host(2012.0);
  host.withhold("PluginRegisterMethod");
  host.load();
  EXPECT_EQ(static_cast<std::size_t>(host.lookUps["PluginRegisterMethod"]), functionCount);
}

TEST(PluginMain, WarnsWhereTheModuleCannotBeAllocated) {
  FakeHost host;
  const std::string log = logOf([&] {
    FailAllocationsOf failing(sizeof(REALmoduleDefinition), sizeof(REALmoduleDefinition) + 1);
    host.load();
  });
  EXPECT_EQ(log, "QTX Debug: Warning: Failed to allocate memory for module definition.\n");
  EXPECT_EQ(host.classes.size(), classNames.size());
  EXPECT_EQ(host.module, nullptr);
  EXPECT_TRUE(host.functions.empty());
}

TEST(PluginMain, WarnsWhereTheModulesNameCannotBeAllocated) {
  FakeHost host;
  const std::string log = logOf([&] {
    FailAllocationsOf failing(sizeof "MathGlobalsQTX", sizeof "MathGlobalsQTX" + 1);
    host.load();
  });
  EXPECT_EQ(log, "QTX Debug: Warning: Failed to allocate memory for module definition.\n");
  EXPECT_EQ(host.classes.size(), classNames.size());
  EXPECT_EQ(host.module, nullptr);
}

TEST(PluginMain, WarnsWhereTheMethodsCannotBeAllocated) {
  FakeHost host;
  const std::size_t size = functionCount * sizeof(REALmethodDefinition);
  const std::string log = logOf([&] {
    FailAllocationsOf failing(size, size + 1);
    host.load();
  });
  EXPECT_EQ(log, "QTX Debug: Warning: Failed to allocate memory for method definitions.\n");
  EXPECT_EQ(host.module, nullptr);
}

// Two functions as a table might carry them: the combination that older hosts do not understand, and the flag
// that no host receives.
std::vector<REALmethodDefinition> unusualFunctions() {
  std::vector<REALmethodDefinition> functions(2);
  functions[0].flags = 0x30C;
  functions[1].flags = 0x40000;
  return functions;
}

TEST(RegisterFunctions, AdaptsTheTableInPlaceBeforeRegisteringOneByOne) {
  FakeHost host(2010.0);
  static std::vector<std::uint32_t> flags;
  host.offer(
      "PluginRegisterMethod", +[](REALmethodDefinition* record) { flags.push_back(record->flags); });
  std::vector<REALmethodDefinition> functions = unusualFunctions();
  registerFunctions(functions);
  EXPECT_EQ(flags, (std::vector<std::uint32_t>{0x4, 0x0}));
}

TEST(RegisterFunctions, AdaptsTheTableAndGivesOnlyItsCopiesModuleScope) {
  FakeHost host(2020.01);
  std::vector<REALmethodDefinition> functions = unusualFunctions();
  registerFunctions(functions);
  ASSERT_NE(host.module, nullptr);
  ASSERT_EQ(host.module->methodCount, functions.size());
  for (std::size_t i = 0; i < functions.size(); ++i) {
    EXPECT_EQ(functions[i].flags, 0x4u);
    EXPECT_EQ(host.module->methods[i].flags, 0x14u);
  }
}

TEST(RegisterFunctions, CopiesEachRecordIntoTheModuleInOrder) {
  FakeHost host;
  host.load();
  ASSERT_NE(host.module, nullptr);
  for (std::size_t i = 0; i < functionCount; ++i) {
    const REALmethodDefinition &original = mathFunctions()[i], &copy = host.module->methods[i];
    EXPECT_NE(&copy, &original);
    EXPECT_EQ(copy.function, original.function);
    EXPECT_EQ(copy.declaration, original.declaration);
    EXPECT_EQ(original.flags, 0x4u) << "stays as it is";
  }
}

TEST(Debugging, HasOneHiddenSharedPropertyRecord) {
  ASSERT_EQ(std::size(debuggingProperty), 1u);
  const REALproperty& record = debuggingProperty[0];
  EXPECT_EQ(record.group, nullptr);
  EXPECT_STREQ(record.name, "Debugging");
  EXPECT_STREQ(record.type, "Boolean");
  EXPECT_EQ(record.flags, 0x26u);
  EXPECT_EQ(record.parameter, 0);
  EXPECT_EQ(record.editorCount, 0u);
  EXPECT_EQ(record.editors, nullptr);
  ASSERT_EQ(record.attributeCount, 1u);
  EXPECT_STREQ(record.attributes[0].name, "Hidden");
  EXPECT_STREQ(record.attributes[0].value, "");
  logOf([&] { reinterpret_cast<void (*)(std::uint8_t)>(record.setter)(1); });
  EXPECT_TRUE(reinterpret_cast<bool (*)()>(record.getter)());
}

TEST(RegisterFunctions, GivesDebuggingAScopeWhereItHasNoneAndAdaptsIt) {
  FakeHost host(2020.01);
  debuggingProperty[0].flags = 0x30A;
  host.load();
  ASSERT_NE(host.module, nullptr);
  EXPECT_EQ(host.module->properties[0].flags, 0x46u);
}

struct FlagRow {
  double hostVersion;
  std::uint32_t flags, expected;
};

const FlagRow flagRows[] = {
    {2020.01, 0x30C, 0x4},     // the newer combination, with what goes with it
    {2020.01, 0x308, 0x4},     // 0x4 is set where it was not
    {2020.01, 0x309, 0x5},     // a flag outside the combination stays
    {2024.01, 0x1, 0x1},       // by itself, too
    {2020.01, 0x378, 0x74},    // the scope nibble stays
    {2020.01, 0x70C, 0x70C},   // another combination under the mask
    {2020.01, 0x208, 0x208},   //
    {2020.02, 0x30C, 0x30C},   // understood from here on
    {2010.0, 0x40004, 0x4},    // no host receives 0x40000
    {2010.0, 0x40000, 0x0},    // 0x4 is not added before 2010.029
    {2010.029, 0x40000, 0x4},  //
    {2024.01, 0x40010, 0x14},  //
    {2010.0, 0x40308, 0x4},    // both rules, in order
    {2009.0, 0x0, 0x0},        // neither
    {2024.01, 0x26, 0x26},     //
};

TEST(FixFlags, RewritesMethodsAndPropertiesAlike) {
  for (const FlagRow& row : flagRows) {
    hostState.version = row.hostVersion;
    REALmethodDefinition methods[2] = {};
    REALproperty properties[2] = {};
    methods[0].flags = methods[1].flags = properties[0].flags = properties[1].flags = row.flags;
    FixFlags(methods, 1, "label");
    FixFlags(properties, 1, nullptr);
    EXPECT_EQ(methods[0].flags, row.expected) << row.hostVersion << " " << row.flags;
    EXPECT_EQ(properties[0].flags, row.expected) << row.hostVersion << " " << row.flags;
    EXPECT_EQ(methods[1].flags, row.flags) << "beyond the count";
    EXPECT_EQ(properties[1].flags, row.flags) << "beyond the count";
  }
}

TEST(FixFlags, TakesNoListAndNoCount) {
  hostState.version = 2020.01;
  FixFlags(static_cast<REALmethodDefinition*>(nullptr), 5, "label");
  FixFlags(static_cast<REALproperty*>(nullptr), 5, "label");
  REALmethodDefinition method = {};
  method.flags = 0x308;
  FixFlags(&method, 0, "label");
  FixFlags(&method, -1, "label");
  EXPECT_EQ(method.flags, 0x308u);
}

TEST(RegisterClass, AdaptsTheClassAndAllItsMembers) {
  FakeHost host(2020.01);
  REALmethodDefinition methods[1] = {}, sharedMethods[1] = {};
  REALproperty properties[1] = {}, sharedProperties[1] = {};
  methods[0].flags = sharedMethods[0].flags = properties[0].flags = sharedProperties[0].flags = 0x30A;
  REALclassDefinition record = {};
  record.name = "Thing";
  record.flags = 0x40308;
  record.methods = methods;
  record.methodCount = 1;
  record.sharedMethods = sharedMethods;
  record.sharedMethodCount = 1;
  record.properties = properties;
  record.propertyCount = 1;
  record.sharedProperties = sharedProperties;
  record.sharedPropertyCount = 1;
  MyREALRegisterClass(&record);
  EXPECT_EQ(record.flags, 0x4u);
  EXPECT_EQ(methods[0].flags, 0x6u);
  EXPECT_EQ(sharedMethods[0].flags, 0x6u);
  EXPECT_EQ(properties[0].flags, 0x6u);
  EXPECT_EQ(sharedProperties[0].flags, 0x6u);
  EXPECT_EQ(record.version, 13);
  EXPECT_EQ(record.dataOffset, FakeObject::dataOffset) << "registered";
}

// The host may read a record while it is registered and never again.
TEST(RegisterClass, IsCompleteWhenTheHostReceivesIt) {
  FakeHost host(2012.5);
  static REALclassDefinition seen;
  host.offer(
      "PluginRegisterClass", +[](REALclassDefinition* record) { seen = *record; });
  REALclassDefinition record = {};
  record.name = "Thing";
  record.dataSize = 17;
  record.flags = 0x30C;
  MyREALRegisterClass(&record);
  EXPECT_EQ(seen.version, 10);
  EXPECT_EQ(seen.dataSize, 32u);
  EXPECT_EQ(seen.flags, 0x4u);
}

TEST(RegisterFunctions, CompletesTheModuleBeforeTheHostReceivesIt) {
  FakeHost host(2013.03);
  static REALmoduleDefinition seen;
  static std::uint32_t lastFlags;
  host.offer(
      "PluginRegisterModule", +[](REALmoduleDefinition* record) {
        seen = *record;
        lastFlags = record->methods[record->methodCount - 1].flags;
      });
  host.load();
  EXPECT_EQ(seen.version, 12);
  EXPECT_EQ(seen.methodCount, functionCount);
  EXPECT_EQ(seen.propertyCount, 1u);
  EXPECT_EQ(seen.flags, 0x4u);
  EXPECT_EQ(lastFlags, 0x14u);
}

TEST(RegisterClass, RoundsTheDataSize) {
  FakeHost host;
  for (const auto& [size, expected] : {std::pair<std::size_t, std::size_t>{0, 0},
                                       {1, 16},
                                       {8, 16},
                                       {15, 16},
                                       {16, 16},
                                       {17, 32},
                                       {56, 64},
                                       {64, 64}}) {
    REALclassDefinition record = {};
    record.name = "Thing";
    record.dataSize = size;
    MyREALRegisterClass(&record);
    EXPECT_EQ(record.dataSize, expected);
  }
}

}  // namespace
}  // namespace qtx
