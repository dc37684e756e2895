// A host that does the least that a host must: strings, objects and arrays with reference counts. The library
// is opened as users get it and entered through its records. All contenders call the operations through the
// same pointers, and nothing of them can be inlined: they are defined elsewhere.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "frame/host_interface.h"

namespace bench {

// What every object, string and array begins with. The count lies where the library's array test wants it.
struct Head {
  const REALclassDefinition* type;  // null for arrays and strings
  char gap[16];
  std::atomic<std::int64_t> references;
};
constexpr std::size_t dataOffset = 32;  // of an object's instance data
static_assert(sizeof(Head) == dataOffset && offsetof(Head, references) == arrayShape::referenceCount);

// The operations that a contender may need.
struct Operations {
  REALobject (*newInstance)(const char* className);
  void (*lockObject)(REALobject);
  void (*unlockObject)(REALobject);
  void (*lockString)(REALstring);
  void (*unlockString)(REALstring);
  std::uint32_t (*encodingOf)(REALstring);
  const char* (*contentsOf)(REALstring);
  RBInteger (*lengthOf)(REALstring);
  REALstring (*buildString)(const char* bytes, std::int32_t length, std::uint32_t encoding);
  RBInteger (*upperBoundOf)(REALarray);
  REALarray (*createArray)(std::int32_t elementType, RBInteger upperBound);
};
extern Operations host;

// The library that is measured: the one of this build, unless another is wanted.
extern std::string libraryPath;
// Opens a library and lets it register; ends the program where that fails.
void load(const char* library);

// Exceptions that have been raised so far.
std::int64_t raisedExceptions();

// Functions by how their declarations start; where there is none, the program ends.
REALproc findFunction(std::string_view start);
REALproc findMethod(std::string_view className, std::string_view start);
REALproc findGetter(std::string_view className, std::string_view property);
template <typename Signature>
Signature* function(std::string_view start) {
  return reinterpret_cast<Signature*>(findFunction(start));
}
template <typename Signature>
Signature* method(std::string_view className, std::string_view start) {
  return reinterpret_cast<Signature*>(findMethod(className, start));
}
template <typename Signature>
Signature* getter(std::string_view className, std::string_view property) {
  return reinterpret_cast<Signature*>(findGetter(className, property));
}

inline char* dataOf(REALobject object) { return reinterpret_cast<char*>(object) + dataOffset; }
inline std::int64_t referencesOf(REALobject object) {
  return reinterpret_cast<const Head*>(object)->references.load();
}
template <typename Value>
Value read(REALobject object) {
  Value value;
  std::memcpy(&value, dataOf(object), sizeof value);
  return value;
}
template <typename Value>
void write(REALobject object, Value value) {
  std::memcpy(dataOf(object), &value, sizeof value);
}

// Elements of an array, as they lie in memory; and making an array or a string.
inline const double* elementsOf(REALarrayDouble array) {
  const double* elements;
  std::memcpy(&elements, reinterpret_cast<const char*>(array) + arrayShape::storage, sizeof elements);
  return elements;
}
REALarrayDouble arrayOf(const double* values, std::size_t count);
REALstring stringOf(std::string_view text);

// A text as the library's functions must read it: these five calls of the host.
class Text {
 public:
  explicit Text(REALstring string) : string_(string) {
    host.lockString(string);
    host.encodingOf(string);
    bytes_ = host.contentsOf(string);
    length_ = static_cast<std::size_t>(host.lengthOf(string));
  }
  ~Text() { host.unlockString(string_); }
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;

  const char* begin() const { return bytes_; }
  const char* end() const { return bytes_ + length_; }
  std::size_t size() const { return length_; }

 private:
  REALstring string_;
  const char* bytes_;
  std::size_t length_;
};

inline REALstring built(const char* bytes, std::size_t length) {
  return host.buildString(bytes, static_cast<std::int32_t>(length), encoding::ascii);
}

using Int128 = __int128;
using UInt128 = unsigned __int128;

// The objects that results from 0 to 15 share.
constexpr std::size_t sharedCount = 16;
extern REALobject sharedObjects[sharedCount];

// A 128-bit result as the library must make it: shared where small, otherwise new.
template <typename Value>
REALobject result(Value value) {
  if (static_cast<UInt128>(value) < sharedCount) {
    const REALobject shared = sharedObjects[static_cast<std::size_t>(value)];
    host.lockObject(shared);
    return shared;
  }
  constexpr bool isSigned = static_cast<Value>(-1) < static_cast<Value>(0);
  const REALobject made = host.newInstance(isSigned ? "Int128QTX" : "UInt128QTX");
  write(made, value);
  return made;
}

// The points of a curve, read as the library must: the upper bound is asked for before each element.
template <typename Take>
std::size_t readPoints(REALarrayDouble x, REALarrayDouble y, Take take) {
  const auto xHandle = reinterpret_cast<REALarray>(x), yHandle = reinterpret_cast<REALarray>(y);
  const RBInteger last = host.upperBoundOf(xHandle);
  if (last != host.upperBoundOf(yHandle)) return 0;
  for (RBInteger i = 0; i <= last; ++i) {
    if (host.upperBoundOf(xHandle) < i) return 0;
    const double xi = elementsOf(x)[i];
    if (host.upperBoundOf(yHandle) < i) return 0;
    take(static_cast<std::size_t>(i), xi, elementsOf(y)[i]);
  }
  return static_cast<std::size_t>(last + 1);
}

}  // namespace bench
