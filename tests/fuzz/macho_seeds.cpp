// Writes what macho_fuzz starts from into the folder given: seeds/macho holds the result.
#include <fstream>

#include "macho/image_builder.h"

namespace {

void write(const std::string& file, const std::vector<std::byte>& content) {
  std::ofstream(file, std::ios::binary)
      .write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
}

}  // namespace

int main(int, char** arguments) {
  using enum macho::Processor;
  using enum macho::Linked;
  const std::string folder = arguments[1];
  write(folder + "/x86_64_opcodes", macho::sample(x86_64, byOpcodes));
  write(folder + "/x86_64_chains", macho::sample(x86_64, byChains));
  write(folder + "/arm64_opcodes", macho::sample(arm64, byOpcodes));
  write(folder + "/arm64_chains", macho::sample(arm64, byChains));
  write(folder + "/fat", macho::fatFile({{x86_64, macho::sample(x86_64, byOpcodes)},
                                         {arm64, macho::sample(arm64, byChains)}}));
}
