// A host for the benchmarks: it takes what the library registers, offers the operations that a benchmark
// adds, and finds functions by how their declarations start.
#pragma once

#include <cstdlib>
#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "frame/host_interface.h"

extern "C" void REALPluginMain(REALresolver resolver);

namespace bench {

// Instance data lies so far behind an object's head.
constexpr std::size_t dataOffset = 16;

inline std::map<std::string, void*, std::less<>> operations;
inline std::map<std::string, REALclassDefinition*, std::less<>> classes;
inline REALmoduleDefinition* module = nullptr;

template <typename Function>
void offer(const char* name, Function* function) {
  operations[name] = reinterpret_cast<void*>(function);
}

inline void* resolve(const char* name) {
  const auto found = operations.find(std::string_view(name));
  return found == operations.end() ? nullptr : found->second;
}

// Not during static initialisation, when the records may not be there yet.
inline void load() {
  offer(
      "REALGetRBVersion", +[] { return 2024.01; });
  offer(
      "RegisterPluginVersion", +[](std::int32_t) {});
  offer(
      "PluginRegisterModule", +[](REALmoduleDefinition* record) { module = record; });
  offer(
      "PluginRegisterClass", +[](REALclassDefinition* record) {
        record->dataOffset = dataOffset;
        classes[record->name] = record;
      });
  REALPluginMain(&resolve);
}

template <typename Signature>
Signature* find(const REALmethodDefinition* records, std::size_t count, std::string_view start) {
  for (std::size_t i = 0; i < count; ++i) {
    if (std::string_view(records[i].declaration).starts_with(start)) {
      return reinterpret_cast<Signature*>(records[i].function);
    }
  }
  std::abort();
}

// A global function; loads the library where that is still to be done.
template <typename Signature>
Signature* function(std::string_view start) {
  if (!module) load();
  return find<Signature>(module->methods, module->methodCount, start);
}

inline const REALclassDefinition& classNamed(std::string_view name) {
  if (!module) load();
  return *classes.find(name)->second;
}

template <typename Signature>
Signature* method(std::string_view className, std::string_view start) {
  const REALclassDefinition& record = classNamed(className);
  return find<Signature>(record.methods, record.methodCount, start);
}

}  // namespace bench
