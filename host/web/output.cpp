// Hands what is printed to the page, piece by piece: there is no second thread that could do it later.
#include "runtime/output.h"

#include <emscripten.h>

#include <cstddef>

// NOLINTNEXTLINE: the body is JavaScript
EM_JS(void, qtxPrint, (const char* bytes, std::size_t count),
      { Module.printBytes(HEAPU8.slice(bytes, bytes + count)); });

namespace host {

void print(std::string_view text) { qtxPrint(text.data(), text.size()); }
void flushOutput() {}
int outputFailure() { return 0; }
void flushOutputInSignal() {}

}  // namespace host
