// Encodings of texts, and the module that names them.
#include <iterator>

#include "language/words.h"

namespace host {

namespace {

REALstring defineEncoding(REALstring s, RBInteger code) {
  return made(bytesOf(textOf(s)), static_cast<std::uint32_t>(code));
}
REALstring convertEncoding(REALstring s, RBInteger code) {
  return asPending([&] {
    return reinterpret_cast<REALstring>(converted(textOf(s), static_cast<std::uint32_t>(code)).detach());
  });
}
RBInteger encodingOf(REALstring s) { return s ? textOf(s)->encoding : encoding::utf8; }

template <std::uint32_t value>
RBInteger number() {
  return value;
}

}  // namespace

void registerEncodingWords() {
  static REALmethodDefinition table[] = {
      hostMethod("DefineEncoding(s as String, encoding as Integer) as String", &defineEncoding),
      hostMethod("ConvertEncoding(s as String, encoding as Integer) as String", &convertEncoding),
      hostMethod("Encoding(s as String) as Integer", &encodingOf),
  };
  registerFunctions(table);

  // Encodings.UTF8 and the like are the numbers that the text functions take.
  static REALmethodDefinition encodings[] = {
      hostMethod("UTF8 as Integer", &number<encoding::utf8>),
      hostMethod("UTF16 as Integer", &number<encoding::utf16>),
      hostMethod("UTF16BE as Integer", &number<encoding::utf16BigEndian>),
      hostMethod("UTF16LE as Integer", &number<encoding::utf16LittleEndian>),
      hostMethod("UTF32 as Integer", &number<encoding::utf32>),
      hostMethod("UTF32BE as Integer", &number<encoding::utf32BigEndian>),
      hostMethod("UTF32LE as Integer", &number<encoding::utf32LittleEndian>),
      hostMethod("ASCII as Integer", &number<encoding::ascii>),
      hostMethod("ISOLatin1 as Integer", &number<encoding::isoLatin1>),
      hostMethod("WindowsLatin1 as Integer", &number<encoding::windowsLatin1>),
      hostMethod("MacRoman as Integer", &number<encoding::macRoman>),
      hostMethod("None as Integer", &number<encoding::none>),
  };
  static REALmoduleDefinition module = {};
  module.name = "Encodings";
  module.methods = encodings;
  module.methodCount = std::size(encodings);
  registry().addModule(module, false);
}

}  // namespace host
