// Unwinding through an image: its own compact table, translated into the form that this system's unwinder
// reads.
#pragma once

#include <cstdint>
#include <vector>

#include "macho/image.h"

namespace macho {

// Frame descriptions in DWARF's form (.eh_frame) for all functions of the image: those that its compact table
// describes, translated, and those in its own __eh_frame. They are one piece because libgcc's unwinder looks
// no further than the first piece that could hold an address. `slide` is what has to be added to the image's
// addresses to have those of the process. The image has to be filled in at its place before, because its
// pointers to personality routines are read there. Throws BadImage where something is not understood.
std::vector<std::byte> frameDescriptions(const Image& image, std::uint64_t slide);

}  // namespace macho
