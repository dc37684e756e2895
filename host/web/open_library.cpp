// The library is part of the module: there are no files to open.
#include "runtime/open_library.h"

#include "runtime/host_classes.h"

extern "C" void REALPluginMain(REALresolver resolver);

namespace host {

EntryPoint openLibrary(const std::filesystem::path&) {
  startRuntime();  // the host's own classes come first
  return &REALPluginMain;
}

}  // namespace host
