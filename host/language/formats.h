// Numbers as a pattern such as "#,##0.00" shows them.
#pragma once

#include <string>

#include "runtime/class.h"
#include "runtime/value.h"

namespace host {

// Of an Int64, a UInt64, a Currency or a Double. Each digit of the first three counts.
std::string formatted(Slot value, Kind kind, const std::string& pattern);

// Of what is in a Variant; so are the digits of an object whose class stands for a whole number. Throws
// HostException where it is no number.
std::string formatted(Heap* variant, const std::string& pattern);

// Whether objects of the class become integers, and texts.
bool isWholeNumber(const Class& type);

}  // namespace host
