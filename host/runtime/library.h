// Loads a plug-in library and lets it register itself.
#pragma once

#include <filesystem>

namespace host {

// Throws std::runtime_error that names the file and says why: missing, not loadable, no entry point, or a
// record that cannot be understood. The library stays loaded.
void loadLibrary(const std::filesystem::path& file);

}  // namespace host
