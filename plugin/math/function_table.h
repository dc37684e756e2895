// The 62 global functions, in the order in which they are registered.
#pragma once

#include <span>

#include "frame/host_interface.h"

namespace qtx {

std::span<REALmethodDefinition> mathFunctions();

}  // namespace qtx
