// Loads a plug-in library and lets it register itself.
#pragma once

#include <filesystem>

#include "frame/host_interface.h"

namespace host {

// A library's entry point. Throws std::runtime_error that names the file and says why there is none: missing,
// not loadable, no entry point. The library stays loaded, and the host's own classes are there.
using EntryPoint = void (*)(REALresolver);
EntryPoint openLibrary(const std::filesystem::path& file);

// Opens it and lets it register itself. Throws std::runtime_error also where a record cannot be understood.
void loadLibrary(const std::filesystem::path& file);

}  // namespace host
