// Reads a dynamic library in Mach-O format: what lies where, what has to be filled in, what it offers. Reads
// only: nothing is mapped, and whatever the bytes are, the outcome is an image or one BadImage.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace macho {

// One line that says what is wrong with the file. Control characters, which names in a file may hold, become
// question marks.
struct BadImage : std::runtime_error {
  explicit BadImage(const std::string& line);
};

constexpr std::size_t greatestNames = 16 << 20;  // in bytes: all exports' names, or all imports'

enum class Processor { x86_64, arm64 };

// Addresses are those of the file, before the image is moved to where there is room.
struct Segment {
  std::string name;
  std::uint64_t address = 0, memorySize = 0, fileOffset = 0, fileSize = 0;
  std::uint32_t protection = 0, flags = 0;

  // Whether `bytes` bytes from the address on lie in the part that the file fills.
  bool holds(std::uint64_t at, std::uint64_t bytes) const {
    return at >= address && at - address <= fileSize && bytes <= fileSize - (at - address);
  }
};

struct Section {
  std::string segment, name;
  std::uint64_t address = 0, size = 0;
  std::uint32_t type = 0;
  unsigned alignment = 1;  // in bytes
};

struct Import {
  std::string name;
  int library = 0;    // the ordinal, from 1, or one of namespace library
  bool weak = false;  // may be missing

  bool operator==(const Import&) const = default;
};

// A pointer in the image to fill in: with an address of the image itself, or with an import plus an addend.
struct Fixup {
  static constexpr std::size_t none = static_cast<std::size_t>(-1);
  std::uint64_t address = 0;
  std::size_t import = none;
  std::uint64_t target = 0;  // of the image, where there is no import
  std::int64_t addend = 0;
  bool replaces =
      false;  // only where the image itself defines the import: several images may define it, one counts
};

struct Image {
  Processor processor = Processor::x86_64;
  std::vector<std::byte> bytes;  // of the slice
  std::string installName;
  std::vector<std::string> libraries;  // in the order of their ordinals
  std::vector<Segment> segments;
  std::vector<Section> sections;
  std::vector<Import> imports;
  std::vector<Fixup> fixups;  // in the order in which they are to be done
  std::map<std::string, std::uint64_t> exports;

  std::uint64_t lowest() const;   // address of the first byte
  std::uint64_t highest() const;  // address behind the last
  const Section* section(const std::string& segment, const std::string& name) const;  // null: there is none
  // The bytes that the file has for these addresses. Throws BadImage if it has none.
  std::span<const std::byte> at(std::uint64_t address, std::uint64_t size) const;
};

// `file` holds a library for one processor or for several. Throws BadImage.
Image readImage(std::span<const std::byte> file, Processor processor);

}  // namespace macho
