// What was found, for people and for machines.
#pragma once

#include <string>

#include "validation/validation.h"

namespace host {

// A line for each finding under its member, how to see it again, and how much was done. The same for the same
// library.
std::string textOf(const Validation& validation, const ValidationOptions& options);

// The same as one JSON object.
std::string jsonOf(const Validation& validation, const ValidationOptions& options);

}  // namespace host
