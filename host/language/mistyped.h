// Words of the language that are not spelled as they should be.
#pragma once

#include <vector>

#include "language/lexer.h"

namespace host {

// Where a line begins with a word that nothing else in the program gives a meaning, and that is nearly one of
// the language's, this is said and the word read as that one: what follows from it is not worth saying.
void mendWords(std::vector<Token>& tokens, Problems& problems);

}  // namespace host
