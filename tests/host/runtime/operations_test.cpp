// The operations that a library finds by name.
#include "runtime/operations.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "runtime/exception.h"
#include "runtime/host_classes.h"
#include "runtime/registry.h"
#include "runtime/settings.h"
#include "runtime/text.h"
#include "runtime/variant.h"

namespace host {
namespace {

template <typename Signature>
Signature* operation(const char* name) {
  startRuntime();
  return reinterpret_cast<Signature*>(resolve(name));
}

TEST(Operations, AreFoundByNameUnlessWithheld) {
  startRuntime();
  const std::vector<std::string> names = operationNames();
  for (const std::string& name : names) EXPECT_NE(resolve(name.c_str()), nullptr) << name;
  EXPECT_EQ(names.size(), 40u);
  EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
  EXPECT_EQ(resolve("NoSuchOperation"), nullptr);
  settings().withheld = {"REALLockObject"};
  EXPECT_EQ(resolve("REALLockObject"), nullptr);
  EXPECT_NE(resolve("REALUnlockObject"), nullptr);
}

// Refuses the calls of one operation, and notes all.
struct RefusingWatch final : OperationWatch {
  std::string refused, called;
  bool refuses(const char* name, bool answers, std::span<Heap* const> handles) noexcept override {
    called += std::string(name) + (answers ? " answers" : "") + " " + std::to_string(handles.size()) + "\n";
    return name == refused;
  }
};

TEST(Operations, AreWatchedAndRefusedOnRequest) {
  startRuntime();
  RefusingWatch watch;
  operationWatch = &watch;
  auto* make = operation<REALobject(const char*)>("PluginNewInstance");
  auto* lock = operation<void(REALobject)>("REALLockObject");
  auto* set = operation<bool(REALobject, const char*, REALstring)>("REALSetPropValueString");
  auto* load = operation<void*(const char*, const char*)>("REALLoadGlobalMethod");
  const REALobject object = make("RuntimeException");
  ASSERT_NE(object, nullptr);
  watch.refused = "PluginNewInstance";
  EXPECT_EQ(make("RuntimeException"), nullptr);
  watch.refused = "REALLockObject";
  lock(object);
  EXPECT_EQ(reinterpret_cast<Heap*>(object)->references.load(), 2) << "what has no answer is carried out";
  watch.refused = "REALSetPropValueString";
  EXPECT_FALSE(set(object, "Message", nullptr));
  watch.refused = "LenB( s as string ) as integer";
  const Ref<Text> text = makeText("four");
  auto* lenB = reinterpret_cast<RBInteger (*)(REALstring)>(load(nullptr, watch.refused.c_str()));
  EXPECT_EQ(lenB(reinterpret_cast<REALstring>(text.get())), 0);
  EXPECT_EQ(watch.called,
            "PluginNewInstance answers 0\nPluginNewInstance answers 0\nREALLockObject 1\n"
            "REALSetPropValueString answers 2\nREALLoadGlobalMethod answers 0\n"
            "LenB( s as string ) as integer answers 1\n");
  operationWatch = nullptr;
  EXPECT_NE(operation<REALobject(const char*)>("PluginNewInstance"), make)
      << "nobody stands between any more";
}

TEST(Operations, ReadFieldsInTheInstanceData) {
  startRuntime();
  static REALproperty fields[1] = {};
  fields[0].name = "Raw";
  fields[0].type = "Integer";
  fields[0].getter = fields[0].setter = reinterpret_cast<REALproc>(~std::uintptr_t{0});
  fields[0].parameter = 8;
  static REALclassDefinition base = {}, derived = {};
  base.name = "Base";
  base.dataSize = 16;
  base.properties = fields;
  base.propertyCount = 1;
  derived.name = "Derived";
  derived.superName = "Base";
  derived.dataSize = 8;
  registry().addClass(base, true);
  const Ref<Object> object = makeObject(registry().addClass(derived, true));
  const std::int64_t value = 42;
  std::memcpy(reinterpret_cast<char*>(object.get()) + base.dataOffset + 8, &value, sizeof value);
  const auto handle = reinterpret_cast<REALobject>(object.get());
  RBInteger read = 0;
  EXPECT_TRUE(
      operation<bool(REALobject, const char*, RBInteger*)>("REALGetPropValueInteger")(handle, "raw", &read));
  EXPECT_EQ(read, 42);
  auto* setInteger = operation<bool(REALobject, const char*, RBInteger)>("REALSetPropValueInteger");
  EXPECT_TRUE(setInteger(handle, "RAW", -7));
  EXPECT_TRUE(
      operation<bool(REALobject, const char*, RBInteger*)>("REALGetPropValueInteger")(handle, "Raw", &read));
  EXPECT_EQ(read, -7);
  auto* setString = operation<bool(REALobject, const char*, REALstring)>("REALSetPropValueString");
  EXPECT_FALSE(setString(handle, "Raw", nullptr)) << "it is no text";
  REALstring text = nullptr;
  EXPECT_FALSE(
      operation<bool(REALobject, const char*, REALstring*)>("REALGetPropValueString")(handle, "Raw", &text))
      << "it is no text";
}

TEST(Operations, TellTheVersion) {
  settings().version = 2013.04;
  EXPECT_EQ(operation<double()>("REALGetRBVersion")(), 2013.04);
}

TEST(Operations, MakeInstancesForTheCaller) {
  auto* make = operation<REALobject(const char*)>("PluginNewInstance");
  EXPECT_EQ(make("NoSuchClass"), nullptr);
  EXPECT_EQ(make(nullptr), nullptr);
  const REALobject object = make("runtimeexception");
  ASSERT_NE(object, nullptr);
  auto* heap = reinterpret_cast<Heap*>(object);
  EXPECT_EQ(heap->references.load(), 1);
  operation<void(REALobject)>("REALLockObject")(object);
  EXPECT_EQ(heap->references.load(), 2);
  operation<void(REALobject)>("REALUnlockObject")(object);
  operation<void(REALobject)>("REALUnlockObject")(object);
}

TEST(Operations, RaiseWhatIsThrownLater) {
  const REALobject object = operation<REALobject(const char*)>("PluginNewInstance")("NilObjectException");
  const Ref<Text> text = makeText("nothing there");
  EXPECT_TRUE(operation<bool(REALobject, const char*, REALstring)>("REALSetPropValueString")(
      object, "Message", reinterpret_cast<REALstring>(text.get())));
  EXPECT_TRUE(operation<bool(REALobject, const char*, RBInteger)>("REALSetPropValueInteger")(
      object, "ErrorNumber", 7));
  EXPECT_FALSE(
      operation<bool(REALobject, const char*, RBInteger)>("REALSetPropValueInteger")(object, "Nothing", 7));
  operation<void(REALobject)>("RuntimeRaiseException")(object);
  operation<void(REALobject)>("REALUnlockObject")(object);
  const Ref<Object> pending = takePending();
  ASSERT_TRUE(pending);
  EXPECT_EQ(messageOf(*pending), "nothing there");
  RBInteger number = 0;
  EXPECT_TRUE(operation<bool(REALobject, const char*, RBInteger*)>("REALGetPropValueInteger")(
      reinterpret_cast<REALobject>(pending.get()), "ErrorNumber", &number));
  EXPECT_EQ(number, 7);
  EXPECT_EQ(pending->references.load(), 1);
}

TEST(Operations, PutThePendingExceptionAsideWhileTheyWork) {
  startRuntime();
  setPending(HostException("NilObjectException", "first").exception);
  const REALobject second = operation<REALobject(const char*)>("PluginNewInstance")("Thread");
  EXPECT_NE(second, nullptr);
  operation<void(REALobject)>("REALUnlockObject")(second);
  EXPECT_EQ(messageOf(*takePending()), "first");
}

TEST(Operations, BuildAndReadStrings) {
  const REALstring built = operation<REALstring(const char*, std::int32_t, std::uint32_t)>(
      "REALBuildStringWithEncoding")("n\xE9", 2, encoding::isoLatin1);
  EXPECT_EQ(operation<std::uint32_t(REALstring)>("REALGetStringEncoding")(built), encoding::isoLatin1);
  REALstringData data = {};
  ASSERT_TRUE(operation<bool(REALstring, std::uint32_t, REALstringData*)>("PluginGetStringData")(
      built, encoding::utf8, &data));
  EXPECT_EQ(std::string(data.data, data.length), "n\xC3\xA9");
  EXPECT_EQ(data.data[data.length], '\0');
  operation<void(REALstringData*)>("PluginDisposeStringData")(&data);
  EXPECT_FALSE(operation<bool(REALstring, std::uint32_t, REALstringData*)>("PluginGetStringData")(
      built, 0x0A01, &data));
  const REALstring wide =
      operation<REALstring(REALstring, std::uint32_t)>("REALConvertString")(built, encoding::utf16);
  auto* load = operation<void*(const char*, const char*)>("REALLoadGlobalMethod");
  auto* lenB = reinterpret_cast<RBInteger (*)(REALstring)>(load(nullptr, "LenB( s as string ) as integer"));
  EXPECT_EQ(lenB(wide), 4);
  EXPECT_EQ(lenB(nullptr), 0);
  EXPECT_EQ(load(nullptr, "Len( s as string ) as integer"), nullptr);
  operation<void(REALstring)>("REALUnlockString")(wide);
  operation<void(REALstring)>("REALUnlockString")(built);
}

TEST(Operations, ReadVariantsByPropertyToo) {
  startRuntime();
  const Ref<Heap> number = box(Slot{.integer = -7}, {Kind::Int64});
  const auto handle = reinterpret_cast<REALobject>(number.get());
  std::int64_t integer = 0;
  EXPECT_TRUE(operation<bool(REALobject, const char*, std::int64_t*)>("REALGetPropValueInt64")(
      handle, "LongValue", &integer));
  EXPECT_EQ(integer, -7);
  EXPECT_TRUE(operation<bool(REALobject, const char*, RBInteger*)>("REALGetPropValueInteger")(handle, "Type",
                                                                                              &integer));
  EXPECT_EQ(integer, 3);
  double fraction = 0;
  EXPECT_TRUE(operation<bool(REALobject, const char*, double*)>("REALGetPropValueDouble")(
      handle, "DoubleValue", &fraction));
  EXPECT_EQ(fraction, -7.0);
  EXPECT_FALSE(operation<bool(REALobject, const char*, double*)>("REALGetPropValueDouble")(handle, "Nothing",
                                                                                           &fraction));
  REALstring text = nullptr;
  EXPECT_TRUE(operation<bool(REALobject, const char*, REALstring*)>("REALGetPropValueString")(
      handle, "StringValue", &text));
  EXPECT_EQ(bytesOf(reinterpret_cast<Text*>(text)), "-7");
  operation<void(REALstring)>("REALUnlockString")(text);
}

TEST(Operations, MakeArraysOfTheTwoKindsThatLibrariesUse) {
  auto* make = operation<REALarray(std::int32_t, RBInteger)>("RuntimeArrayCreateSingleDimBoundedArray");
  auto* upperBound = operation<RBInteger(REALarray)>("RuntimeUBound");
  for (const std::int32_t type : {arrayElement::object, arrayElement::integer}) {
    const REALarray array = make(type, 9);
    EXPECT_EQ(upperBound(array), 9);
    release(reinterpret_cast<Heap*>(array));
  }
  EXPECT_EQ(make(5, 9), nullptr);
  EXPECT_EQ(make(arrayElement::integer, -2), nullptr);
  EXPECT_EQ(upperBound(nullptr), -1);
}

TEST(Operations, KeepTheFirstThingThatIsWrongInARegistration) {
  auto* registerClass = operation<void(REALclassDefinition*)>("PluginRegisterClass");
  auto* registerModule = operation<void(REALmoduleDefinition*)>("PluginRegisterModule");
  EXPECT_NO_THROW(throwRegistrationFailure());
  static REALclassDefinition namelessClass = {};
  static REALmoduleDefinition namelessModule = {};
  registerClass(&namelessClass);
  registerModule(&namelessModule);
  try {
    throwRegistrationFailure();
    ADD_FAILURE();
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "a class without a name");
  }
  EXPECT_NO_THROW(throwRegistrationFailure()) << "said once";
}

TEST(Operations, TakeNilForTheEmptyString) {
  EXPECT_STREQ(operation<const char*(REALstring)>("StringGetCString")(nullptr), "");
  EXPECT_EQ(operation<std::uint32_t(REALstring)>("REALGetStringEncoding")(nullptr), encoding::utf8);
  operation<void(REALstring, std::uint32_t)>("REALSetStringEncoding")(nullptr, encoding::ascii);
  EXPECT_EQ(operation<REALstring(REALstring, std::uint32_t)>("REALConvertString")(nullptr, encoding::ascii),
            nullptr);
  REALstringData data = {nullptr, 7, 0, nullptr};
  EXPECT_TRUE(operation<bool(REALstring, std::uint32_t, REALstringData*)>("PluginGetStringData")(
      nullptr, encoding::utf8, &data));
  EXPECT_EQ(data.length, 0u);
  operation<void(REALstringData*)>("PluginDisposeStringData")(&data);
}

TEST(Operations, ReadAndWriteThePropertiesThatAClassHas) {
  startRuntime();
  const Ref<Object> exception = HostException("NilObjectException", "gone").exception;
  const auto handle = reinterpret_cast<REALobject>(exception.get());
  auto* setInteger = operation<bool(REALobject, const char*, RBInteger)>("REALSetPropValueInteger");
  auto* getInteger = operation<bool(REALobject, const char*, RBInteger*)>("REALGetPropValueInteger");
  RBInteger number = 0;
  EXPECT_TRUE(setInteger(handle, "ErrorNumber", 42));
  EXPECT_TRUE(getInteger(handle, "errornumber", &number));
  EXPECT_EQ(number, 42);
  EXPECT_FALSE(setInteger(handle, "Message", 42)) << "of another type";
  EXPECT_FALSE(setInteger(handle, "Nothing", 42));
  EXPECT_FALSE(setInteger(nullptr, "ErrorNumber", 42));
  EXPECT_FALSE(getInteger(handle, "Nothing", &number));
  const Ref<Object> thread = makeObject(*hostClasses().thread);
  EXPECT_FALSE(setInteger(reinterpret_cast<REALobject>(thread.get()), "IsRunning", 1)) << "read-only";
  REALstring message = nullptr;
  auto* getString = operation<bool(REALobject, const char*, REALstring*)>("REALGetPropValueString");
  EXPECT_TRUE(getString(handle, "Message", &message));
  EXPECT_EQ(bytesOf(reinterpret_cast<Text*>(message)), "gone");
  operation<void(REALstring)>("REALUnlockString")(message);
  EXPECT_FALSE(getString(handle, "Nothing", &message));
  std::uint64_t word = 0;
  EXPECT_FALSE(operation<bool(REALobject, const char*, std::uint64_t*)>("REALGetPropValueUInt64")(
      handle, "Nothing", &word));
}

TEST(Operations, GiveNothingForWhatIsUnknown) {
  startRuntime();
  registry().expectClass("Mentioned");
  EXPECT_EQ(operation<REALobject(const char*)>("PluginNewInstance")("Mentioned"), nullptr)
      << "it is not registered yet";
  EXPECT_EQ(operation<void*(const char*, const char*)>("REALLoadGlobalMethod")("Tools", "Len( s as string )"),
            nullptr);
  const Ref<Object> date = makeObject(*hostClasses().date);
  const auto handle = reinterpret_cast<REALobject>(date.get());
  EXPECT_FALSE(operation<bool(REALobject, REALclassRef)>("RuntimeObjectIsa")(handle, nullptr));
  operation<void(REALobject)>("RuntimeRaiseException")(handle);
  EXPECT_FALSE(takePending()) << "a date is no exception";
}

}  // namespace
}  // namespace host
