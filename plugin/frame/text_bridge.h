// Crosses between host strings and bytes: text views on the way in, new host strings on the way out.
#pragma once

#include <memory>
#include <string_view>

#include "frame/reference.h"

namespace qtx {

// A host string viewed as NUL-terminated UTF-8 or ASCII text. Views are valid as long as the object. Never
// fails: what cannot be had is empty text.
class rbText {
 public:
  explicit rbText(REALstring string);
  ~rbText();
  rbText(const rbText&) = delete;
  rbText& operator=(const rbText&) = delete;

  // The text in UTF-8; never null, empty text at worst. The length in bytes does not count the terminating
  // NUL.
  const char* GetUTF8();
  std::string_view utf8() { return {GetUTF8(), static_cast<std::size_t>(utf8_.length)}; }

  // Fills the ASCII view.
  void ConvertASCII();
  std::string_view ascii() {
    ConvertASCII();
    return {ascii_.text, static_cast<std::size_t>(ascii_.length)};
  }

  // The text as it is where the string is UTF-8 or ASCII, converted to ASCII otherwise: for parsers that
  // refuse every other character anyway.
  std::string_view plain();

 private:
  enum class ASCIIState { pure = 1, unknown = 2, impure = 3 };

  struct View {
    long long length = -1;    // −1: not computed yet
    const char* text = "";    // never null
    bool terminated = false;  // the byte behind the text is known to be NUL
    REALstringData data = {};
    bool dispose = false;  // data must be handed back
    std::unique_ptr<char[]> copy;
  };

  // Settles whether the text is pure ASCII; if so, both views are the host string's own bytes.
  void CheckASCII();
  void viewHostBytes(View& view);
  void fill(View& view, std::uint32_t encoding);
  void terminate(View& view);

  static constexpr std::uint64_t guardWord = 0x51545854;  // 'QTXT'

  std::uint64_t frontGuard_ =
      guardWord;  // first and last members: a caller that writes past an object is noticed
  Reference<REALstring> string_;
  View utf8_;
  View ascii_;
  ASCIIState state_ = ASCIIState::pure;
  std::uint32_t sourceEncoding_ = encoding::ascii;
  std::uint64_t backGuard_ = guardWord;
};

// A host string viewed as raw bytes.
class rbData {
 public:
  explicit rbData(REALstring string);

  const char* data() const { return bytes_.data(); }
  std::size_t length() const { return bytes_.size(); }
  std::string_view bytes() const { return bytes_; }

 private:
  Reference<REALstring> string_;
  std::string_view bytes_;
};

// What buildString (frame/string_builder.h) makes of the bytes, for the caller to unlock or return; null
// where it makes nothing. What is thrown meanwhile becomes a host exception.
REALstring REALBuildUnicodeString(const void* bytes, long long count, std::uint32_t encoding);

}  // namespace qtx
