// Stands before the host's resolver while a library is loaded.
#include "validation/checked_library.h"

#include <algorithm>
#include <stdexcept>

#include "runtime/library.h"
#include "runtime/settings.h"
#include "validation/watch.h"

namespace host {

namespace {

// While a library registers itself; null afterwards.
RecordChecks* checks = nullptr;
std::vector<std::string>* askedFor = nullptr;

// Nothing is registered any more when the library's entry point has returned.
template <auto member, typename Argument>
void receive(Argument argument) {
  if (!checks) return;
  try {
    (checks->*member)(argument);
  } catch (const std::runtime_error& error) {
    checks->findings.push_back({"REALPluginMain", check::records, "record", error.what(), ""});
  }
}

void* resolveChecked(const char* name) {
  static const std::pair<const std::string, void*> receivers[] = {
      {"RegisterPluginVersion", reinterpret_cast<void*>(&receive<&RecordChecks::takeVersion, std::int32_t>)},
      {"PluginRegisterClass",
       reinterpret_cast<void*>(&receive<&RecordChecks::addClass, REALclassDefinition*>)},
      {"PluginRegisterModule",
       reinterpret_cast<void*>(&receive<&RecordChecks::addModule, REALmoduleDefinition*>)},
      {"PluginRegisterMethod",
       reinterpret_cast<void*>(&receive<&RecordChecks::addFunction, REALmethodDefinition*>)},
  };
  if (askedFor) askedFor->push_back(name);
  void* const found = resolve(name);
  for (const auto& [known, receiver] : receivers) {
    if (found && known == name) return receiver;
  }
  return found;
}

}  // namespace

CheckedLibrary loadChecked(const std::filesystem::path& file) {
  settings().keepsMemory = true;
  operationWatch = &watch();
  CheckedLibrary library;
  RecordChecks own;
  const EntryPoint entry = openLibrary(file);
  checks = &own;
  askedFor = &library.asked;
  try {
    entry(&resolveChecked);
    own.finish();
  } catch (...) {
    own.findings.push_back({"REALPluginMain", check::records, "throw", "it lets a C++ exception out", ""});
  }
  askedFor = nullptr;
  checks = nullptr;
  std::sort(library.asked.begin(), library.asked.end());
  library.asked.erase(std::unique(library.asked.begin(), library.asked.end()), library.asked.end());
  library.findings = std::move(own.findings);
  library.records = own.records;
  library.members = membersOf(registry());
  return library;
}

}  // namespace host
