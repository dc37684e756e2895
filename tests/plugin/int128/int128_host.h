// Objects of the 128-bit classes behind the fake host, made, read and called through the records.
#pragma once

#include <cstring>

#include "frame/fake_host.h"
#include "int128/wide_integer.h"
#include "int128_samples.h"

namespace qtx {

template <typename Value>
constexpr const char* classOf = std::is_same_v<Value, Int128> ? "Int128QTX" : "UInt128QTX";

struct NumberHost {
  FakeHost host;

  NumberHost() { host.load(); }
  // The shared objects would outlive the test: detach and release them, so that the host's own check finds
  // every reference that was lost or given away twice.
  ~NumberHost() {
    releaseShared<Int128>();
    releaseShared<UInt128>();
  }

  template <typename Value>
  REALobject make(Value value) {
    const REALobject object = host.makeObject(classOf<Value>);
    std::memcpy(host.object(object).data, &value, sizeof value);
    return object;
  }
  template <typename Value>
  Value value(REALobject object) {
    EXPECT_EQ(host.object(object).className, classOf<Value>);
    Value value;
    std::memcpy(&value, host.object(object).data, sizeof value);
    return value;
  }
  // The value of a result, whose reference is given back.
  template <typename Value>
  Value take(REALobject result) {
    if (!result) {
      ADD_FAILURE() << "the result is nil";
      return {};
    }
    const Value found = value<Value>(result);
    host.unlock(result);
    return found;
  }
  int references(REALobject object) { return host.object(object).references; }

  template <typename Value, typename Result, typename... Arguments>
  Result call(std::string_view declaration, REALobject self, Arguments... arguments) {
    return host.function<Result(REALobject, Arguments...)>(classOf<Value>, declaration)(self, arguments...);
  }
  template <typename Value>
  REALobject shared(const char* name) {  // "one as Int128QTX"
    return host.function<REALobject()>(classOf<Value>, std::string(name) + " as " + classOf<Value>)();
  }
  template <typename Value, typename Type>
  Type get(REALobject self, const char* name) {
    auto* getter = host.findProperty(classOf<Value>, name)->getter;
    return reinterpret_cast<Type (*)(REALobject, RBInteger)>(getter)(self, 0);
  }
  template <typename Value, typename Type>
  void set(REALobject self, const char* name, Type value) {
    auto* setter = host.findProperty(classOf<Value>, name)->setter;
    reinterpret_cast<void (*)(REALobject, RBInteger, Type)>(setter)(self, 0, value);
  }
  // The shared object for 0 … 15.
  template <typename Value>
  REALobject sharedFor(int wanted) {
    const REALobject object = make(Value(wanted - 1));
    const REALobject result = call<Value, REALobject>(std::string("Inc as ") + classOf<Value>, object);
    host.unlock(object);
    return result;
  }

  // Makes them all, so that no "new constant" comes between the lines of a trace.
  template <typename Value>
  void makeShared() {
    for (int i = 0; i < 16; ++i) host.unlock(sharedFor<Value>(i));
  }

  template <typename Value>
  void releaseShared() {
    debugging = false;
    host.raised.clear();
    for (int i = 0; i < 16; ++i) {
      const REALobject object = sharedFor<Value>(i);
      if (!object) return;  // the host makes none
      get<Value, void*>(object, "Data");
      host.unlock(object);
    }
  }
};

}  // namespace qtx
