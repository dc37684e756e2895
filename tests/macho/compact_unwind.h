// The compact table by which the Mac unwinds stacks.
#pragma once

#include "macho/frames.h"

namespace macho {

// Adds a description of each function that the image's compact table describes in full. Throws BadImage where
// an encoding is not understood.
void describeCompact(const Image& image, const Section& table, std::uint64_t slide, Descriptions& found);

}  // namespace macho
