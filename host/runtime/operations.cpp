// What stands behind each operation.
#include "runtime/operations.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <map>
#include <span>
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
// A field that the host reads and writes itself, in the data of the class that declares the property.
std::byte* fieldIn(Heap& object, const Property& property) {
  const Class* declaring = object.objectClass;
  while (!findNamed(declaring->properties, property.name)) declaring = declaring->super;
  return reinterpret_cast<std::byte*>(&object) + declaring->dataOffset + property.parameter;
}

void writeField(Heap& object, const Property& property, Slot value) {
  std::byte* const at = fieldIn(object, property);
  if (!property.type.isReference()) {
    std::memcpy(at, &value.integer, sizeof value.integer);
    return;
  }
  retain(value.heap);
  Heap* old;
  std::memcpy(&old, at, sizeof old);
  std::memcpy(at, &value.heap, sizeof value.heap);
  release(old);
}

bool setProperty(REALobject object, const char* name, Slot value, Kind kind) {
  return orNothing([&]() -> bool {
    const PendingAside aside;
    const Property* property = propertyNamed(object, name);
    if (!property || property->type != Type{kind}) return false;
    if (property->field) {
      writeField(*heapOf(object), *property, value);
      return true;
    }
    if (!property->setter) return false;
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

// A number there.
template <typename Value>
bool readField(Heap& object, const Property& property, Value* out) {
  const bool fits = std::is_same_v<Value, double> ? property.type.isFloating()
                                                  : std::is_integral_v<Value> && property.type.isInteger();
  if (!fits || sizeOf(property.type) != sizeof *out) return false;
  std::memcpy(out, fieldIn(object, property), sizeof *out);
  return true;
}

template <typename Value>
bool getProperty(REALobject object, const char* name, Value* out) {
  return orNothing([&]() -> bool {
    const PendingAside aside;
    const Property* property = propertyNamed(object, name);
    if (property && property->field) return readField(*heapOf(object), *property, out);
    if (property && property->type.isReference() == std::is_same_v<Value, REALstring>) {
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

// The name of an operation, as an argument of a template.
template <std::size_t size>
struct Name {
  char text[size];
  consteval Name(const char (&literal)[size]) { std::copy_n(literal, size, text); }
};

template <typename Value>
constexpr bool isHandle = std::is_same_v<Value, REALobject> || std::is_same_v<Value, REALstring> ||
                          std::is_same_v<Value, REALarray> || std::is_same_v<Value, REALarrayInteger> ||
                          std::is_same_v<Value, REALarrayDouble> || std::is_same_v<Value, REALarrayObject>;

// The operation as it is called where somebody watches.
template <Name name, auto function, typename Signature = decltype(function)>
struct Watched;
template <Name name, auto function, typename Result, typename... Arguments>
struct Watched<name, function, Result (*)(Arguments...)> {
  static Result call(Arguments... arguments) {
    std::array<Heap*, sizeof...(Arguments) + 1> handles;
    std::size_t count = 0;
    [[maybe_unused]] const auto add = [&](auto argument) {
      if constexpr (isHandle<decltype(argument)>) handles[count++] = reinterpret_cast<Heap*>(argument);
    };
    (add(arguments), ...);
    const bool refused =
        operationWatch->refuses(name.text, !std::is_void_v<Result>, std::span(handles.data(), count));
    if constexpr (!std::is_void_v<Result>) {
      if (refused) return Result();
    }
    return function(arguments...);
  }
};

// What a name leads to.
struct Entry {
  void* plain;
  void* watched;
};
void* of(const Entry& entry) { return operationWatch ? entry.watched : entry.plain; }

template <Name name, auto function>
Entry entryOf() {
  return {reinterpret_cast<void*>(function), reinterpret_cast<void*>(&Watched<name, function>::call)};
}
template <Name name, auto function>
std::pair<const std::string, Entry> operation() {
  return {name.text, entryOf<name, function>()};
}

void* loadGlobalMethod(const char* module, const char* declaration) {
  static const std::pair<const std::string, Entry> methods[] = {
      operation<"LenB( s as string ) as integer", &lengthInBytes>(),
      operation<"VarType(value As Variant) As Integer", &variantType>(),
  };
  if (module) return nullptr;
  for (const auto& [known, entry] : methods) {
    if (known == declaration) return of(entry);
  }
  return nullptr;
}

const std::map<std::string, Entry, std::less<>>& operations() {
  static const std::map<std::string, Entry, std::less<>> all = {
      operation<"REALGetRBVersion", &version>(),
      operation<"RegisterPluginVersion", &takeVersion>(),
      operation<"PluginRegisterClass", &registerClass>(),
      operation<"PluginRegisterModule", &registerModule>(),
      operation<"PluginRegisterMethod", &registerFunction>(),
      operation<"PluginNewInstance", &newInstance>(),
      operation<"REALLockObject", &lockObject>(),
      operation<"REALUnlockObject", &unlockObject>(),
      operation<"REALLockString", &lockString>(),
      operation<"REALUnlockString", &unlockString>(),
      operation<"PluginGetStringData", &getStringData>(),
      operation<"PluginDisposeStringData", &disposeStringData>(),
      operation<"StringGetCString", &stringBytes>(),
      operation<"REALLoadGlobalMethod", &loadGlobalMethod>(),
      operation<"REALGetStringEncoding", &stringEncoding>(),
      operation<"REALBuildString", &buildString>(),
      operation<"REALBuildStringWithEncoding", &buildStringWithEncoding>(),
      operation<"REALSetStringEncoding", &setStringEncoding>(),
      operation<"REALConvertString", &convertString>(),
      operation<"RuntimeRaiseException", &raise>(),
      operation<"REALSetPropValueString", &setPropertyString>(),
      operation<"REALSetPropValueInteger", &setPropertyInteger>(),
      operation<"REALGetPropValueString", &getProperty<REALstring>>(),
      operation<"REALGetPropValueDouble", &getProperty<double>>(),
      operation<"REALGetPropValueInt64", &getProperty<std::int64_t>>(),
      operation<"REALGetPropValueUInt64", &getProperty<std::uint64_t>>(),
      operation<"REALGetPropValueInteger", &getProperty<RBInteger>>(),
      operation<"RuntimeObjectIsa", &objectIsA>(),
      operation<"pluginObjectType", &classNamed>(),
      operation<"RuntimeStringCompare", &compareStrings>(),
      operation<"VariantToString", &variantToString>(),
      operation<"VariantToDouble", &variantTo<double, &toDouble>>(),
      operation<"VariantToInt64", &variantTo<std::int64_t, &toInt64>>(),
      operation<"VariantToUInt64", &variantTo<std::uint64_t, &toUInt64>>(),
      operation<"RuntimeUBound", &upperBound>(),
      operation<"RuntimeArrayCreateSingleDimBoundedArray", &createArray>(),
      operation<"PluginIntegerArrayGetProc", &integerGetter>(),
      operation<"PluginIntegerArraySetProc", &integerSetter>(),
      operation<"PluginDoubleArrayGetProc", &doubleGetter>(),
      operation<"PluginObjectArrayInsertProc", &objectInserter>(),
  };
  return all;
}

}  // namespace

void* resolve(const char* name) {
  if (settings().withheld.contains(name)) return nullptr;
  const auto found = operations().find(std::string_view(name));
  return found == operations().end() ? nullptr : of(found->second);
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
