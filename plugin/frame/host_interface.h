// The host's binary interface: handles, record layouts, and the numbers that stand for encodings, types and
// flags. Pointers and sizes have eight bytes each, also where they fill only four of them.
//
// This is the one header that the plug-in and the stand-in host share. Everything in it crosses the boundary
// with the platform's C calling convention and natural alignment, so each record states its size and offsets
// below and the build fails where a compiler disagrees.
#pragma once

#include <cstddef>
#include <cstdint>

// Integer and Int64 of the host's language.
using RBInteger = std::int64_t;

// Opaque, reference-counted handles. A null string is the empty string, any other null handle is nil.
struct REALobjectStruct;
struct REALstringStruct;
struct REALarrayStruct;
struct REALclassStruct;
using REALobject = REALobjectStruct*;
using REALstring = REALstringStruct*;
using REALarray = REALarrayStruct*;
using REALclassRef = REALclassStruct*;

// Array handles told apart by element type, so that a mix-up does not compile; all are REALarray to the host.
struct _REALarrayInteger;
struct _REALarrayDouble;
struct _REALarrayObject;
using REALarrayInteger = _REALarrayInteger*;
using REALarrayDouble = _REALarrayDouble*;
using REALarrayObject = _REALarrayObject*;

// Any function at the boundary, its signature erased.
using REALproc = void (*)();

// Finds a host operation by name; null when the host does not offer it.
using REALresolver = void* (*)(const char* name);

// Records that the plug-in never looks into.
struct REALevent;
struct REALeventInstance;
struct REALconstant;

struct REALattribute {
  alignas(8) const char* name;
  alignas(8) const char* value;
};
static_assert(sizeof(REALattribute) == 16);

struct REALmethodDefinition {
  alignas(8) REALproc function;
  alignas(8) REALproc setterFunction;  // of an assignable method; null otherwise
  alignas(8) const char* declaration;  // as the host parses it: "Add(Value as Int64) as Int64"
  alignas(8) std::uint32_t flags;
  alignas(8) REALattribute* attributes;
  alignas(8) std::size_t attributeCount;
};
static_assert(sizeof(REALmethodDefinition) == 48);
static_assert(offsetof(REALmethodDefinition, setterFunction) == 8);
static_assert(offsetof(REALmethodDefinition, declaration) == 16);
static_assert(offsetof(REALmethodDefinition, flags) == 24);
static_assert(offsetof(REALmethodDefinition, attributes) == 32);
static_assert(offsetof(REALmethodDefinition, attributeCount) == 40);

struct REALproperty {
  alignas(8) const char* group;
  alignas(8) const char* name;
  alignas(8) const char* type;
  alignas(8) std::uint32_t flags;
  alignas(8) REALproc getter;          // all bits set: the field at offset `parameter` of the instance data
  alignas(8) REALproc setter;          // likewise; null: read-only
  alignas(8) std::intptr_t parameter;  // handed to the getter and setter of an instance property
  alignas(8) std::size_t editorCount;
  alignas(8) const char** editors;
  alignas(8) REALattribute* attributes;
  alignas(8) std::size_t attributeCount;
};
static_assert(sizeof(REALproperty) == 88);
static_assert(offsetof(REALproperty, name) == 8);
static_assert(offsetof(REALproperty, type) == 16);
static_assert(offsetof(REALproperty, flags) == 24);
static_assert(offsetof(REALproperty, getter) == 32);
static_assert(offsetof(REALproperty, setter) == 40);
static_assert(offsetof(REALproperty, parameter) == 48);
static_assert(offsetof(REALproperty, editorCount) == 56);
static_assert(offsetof(REALproperty, editors) == 64);
static_assert(offsetof(REALproperty, attributes) == 72);
static_assert(offsetof(REALproperty, attributeCount) == 80);

struct REALclassDefinition {
  std::int32_t version;
  alignas(8) const char* name;
  alignas(8) const char* superName;
  alignas(8) std::size_t dataSize;
  alignas(8) std::size_t
      dataOffset;                   // written by the host: where an instance's data starts behind its handle
  alignas(8) REALproc constructor;  // the initializer, run before any Constructor method
  alignas(8) REALproc destructor;
  alignas(8) REALproperty* properties;
  alignas(8) std::size_t propertyCount;
  alignas(8) REALmethodDefinition* methods;
  alignas(8) std::size_t methodCount;
  alignas(8) REALevent* events;
  alignas(8) std::size_t eventCount;
  alignas(8) REALeventInstance* eventInstances;
  alignas(8) std::size_t eventInstanceCount;
  alignas(8) const char* interfaces;
  alignas(8) REALattribute* attributes;
  alignas(8) std::size_t attributeCount;
  alignas(8) REALconstant* constants;
  alignas(8) std::size_t constantCount;
  alignas(8) std::uint32_t flags;
  alignas(8) REALproperty* sharedProperties;
  alignas(8) std::size_t sharedPropertyCount;
  alignas(8) REALmethodDefinition* sharedMethods;
  alignas(8) std::size_t sharedMethodCount;
  alignas(8) void* reserved;
};
static_assert(sizeof(REALclassDefinition) == 208);
static_assert(offsetof(REALclassDefinition, name) == 8);
static_assert(offsetof(REALclassDefinition, superName) == 16);
static_assert(offsetof(REALclassDefinition, dataSize) == 24);
static_assert(offsetof(REALclassDefinition, dataOffset) == 32);
static_assert(offsetof(REALclassDefinition, constructor) == 40);
static_assert(offsetof(REALclassDefinition, destructor) == 48);
static_assert(offsetof(REALclassDefinition, properties) == 56);
static_assert(offsetof(REALclassDefinition, propertyCount) == 64);
static_assert(offsetof(REALclassDefinition, methods) == 72);
static_assert(offsetof(REALclassDefinition, methodCount) == 80);
static_assert(offsetof(REALclassDefinition, events) == 88);
static_assert(offsetof(REALclassDefinition, eventCount) == 96);
static_assert(offsetof(REALclassDefinition, eventInstances) == 104);
static_assert(offsetof(REALclassDefinition, eventInstanceCount) == 112);
static_assert(offsetof(REALclassDefinition, interfaces) == 120);
static_assert(offsetof(REALclassDefinition, attributes) == 128);
static_assert(offsetof(REALclassDefinition, attributeCount) == 136);
static_assert(offsetof(REALclassDefinition, constants) == 144);
static_assert(offsetof(REALclassDefinition, constantCount) == 152);
static_assert(offsetof(REALclassDefinition, flags) == 160);
static_assert(offsetof(REALclassDefinition, sharedProperties) == 168);
static_assert(offsetof(REALclassDefinition, sharedPropertyCount) == 176);
static_assert(offsetof(REALclassDefinition, sharedMethods) == 184);
static_assert(offsetof(REALclassDefinition, sharedMethodCount) == 192);
static_assert(offsetof(REALclassDefinition, reserved) == 200);

struct REALmoduleDefinition {
  std::int32_t version;
  alignas(8) const char* name;
  alignas(8) REALmethodDefinition* methods;
  alignas(8) std::size_t methodCount;
  alignas(8) REALconstant* constants;
  alignas(8) std::size_t constantCount;
  alignas(8) REALproperty* properties;
  alignas(8) std::size_t propertyCount;
  alignas(8) void* structures;
  alignas(8) std::size_t structureCount;
  alignas(8) std::uint32_t flags;
  alignas(8) void* reserved;
};
static_assert(sizeof(REALmoduleDefinition) == 96);
static_assert(offsetof(REALmoduleDefinition, name) == 8);
static_assert(offsetof(REALmoduleDefinition, methods) == 16);
static_assert(offsetof(REALmoduleDefinition, methodCount) == 24);
static_assert(offsetof(REALmoduleDefinition, constants) == 32);
static_assert(offsetof(REALmoduleDefinition, constantCount) == 40);
static_assert(offsetof(REALmoduleDefinition, properties) == 48);
static_assert(offsetof(REALmoduleDefinition, propertyCount) == 56);
static_assert(offsetof(REALmoduleDefinition, structures) == 64);
static_assert(offsetof(REALmoduleDefinition, structureCount) == 72);
static_assert(offsetof(REALmoduleDefinition, flags) == 80);
static_assert(offsetof(REALmoduleDefinition, reserved) == 88);

struct REALstringData {
  alignas(8) const char* data;
  alignas(8) std::size_t length;  // in bytes
  alignas(8) std::uint32_t encoding;
  alignas(8) void* reserved;
};
static_assert(sizeof(REALstringData) == 32);
static_assert(offsetof(REALstringData, length) == 8);
static_assert(offsetof(REALstringData, encoding) == 16);
static_assert(offsetof(REALstringData, reserved) == 24);

// Text encodings, as CFStringEncoding numbers them.
namespace encoding {
inline constexpr std::uint32_t macRoman = 0;  // also: not known, to be guessed
inline constexpr std::uint32_t utf16 = 0x0100;
inline constexpr std::uint32_t isoLatin1 = 0x0201;
inline constexpr std::uint32_t windowsLatin1 = 0x0500;
inline constexpr std::uint32_t ascii = 0x0600;
inline constexpr std::uint32_t none = 0xFFFF;  // bytes without a known encoding
inline constexpr std::uint32_t utf8 = 0x08000100;
inline constexpr std::uint32_t utf32 = 0x0C000100;
inline constexpr std::uint32_t utf16BigEndian = 0x10000100;
inline constexpr std::uint32_t utf16LittleEndian = 0x14000100;
inline constexpr std::uint32_t utf32BigEndian = 0x18000100;
inline constexpr std::uint32_t utf32LittleEndian = 0x1C000100;
}  // namespace encoding

// Type codes of Variants, as the host's VarType gives them.
namespace variantType {
inline constexpr RBInteger nil = 0;
inline constexpr RBInteger int32 = 2;
inline constexpr RBInteger int64 = 3;
inline constexpr RBInteger single = 4;
inline constexpr RBInteger floating = 5;  // Double
inline constexpr RBInteger currency = 6;
inline constexpr RBInteger date = 7;
inline constexpr RBInteger string = 8;
inline constexpr RBInteger object = 9;
inline constexpr RBInteger boolean = 11;
inline constexpr RBInteger window = 22;
inline constexpr RBInteger pointer = 26;
inline constexpr RBInteger structure = 36;
inline constexpr RBInteger dateTime = 38;
// Of which no more is known than how they are read: one as an integer, the others as text.
inline constexpr RBInteger otherInteger = 16;
inline constexpr RBInteger text18 = 18;
inline constexpr RBInteger text19 = 19;
inline constexpr RBInteger text20 = 20;
inline constexpr RBInteger text21 = 21;
inline constexpr RBInteger text23 = 23;
inline constexpr RBInteger text37 = 37;
// Told apart from int32 and int64 by the object's class alone; VarType never gives them.
inline constexpr RBInteger uint32 = 102;
inline constexpr RBInteger uint64 = 103;
// Set in the code of an array.
inline constexpr RBInteger arrayFlag = 4096;
}  // namespace variantType

// Element type codes of "RuntimeArrayCreateSingleDimBoundedArray".
namespace arrayElement {
inline constexpr std::int32_t object = 4;  // Variant or any class
inline constexpr std::int32_t integer = 11;
}  // namespace arrayElement

// The host array object as far as elements are read from it directly. The host does not publish this layout
// and has changed it once, so it is trusted only after a self-test. Offsets from the start of the object.
namespace arrayShape {
inline constexpr std::size_t referenceCount = 24;        // 64 bits
inline constexpr std::size_t storage = 56;               // pointer to the elements, 8 bytes each
inline constexpr std::size_t dimensions = 64;            // 32 bits before host 2021.0, 64 bits from then on
inline constexpr std::size_t upperBoundBefore2021 = 76;  // 32 bits
inline constexpr std::size_t upperBoundSince2021 = 84;   // 32 bits
inline constexpr double widerSinceHostVersion = 2021.0;
}  // namespace arrayShape

// Bits of a class's, method's or property's flags word.
namespace recordFlags {
inline constexpr std::uint32_t console = 0x4;     // on every record
inline constexpr std::uint32_t property = 0x2;    // on every property besides
inline constexpr std::uint32_t scopeMask = 0xF0;  // nibble
inline constexpr std::uint32_t scopeModule = 0x10;
inline constexpr std::uint32_t scopeShared = 0x20;
inline constexpr std::uint32_t scopeDefault = 0x40;
}  // namespace recordFlags
