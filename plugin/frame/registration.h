// Adapts the registration records to the host's version and registers them.
#pragma once

#include <span>

#include "frame/host_interface.h"

namespace qtx {

// The record version spoken with a host of that version: 9 … 13.
std::int32_t controlVersionFor(double hostVersion);

// Saves the resolver, reads the host's version and settles the control version; with a null resolver, the one
// for version 0.
void meetHost(REALresolver resolver);

// Rewrite what the host would not understand in the flags of `count` records; a null list or a count below 1:
// nothing. The label is not used.
void FixFlags(REALmethodDefinition* records, long long count, const char* label);
void FixFlags(REALproperty* records, long long count, const char* label);

// The shared property Debugging, hidden in the host's editor: the one entry of the module's property table.
extern REALproperty debuggingProperty[1];

// Adapts one class and registers it. The record and its tables must stay for the life of the process.
void MyREALRegisterClass(REALclassDefinition* record);

// Registers the global functions, in order: as the module "MathGlobalsQTX" together with the shared property
// Debugging on hosts from 2013.0 to below 3000.0, one by one without it on all others. A failed allocation is
// reported in the log and ends the registration.
void registerFunctions(std::span<REALmethodDefinition> functions);

}  // namespace qtx
