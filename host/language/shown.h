// Values as the interactive mode shows them: with what is in them.
#pragma once

#include <string>

#include "language/node.h"

namespace host {

// The text of the value; of an array its elements, of an object what its class converts to or its properties.
Expr shown(Expr value);

}  // namespace host
