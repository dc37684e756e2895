// Does with a file all that the loader does before its code runs.
#pragma once

#include "macho/load.h"
#include "macho/unwind.h"

namespace macho {

// Every import leads to the same place. Throws BadImage, as whatever it calls.
inline void readEverything(std::span<const std::byte> file, Processor processor) {
  static int somewhere;
  const Image image = readImage(file, processor);
  Imports imports;
  for (const Import& each : image.imports) imports[each.name] = &somewhere;
  Mapping mapping(image);
  mapping.fillIn(imports);
  mapping.setUpThreadLocals();
  frameDescriptions(image, mapping.slide());
  mapping.initialisers();
}

}  // namespace macho
