// The operations of the host for benchmarks, and the records that the library registers with it.
#include "host.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <new>

namespace bench {
namespace {

struct String {
  Head head;
  std::uint32_t encoding;
  std::int64_t length;
  char bytes[];
};
struct Array {
  Head head;
  char gap[24];
  double* elements;
  std::int64_t dimensions;
  char gap2[12];
  std::int32_t upperBound;
};
static_assert(offsetof(Array, elements) == arrayShape::storage);
static_assert(offsetof(Array, dimensions) == arrayShape::dimensions);
static_assert(offsetof(Array, upperBound) == arrayShape::upperBoundSince2021);

Head* headOf(void* handle) { return static_cast<Head*>(handle); }
String* stringAt(REALstring handle) { return reinterpret_cast<String*>(handle); }
template <typename Handle>
Array* arrayAt(Handle handle) {
  return reinterpret_cast<Array*>(handle);
}

struct Class {
  std::string_view name;
  const REALclassDefinition* record;
};
Class classes[16];
std::size_t classCount = 0;
const REALclassDefinition otherClass = {};  // of exceptions
REALmoduleDefinition* module = nullptr;
std::atomic<std::int64_t> raised = 0;

const REALclassDefinition* classNamed(std::string_view name) {
  for (std::size_t i = 0; i < classCount; ++i) {
    if (name == classes[i].name) return classes[i].record;
  }
  return nullptr;
}

void callIfAny(REALproc function, REALobject object) {
  if (function) reinterpret_cast<void (*)(REALobject)>(function)(object);
}

REALobject newInstance(const char* className) {
  const REALclassDefinition* type = classNamed(className);
  if (!type) type = &otherClass;
  const std::size_t size = dataOffset + type->dataSize;
  auto* head = static_cast<Head*>(::operator new(size));
  std::memset(static_cast<void*>(head), 0, size);
  head->type = type;
  head->references.store(1, std::memory_order_relaxed);
  const auto object = reinterpret_cast<REALobject>(head);
  callIfAny(type->constructor, object);
  return object;
}
void add(void* handle) {
  if (handle) headOf(handle)->references.fetch_add(1, std::memory_order_relaxed);
}
bool drop(void* handle) {
  return handle && headOf(handle)->references.fetch_sub(1, std::memory_order_acq_rel) == 1;
}
void lockObject(REALobject object) { add(object); }
void unlockObject(REALobject object) {
  if (!drop(object)) return;
  if (const REALclassDefinition* type = headOf(object)->type) {
    callIfAny(type->destructor, object);
  } else {
    delete[] arrayAt(object)->elements;
  }
  ::operator delete(object);
}

REALstring buildString(const char* bytes, std::int32_t length, std::uint32_t encoding) {
  const auto size = static_cast<std::size_t>(length);
  auto* string = static_cast<String*>(::operator new(sizeof(String) + size + 1));
  string->head.type = nullptr;
  string->head.references.store(1, std::memory_order_relaxed);
  string->encoding = encoding;
  string->length = length;
  std::memcpy(string->bytes, bytes, size);
  string->bytes[size] = 0;
  return reinterpret_cast<REALstring>(string);
}
void lockString(REALstring string) { add(string); }
void unlockString(REALstring string) {
  if (drop(string)) ::operator delete(string);
}
std::uint32_t encodingOf(REALstring string) { return stringAt(string)->encoding; }
const char* contentsOf(REALstring string) { return stringAt(string)->bytes; }
RBInteger lengthOf(REALstring string) { return stringAt(string)->length; }
void* loadGlobalMethod(const char*, const char* declaration) {
  return std::string_view(declaration).starts_with("LenB") ? reinterpret_cast<void*>(&lengthOf) : nullptr;
}

REALarray createArray(std::int32_t, RBInteger upperBound) {
  auto* array = static_cast<Array*>(::operator new(sizeof(Array)));
  std::memset(static_cast<void*>(array), 0, sizeof *array);
  array->head.references.store(1, std::memory_order_relaxed);
  array->elements = new double[static_cast<std::size_t>(upperBound + 1)]();
  array->dimensions = 1;
  array->upperBound = static_cast<std::int32_t>(upperBound);
  return reinterpret_cast<REALarray>(array);
}
RBInteger upperBoundOf(REALarray array) { return arrayAt(array)->upperBound; }
std::int64_t getInteger(REALarrayInteger array, RBInteger index) {
  std::int64_t value;
  std::memcpy(&value, arrayAt(array)->elements + index, sizeof value);
  return value;
}
void setInteger(REALarrayInteger array, std::int64_t value, RBInteger index) {
  std::memcpy(arrayAt(array)->elements + index, &value, sizeof value);
}
double getDouble(REALarrayDouble array, RBInteger index) { return arrayAt(array)->elements[index]; }

void registerClass(REALclassDefinition* record) {
  record->dataOffset = dataOffset;
  classes[classCount++] = {record->name, record};
}
void raise(REALobject) { ++raised; }

template <typename Function>
void* entry(Function* function) {
  return reinterpret_cast<void*>(function);
}

void* resolve(const char* name) {
  static const std::map<std::string_view, void*> operations = {
      {"REALGetRBVersion", entry(+[] { return 2024.01; })},
      {"RegisterPluginVersion", entry(+[](std::int32_t) {})},
      {"PluginRegisterClass", entry(&registerClass)},
      {"PluginRegisterModule", entry(+[](REALmoduleDefinition* record) { module = record; })},
      {"PluginNewInstance", entry(host.newInstance)},
      {"REALLockObject", entry(host.lockObject)},
      {"REALUnlockObject", entry(host.unlockObject)},
      {"REALLockString", entry(host.lockString)},
      {"REALUnlockString", entry(host.unlockString)},
      {"REALGetStringEncoding", entry(host.encodingOf)},
      {"StringGetCString", entry(host.contentsOf)},
      {"REALLoadGlobalMethod", entry(&loadGlobalMethod)},
      {"REALBuildStringWithEncoding", entry(host.buildString)},
      {"RuntimeUBound", entry(host.upperBoundOf)},
      {"RuntimeArrayCreateSingleDimBoundedArray", entry(host.createArray)},
      {"PluginIntegerArrayGetProc", entry(+[](REALarrayInteger) { return &getInteger; })},
      {"PluginIntegerArraySetProc", entry(+[](REALarrayInteger) { return &setInteger; })},
      {"PluginDoubleArrayGetProc", entry(+[](REALarrayDouble) { return &getDouble; })},
      {"RuntimeRaiseException", entry(&raise)},
  };
  const auto found = operations.find(name);
  return found == operations.end() ? nullptr : found->second;
}

[[noreturn]] void fail(const char* what, std::string_view which) {
  std::fprintf(stderr, "qtx bench: %s %.*s\n", what, static_cast<int>(which.size()), which.data());
  std::exit(1);
}

REALproc find(const REALmethodDefinition* records, std::size_t count, std::string_view start) {
  for (std::size_t i = 0; i < count; ++i) {
    if (std::string_view(records[i].declaration).starts_with(start)) return records[i].function;
  }
  fail("the library has no", start);
}
const REALclassDefinition& classWith(std::string_view name) {
  const REALclassDefinition* record = classNamed(name);
  if (!record) fail("the library has no", name);
  return *record;
}

}  // namespace

Operations host = {&newInstance, &lockObject, &unlockObject, &lockString,   &unlockString, &encodingOf,
                   &contentsOf,  &lengthOf,   &buildString,  &upperBoundOf, &createArray};

REALobject sharedObjects[sharedCount] = {};
std::string libraryPath = QTX_LIBRARY;

void load(const char* library) {
  void* handle = dlopen(library, RTLD_NOW | RTLD_LOCAL);
  if (!handle) fail("cannot open", dlerror());
  void* main = dlsym(handle, "REALPluginMain");
  if (!main) fail("no entry point in", library);
  reinterpret_cast<void (*)(REALresolver)>(main)(&resolve);
  if (!module) fail("no functions were registered by", library);
  for (std::size_t i = 0; i < sharedCount; ++i) {
    sharedObjects[i] = host.newInstance("Int128QTX");
    write(sharedObjects[i], static_cast<UInt128>(i));
  }
}

std::int64_t raisedExceptions() { return raised; }

REALproc findFunction(std::string_view start) { return find(module->methods, module->methodCount, start); }
REALproc findMethod(std::string_view className, std::string_view start) {
  const REALclassDefinition& record = classWith(className);
  return find(record.methods, record.methodCount, start);
}
REALproc findGetter(std::string_view className, std::string_view property) {
  const REALclassDefinition& record = classWith(className);
  for (std::size_t i = 0; i < record.propertyCount; ++i) {
    if (property == record.properties[i].name) return record.properties[i].getter;
  }
  fail("the library has no", property);
}

REALarrayDouble arrayOf(const double* values, std::size_t count) {
  const REALarray array = host.createArray(arrayElement::integer, static_cast<RBInteger>(count) - 1);
  std::memcpy(arrayAt(array)->elements, values, count * sizeof *values);
  return reinterpret_cast<REALarrayDouble>(array);
}
REALstring stringOf(std::string_view text) {
  return host.buildString(text.data(), static_cast<std::int32_t>(text.size()), encoding::utf8);
}

}  // namespace bench
