// Text and data views of host strings.
#include "frame/text_bridge.h"

#include <cstring>
#include <memory>
#include <new>

#include "frame/debug_log.h"
#include "frame/host_operations.h"
#include "frame/string_builder.h"

namespace qtx {

// The views of a string that are not its own bytes, or that are but needed a look at each first.
class rbText::OtherViews {
 public:
  OtherViews(Reference<REALstring> string, std::uint32_t source, std::string_view bytes);

  std::string_view view(Form form) {
    const bool wantsUTF8 = form == Form::utf8 || (form == Form::plain && source_ == encoding::utf8);
    View& wanted = wantsUTF8 ? utf8_ : ascii_;
    fill(wanted);
    return {wanted.text, static_cast<std::size_t>(wanted.length)};
  }

 private:
  struct View {
    std::uint32_t encoding;
    long long length = -1;    // −1: not computed yet
    const char* text = "";    // never null
    bool terminated = false;  // the byte behind the text is known to be NUL
    REALstringData data = {};
    bool dispose = false;  // data must be handed back
    std::unique_ptr<char[]> copy = {};

    ~View() {
      if (dispose) REALDisposeStringData(&data);
    }
    void show(std::string_view bytes) {
      length = static_cast<long long>(bytes.size());
      text = bytes.data();
    }
  };
  enum class ASCIIState { pure = 1, unknown = 2, impure = 3 };

  // Settles whether the text is pure ASCII; if so, both views are the host string's own bytes.
  void CheckASCII();
  void guessEncoding();
  void fill(View& view);
  void convert(View& view);
  void terminate(View& view);

  View ascii_{encoding::ascii};
  View utf8_{encoding::utf8};
  Reference<REALstring> string_;  // given back before the data that was made of it
  std::uint32_t source_;
  ASCIIState state_ = ASCIIState::unknown;
};

rbText::OtherViews::OtherViews(Reference<REALstring> string, std::uint32_t source, std::string_view bytes)
    : string_(std::move(string)), source_(source) {
  switch (source) {
    case encoding::ascii:
      ascii_.show(bytes);
      [[fallthrough]];
    case encoding::utf8:
      utf8_.show(bytes);
      break;
    case encoding::utf16:
    case encoding::utf32:
    case encoding::utf16BigEndian:
    case encoding::utf16LittleEndian:
    case encoding::utf32BigEndian:
    case encoding::utf32LittleEndian:
      state_ = ASCIIState::impure;
      break;
    case encoding::none:
      CheckASCII();
      if (state_ == ASCIIState::impure) guessEncoding();
      break;
    default:
      break;
  }
}

void rbText::OtherViews::CheckASCII() {
  if (state_ != ASCIIState::unknown) return;
  const rbData data(string_.borrow());
  state_ = isASCII(data.bytes()) ? ASCIIState::pure : ASCIIState::impure;
  if (state_ == ASCIIState::impure) return;
  for (View* view : {&ascii_, &utf8_}) {
    if (view->length < 0) view->show(data.bytes());  // what has been viewed stays as long as the object
  }
}

// Bytes of no known encoding are given one to be converted from: whatever the host takes 0 for.
void rbText::OtherViews::guessEncoding() {
  const std::string_view bytes = hostBytes(string_.borrow());
  Reference guessed(
      REALBuildUnicodeString(bytes.data(), static_cast<long long>(bytes.size()), encoding::macRoman));
  if (!guessed) return;
  // The builder's reference is kept, and none added: a host may be unable to.
  string_ = std::move(guessed);
  source_ = REALGetStringEncoding(string_.borrow());
}

void rbText::OtherViews::fill(View& view) {
  if (view.length < 0) CheckASCII();
  if (view.length < 0) convert(view);
  if (!view.terminated) terminate(view);
}

void rbText::OtherViews::convert(View& view) {
  view.length = 0;
  if (REALGetStringData(string_.borrow(), view.encoding, &view.data)) {
    view.dispose = true;
    if (view.data.data && view.data.length >= 1) view.show({view.data.data, view.data.length});
  } else {
    Trace("REALGetStringData failed.");
  }
}

void rbText::OtherViews::terminate(View& view) {
  view.terminated = true;
  const auto length = static_cast<std::size_t>(view.length);
  if (view.text[length] == 0) return;
  Trace("String is not zero terminated. Fixed.");
  view.copy.reset(new (std::nothrow) char[length + 4]());
  if (view.copy) {
    std::memcpy(view.copy.get(), view.text, length);
    view.text = view.copy.get();
  } else {
    Trace("Out of memory");
    view.show("");
  }
}

rbText::OtherViews* rbText::makeOther(Reference<REALstring> string, std::uint32_t source,
                                      std::string_view bytes) {
  auto* made = new (std::nothrow) OtherViews(std::move(string), source, bytes);
  if (!made) {
    if (bytes.data()[bytes.size()] != 0) Trace("String is not zero terminated. Fixed.");
    Trace("Out of memory");
  }
  return made;
}

std::string_view rbText::viewOther(OtherViews* views, Form form) { return views ? views->view(form) : ""; }

void rbText::remove(OtherViews* views) { delete views; }

void rbText::reportDamage(std::uint64_t frontGuard, std::uint64_t backGuard) {
  if (frontGuard != guardWord) Trace("Check1 in rbText invalid", frontGuard);
  if (backGuard != guardWord) Trace("Check2 in rbText invalid", backGuard);
}

rbData::rbData(REALstring string) {
  if (!string) return;
  string_ = Reference<REALstring>::to(string);
  bytes_ = hostBytes(string, true);
}

}  // namespace qtx
