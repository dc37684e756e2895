// The host's strings: bytes with an encoding. Immutable for all but who holds one alone; null stands for the
// empty string everywhere.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "frame/host_interface.h"
#include "runtime/heap.h"

namespace host {

struct Text : Heap {
  std::uint32_t encoding;
  std::uint32_t room;  // for so many bytes: as many as there are, or more where it has grown
  std::size_t length;  // in bytes
  const char* bytes() const { return reinterpret_cast<const char*>(this + 1); }  // length bytes, then a NUL
};

// None is longer, which keeps a runaway program from taking the machine.
constexpr std::size_t mostTextBytes = std::size_t{1} << 28;

// Throws HostException OutOfMemoryException when it cannot be allocated. An empty one may be null.
Ref<Text> makeText(std::string_view bytes, std::uint32_t textEncoding = encoding::utf8);

// One behind the other, in the encoding of both; in UTF-8 where these differ. Throws as makeText does.
Ref<Text> joined(const Text* left, const Text* right);

// A text with others to be put behind it.
struct Growth {
  Ref<Text> text;
  std::vector<Ref<Text>> more;
  // Where that variable alone holds the text, besides this, and it has the room: does it there. False, with
  // nothing done, where it cannot. Nobody may read the variable meanwhile.
  bool happensIn(const Heap* variable) const;
  // A new text; with room for as much again as fits half of it where this text was held by one variable
  // alone.
  Ref<Text> copy() const;

 private:
  bool isHeldOnce() const;
  bool isOfOneEncoding() const;
  std::size_t length() const;
};

// A view of the bytes; empty for null.
inline std::string_view bytesOf(const Text* text) {
  return text ? std::string_view(text->bytes(), text->length) : "";
}

// The text in UTF-8, whatever its encoding; bytes of no known encoding as they are; what the encoding cannot
// mean as U+FFFD. At most so many bytes of it are looked at.
std::string utf8Of(const Text* text, std::size_t mostBytesRead = std::string_view::npos);

// A new string with the same text in another encoding; null when the platform cannot convert.
Ref<Text> converted(const Text* text, std::uint32_t textEncoding);

// By characters of the encoding; ASCII case is ignored, as the language's string comparison does. <0, 0, >0.
int compareText(const Text* left, const Text* right);

}  // namespace host
