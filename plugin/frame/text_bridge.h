// Crosses between host strings and bytes: text views on the way in, new host strings on the way out.
#pragma once

#include <string_view>

#include "frame/debug_log.h"
#include "frame/raise.h"
#include "frame/reference.h"
#include "frame/string_builder.h"

namespace qtx {

// The host string's own bytes, none where the host has no bytes or no length. They need not be
// NUL-terminated, but the host keeps one readable byte behind them.
inline std::string_view hostBytes(REALstring string, bool traced = false) {
  const char* bytes = REALGetStringContents(string);
  const RBInteger length = LenB(string);
  if (bytes && length > 0) [[likely]] {
    return {bytes, static_cast<std::size_t>(length)};
  }
  if (traced && !bytes && length != 0) Trace("data is NULL, so size fixed to zero.");
  return "";
}

// A host string viewed as NUL-terminated UTF-8 or ASCII text. Views are valid as long as the object. Never
// fails: what cannot be had is empty text.
//
// Strings in UTF-8 and ASCII, which are nearly all, are viewed where they lie. That is always inline, and no
// function is handed the object's address, so that the compiler can keep all of it in registers. Whatever
// other views take is a part of its own, made only where it is needed.
class rbText {
 public:
  [[gnu::always_inline]] explicit rbText(REALstring string) {
    if (!string) return;
    string_ = Reference<REALstring>::to(string);
    source_ = REALGetStringEncoding(string);  // 0, Mac Roman, where the host does not tell
    if (source_ == encoding::utf8 || source_ == encoding::ascii) [[likely]] {
      bytes_ = hostBytes(string);
    } else {
      other_ = makeOther(std::move(string_), source_, bytes_);
    }
  }
  [[gnu::always_inline]] ~rbText() {
    if (frontGuard_ != guardWord || backGuard_ != guardWord) [[unlikely]] {
      reportDamage(frontGuard_, backGuard_);
    }
    if (other_) [[unlikely]] {
      remove(other_);
    }
  }
  rbText(const rbText&) = delete;
  rbText& operator=(const rbText&) = delete;

  // The text in UTF-8; never null, empty text at worst. The length in bytes does not count the terminating
  // NUL.
  const char* GetUTF8() { return utf8().data(); }
  std::string_view utf8() { return view<Form::utf8>(); }

  // Fills the ASCII view.
  void ConvertASCII() { ascii(); }
  std::string_view ascii() { return view<Form::ascii>(); }

  // The text as it is where the string is UTF-8 or ASCII, converted to ASCII otherwise: for parsers that
  // refuse every other character anyway.
  std::string_view plain() { return view<Form::plain>(); }

 private:
  enum class Form { utf8, ascii, plain };
  class OtherViews;

  template <Form form>
  [[gnu::always_inline]] std::string_view view() {
    const bool inThatForm = form != Form::ascii || source_ == encoding::ascii;
    if (!other_ && inThatForm && *(bytes_.data() + bytes_.size()) == 0) [[likely]] {
      return bytes_;
    }
    if (!other_ && string_) {
      other_ = makeOther(std::move(string_), source_, bytes_);
      bytes_ = "";
    }
    return viewOther(other_, form);
  }

  // Null where there is no memory.
  static OtherViews* makeOther(Reference<REALstring> string, std::uint32_t source, std::string_view bytes);
  static std::string_view viewOther(OtherViews* views, Form form);
  static void remove(OtherViews* views);
  static void reportDamage(std::uint64_t frontGuard, std::uint64_t backGuard);

  static constexpr std::uint64_t guardWord = 0x51545854;  // 'QTXT'

  std::uint64_t frontGuard_ =
      guardWord;  // first and last members: a caller that writes past an object is noticed
  Reference<REALstring> string_;
  std::uint32_t source_ = encoding::ascii;
  // The string's own, if it is UTF-8 or ASCII. Never null.
  std::string_view bytes_ = "";  // NOLINT(readability-redundant-string-init): without it, they would be
  OtherViews* other_ = nullptr;  // once it is needed; has the string then
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
inline REALstring REALBuildUnicodeString(const void* bytes, long long count, std::uint32_t encoding) {
  const bool isPlain = encoding == encoding::ascii || encoding == encoding::utf8;
  return guard([&] {
    // Nearly all texts are plain, and nearly all hosts newer: these take no more than the host does.
    if (isPlain && count > 0 && count < 1LL << 31 && bytes && hostState.version >= 2012.0) [[likely]] {
      return REALBuildStringWithEncoding(static_cast<const char*>(bytes), static_cast<std::int32_t>(count),
                                         encoding);
    }
    return buildString(bytes, count, encoding).release();
  });
}

}  // namespace qtx
