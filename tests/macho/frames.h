// Writes frame descriptions in DWARF's form: the Linux Standard Base, section ".eh_frame".
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <span>
#include <utility>
#include <vector>

#include "macho/image.h"

namespace macho {

// How a pointer is written: as it is, or as its distance from where it stands, of four or eight bytes; or as
// the place where it is found.
namespace pointer {
constexpr std::uint8_t absolute = 0x00, omitted = 0xFF, formatMask = 0x0F, signed4 = 0x0B, relative = 0x10,
                       indirect = 0x80;
}

class Bytes {
 public:
  template <class Value>
  void add(Value value) {
    for (const std::byte each : std::bit_cast<std::array<std::byte, sizeof value>>(value))
      all.push_back(each);
  }
  void byte(unsigned value) { add(static_cast<std::uint8_t>(value)); }
  void append(std::span<const std::byte> bytes) {
    for (const std::byte each : bytes) all.push_back(each);
  }
  void uleb(std::uint64_t value) {
    for (; value > 0x7F; value >>= 7) byte(static_cast<unsigned>(value & 0x7F) | 0x80);
    byte(static_cast<unsigned>(value));
  }
  void sleb(std::int64_t value) {
    for (; value < -64 || value > 63; value >>= 7) byte(static_cast<unsigned>(value & 0x7F) | 0x80);
    byte(static_cast<unsigned>(value) & 0x7F);
  }
  std::vector<std::byte> all;
};

// What the functions of a kind have in common.
struct Common {
  std::uint64_t personality = 0;  // its address in the process; 0: none
  std::uint64_t codeUnit = 1;
  std::int64_t dataUnit = -8;
  std::uint64_t returnAddress = 0;      // its column
  std::vector<std::byte> instructions;  // before each function's own
};

// Adds the descriptions one after the other.
class Descriptions {
 public:
  // The record for functions of a kind.
  struct Kind {
    std::size_t position = 0;
    bool hasPersonality = false;
  };

  Descriptions(const Image& image, std::uint64_t slide) : image_(image), slide_(slide) {}

  Kind addKind(const Common& common) {
    const Kind kind = {out_.all.size(), common.personality != 0};
    Bytes content;
    content.add(std::uint32_t{0});  // marks it as common
    content.byte(1);                // version
    for (const char* each = kind.hasPersonality ? "zPLR" : "zR"; *each; ++each)
      content.byte(static_cast<unsigned char>(*each));
    content.byte(0);
    content.uleb(common.codeUnit);
    content.sleb(common.dataUnit);
    content.uleb(common.returnAddress);
    content.uleb(kind.hasPersonality ? 11 : 1);
    if (kind.hasPersonality) {
      content.byte(pointer::absolute);
      content.add(common.personality);
      content.byte(pointer::absolute);
    }
    content.byte(pointer::absolute);
    content.append(common.instructions);
    record(content);
    return kind;
  }

  // The addresses are the image's.
  void describe(std::uint64_t start, std::uint64_t end, const Kind& kind, std::uint64_t lsda,
                std::span<const std::byte> instructions) {
    if (start < image_.lowest() || end < start || end > image_.highest())
      throw BadImage("the description of a function's frame is of what lies outside the image");
    Bytes content;
    content.add(static_cast<std::uint32_t>(out_.all.size() + 4 - kind.position));  // back from this field
    content.add(start + slide_);
    content.add(end - start);
    content.uleb(kind.hasPersonality ? 8 : 0);
    if (kind.hasPersonality) content.add(lsda ? lsda + slide_ : 0);
    content.append(instructions);
    record(content);
  }

  std::vector<std::byte> finish() {
    out_.add(std::uint32_t{0});
    return std::move(out_.all);
  }

 private:
  // A record: its length, and filled up to whole words with instructions that do nothing.
  void record(const Bytes& content) {
    const std::size_t padded = (content.all.size() + 4 + 7) / 8 * 8 - 4;
    out_.add(static_cast<std::uint32_t>(padded));
    out_.append(content.all);
    out_.all.resize(out_.all.size() + padded - content.all.size());
  }

  const Image& image_;
  std::uint64_t slide_;
  Bytes out_;
};

// The pointer that the image, at its place in the process, has at the address.
inline std::uint64_t pointerAt(const Image& image, std::uint64_t slide, std::uint64_t address) {
  image.at(address, sizeof(std::uint64_t));  // it lies in the image
  std::uint64_t value;
  std::memcpy(&value, reinterpret_cast<const void*>(address + slide), sizeof value);
  return value;
}

}  // namespace macho
