// Loads a plug-in library and lets it register itself.
#pragma once

#include <filesystem>

#include "runtime/open_library.h"

namespace host {

// Opens a library and lets it register itself. Throws std::runtime_error also where a record cannot be
// understood.
void loadLibrary(const std::filesystem::path& file);

}  // namespace host
