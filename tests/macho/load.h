// Makes a dynamic library for macOS part of this Linux process: mapped, its imports bound to this system's
// functions, exceptions and thread-locals working, its initialisers run.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "macho/image.h"

namespace macho {

struct ThreadLocals;

constexpr Processor thisProcessor =
#if defined(__aarch64__)
    Processor::arm64;
#else
    Processor::x86_64;
#endif

// Addresses for imports, by name as in the file (with its underscore); they go before the system's.
using Imports = std::map<std::string, void*>;

// Room in the process for an image, with the file's bytes in it, readable and writable until protect() is
// called.
class Mapping {
 public:
  explicit Mapping(const Image& image);  // throws BadImage where there is no room
  ~Mapping();
  Mapping(const Mapping&) = delete;
  Mapping& operator=(const Mapping&) = delete;

  // What has to be added to an address in the file.
  std::uint64_t slide() const { return slide_; }

  // Fills all pointers in. Throws BadImage where an import is not known.
  void fillIn(const Imports& imports);
  // Lets each thread have its own thread-local variables, once all pointers are filled in. Throws BadImage.
  void setUpThreadLocals();
  // As each segment wants it. Throws BadImage.
  void protect();
  // Where the initialisers are, in the order in which they are to run, once all pointers are filled in.
  // Throws BadImage where one lies outside the image.
  std::vector<std::uint64_t> initialisers() const;

 private:
  const Image& image_;
  std::uint64_t slide_ = 0;
  std::unique_ptr<ThreadLocals> threadLocals_;  // null: the image has none
};

// A library that stays for the life of the process.
class LoadedLibrary {
 public:
  // The address of an exported symbol, by its name in source code; null: there is none.
  void* find(const std::string& symbol) const;
  const Image& image() const { return image_; }

 private:
  friend const LoadedLibrary& load(const std::string& file, const Imports& imports);
  explicit LoadedLibrary(Image&& image) : image_(std::move(image)), mapping_(image_) {}
  Image image_;
  Mapping mapping_;
  std::vector<std::byte> frames_;  // their descriptions
};

// Whether the file begins as a Mach-O file does, for whatever processor.
bool isMachO(const std::string& file);

// Throws BadImage, whose text begins with the file's name: it cannot be read, is damaged, is for another
// processor, or needs an import that is not known. Each call loads anew.
const LoadedLibrary& load(const std::string& file, const Imports& imports = {});

}  // namespace macho
