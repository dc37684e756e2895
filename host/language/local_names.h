// Where a Sub declares a name, in whichever of its blocks.
#pragma once

#include <optional>
#include <string>

#include "language/syntax.h"

namespace host {

// The first place; none where it is not declared there.
std::optional<Position> declarationOf(const std::string& name, const syntax::Block& block);

}  // namespace host
