// Unwinding through an image: its own compact table, translated into the form that this system's unwinder reads.
#pragma once

#include <cstdint>
#include <vector>

#include "macho/image.h"

namespace macho {

// Frame descriptions in DWARF's form (.eh_frame) for all functions whose compact encoding says everything; functions whose
// encoding refers to the image's own __eh_frame are not among them. `slide` is what has to be added to the image's addresses to
// have those of the process. The image has to be filled in at its place before, because its pointers to personality
// routines are read there. Throws BadImage where an encoding is not understood.
std::vector<std::byte> frameDescriptions(const Image& image, std::uint64_t slide);

}  // namespace macho
