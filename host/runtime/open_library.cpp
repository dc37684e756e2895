// Opens libraries that are files.
#include "runtime/open_library.h"

#include <dlfcn.h>

#include <stdexcept>

#include "runtime/host_classes.h"

namespace host {

EntryPoint openLibrary(const std::filesystem::path& file) {
  startRuntime();  // the host's own classes come first
  const std::string name = file.string();
  std::error_code unknown;
  if (!std::filesystem::exists(file, unknown)) throw std::runtime_error(name + ": there is no such library");
  void* library = dlopen(std::filesystem::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!library) throw std::runtime_error(name + ": cannot be loaded: " + dlerror());
  const auto entry = reinterpret_cast<EntryPoint>(dlsym(library, "REALPluginMain"));
  if (!entry)
    throw std::runtime_error(name + ": is no plug-in library: it has no entry point REALPluginMain");
  return entry;
}

}  // namespace host
