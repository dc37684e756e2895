// What stands behind each operation.
#include "runtime/operations.h"

#include <cstring>
#include <map>
#include <stdexcept>
#include <string_view>
#include <type_traits>
#include <utility>

#include "runtime/array.h"
#include "runtime/exception.h"
#include "runtime/registry.h"
#include "runtime/settings.h"
#include "runtime/text.h"
#include "runtime/variant.h"

namespace host {

namespace {

// What went wrong while a library registered itself; thrown when its entry point has returned.
std::string registrationFailure;

template <typename Register>
void registering(Register body) {
  try {
    body();
  } catch (const std::exception& error) {
    if (registrationFailure.empty()) registrationFailure = error.what();
  }
}

Heap* heapOf(REALobject handle) { return reinterpret_cast<Heap*>(handle); }
Text* textOf(REALstring handle) { return reinterpret_cast<Text*>(handle); }
REALstring handleOf(Ref<Text> text) { return reinterpret_cast<REALstring>(text.detach()); }
template <typename Handle>
Array* arrayOf(Handle handle) {
  return reinterpret_cast<Array*>(handle);
}

// A host operation does not let exceptions out; what fails gives nothing.
template <typename Body>
auto orNothing(Body body) noexcept -> decltype(body()) {
  try {
    return body();
  } catch (...) {
    return decltype(body())();
  }
}

double version() { return settings().version; }
void takeVersion(std::int32_t) {}
void registerClass(REALclassDefinition* record) {
  registering([&] { registry().addClass(*record, true); });
}
void registerModule(REALmoduleDefinition* record) {
  registering([&] { registry().addModule(*record, true); });
}
void registerFunction(REALmethodDefinition* record) {
  registering([&] { registry().addFunction(*record, true); });
}

REALobject newInstance(const char* className) {
  return orNothing([&]() -> REALobject {
    const Class* objectClass = className ? registry().findClass(className) : nullptr;
    return objectClass && objectClass->defined
               ? reinterpret_cast<REALobject>(makeObject(*objectClass).detach())
               : nullptr;
  });
}
void lockObject(REALobject object) { retain(heapOf(object)); }
void unlockObject(REALobject object) { release(heapOf(object)); }
void lockString(REALstring string) { retain(textOf(string)); }
void unlockString(REALstring string) { release(textOf(string)); }
bool objectIsA(REALobject object, REALclassRef type) {
  return type && isInstance(heapOf(object), *reinterpret_cast<const Class*>(type));
}
REALclassRef classNamed(const char* name) {
  const Class* found = registry().findClass(name);
  return reinterpret_cast<REALclassRef>(const_cast<Class*>(found));
}

// The data is a text of its own, so that one that is not disposed of shows among the leaks.
bool getStringData(REALstring string, std::uint32_t encoding, REALstringData* out) {
  return orNothing([&]() -> bool {
    Ref<Text> text = converted(textOf(string), encoding);
    if (!text && !bytesOf(textOf(string)).empty()) return false;
    const std::string_view bytes = bytesOf(text.get());
    *out = {bytes.data(), bytes.size(), encoding, text.detach()};
    return true;
  });
}
void disposeStringData(REALstringData* data) {
  release(static_cast<Text*>(data->reserved));
  *data = {};
}
const char* stringBytes(REALstring string) { return string ? textOf(string)->bytes() : ""; }
RBInteger lengthInBytes(REALstring string) { return static_cast<RBInteger>(bytesOf(textOf(string)).size()); }
RBInteger variantType(REALobject variant) { return varTypeOf(heapOf(variant)); }
void* loadGlobalMethod(const char* module, const char* declaration) {
  const std::string_view wanted = declaration;
  if (module) return nullptr;
  if (wanted == "LenB( s as string ) as integer") return reinterpret_cast<void*>(&lengthInBytes);
  if (wanted == "VarType(value As Variant) As Integer") return reinterpret_cast<void*>(&variantType);
  return nullptr;
}
std::uint32_t stringEncoding(REALstring string) { return string ? textOf(string)->encoding : encoding::utf8; }
REALstring buildStringWithEncoding(const char* bytes, std::int32_t length, std::uint32_t textEncoding) {
  return orNothing([&] {
    return handleOf(makeText({bytes, static_cast<std::size_t>(length)}, textEncoding));
  });
}
REALstring buildString(const char* bytes, std::int32_t length, std::uint32_t) {
  return buildStringWithEncoding(bytes, length, encoding::none);
}
void setStringEncoding(REALstring string, std::uint32_t textEncoding) {
  if (string) textOf(string)->encoding = textEncoding;
}
REALstring convertString(REALstring string, std::uint32_t textEncoding) {
  return orNothing([&] { return handleOf(converted(textOf(string), textEncoding)); });
}
std::int32_t compareStrings(REALstring left, REALstring right) {
  return compareText(textOf(left), textOf(right));
}

void raise(REALobject exception) {
  if (isInstance(heapOf(exception), *hostClasses().exception)) {
    setPending(Ref<Object>::share(reinterpret_cast<Object*>(exception)));
  }
}

// Properties by name: those of the object's class, and of a variant what it holds.
const Property* propertyNamed(REALobject object, const char* name) {
  return object ? heapOf(object)->objectClass->findProperty(name) : nullptr;
}
bool setProperty(REALobject object, const char* name, Slot value, Kind kind) {
  return orNothing([&]() -> bool {
    const PendingAside aside;
    const Property* property = propertyNamed(object, name);
    if (!property || !property->setter || property->type != Type{kind}) return false;
    const Slot arguments[] = {{.heap = heapOf(object)}, {.integer = property->parameter}, value};
    property->setter(arguments);
    return true;
  });
}
bool setPropertyString(REALobject object, const char* name, REALstring value) {
  return setProperty(object, name, Slot{.heap = textOf(value)}, Kind::String);
}
bool setPropertyInteger(REALobject object, const char* name, RBInteger value) {
  return setProperty(object, name, Slot{.integer = value}, Kind::Int64);
}

template <typename Value>
bool getProperty(REALobject object, const char* name, Value* out) {
  return orNothing([&]() -> bool {
    const PendingAside aside;
    if (const Property* property = propertyNamed(object, name)) {
      const Slot arguments[] = {{.heap = heapOf(object)}, {.integer = property->parameter}};
      const Slot value = property->getter(arguments);
      std::memcpy(out, &value, sizeof *out);
      return true;
    }
    const Heap* variant = heapOf(object);
    const std::string_view wanted = name;
    if constexpr (std::is_same_v<Value, REALstring>) {
      if (wanted != "StringValue") return false;
      *out = handleOf(toText(variant));
    } else if constexpr (std::is_same_v<Value, double>) {
      if (wanted != "DoubleValue") return false;
      *out = toDouble(variant);
    } else if constexpr (std::is_same_v<Value, std::uint64_t>) {
      if (wanted != "UInt64Value") return false;
      *out = toUInt64(variant);
    } else {
      if (wanted == "Type") {
        *out = varTypeOf(variant);
      } else if (wanted == "LongValue") {
        *out = toInt64(variant);
      } else {
        return false;
      }
    }
    return true;
  });
}

template <typename Value, Value (*read)(const Heap*)>
Value variantTo(REALobject variant) {
  return asPending([&] { return read(heapOf(variant)); });
}
REALstring variantToString(REALobject variant) {
  return asPending([&] { return handleOf(toText(heapOf(variant))); });
}

RBInteger upperBound(REALarray array) { return array ? arrayOf(array)->count() - 1 : -1; }
REALarray createArray(std::int32_t elementType, RBInteger bound) {
  return orNothing([&]() -> REALarray {
    if (bound < -1 || (elementType != arrayElement::object && elementType != arrayElement::integer))
      return nullptr;
    const Kind kind = elementType == arrayElement::integer ? Kind::Int64 : Kind::Variant;
    return reinterpret_cast<REALarray>(makeArray({kind}, bound + 1).detach());
  });
}
using IntegerGetter = std::int64_t (*)(REALarrayInteger, RBInteger);
using IntegerSetter = void (*)(REALarrayInteger, std::int64_t, RBInteger);
using DoubleGetter = double (*)(REALarrayDouble, RBInteger);
using ObjectInserter = void (*)(REALarrayObject, RBInteger, REALobject);
IntegerGetter integerGetter(REALarrayInteger) {
  return [](REALarrayInteger array, RBInteger index) {
    return asPending([&] { return arrayOf(array)->get(index).integer; });
  };
}
IntegerSetter integerSetter(REALarrayInteger) {
  return [](REALarrayInteger array, std::int64_t value, RBInteger index) {
    asPending([&] { arrayOf(array)->set(index, Slot{.integer = value}); });
  };
}
DoubleGetter doubleGetter(REALarrayDouble) {
  return [](REALarrayDouble array, RBInteger index) {
    return asPending([&] { return arrayOf(array)->get(index).number; });
  };
}
ObjectInserter objectInserter(REALarrayObject) {
  return [](REALarrayObject array, RBInteger index, REALobject value) {
    asPending([&] { arrayOf(array)->insert(index, Slot{.heap = heapOf(value)}); });
  };
}

template <typename Function>
void* entry(Function function) {
  return reinterpret_cast<void*>(function);
}

const std::map<std::string, void*, std::less<>>& operations() {
  static const std::map<std::string, void*, std::less<>> all = {
      {"REALGetRBVersion", entry(&version)},
      {"RegisterPluginVersion", entry(&takeVersion)},
      {"PluginRegisterClass", entry(&registerClass)},
      {"PluginRegisterModule", entry(&registerModule)},
      {"PluginRegisterMethod", entry(&registerFunction)},
      {"PluginNewInstance", entry(&newInstance)},
      {"REALLockObject", entry(&lockObject)},
      {"REALUnlockObject", entry(&unlockObject)},
      {"REALLockString", entry(&lockString)},
      {"REALUnlockString", entry(&unlockString)},
      {"PluginGetStringData", entry(&getStringData)},
      {"PluginDisposeStringData", entry(&disposeStringData)},
      {"StringGetCString", entry(&stringBytes)},
      {"REALLoadGlobalMethod", entry(&loadGlobalMethod)},
      {"REALGetStringEncoding", entry(&stringEncoding)},
      {"REALBuildString", entry(&buildString)},
      {"REALBuildStringWithEncoding", entry(&buildStringWithEncoding)},
      {"REALSetStringEncoding", entry(&setStringEncoding)},
      {"REALConvertString", entry(&convertString)},
      {"RuntimeRaiseException", entry(&raise)},
      {"REALSetPropValueString", entry(&setPropertyString)},
      {"REALSetPropValueInteger", entry(&setPropertyInteger)},
      {"REALGetPropValueString", entry(&getProperty<REALstring>)},
      {"REALGetPropValueDouble", entry(&getProperty<double>)},
      {"REALGetPropValueInt64", entry(&getProperty<std::int64_t>)},
      {"REALGetPropValueUInt64", entry(&getProperty<std::uint64_t>)},
      {"REALGetPropValueInteger", entry(&getProperty<RBInteger>)},
      {"RuntimeObjectIsa", entry(&objectIsA)},
      {"pluginObjectType", entry(&classNamed)},
      {"RuntimeStringCompare", entry(&compareStrings)},
      {"VariantToString", entry(&variantToString)},
      {"VariantToDouble", entry(&variantTo<double, &toDouble>)},
      {"VariantToInt64", entry(&variantTo<std::int64_t, &toInt64>)},
      {"VariantToUInt64", entry(&variantTo<std::uint64_t, &toUInt64>)},
      {"RuntimeUBound", entry(&upperBound)},
      {"RuntimeArrayCreateSingleDimBoundedArray", entry(&createArray)},
      {"PluginIntegerArrayGetProc", entry(&integerGetter)},
      {"PluginIntegerArraySetProc", entry(&integerSetter)},
      {"PluginDoubleArrayGetProc", entry(&doubleGetter)},
      {"PluginObjectArrayInsertProc", entry(&objectInserter)},
  };
  return all;
}

}  // namespace

void* resolve(const char* name) {
  if (settings().withheld.contains(name)) return nullptr;
  const auto found = operations().find(std::string_view(name));
  return found == operations().end() ? nullptr : found->second;
}

std::vector<std::string> operationNames() {
  std::vector<std::string> names;
  for (const auto& [name, function] : operations()) names.push_back(name);
  return names;
}

void throwRegistrationFailure() {
  if (!registrationFailure.empty()) throw std::runtime_error(std::exchange(registrationFailure, ""));
}

}  // namespace host
