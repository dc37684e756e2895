// What the fuzzers share: reading an input's bytes, and a host of plain functions in which calls of chosen
// operations fail. It counts every reference, and every thing has memory of its own, so that the address
// sanitizer sees what is touched too late or too far.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <concepts>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "frame/host_interface.h"
#include "frame/host_operations.h"

extern "C" void REALPluginMain(REALresolver resolver);

// No stacks of allocations, and little freed memory set aside: both make an execution much faster. What is
// set aside is what some ten executions free, and stays in the processor's cache.
// ASAN_OPTIONS=malloc_context_size=30 brings the stacks back, for a report.
extern "C" const char* __asan_default_options() {
  return "malloc_context_size=1:quarantine_size_mb=1:thread_local_quarantine_size_kb=256";
}

namespace fuzz {

// Ends the process where it does not hold; the fuzzer then keeps the input.
inline void require(bool holds, std::string_view what, const char* file = __builtin_FILE(),
                    int line = __builtin_LINE()) {
  if (holds) [[likely]]
    return;
  std::fprintf(stderr, "%s:%d: %.*s\n", file, line, static_cast<int>(what.size()), what.data());
  std::abort();
}

// The same bits, or both NaN.
inline bool same(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) || (a != a && b != b);
}

// Reads an input from its front; what is no longer there is zero.
class Bytes {
 public:
  Bytes(const char* data, std::size_t size) : rest_(data, size) {}
  bool empty() const { return rest_.empty(); }

  template <typename Value = std::uint8_t>
  Value take() {
    Value value{};
    std::memcpy(&value, rest_.data(), std::min(rest_.size(), sizeof value));
    rest_.remove_prefix(std::min(rest_.size(), sizeof value));
    return value;
  }
  std::size_t below(std::size_t limit) { return take() % limit; }
  // A text of up to `most` bytes, or all that is left.
  std::string_view text(std::size_t most) {
    const std::string_view text = rest_.substr(0, std::min(most, below(most + 1)));
    rest_.remove_prefix(text.size());
    return text;
  }
  std::string_view rest() { return std::exchange(rest_, {}); }

  // Any word; most are near 0 or a power of two, where things change.
  std::uint64_t word() {
    const auto shape = take();
    if (shape < 64) return (std::uint64_t{1} << shape) + static_cast<std::uint64_t>(take<std::int8_t>() / 64);
    if (shape < 128) return static_cast<std::uint64_t>(static_cast<std::int64_t>(take<std::int8_t>()));
    if (shape < 192) return 0 - (std::uint64_t{1} << (shape & 63));
    return take<std::uint64_t>();
  }
  std::int64_t integer() { return static_cast<std::int64_t>(word()); }
  double real() {
    constexpr double edges[] = {0.0, -0.0, 1.0, -1.0, 0.5, 1e308, -1e308, 5e-324, 2.2250738585072014e-308};
    const std::size_t shape = below(32);
    if (shape < std::size(edges)) return edges[shape];
    if (shape < 20) return take<std::int16_t>();
    return std::bit_cast<double>(take<std::uint64_t>());
  }

 private:
  std::string_view rest_;
};

// The operations whose calls can be made to fail, each in the ways that its result has.
enum class Operation : std::uint8_t {
  newInstance,
  getStringData,
  getCString,
  lenB,
  getEncoding,
  build,
  convert,
  setProperty,
  arrayBound,
  createArray,
  elementProcedure,
  variantType,
  variantValue,
  count,
};

// A string: exactly one byte, of any value, can be read behind its own.
struct String {
  int references = 1;
  std::uint32_t encoding;
  std::size_t length;
  char* bytes;
};

// What objects and arrays begin with.
enum class Kind : std::uint64_t { object, array };

struct Object {
  Kind kind = Kind::object;
  int references = 1;
  int expected = 1;             // references, as a fuzzer counts along
  std::uint64_t model[2] = {};  // and what it takes the instance data to be
  const char* className;
  const REALclassDefinition* record = nullptr;
  RBInteger type = 0;  // of a variant
  std::uint64_t word = 0;
  std::byte* data() { return reinterpret_cast<std::byte*>(this + 1); }
};

struct Array {
  Kind kind = Kind::array;
  std::int32_t type;
  std::int64_t unused = 0;
  std::int64_t references = 1;
  std::byte beforeStorage[24] = {};
  std::uint64_t* storage = nullptr;
  std::int64_t dimensions = 1;
  std::byte beforeBound[12] = {};
  std::int32_t bound = -1;
  std::size_t size() const { return static_cast<std::size_t>(bound + 1); }
};
static_assert(offsetof(Array, references) == arrayShape::referenceCount);
static_assert(offsetof(Array, storage) == arrayShape::storage);
static_assert(offsetof(Array, dimensions) == arrayShape::dimensions);
static_assert(offsetof(Array, bound) == arrayShape::upperBoundSince2021);

inline String* of(REALstring handle) { return reinterpret_cast<String*>(handle); }
inline Object* of(REALobject handle) { return reinterpret_cast<Object*>(handle); }
inline REALstring handle(String* string) { return reinterpret_cast<REALstring>(string); }
inline REALobject handle(Object* object) { return reinterpret_cast<REALobject>(object); }
inline std::string_view bytesOf(REALstring string) {
  return string ? std::string_view(of(string)->bytes, of(string)->length) : "";
}

// The one host of a process.
struct Host {
  double version = 2024.01;
  char terminator = '\0';
  std::vector<REALclassDefinition*> classes;
  REALmoduleDefinition* module = nullptr;
  std::array<std::uint8_t, static_cast<std::size_t>(Operation::count)>
      failing{};            // the nth call from now on fails
  bool failed = false;      // one has, since it was last cleared
  std::string_view raised;  // the class of the exception raised, until it is cleared
  std::string message;
  int raises = 0;
  std::string_view conversion;                               // what string data has
  bool hasData = true;                                       // it has a pointer
  int strings = 0, objects = 0, arrays = 0, stringData = 0;  // alive
  std::vector<Object*> made;                                 // by the library, until it is cleared

  bool fails(Operation operation) {
    auto& left = failing[static_cast<std::size_t>(operation)];
    if (left == 0 || --left > 0) return false;
    return failed = true;
  }
  void clear() {
    failed = false;
    raised = {};
    raises = 0;
    message.clear();
    made.clear();
  }

  REALstring makeString(std::string_view bytes, std::uint32_t encoding = encoding::utf8) {
    auto* string = new String{1, encoding, bytes.size(), new char[bytes.size() + 1]};
    std::copy(bytes.begin(), bytes.end(), string->bytes);
    string->bytes[bytes.size()] = terminator;
    ++strings;
    return handle(string);
  }
  void unlock(REALstring text) {
    if (!text || --of(text)->references > 0) return;
    delete[] of(text)->bytes;
    delete of(text);
    --strings;
  }

  // Of a registered class, of the host's own, or a variant of a type.
  REALobject makeObject(const char* className) {
    const REALclassDefinition* record = findClass(className);
    const std::size_t size = sizeof(Object) + (record ? record->dataSize : 0);
    auto* object = new (::operator new(size)) Object{.className = className, .record = record};
    std::memset(object->data(), 0, size - sizeof(Object));
    ++objects;
    if (record && record->constructor) {
      reinterpret_cast<void (*)(REALobject)>(record->constructor)(handle(object));
    }
    return handle(object);
  }
  REALobject makeVariant(RBInteger type, std::uint64_t word) {
    const REALobject variant = makeObject("Variant");
    of(variant)->type = type;
    of(variant)->word = word;
    return variant;
  }
  void lock(REALobject thing) {
    if (!thing) return;
    if (of(thing)->kind == Kind::array) {
      ++reinterpret_cast<Array*>(thing)->references;
    } else {
      ++of(thing)->references;
    }
  }
  void unlock(REALobject thing) {
    if (!thing) return;
    if (of(thing)->kind == Kind::array) return unlock(reinterpret_cast<Array*>(thing));
    if (--of(thing)->references > 0) return;
    if (const auto* record = of(thing)->record; record && record->destructor) {
      reinterpret_cast<void (*)(REALobject)>(record->destructor)(thing);
    }
    ::operator delete(of(thing));
    --objects;
  }

  Array* makeArray(std::int32_t type, std::size_t size) {
    auto* array = new Array{.type = type};
    array->bound = static_cast<std::int32_t>(size) - 1;
    if (size > 0) array->storage = new std::uint64_t[size]();
    ++arrays;
    return array;
  }
  void insert(Array* array, std::size_t index, REALobject value) {
    auto* longer = new std::uint64_t[array->size() + 1];
    std::copy_n(array->storage, index, longer);
    longer[index] = std::bit_cast<std::uint64_t>(value);
    std::copy_n(array->storage + index, array->size() - index, longer + index + 1);
    delete[] std::exchange(array->storage, longer);
    ++array->bound;
    lock(value);
  }
  void unlock(Array* array) {
    if (!array || --array->references > 0) return;
    for (std::size_t i = 0; array->type == arrayElement::object && i < array->size(); ++i) {
      unlock(std::bit_cast<REALobject>(array->storage[i]));
    }
    delete[] array->storage;
    delete array;
    --arrays;
  }

  const REALclassDefinition* findClass(std::string_view name) const {
    for (const auto* record : classes) {
      if (record->name == name) return record;
    }
    return nullptr;
  }
  // The function behind a declaration of a class's methods, or of the module's ("").
  template <typename Signature>
  Signature* function(std::string_view className, std::string_view declaration) const {
    const auto find = [&](const REALmethodDefinition* records, std::size_t count) -> Signature* {
      for (std::size_t i = 0; i < count; ++i) {
        if (records[i].declaration == declaration) return reinterpret_cast<Signature*>(records[i].function);
      }
      return nullptr;
    };
    const auto* record = findClass(className);
    Signature* found =
        record ? find(record->methods, record->methodCount) : find(module->methods, module->methodCount);
    require(found != nullptr, declaration);
    return found;
  }

  // Lets the library register itself.
  static void load();
};
inline Host host;

namespace operations {

inline double version() { return host.version; }
inline void takeVersion(std::int32_t) {}
inline void registerClass(REALclassDefinition* record) {
  record->dataOffset = sizeof(Object);
  host.classes.push_back(record);
}
inline void registerModule(REALmoduleDefinition* record) { host.module = record; }

inline REALobject newInstance(const char* className) {
  if (host.fails(Operation::newInstance)) return nullptr;
  const REALobject object = host.makeObject(className);
  host.made.push_back(of(object));
  return object;
}
inline void lockObject(REALobject object) { host.lock(object); }
inline void unlockObject(REALobject object) { host.unlock(object); }
inline void lockString(REALstring string) {
  if (string) ++of(string)->references;
}
inline void unlockString(REALstring string) { host.unlock(string); }
inline bool setPropertyString(REALobject, const char*, REALstring text) {
  if (host.fails(Operation::setProperty)) return false;
  host.message = bytesOf(text);
  return true;
}
inline bool setPropertyInteger(REALobject, const char*, RBInteger) {
  return !host.fails(Operation::setProperty);
}
inline void raise(REALobject exception) {
  ++host.raises;
  host.raised = of(exception)->className;
}

inline const char* cString(REALstring string) {
  return host.fails(Operation::getCString) || !string ? nullptr : of(string)->bytes;
}
inline RBInteger lenB(REALstring string) {
  return host.fails(Operation::lenB) ? -1 : static_cast<RBInteger>(bytesOf(string).size());
}
inline RBInteger varType(REALobject variant) {
  return host.fails(Operation::variantType) ? 4096 + 3 : variant ? of(variant)->type : 0;
}
inline void* resolve(const char* name);
inline void* loadMethod(const char*, const char* declaration) { return resolve(declaration); }
inline std::uint32_t getEncoding(REALstring string) {
  return host.fails(Operation::getEncoding) ? 0x12345678 : of(string)->encoding;
}
inline REALstring buildWithEncoding(const char* bytes, std::int32_t length, std::uint32_t encoding) {
  if (host.fails(Operation::build)) return nullptr;
  return host.makeString({bytes, static_cast<std::size_t>(length)}, encoding);
}
inline REALstring build(const char* bytes, std::int32_t length, std::uint32_t) {
  return buildWithEncoding(bytes, length, encoding::none);
}
inline void setEncoding(REALstring string, std::uint32_t encoding) { of(string)->encoding = encoding; }
inline REALstring convert(REALstring string, std::uint32_t encoding) {
  return host.fails(Operation::convert) ? nullptr : host.makeString(bytesOf(string), encoding);
}
// Whatever the string, the data is what the host has been told.
inline bool getStringData(REALstring, std::uint32_t encoding, REALstringData* out) {
  if (host.fails(Operation::getStringData)) return false;
  *out = {nullptr, host.conversion.size(), encoding, nullptr};
  if (host.hasData) {
    auto* copy = new char[host.conversion.size() + 1];
    std::copy(host.conversion.begin(), host.conversion.end(), copy);
    copy[host.conversion.size()] = host.terminator;
    out->data = copy;
    out->reserved = copy;
  }
  ++host.stringData;
  return true;
}
inline void disposeStringData(REALstringData* data) {
  delete[] static_cast<char*>(data->reserved);
  *data = {};
  --host.stringData;
}
inline std::int32_t compareStrings(REALstring a, REALstring b) {
  return bytesOf(a).compare(bytesOf(b)) < 0 ? -7 : 7;
}

inline REALstring toText(REALobject variant) {
  if (host.fails(Operation::variantValue)) return nullptr;
  return host.makeString(std::to_string(of(variant)->word));
}
template <typename Value>
Value toNumber(REALobject variant) {
  if (host.fails(Operation::variantValue) || !variant) return 0;
  return std::bit_cast<Value>(of(variant)->word);
}
// By class: an unsigned word is one whose low bit is set.
inline bool isA(REALobject variant, REALclassRef) { return variant && (of(variant)->word & 1) != 0; }
inline REALclassRef classNamed(const char* name) {
  return reinterpret_cast<REALclassRef>(const_cast<char*>(name));
}

inline RBInteger bound(REALarray array) {
  return host.fails(Operation::arrayBound) ? -1 : reinterpret_cast<Array*>(array)->bound;
}
inline REALarray createArray(std::int32_t type, RBInteger upperBound) {
  if (host.fails(Operation::createArray)) return nullptr;
  return reinterpret_cast<REALarray>(host.makeArray(type, static_cast<std::size_t>(upperBound + 1)));
}
template <typename Value, typename Handle>
Value element(Handle array, RBInteger index) {
  return std::bit_cast<Value>(reinterpret_cast<Array*>(array)->storage[index]);
}
inline void setElement(REALarrayInteger array, std::int64_t value, RBInteger index) {
  reinterpret_cast<Array*>(array)->storage[index] = static_cast<std::uint64_t>(value);
}
inline void insertElement(REALarrayObject array, RBInteger index, REALobject value) {
  host.insert(reinterpret_cast<Array*>(array), static_cast<std::size_t>(index), value);
}
template <auto procedure, typename Handle>
auto procedureFor(Handle) {
  return host.fails(Operation::elementProcedure) ? nullptr : procedure;
}

inline void* resolve(const char* name) {
  const auto entry = [](auto* function) { return reinterpret_cast<void*>(function); };
  static const std::pair<std::string_view, void*> all[] = {
      {"REALGetRBVersion", entry(&version)},
      {"RegisterPluginVersion", entry(&takeVersion)},
      {"PluginRegisterClass", entry(&registerClass)},
      {"PluginRegisterModule", entry(&registerModule)},
      {"PluginNewInstance", entry(&newInstance)},
      {"REALLockObject", entry(&lockObject)},
      {"REALUnlockObject", entry(&unlockObject)},
      {"REALLockString", entry(&lockString)},
      {"REALUnlockString", entry(&unlockString)},
      {"REALSetPropValueString", entry(&setPropertyString)},
      {"REALSetPropValueInteger", entry(&setPropertyInteger)},
      {"RuntimeRaiseException", entry(&raise)},
      {"StringGetCString", entry(&cString)},
      {"LenB( s as string ) as integer", entry(&lenB)},
      {"VarType(value As Variant) As Integer", entry(&varType)},
      {"REALLoadGlobalMethod", entry(&loadMethod)},
      {"REALGetStringEncoding", entry(&getEncoding)},
      {"REALBuildStringWithEncoding", entry(&buildWithEncoding)},
      {"REALBuildString", entry(&build)},
      {"REALSetStringEncoding", entry(&setEncoding)},
      {"REALConvertString", entry(&convert)},
      {"PluginGetStringData", entry(&getStringData)},
      {"PluginDisposeStringData", entry(&disposeStringData)},
      {"RuntimeStringCompare", entry(&compareStrings)},
      {"VariantToString", entry(&toText)},
      {"VariantToDouble", entry(&toNumber<double>)},
      {"VariantToInt64", entry(&toNumber<std::int64_t>)},
      {"VariantToUInt64", entry(&toNumber<std::uint64_t>)},
      {"RuntimeObjectIsa", entry(&isA)},
      {"pluginObjectType", entry(&classNamed)},
      {"RuntimeUBound", entry(&bound)},
      {"RuntimeArrayCreateSingleDimBoundedArray", entry(&createArray)},
      {"PluginIntegerArrayGetProc",
       entry(&procedureFor<&element<std::int64_t, REALarrayInteger>, REALarrayInteger>)},
      {"PluginIntegerArraySetProc", entry(&procedureFor<&setElement, REALarrayInteger>)},
      {"PluginDoubleArrayGetProc", entry(&procedureFor<&element<double, REALarrayDouble>, REALarrayDouble>)},
      {"PluginObjectArrayInsertProc", entry(&procedureFor<&insertElement, REALarrayObject>)},
  };
  for (const auto& [known, operation] : all) {
    if (known == name) return operation;
  }
  return nullptr;
}

}  // namespace operations

inline void Host::load() { REALPluginMain(&operations::resolve); }

}  // namespace fuzz
