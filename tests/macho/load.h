// Makes a dynamic library for macOS part of this Linux process: mapped, its imports bound to this system's functions, exceptions
// and thread-locals working, its initialisers run.
#pragma once

#include <map>
#include <string>

#include "macho/image.h"

namespace macho {

constexpr Processor thisProcessor =
#if defined(__aarch64__)
    Processor::arm64;
#else
    Processor::x86_64;
#endif

// Addresses for imports, by name as in the file (with its underscore); they go before the system's.
using Imports = std::map<std::string, void*>;

// A library that stays for the life of the process.
class LoadedLibrary {
 public:
  // The address of an exported symbol, by its name in source code; null: there is none.
  void* find(const std::string& symbol) const;
  // The address in the process of an address in the file.
  void* at(std::uint64_t address) const { return reinterpret_cast<void*>(address + slide_); }
  const Image& image() const { return image_; }

 private:
  friend const LoadedLibrary& load(const std::string& file, const Imports& imports);
  Image image_;
  std::uint64_t slide_ = 0;
};

// Whether the file begins as a Mach-O file does, for whatever processor.
bool isMachO(const std::string& file);

// Throws BadImage, whose text begins with the file's name: it cannot be read, is damaged, is for another processor, or needs
// an import that is not known. Each call loads anew.
const LoadedLibrary& load(const std::string& file, const Imports& imports = {});

}  // namespace macho
