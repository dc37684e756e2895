// Finds the entry point of a plug-in library.
#pragma once

#include <filesystem>

#include "frame/host_interface.h"

namespace host {

// A library's entry point. Throws std::runtime_error that names the file and says why there is none: missing,
// not loadable, no entry point. The library stays loaded, and the host's own classes are there.
using EntryPoint = void (*)(REALresolver);
EntryPoint openLibrary(const std::filesystem::path& file);

}  // namespace host
