// A plug-in library around the one that QTX_ASKED_OF names: passes everything on, and writes the name of each
// host operation that is asked for, one a line, to the file whose descriptor is QTX_ASKED_TO.
#include <dlfcn.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "frame/host_interface.h"

namespace {

REALresolver hosts = nullptr;
int file = -1;

// From any thread: what one call writes stays together.
void* noting(const char* name) {
  const std::string line = std::string(name) + "\n";
  if (write(file, line.data(), line.size()) < 0) std::abort();
  return hosts(name);
}

}  // namespace

extern "C" __attribute__((visibility("default"))) void REALPluginMain(REALresolver resolver) {
  hosts = resolver;
  file = std::stoi(std::getenv("QTX_ASKED_TO"));
  void* library = dlopen(std::getenv("QTX_ASKED_OF"), RTLD_NOW | RTLD_LOCAL);
  if (!library) std::abort();
  reinterpret_cast<void (*)(REALresolver)>(dlsym(library, "REALPluginMain"))(noting);
}
