// Libraries for macOS: whatever the bytes are, the loader has an image or one line to say. Nothing is run.
#include <cstdlib>
#include <cstring>

#include "macho/read_everything.h"

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
  for (const auto processor : {macho::Processor::x86_64, macho::Processor::arm64}) {
    try {
      macho::readEverything(std::as_bytes(std::span(data, size)), processor);
    } catch (const macho::BadImage& error) {
      if (std::strchr(error.what(), '\n')) std::abort();
    }
  }
  return 0;
}
