// Reads values out of bytes, never beyond their end.
#pragma once

#include <cstring>
#include <span>
#include <string>

#include "macho/image.h"

namespace macho {

class Cursor {
 public:
  // `what` names the bytes in messages.
  Cursor(std::span<const std::byte> bytes, const char* what) : bytes_(bytes), what_(what) {}

  bool atEnd() const { return position_ == bytes_.size(); }
  std::size_t size() const { return bytes_.size(); }
  std::size_t position() const { return position_; }
  void moveTo(std::size_t position) {
    if (position > bytes_.size()) end();
    position_ = position;
  }

  template <class Record>
  Record read() {
    Record record;
    if (bytes_.size() - position_ < sizeof record) end();
    std::memcpy(&record, bytes_.data() + position_, sizeof record);
    position_ += sizeof record;
    return record;
  }
  template <class Record>
  Record readAt(std::size_t position) {
    moveTo(position);
    return read<Record>();
  }

  // Seven bits a byte, the lowest first, the top bit set in all bytes but the last.
  std::uint64_t uleb() {
    std::uint64_t value = 0;
    for (unsigned shift = 0;; shift += 7) {
      const auto byte = read<std::uint8_t>();
      if (shift > 63 || (shift == 63 && (byte & 0x7E)))
        throw BadImage(std::string(what_) + " has a number of more than 64 bits");
      value |= static_cast<std::uint64_t>(byte & 0x7F) << shift;
      if (!(byte & 0x80)) return value;
    }
  }
  std::int64_t sleb() {
    std::uint64_t value = 0;
    for (unsigned shift = 0;;) {
      const auto byte = read<std::uint8_t>();
      if (shift > 63) throw BadImage(std::string(what_) + " has a number of more than 64 bits");
      value |= static_cast<std::uint64_t>(byte & 0x7F) << shift;
      shift += 7;
      if (!(byte & 0x80)) {
        if (shift < 64 && (byte & 0x40)) value |= ~std::uint64_t{0} << shift;
        return static_cast<std::int64_t>(value);
      }
    }
  }
  std::string text() {
    std::string text;
    for (char c; (c = read<char>()) != '\0';) text += c;
    return text;
  }

 private:
  [[noreturn]] void end() const { throw BadImage(std::string(what_) + " ends too early"); }

  std::span<const std::byte> bytes_;
  const char* what_;
  std::size_t position_ = 0;
};

}  // namespace macho
