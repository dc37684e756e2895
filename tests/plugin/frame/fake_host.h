// A host made of plain functions, for tests that look behind the boundary: every operation can be replaced or
// withheld, and every reference, raised exception and look-up is on record.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "frame/debug_log.h"
#include "frame/host_interface.h"
#include "frame/host_operations.h"
#include "frame/registration.h"

extern "C" void REALPluginMain(REALresolver resolver);

namespace qtx {

struct FakeString {
  std::string bytes;  // handed out with `terminator` behind them
  std::uint32_t encoding = encoding::utf8;
  int references = 1;
};

// An instance: the handle is the object's address, its data lies dataOffset bytes behind.
struct FakeObject {
  static constexpr std::size_t dataOffset = 16;
  std::uint64_t head[2] = {};
  std::byte data[64] = {};
  std::string className;
  int references = 1;
  std::map<std::string, std::string> texts;  // properties set by name
  std::map<std::string, std::int64_t> integers;
};

struct RaisedException {
  std::string className, message;
  std::int64_t errorNumber = -1;  // −1: never set
};

// One at a time; installs itself as the host that the plug-in meets. Every object and string it made must be
// gone at its end, but for those that keepAlive names.
class FakeHost {
 public:
  explicit FakeHost(double hostVersion = 2024.01);
  ~FakeHost();

  // Registers the whole plug-in, as the real entry does.
  void load() { REALPluginMain(&resolve); }

  static void* resolve(const char* name);
  template <typename Result, typename... Arguments>
  void offer(const char* name, Result (*operation)(Arguments...)) {
    offerAddress(name, reinterpret_cast<void*>(operation));
  }
  void withhold(const std::string& name) { operations_.erase(name); }

  REALobject makeObject(const std::string& className);
  REALstring makeString(std::string_view bytes, std::uint32_t textEncoding = encoding::utf8);
  FakeObject& object(REALobject handle) { return *objects_.at(handle); }
  FakeString& string(REALstring handle) { return *strings_.at(handle); }
  bool isAlive(REALobject handle) const { return objects_.contains(handle); }
  bool isAlive(REALstring handle) const { return strings_.contains(handle); }
  std::string_view bytesOf(REALstring handle) {
    return handle ? std::string_view(string(handle).bytes.data(), string(handle).bytes.size() - 1) : "";
  }

  void lock(REALobject handle);
  void unlock(REALobject handle);
  void lock(REALstring handle);
  void unlock(REALstring handle);

  REALclassDefinition* findClass(std::string_view name);
  // The function behind a declaration of a class's methods or shared methods, or of a global function ("").
  template <typename Signature>
  Signature* function(std::string_view className, std::string_view declaration) {
    return reinterpret_cast<Signature*>(addressOf(className, declaration));
  }
  REALproperty* findProperty(std::string_view className, std::string_view name);

  // The exception that was raised, and forgets it; a failure where not exactly one was.
  RaisedException takeRaised();

  double version;
  char terminator = '\0';                // behind every string's bytes
  std::set<std::string> unknownClasses;  // that cannot be made
  std::set<std::string> keepAlive;       // classes whose objects may outlive the test (shared ones)
  std::map<std::string, int> lookUps;
  std::vector<RaisedException> raised;
  std::vector<REALclassDefinition*> classes;
  REALmoduleDefinition* module = nullptr;
  std::vector<REALmethodDefinition*> functions;
  std::int32_t controlVersion = 0;
  int openStringData = 0;
  int nilLocks = 0;
  std::vector<std::string> conversions;  // "REALConvertString 134217984" and the like, in order

  static inline FakeHost* current = nullptr;

 private:
  void offerAll();
  void offerAddress(const char* name, void* operation);
  REALproc addressOf(std::string_view className, std::string_view declaration);

  std::map<std::string, void*> operations_;
  std::map<REALobject, std::unique_ptr<FakeObject>> objects_;
  std::map<REALstring, std::unique_ptr<FakeString>> strings_;
};

// The standard error since it was captured, without the prefix of a log.
std::string capturedLog();

// What `body` writes to the log.
template <typename Body>
std::string logOf(const Body& body) {
  testing::internal::CaptureStderr();
  body();
  return capturedLog();
}

}  // namespace qtx
