// The host met, and the records adapted to it and registered.
#include "frame/registration.h"

#include <cstring>
#include <new>

#include "frame/debug_log.h"
#include "frame/host_operations.h"
#include "frame/records.h"

namespace qtx {

std::int32_t controlVersionFor(double hostVersion) {
  if (hostVersion >= 2013.04) return 13;
  if (hostVersion >= 2013.03) return 12;
  if (hostVersion >= 2013.0) return 11;
  if (hostVersion >= 2012.0) return 10;
  return 9;  // NaN too
}

void meetHost(REALresolver resolver) {
  hostState.resolver.store(resolver, std::memory_order_release);
  if (const auto version = reinterpret_cast<double (*)()>(lookUp("REALGetRBVersion")))
    hostState.version = version();
  hostState.controlVersion = controlVersionFor(hostState.version);
}

namespace {

void fixFlags(std::uint32_t& flags) {
  constexpr std::uint32_t newerMask = 0x708, newerValue = 0x308;  // not understood before 2020.02
  constexpr std::uint32_t notForHosts = 0x40000;
  if (hostState.version < 2020.02 && (flags & newerMask) == newerValue) {
    flags = (flags & ~(newerMask | recordFlags::console)) | recordFlags::console;
  }
  if (flags & notForHosts) {
    flags &= ~notForHosts;
    if (hostState.version >= 2010.029) flags |= recordFlags::console;
  }
}

template <typename Record>
void fixAll(Record* records, long long count) {
  for (long long i = 0; records && i < count; ++i) fixFlags(records[i].flags);
}

REALattribute hiddenAttribute[] = {{"Hidden", ""}};

REALproperty hidden(REALproperty record) {
  record.attributes = hiddenAttribute;
  record.attributeCount = std::size(hiddenAttribute);
  return record;
}

void warn(const char* text) { LogMessageX("%s%s", logPrefix, text); }

void giveScope(std::uint32_t& flags) {
  if ((flags & recordFlags::scopeMask) == 0) flags |= recordFlags::scopeDefault;
}

// The host keeps pointers into it, so it is never freed.
REALmoduleDefinition* module = nullptr;

char* copyOfModuleName() {
  constexpr char name[] = "MathGlobalsQTX";
  auto* copy = new (std::nothrow) char[sizeof name];
  return copy ? static_cast<char*>(std::memcpy(copy, name, sizeof name)) : nullptr;
}

void registerModule(std::span<REALmethodDefinition> functions) {
  module = new (std::nothrow) REALmoduleDefinition{};
  if (module) module->name = copyOfModuleName();
  if (!module || !module->name) {
    warn("Warning: Failed to allocate memory for module definition.");
    return;
  }
  module->methods = new (std::nothrow) REALmethodDefinition[functions.size()]();
  if (!module->methods) {
    warn("Warning: Failed to allocate memory for method definitions.");
    return;
  }
  module->version = hostState.controlVersion;
  module->methodCount = functions.size();
  module->properties = debuggingProperty;
  module->propertyCount = std::size(debuggingProperty);
  module->flags = recordFlags::console;

  for (std::size_t i = 0; i < functions.size(); ++i) {
    module->methods[i] = functions[i];
    module->methods[i].flags |= recordFlags::scopeModule;
    giveScope(module->methods[i].flags);
  }
  giveScope(debuggingProperty[0].flags);
  FixFlags(module->methods, static_cast<long long>(module->methodCount), module->name);
  FixFlags(module->properties, static_cast<long long>(module->propertyCount), module->name);
  REALRegisterModule(module);
}

}  // namespace

REALproperty debuggingProperty[1] = {
    hidden(sharedProperty<&getDebugging, &setDebugging>("Debugging", "Boolean"))};

void FixFlags(REALmethodDefinition* records, long long count, const char*) { fixAll(records, count); }
void FixFlags(REALproperty* records, long long count, const char*) { fixAll(records, count); }

void MyREALRegisterClass(REALclassDefinition* record) {
  fixFlags(record->flags);
  fixAll(record->methods, static_cast<long long>(record->methodCount));
  fixAll(record->sharedMethods, static_cast<long long>(record->sharedMethodCount));
  fixAll(record->properties, static_cast<long long>(record->propertyCount));
  fixAll(record->sharedProperties, static_cast<long long>(record->sharedPropertyCount));
  record->dataSize = (record->dataSize + 15) / 16 * 16;
  record->version = hostState.controlVersion;
  REALRegisterClass(record);
}

void registerFunctions(std::span<REALmethodDefinition> functions) {
  fixAll(functions.data(), static_cast<long long>(functions.size()));
  if (hostState.version >= 2013.0 && hostState.version < 3000.0) {
    registerModule(functions);
    return;
  }
  for (REALmethodDefinition& function : functions) REALRegisterMethod(&function);
}

}  // namespace qtx
