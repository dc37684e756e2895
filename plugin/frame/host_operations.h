// The host operations that the plug-in uses, each callable like a plain function. Two more are looked up
// once, when it is loaded: "REALGetRBVersion" (frame/registration.cpp) and "RegisterPluginVersion"
// (plugin_main.cpp).
#pragma once

#include <atomic>

#include "frame/host_state.h"

namespace qtx {

// One host operation: looked up by name on first use and cached. Where the host lacks it, a call does nothing
// and gives null, zero or false, and the next call looks again. Threads may look up at the same time: they
// find the same entry point.
template <typename Signature>
class HostOperation;

template <typename Result, typename... Arguments>
class HostOperation<Result(Arguments...)> {
 public:
  using Function = Result (*)(Arguments...);
  using LookUp = void* (*)(const char* name);

  constexpr explicit HostOperation(const char* name, LookUp find = lookUp) : name_(name), find_(find) {}

  // The entry point, or null.
  Function resolve() {
    void* entry = entry_.load(std::memory_order_relaxed);
    if (entry == nullptr) [[unlikely]] {
      entry = search();
    }
    return reinterpret_cast<Function>(entry);
  }

  Result operator()(Arguments... arguments) {
    const Function function = resolve();
    return function ? function(arguments...) : Result();
  }

 private:
  // Out of line: every call of the operation has this once.
  [[gnu::noinline, gnu::cold]] void* search() {
    void* const entry = find_(name_);
    entry_.store(entry, std::memory_order_relaxed);
    return entry;
  }

  const char* name_;
  LookUp find_;
  std::atomic<void*> entry_{nullptr};
};

// Registration.
inline constinit HostOperation<void(REALclassDefinition*)> REALRegisterClass("PluginRegisterClass");
inline constinit HostOperation<void(REALmoduleDefinition*)> REALRegisterModule("PluginRegisterModule");
inline constinit HostOperation<void(REALmethodDefinition*)> REALRegisterMethod("PluginRegisterMethod");

// Objects. A new instance carries one reference for the caller.
inline constinit HostOperation<REALobject(const char* className)> REALnewInstance("PluginNewInstance");
inline constinit HostOperation<void(REALobject)> REALLockObject("REALLockObject");
inline constinit HostOperation<void(REALobject)> REALUnlockObject("REALUnlockObject");
inline constinit HostOperation<bool(REALobject, REALclassRef)> REALObjectIsA("RuntimeObjectIsa");
inline constinit HostOperation<REALclassRef(const char* className)> REALGetClassRef("pluginObjectType");

// Properties by name.
inline constinit HostOperation<bool(REALobject, const char* name, REALstring)> REALSetPropValueString(
    "REALSetPropValueString");
inline constinit HostOperation<bool(REALobject, const char* name, RBInteger)> REALSetPropValueInteger(
    "REALSetPropValueInteger");
inline constinit HostOperation<bool(REALobject, const char* name, REALstring*)> REALGetPropValueString(
    "REALGetPropValueString");
inline constinit HostOperation<bool(REALobject, const char* name, double*)> REALGetPropValueDouble(
    "REALGetPropValueDouble");
inline constinit HostOperation<bool(REALobject, const char* name, std::int64_t*)> REALGetPropValueInt64(
    "REALGetPropValueInt64");
inline constinit HostOperation<bool(REALobject, const char* name, std::uint64_t*)> REALGetPropValueUInt64(
    "REALGetPropValueUInt64");
inline constinit HostOperation<bool(REALobject, const char* name, RBInteger*)> REALGetPropValueInteger(
    "REALGetPropValueInteger");

// Exceptions: marks one pending and returns; the host throws it when the registered function has returned.
inline constinit HostOperation<void(REALobject exception)> REALRaiseException("RuntimeRaiseException");

// Functions of the host's own language, named by their declarations.
inline constinit HostOperation<void*(const char* module, const char* declaration)> REALLoadFrameworkMethod(
    "REALLoadGlobalMethod");
inline void* loadFrameworkMethod(const char* declaration) {
  return REALLoadFrameworkMethod(nullptr, declaration);
}
inline constinit HostOperation<RBInteger(REALstring)> LenB("LenB( s as string ) as integer",
                                                           loadFrameworkMethod);
inline constinit HostOperation<RBInteger(REALobject)> VarType("VarType(value As Variant) As Integer",
                                                              loadFrameworkMethod);

// Strings. What is built or converted carries one reference for the caller.
inline constinit HostOperation<void(REALstring)> REALLockString("REALLockString");
inline constinit HostOperation<void(REALstring)> REALUnlockString("REALUnlockString");
inline constinit HostOperation<bool(REALstring, std::uint32_t encoding, REALstringData*)> REALGetStringData(
    "PluginGetStringData");
inline constinit HostOperation<void(REALstringData*)> REALDisposeStringData("PluginDisposeStringData");
inline constinit HostOperation<const char*(REALstring)> REALGetStringContents("StringGetCString");
inline constinit HostOperation<std::uint32_t(REALstring)> REALGetStringEncoding("REALGetStringEncoding");
inline constinit HostOperation<REALstring(const char* bytes, std::int32_t length, std::uint32_t zero)>
    originalREALBuildString("REALBuildString");
inline constinit HostOperation<REALstring(const char* bytes, std::int32_t length, std::uint32_t encoding)>
    REALBuildStringWithEncoding("REALBuildStringWithEncoding");
inline constinit HostOperation<void(REALstring, std::uint32_t encoding)> REALSetStringEncoding(
    "REALSetStringEncoding");
inline constinit HostOperation<REALstring(REALstring, std::uint32_t encoding)> REALConvertString(
    "REALConvertString");
inline constinit HostOperation<std::int32_t(REALstring, REALstring)> REALCompareStrings(
    "RuntimeStringCompare");

// Variants.
inline constinit HostOperation<REALstring(REALobject)> VariantToString("VariantToString");
inline constinit HostOperation<double(REALobject)> VariantToDouble("VariantToDouble");
inline constinit HostOperation<std::int64_t(REALobject)> VariantToInt64("VariantToInt64");
inline constinit HostOperation<std::uint64_t(REALobject)> VariantToUInt64("VariantToUInt64");

// Arrays. The last four give the procedure that accesses the elements of the array given; null means no
// access.
inline constinit HostOperation<RBInteger(REALarray)> REALGetArrayUBound("RuntimeUBound");
inline constinit HostOperation<REALarray(std::int32_t elementType, RBInteger upperBound)> REALCreateArray(
    "RuntimeArrayCreateSingleDimBoundedArray");
using IntegerGetter = std::int64_t (*)(REALarrayInteger, RBInteger index);
using IntegerSetter = void (*)(REALarrayInteger, std::int64_t value, RBInteger index);
using DoubleGetter = double (*)(REALarrayDouble, RBInteger index);
using ObjectInserter = void (*)(REALarrayObject, RBInteger index, REALobject value);
inline constinit HostOperation<IntegerGetter(REALarrayInteger)> REALGetArrayValueInteger(
    "PluginIntegerArrayGetProc");
inline constinit HostOperation<IntegerSetter(REALarrayInteger)> REALSetArrayValueInteger(
    "PluginIntegerArraySetProc");
inline constinit HostOperation<DoubleGetter(REALarrayDouble)> REALGetArrayValueDouble(
    "PluginDoubleArrayGetProc");
inline constinit HostOperation<ObjectInserter(REALarrayObject)> REALInsertArrayValueObject(
    "PluginObjectArrayInsertProc");

}  // namespace qtx
