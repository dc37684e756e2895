// The text bridge, over all encodings, raw lengths and bytes behind the text, on hosts whose operations are
// missing, fail or convert to odd lengths: the views are those that a plain reading of the rules gives,
// NUL-terminated; references are given back, guard words unharmed, and no more than one byte behind a text is
// read.
#include <memory>

#include "frame/text_bridge.h"
#include "fuzz.h"

using namespace fuzz;

namespace {

constexpr std::uint32_t encodings[] = {encoding::macRoman,
                                       encoding::utf16,
                                       encoding::isoLatin1,
                                       encoding::windowsLatin1,
                                       encoding::ascii,
                                       encoding::none,
                                       encoding::utf8,
                                       encoding::utf32,
                                       encoding::utf16BigEndian,
                                       encoding::utf16LittleEndian,
                                       encoding::utf32BigEndian,
                                       encoding::utf32LittleEndian,
                                       0xDEADBEEF};

// Operations that this host does not have, a bit each.
unsigned missing = 0;
constexpr const char* withheld[] = {
    "REALGetStringEncoding", "PluginGetStringData",   "StringGetCString",     "REALBuildStringWithEncoding",
    "REALConvertString",     "REALSetStringEncoding", "REALLoadGlobalMethod", "REALBuildString"};
void* resolve(const char* name) {
  for (std::size_t i = 0; i < std::size(withheld); ++i) {
    if ((missing >> i & 1) != 0 && std::string_view(name) == withheld[i]) return nullptr;
  }
  return operations::resolve(name);
}
bool has(std::size_t operation) { return (missing >> operation & 1) == 0; }

// What a call finds is kept for the process; each input is to find its own.
void forgetOperations() {
  using namespace qtx;
  std::construct_at(&REALGetStringEncoding, "REALGetStringEncoding");
  std::construct_at(&REALGetStringData, "PluginGetStringData");
  std::construct_at(&REALGetStringContents, "StringGetCString");
  std::construct_at(&REALBuildStringWithEncoding, "REALBuildStringWithEncoding");
  std::construct_at(&originalREALBuildString, "REALBuildString");
  std::construct_at(&REALConvertString, "REALConvertString");
  std::construct_at(&REALSetStringEncoding, "REALSetStringEncoding");
  std::construct_at(&REALLoadFrameworkMethod, "REALLoadGlobalMethod");
  std::construct_at(&LenB, "LenB( s as string ) as integer", loadFrameworkMethod);
}

bool isASCII(std::string_view text) {
  return std::none_of(text.begin(), text.end(), [](char c) { return (c & 0x80) != 0; });
}

// What a host string's own bytes look like to the library.
std::string_view seen(REALstring string) { return has(2) && has(6) ? bytesOf(string) : ""; }

// What string data gives.
std::string_view data() { return has(1) && host.hasData ? host.conversion : ""; }

bool isWide(std::uint32_t code) {
  return code == encoding::utf16 || code == encoding::utf32 || code == encoding::utf16BigEndian ||
         code == encoding::utf16LittleEndian || code == encoding::utf32BigEndian ||
         code == encoding::utf32LittleEndian;
}

// In UTF-8 or ASCII, where nothing fails but what is missing.
std::string_view expected(REALstring string, std::uint32_t as) {
  if (!string) return "";
  const std::uint32_t code = has(0) ? of(string)->encoding : encoding::macRoman;
  if (code == as || (code == encoding::ascii && as == encoding::utf8)) return seen(string);
  if (isWide(code) || !isASCII(seen(string))) return data();
  return seen(string);
}

void checkGuards(const qtx::rbText& text) {
  std::uint64_t words[sizeof text / 8];
  std::memcpy(words, &text, sizeof text);
  require(words[0] == 0x51545854 && words[std::size(words) - 1] == 0x51545854, "a guard word is harmed");
}

void checkView(std::string_view view, std::string_view wanted, const char* what) {
  require(view.data() != nullptr, "no text");
  require(view.data()[view.size()] == '\0', "no NUL behind the text");
  if (!host.failed) require(view == wanted, what);
}

void checkText(REALstring string, std::size_t order) {
  const std::string_view utf8 = expected(string, encoding::utf8), ascii = expected(string, encoding::ascii);
  qtx::rbText text(string);
  for (std::size_t i = 0; i < 3; ++i) {
    switch ((order + i) % 3) {
      case 0:
        checkView(text.utf8(), utf8, "another text in UTF-8");
        break;
      case 1:
        checkView(text.ascii(), ascii, "another text in ASCII");
        break;
      default:
        text.plain();
        require(text.GetUTF8() != nullptr, "no text");
    }
    checkGuards(text);
  }
}

void checkBuilt(std::string_view bytes, std::uint32_t code) {
  const REALstring built =
      qtx::REALBuildUnicodeString(bytes.data(), static_cast<long long>(bytes.size()), code);
  if (host.failed) {
    host.unlock(built);
    return;
  }
  const bool newer = host.version >= 2012.0;
  const bool wide = code == encoding::utf16;
  const bool makes = !bytes.empty() && has(newer ? 3 : 7) && (!wide || has(4));
  require((built != nullptr) == makes, "a string too many or too few");
  if (!built) return;
  const bool guessed = code == encoding::macRoman || code == encoding::isoLatin1 ||
                       code == encoding::windowsLatin1 || code == encoding::none;
  const std::uint32_t asked = guessed && isASCII(bytes) ? encoding::ascii : code;
  const std::uint32_t given = wide ? encoding::utf8 : newer || has(5) ? asked : encoding::none;
  require(bytesOf(built) == bytes && of(built)->encoding == given, "another string");
  require(of(built)->references == 1, "its references");
  host.unlock(built);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  REALPluginMain(&resolve);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const char* input, std::size_t size) {
  Bytes bytes(input, size);
  const std::uint32_t code = encodings[bytes.below(std::size(encodings))];
  const std::size_t order = bytes.below(12);
  missing = bytes.below(3) == 0 ? bytes.take() : 0;
  if (missing != 0) forgetOperations();
  host.clear();
  host.failing = {};
  if (bytes.below(3) == 0) {
    for (const Operation each : {Operation::getStringData, Operation::getCString, Operation::lenB,
                                 Operation::getEncoding, Operation::build, Operation::convert}) {
      host.failing[static_cast<std::size_t>(each)] = static_cast<std::uint8_t>(bytes.below(4));
    }
  }
  qtx::hostState.version = bytes.below(2) == 0 ? 2024.01 : 2011.0;
  host.version = qtx::hostState.version;
  host.terminator = static_cast<char>(bytes.below(2));
  host.hasData = bytes.below(8) != 0;
  host.conversion = bytes.text(40);
  const std::string_view own = bytes.rest();

  const REALstring string = order == 11 ? nullptr : host.makeString(own, code);
  checkText(string, order);
  {
    const qtx::rbData raw(string);
    if (!host.failed) require(raw.bytes() == seen(string), "other bytes");
  }
  require(!string || of(string)->references == 1, "its references");
  host.unlock(string);
  checkBuilt(own, code);
  require(host.strings == 0 && host.stringData == 0, "something is left");
  if (missing != 0) {
    missing = 0;
    forgetOperations();
  }
  return 0;
}
