// Whether statements come to their end.
#pragma once

#include "language/syntax.h"

namespace host {

// Whether nothing that follows the block can run: it returns, raises or goes on for ever, as far as its text
// shows.
bool endsAlways(const syntax::Block& block);

}  // namespace host
