// Text and data views of host strings.
#include "frame/text_bridge.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "frame/debug_log.h"
#include "frame/host_operations.h"
#include "frame/raise.h"
#include "frame/string_builder.h"

namespace qtx {

namespace {

// The host string's own bytes. They need not be NUL-terminated, but the host keeps one readable byte behind
// them.
std::string_view hostBytes(REALstring string, bool traced = false) {
  const char* bytes = REALGetStringContents(string);
  const RBInteger length = LenB(string);
  if (bytes) return {bytes, static_cast<std::size_t>(std::max<RBInteger>(length, 0))};
  if (traced && length != 0) Trace("data is NULL, so size fixed to zero.");
  return "";
}

}  // namespace

rbText::rbText(REALstring string) {
  if (!string) return;
  string_ = Reference<REALstring>::to(string);
  state_ = ASCIIState::unknown;
  if (!REALGetStringEncoding.resolve()) {
    sourceEncoding_ = encoding::macRoman;
    return;
  }
  sourceEncoding_ = REALGetStringEncoding(string);
  switch (sourceEncoding_) {
    case encoding::ascii:
      viewHostBytes(ascii_);
      [[fallthrough]];
    case encoding::utf8:
      viewHostBytes(utf8_);
      break;
    case encoding::utf16:
    case encoding::utf32:
    case encoding::utf16BigEndian:
    case encoding::utf16LittleEndian:
    case encoding::utf32BigEndian:
    case encoding::utf32LittleEndian:
      state_ = ASCIIState::impure;
      break;
    case encoding::none: {
      CheckASCII();
      const std::string_view bytes = hostBytes(string);
      if (bytes.empty()) {
        utf8_ = View();
        ascii_ = View();
      } else if (state_ == ASCIIState::impure) {
        // Bytes of no known encoding are given one to be converted from: whatever the host takes 0 for.
        Reference guessed(
            REALBuildUnicodeString(bytes.data(), static_cast<long long>(bytes.size()), encoding::macRoman));
        if (guessed) {
          string_ = std::move(guessed);
          sourceEncoding_ = REALGetStringEncoding(string_.borrow());
        }
      }
      break;
    }
    default:
      break;
  }
}

rbText::~rbText() {
  if (frontGuard_ != guardWord) Trace("Check1 in rbText invalid", frontGuard_);
  if (backGuard_ != guardWord) Trace("Check2 in rbText invalid", backGuard_);
  string_ = {};  // before the data that was made of it
  for (View* view : {&utf8_, &ascii_}) {
    if (view->dispose) REALDisposeStringData(&view->data);
  }
}

void rbText::viewHostBytes(View& view) {
  const std::string_view bytes = hostBytes(string_.borrow());
  view.length = static_cast<long long>(bytes.size());
  view.text = bytes.empty() ? "" : bytes.data();
  view.terminated = bytes.empty();
}

void rbText::CheckASCII() {
  if (state_ != ASCIIState::unknown) return;
  if (isASCII(rbData(string_.borrow()).bytes())) {
    state_ = ASCIIState::pure;
    for (View* view : {&ascii_, &utf8_}) {
      if (view->length < 0) viewHostBytes(*view);  // what has been viewed stays as long as the object
    }
  } else {
    state_ = ASCIIState::impure;
  }
}

void rbText::fill(View& view, std::uint32_t encoding) {
  if (view.length < 0 && string_) CheckASCII();
  if (view.length < 0) {
    view.length = 0;
    view.terminated = true;
    if (string_ && state_ != ASCIIState::pure) {
      if (REALGetStringData(string_.borrow(), encoding, &view.data)) {
        view.dispose = true;
        if (view.data.data && view.data.length >= 1) {
          view.text = view.data.data;
          view.length = static_cast<long long>(view.data.length);
          view.terminated = false;
        }
      } else {
        Trace("REALGetStringData failed.");
      }
    }
  }
  terminate(view);
}

void rbText::terminate(View& view) {
  if (view.terminated) return;
  view.terminated = true;
  const auto length = static_cast<std::size_t>(view.length);
  if (view.text[length] == 0) return;
  Trace("String is not zero terminated. Fixed.");
  view.copy.reset(new (std::nothrow) char[length + 4]());
  if (!view.copy) {
    Trace("Out of memory");
    view.text = "";
    view.length = 0;
    return;
  }
  std::memcpy(view.copy.get(), view.text, length);
  view.text = view.copy.get();
}

const char* rbText::GetUTF8() {
  fill(utf8_, encoding::utf8);
  return utf8_.text;
}

void rbText::ConvertASCII() { fill(ascii_, encoding::ascii); }

std::string_view rbText::plain() { return sourceEncoding_ == encoding::utf8 ? utf8() : ascii(); }

rbData::rbData(REALstring string) {
  if (!string) return;
  string_ = Reference<REALstring>::to(string);
  bytes_ = hostBytes(string, true);
}

REALstring REALBuildUnicodeString(const void* bytes, long long count, std::uint32_t encoding) {
  return guard([&] { return buildString(bytes, count, encoding); }).release();
}

}  // namespace qtx
