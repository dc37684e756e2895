// Lets tests of the library for Linux call the library for macOS instead: the linker leads the entry point
// here (--wrap).
#include <cstdlib>
#include <stdexcept>

#include "frame/host_interface.h"
#include "macho/load.h"

extern "C" void __wrap_REALPluginMain(REALresolver resolver) {
  static void* const entry = [] {
    const char* file = std::getenv("QTX_MACOS_LIBRARY");
    if (!file) throw std::runtime_error("the environment has no QTX_MACOS_LIBRARY");
    return macho::load(file).find("REALPluginMain");
  }();
  reinterpret_cast<void (*)(REALresolver)>(entry)(resolver);
}
