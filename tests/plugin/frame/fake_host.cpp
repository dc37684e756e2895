// A host made of plain functions.
#include "frame/fake_host.h"

#include <cstring>
#include <utility>

#include "without_log_prefix.h"

namespace qtx {

FakeHost::FakeHost(double hostVersion) : version(hostVersion) {
  current = this;
  offerAll();
  meetHost(&resolve);
}

FakeHost::~FakeHost() {
  for (const auto& [handle, object] : objects_) {
    if (!keepAlive.contains(object->className)) {
      ADD_FAILURE() << "object of " << object->className << " left with " << object->references
                    << " references";
    }
  }
  for (const auto& [handle, string] : strings_) {
    ADD_FAILURE() << "string \"" << string->bytes << "\" left with " << string->references << " references";
  }
  EXPECT_EQ(openStringData, 0) << "string data not disposed of";
  current = nullptr;
}

void* FakeHost::resolve(const char* name) {
  ++current->lookUps[name];
  const auto found = current->operations_.find(name);
  return found == current->operations_.end() ? nullptr : found->second;
}

void FakeHost::offerAddress(const char* name, void* operation) { operations_[name] = operation; }

REALobject FakeHost::makeObject(const std::string& className) {
  auto object = std::make_unique<FakeObject>();
  object->className = className;
  const auto handle = reinterpret_cast<REALobject>(object.get());
  objects_[handle] = std::move(object);
  if (const auto* record = findClass(className); record && record->constructor) {
    reinterpret_cast<void (*)(REALobject)>(record->constructor)(handle);
  }
  return handle;
}

REALstring FakeHost::makeString(std::string_view bytes, std::uint32_t textEncoding) {
  auto string = std::make_unique<FakeString>();
  string->bytes = std::string(bytes) + terminator;
  string->encoding = textEncoding;
  const auto handle = reinterpret_cast<REALstring>(string.get());
  strings_[handle] = std::move(string);
  return handle;
}

void FakeHost::lock(REALobject handle) {
  if (handle) ++object(handle).references;
}
void FakeHost::unlock(REALobject handle) {
  if (!handle || --object(handle).references > 0) return;
  if (const auto* record = findClass(object(handle).className); record && record->destructor) {
    reinterpret_cast<void (*)(REALobject)>(record->destructor)(handle);
  }
  objects_.erase(handle);
}
void FakeHost::lock(REALstring handle) {
  if (handle) ++string(handle).references;
}
void FakeHost::unlock(REALstring handle) {
  if (handle && --string(handle).references == 0) strings_.erase(handle);
}

REALclassDefinition* FakeHost::findClass(std::string_view name) {
  for (auto* record : classes) {
    if (record->name == name) return record;
  }
  return nullptr;
}

REALproc FakeHost::addressOf(std::string_view className, std::string_view declaration) {
  std::vector<REALmethodDefinition*> records;
  if (className.empty()) {
    records = functions;
    if (module) {
      for (std::size_t i = 0; i < module->methodCount; ++i) records.push_back(&module->methods[i]);
    }
  } else if (auto* record = findClass(className)) {
    for (std::size_t i = 0; i < record->methodCount; ++i) records.push_back(&record->methods[i]);
    for (std::size_t i = 0; i < record->sharedMethodCount; ++i) records.push_back(&record->sharedMethods[i]);
  }
  for (auto* record : records) {
    if (record->declaration == declaration) return record->function;
  }
  ADD_FAILURE() << "nothing registered as " << declaration;
  return nullptr;
}

REALproperty* FakeHost::findProperty(std::string_view className, std::string_view name) {
  auto* record = findClass(className);
  for (std::size_t i = 0; record && i < record->propertyCount; ++i) {
    if (record->properties[i].name == name) return &record->properties[i];
  }
  ADD_FAILURE() << "no property " << className << "." << name;
  return nullptr;
}

RaisedException FakeHost::takeRaised() {
  if (raised.size() != 1) ADD_FAILURE() << raised.size() << " exceptions raised instead of one";
  RaisedException exception = raised.empty() ? RaisedException() : raised.back();
  raised.clear();
  return exception;
}

void FakeHost::offerAll() {
  offer(
      "REALGetRBVersion", +[] { return current->version; });
  offer(
      "RegisterPluginVersion", +[](std::int32_t number) { current->controlVersion = number; });
  offer(
      "PluginRegisterClass", +[](REALclassDefinition* record) {
        record->dataOffset = FakeObject::dataOffset;
        current->classes.push_back(record);
      });
  offer(
      "PluginRegisterModule", +[](REALmoduleDefinition* record) { current->module = record; });
  offer(
      "PluginRegisterMethod", +[](REALmethodDefinition* record) { current->functions.push_back(record); });

  offer(
      "PluginNewInstance", +[](const char* name) {
        return current->unknownClasses.contains(name) ? nullptr : current->makeObject(name);
      });
  offer(
      "REALLockObject", +[](REALobject handle) {
        if (!handle) ++current->nilLocks;
        current->lock(handle);
      });
  offer(
      "REALUnlockObject", +[](REALobject handle) {
        EXPECT_NE(handle, nullptr);
        current->unlock(handle);
      });
  offer(
      "REALSetPropValueString", +[](REALobject handle, const char* name, REALstring text) {
        if (text) current->object(handle).texts[name] = current->bytesOf(text);
        return true;
      });
  offer(
      "REALSetPropValueInteger", +[](REALobject handle, const char* name, RBInteger value) {
        current->object(handle).integers[name] = value;
        return true;
      });
  offer(
      "RuntimeRaiseException", +[](REALobject handle) {
        FakeObject& exception = current->object(handle);
        const auto number = exception.integers.find("ErrorNumber");
        current->raised.push_back({exception.className, exception.texts["Message"],
                                   number == exception.integers.end() ? -1 : number->second});
      });

  offer(
      "REALLockString", +[](REALstring handle) { current->lock(handle); });
  offer(
      "REALUnlockString", +[](REALstring handle) {
        EXPECT_NE(handle, nullptr);
        current->unlock(handle);
      });
  offer(
      "StringGetCString",
      +[](REALstring handle) -> const char* { return current->string(handle).bytes.data(); });
  offer(
      "REALLoadGlobalMethod", +[](const char* moduleName, const char* declaration) -> void* {
        EXPECT_EQ(moduleName, nullptr);
        return resolve(declaration);
      });
  offer(
      "LenB( s as string ) as integer", +[](REALstring handle) -> RBInteger {
        return static_cast<RBInteger>(current->bytesOf(handle).size());
      });
  offer(
      "REALGetStringEncoding", +[](REALstring handle) { return current->string(handle).encoding; });
  offer(
      "REALBuildString", +[](const char* bytes, std::int32_t length, std::uint32_t) {
        return current->makeString({bytes, static_cast<std::size_t>(length)}, encoding::none);
      });
  offer(
      "REALBuildStringWithEncoding", +[](const char* bytes, std::int32_t length, std::uint32_t encoding) {
        return current->makeString({bytes, static_cast<std::size_t>(length)}, encoding);
      });
  offer(
      "REALSetStringEncoding",
      +[](REALstring handle, std::uint32_t encoding) { current->string(handle).encoding = encoding; });
  // Only the encoding changes; that it was asked for is on record.
  offer(
      "REALConvertString", +[](REALstring handle, std::uint32_t encoding) {
        current->conversions.push_back("REALConvertString " + std::to_string(encoding));
        return current->makeString(current->bytesOf(handle), encoding);
      });
  offer(
      "PluginGetStringData", +[](REALstring handle, std::uint32_t encoding, REALstringData* out) {
        current->conversions.push_back("PluginGetStringData " + std::to_string(encoding));
        const std::string_view bytes = current->bytesOf(handle);
        auto* copy = new char[bytes.size() + 1];
        std::memcpy(copy, bytes.data(), bytes.size());
        copy[bytes.size()] = current->terminator;
        *out = {copy, bytes.size(), encoding, copy};
        ++current->openStringData;
        return true;
      });
  offer(
      "PluginDisposeStringData", +[](REALstringData* data) {
        delete[] static_cast<char*>(data->reserved);
        *data = {};
        --current->openStringData;
      });
}

std::string capturedLog() { return withoutLogPrefix(testing::internal::GetCapturedStderr()); }

}  // namespace qtx
