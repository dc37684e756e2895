// The pointers that have to be filled in before an image can run, in either of the two forms that linkers
// write.
#pragma once

#include "macho/image.h"

namespace macho {

enum class BindList { ordinary, lazy, weak };

// Each adds to the image's fixups and imports. Throws BadImage.
void readRebases(Image& image, std::span<const std::byte> opcodes);
void readBinds(Image& image, std::span<const std::byte> opcodes, BindList list);
void readChains(Image& image, std::span<const std::byte> data);

}  // namespace macho
