// The class Dictionary: values found by keys, both of any type.
#pragma once

#include <functional>

#include "runtime/registry.h"

namespace host {

void registerDictionary(Registry& registry);

// Calls back for each thing that is a key or value in it, if the thing is a Dictionary: for the leak report,
// when no thread changes it any more.
void forEachInDictionary(const Heap& thing, const std::function<void(const Heap&)>& visit);

}  // namespace host
