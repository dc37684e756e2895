// The language's Thread class.
#pragma once

#include <functional>

#include "runtime/exception.h"
#include "runtime/registry.h"

namespace host {

// What a thread runs when started (AddHandler t.Run, AddressOf ...); called on the new thread with the Thread
// object, and with the one whose method it is, which the Thread holds: null where it is none's.
using RunHandler = std::function<void(Object& thread, Heap* owner)>;
void setRunHandler(Object& thread, Ref<Heap> owner, RunHandler handler);

// That owner; null also where the thing is no Thread.
const Heap* ownerOfHandler(const Heap& thing);

// What is told of a HostException that leaves a thread's handler, on that thread. Without it nobody is.
void setUncaughtHandler(std::function<void(const HostException&)> report);

// Tells it, of one that leaves what nothing waits for: the Destructor of a class.
void reportUncaught(const HostException& exception);

// Waits for every thread that was started.
void joinAll();

const Class& registerThread(Registry& registry);

}  // namespace host
