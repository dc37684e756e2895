// The language's own functions, registered through the same records as a library's.
#include "language/language.h"
#include "language/words.h"

namespace host {

void registerBuiltins() {
  registerTextWords();
  registerSearchWords();
  registerNumberWords();
  registerMathWords();
  registerSystemWords();
  registerVariantWords();
  registerEncodingWords();
}

}  // namespace host
