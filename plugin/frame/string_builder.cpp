// How host strings are built: by host version and encoding.
#include "frame/string_builder.h"

#include <algorithm>

#include "frame/debug_log.h"

namespace qtx {

namespace {

// Hosts before 2012.0 build first and are told the encoding afterwards.
Reference<REALstring> build(const char* bytes, std::int32_t count, std::uint32_t encoding) {
  if (hostState.version >= 2012.0) {
    return Reference(REALBuildStringWithEncoding(bytes, count, encoding));
  }
  Reference string(originalREALBuildString(bytes, count, 0));
  if (string) REALSetStringEncoding(string.borrow(), encoding);
  return string;
}

Reference<REALstring> buildFromUTF16(const char* bytes, std::int32_t count) {
  const Reference wide = build(bytes, count, encoding::utf16);
  if (!wide) {
    if (!(hostState.version >= 2012.0)) Trace("Out of memory in REALBuildUnicodeStringUTF16.");
    return {};
  }
  return Reference(REALConvertString(wide.borrow(), encoding::utf8));
}

}  // namespace

bool isASCII(std::string_view bytes) {
  return std::all_of(bytes.begin(), bytes.end(),
                     [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

Reference<REALstring> buildString(const void* bytes, long long count, std::uint32_t encoding) {
  if (count < 1 || !bytes) return {};
  if (count >= 1LL << 31) {
    Trace("Count too big for REALBuildUnicodeString.");
    return {};
  }
  const auto* text = static_cast<const char*>(bytes);
  const auto length = static_cast<std::int32_t>(count);
  switch (encoding) {
    case encoding::utf16:
      return buildFromUTF16(text, length);
    case encoding::macRoman:
    case encoding::isoLatin1:
    case encoding::windowsLatin1:
    case encoding::none:
      if (isASCII({text, static_cast<std::size_t>(count)})) return build(text, length, encoding::ascii);
      break;
    case encoding::ascii:
    case encoding::utf8:
      return build(text, length, encoding);
    default:
      break;
  }
  Trace("Unknown encoding in REALBuildUnicodeString", encoding);
  return build(text, length, encoding);
}

}  // namespace qtx
