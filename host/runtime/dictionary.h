// The class Dictionary: values found by keys, both of any type.
#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "runtime/heap.h"
#include "runtime/registry.h"

namespace host {

void registerDictionary(Registry& registry);

// Calls back for each thing that is a key or value in it, if the thing is a Dictionary: for the leak report,
// when no thread changes it any more.
void forEachInDictionary(const Heap& thing, const std::function<void(const Heap&)>& visit);

bool isDictionary(const Heap& thing);
// Its keys with their values, in their order.
std::vector<std::pair<Ref<>, Ref<>>> entriesOf(const Heap& dictionary);

}  // namespace host
