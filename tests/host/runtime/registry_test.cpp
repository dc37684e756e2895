// Classes, modules and functions as libraries register them.
#include <gtest/gtest.h>

#include <stdexcept>

#include "runtime/exception.h"
#include "runtime/host_classes.h"
#include "runtime/registry.h"
#include "runtime/report.h"
#include "runtime/text.h"

namespace host {
namespace {

REALclassDefinition classNamed(const char* name, std::size_t dataSize = 0) {
  REALclassDefinition record = {};
  record.name = name;
  record.dataSize = dataSize;
  return record;
}

TEST(Registry, PlacesInstanceDataBehindTheHead) {
  static REALclassDefinition base = classNamed("Base", 5), derived = classNamed("Derived", 8);
  derived.superName = "Base";
  const Class& baseClass = registry().addClass(base, true);
  const Class& derivedClass = registry().addClass(derived, true);
  EXPECT_EQ(base.dataOffset % 16, 0u);
  EXPECT_GE(base.dataOffset, sizeof(Heap));
  EXPECT_EQ(derived.dataOffset % 16, 0u);
  EXPECT_GE(derived.dataOffset, base.dataOffset + 5);
  EXPECT_GE(derivedClass.instanceSize, derived.dataOffset + 8);
  EXPECT_TRUE(derivedClass.isA(baseClass));
  EXPECT_FALSE(baseClass.isA(derivedClass));
  const Ref<Object> object = makeObject(derivedClass);
  for (std::size_t i = 0; i < 8; ++i) EXPECT_EQ(object->dataOf(derivedClass)[i], std::byte{0});
}

TEST(Registry, RunsInitializersAndDestructorsInOrder) {
  static std::string order;
  static REALclassDefinition base = classNamed("Base", 8), derived = classNamed("Derived", 8);
  derived.superName = "Base";
  base.constructor = reinterpret_cast<REALproc>(+[](REALobject) { order += "base+ "; });
  base.destructor = reinterpret_cast<REALproc>(+[](REALobject) { order += "base- "; });
  derived.constructor = reinterpret_cast<REALproc>(+[](REALobject) { order += "derived+ "; });
  derived.destructor = reinterpret_cast<REALproc>(+[](REALobject) { order += "derived- "; });
  registry().addClass(base, true);
  makeObject(registry().addClass(derived, true));
  EXPECT_EQ(order, "base+ derived+ derived- base- ");
}

std::string failureOf(const std::function<void()>& body) {
  try {
    body();
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "";
}

TEST(Registry, NamesWhatIsWrong) {
  static REALclassDefinition one = classNamed("One"), orphan = classNamed("Orphan"), odd = classNamed("Odd");
  registry().addClass(one, true);
  EXPECT_EQ(failureOf([] { registry().addClass(one, true); }), "the class One is registered already");
  orphan.superName = "Nobody";
  EXPECT_EQ(failureOf([] { registry().addClass(orphan, true); }),
            "Orphan: the superclass Nobody is not registered");
  static REALmethodDefinition methods[1] = {};
  methods[0].function = reinterpret_cast<REALproc>(+[](REALobject) {});
  methods[0].declaration = "F(";
  odd.methods = methods;
  odd.methodCount = 1;
  EXPECT_EQ(failureOf([] { registry().addClass(odd, true); }),
            "Odd: the declaration \"F(\": expected the name of a parameter at column 3");
}

TEST(Registry, RefusesWhatIsNotWhole) {
  startRuntime();
  static REALclassDefinition nameless = {}, empty = classNamed(""), early = classNamed("Early");
  EXPECT_EQ(failureOf([] { registry().addClass(nameless, true); }), "a class without a name");
  EXPECT_EQ(failureOf([] { registry().addClass(empty, true); }), "a class without a name");
  registry().expectClass("Mentioned");
  early.superName = "Mentioned";
  EXPECT_EQ(failureOf([] { registry().addClass(early, true); }),
            "Early: the superclass Mentioned is not registered");

  static REALmethodDefinition method = {};
  method.declaration = "F";
  EXPECT_EQ(failureOf([] { registry().addFunction(method, true); }),
            "a global function: a method without function or declaration");
  method = {};
  method.function = reinterpret_cast<REALproc>(+[] {});
  EXPECT_EQ(failureOf([] { registry().addFunction(method, true); }),
            "a global function: a method without function or declaration");

  static REALclassDefinition unreadable = classNamed("Unreadable");
  static REALproperty properties[1] = {};
  properties[0].name = "Size";
  properties[0].type = "Integer";
  unreadable.properties = properties;
  unreadable.propertyCount = 1;
  EXPECT_EQ(failureOf([] { registry().addClass(unreadable, true); }),
            "Unreadable: the property Size cannot be read");

  static REALmoduleDefinition module = {};
  EXPECT_EQ(failureOf([] { registry().addModule(module, true); }), "a module without a name");
  module.name = "";
  EXPECT_EQ(failureOf([] { registry().addModule(module, true); }), "a module without a name");
  module.name = "Tools";
  EXPECT_EQ(failureOf([] { registry().addModule(module, true); }), "");
  EXPECT_EQ(failureOf([] { registry().addModule(module, true); }), "the module Tools is registered already");
}

TEST(Registry, FindsSharedPropertiesOfClassesAndModules) {
  startRuntime();
  static double pressure = 1.5;
  static REALproperty properties[2] = {};
  properties[0].name = "Humidity";
  properties[1].name = "Pressure";
  for (REALproperty& each : properties) {
    each.type = "Double";
    each.getter = reinterpret_cast<REALproc>(+[] { return pressure; });
  }
  properties[1].setter = reinterpret_cast<REALproc>(+[](double value) { pressure = value; });
  static REALclassDefinition base = classNamed("Weather"), derived = classNamed("Storm");
  base.sharedProperties = properties;
  base.sharedPropertyCount = 2;
  derived.superName = "Weather";
  registry().addClass(base, true);
  const Property* found = registry().addClass(derived, true).findSharedProperty("PRESSURE");
  ASSERT_TRUE(found);
  found->setter(std::initializer_list<Slot>{{.number = 2.5}});
  EXPECT_EQ(found->getter({}).number, 2.5);
  EXPECT_EQ(registry().findClass("Storm")->findSharedProperty("Wind"), nullptr);
  EXPECT_EQ(registry().findSharedProperty("Pressure"), nullptr) << "of a class, not of a module";
  EXPECT_EQ(listing(),
            "Class Weather\n  Shared Property Humidity as Double (read-only)\n"
            "  Shared Property Pressure as Double\nClass Storm\n");
}

TEST(Registry, NoticesAClassThatIsOnlyMentioned) {
  static REALclassDefinition record = classNamed("Lonely");
  static REALmethodDefinition methods[1] = {};
  methods[0].function = reinterpret_cast<REALproc>(+[](REALobject, REALobject) {});
  methods[0].declaration = "Meet(other as Stranger)";
  record.methods = methods;
  record.methodCount = 1;
  registry().addClass(record, true);
  EXPECT_EQ(failureOf([] { registry().checkComplete(); }),
            "the class Stranger is used in a declaration but not registered");
  static REALclassDefinition stranger = classNamed("Stranger");
  registry().addClass(stranger, true);
  EXPECT_EQ(failureOf([] { registry().checkComplete(); }), "");
}

TEST(Registry, ListsWhatLibrariesBring) {
  static REALclassDefinition record = classNamed("Thing");
  static REALmethodDefinition methods[1] = {};
  methods[0].function = reinterpret_cast<REALproc>(+[](REALobject) -> RBInteger { return 0; });
  methods[0].declaration = "Size as Integer";
  record.methods = methods;
  record.methodCount = 1;
  registry().addClass(record, true);
  EXPECT_EQ(listing(), "Class Thing\n  Size as Integer\n");
}

TEST(LeakReport, NamesWhatIsAlive) {
  startRuntime();
  EXPECT_EQ(leakReport({}).leaks, "");
  const Ref<Text> text = makeText("left");
  EXPECT_EQ(leakReport({}).leaks, "leaked: String \"left\", 1 reference\n");
  const Ref<Object> object = makeObject(*hostClasses().date);
  EXPECT_EQ(leakReport({"Date"}).leaks, "leaked: String \"left\", 1 reference\n");
  const Ref<Object> again = object;
  EXPECT_EQ(leakReport({"Date"}).leaks, "leaked: Date, 2 references\nleaked: String \"left\", 1 reference\n");
}

TEST(Describe, NamesPlaceClassMessageAndCalls) {
  startRuntime();
  HostException exception("OutOfBoundsException", "too far");
  exception.trace.calls = {{"main.bas", "Inner", 12}, {"main.bas", "", 30}};
  const HostException nowhere("OutOfBoundsException", "too far");
  EXPECT_EQ(describe(nowhere), "OutOfBoundsException: too far\n");
  EXPECT_EQ(describe(HostException("NoSuchException", "odd")), "RuntimeException: odd\n");
  EXPECT_EQ(describe(exception),
            "main.bas:12: OutOfBoundsException: too far\n  at main.bas:12: Inner\n  at main.bas:30\n");
}

}  // namespace
}  // namespace host
