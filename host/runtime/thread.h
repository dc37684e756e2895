// The language's Thread class.
#pragma once

#include <functional>

#include "runtime/exception.h"
#include "runtime/registry.h"

namespace host {

// What a thread runs when started (AddHandler t.Run, AddressOf ...); called on the new thread with the Thread
// object.
void setRunHandler(Object& thread, std::function<void(Object& thread)> handler);

// What is told of a HostException that leaves a thread's handler, on that thread. Without it nobody is.
void setUncaughtHandler(std::function<void(const HostException&)> report);

// Tells it, of one that leaves what nothing waits for: the Destructor of a class.
void reportUncaught(const HostException& exception);

// Waits for every thread that was started.
void joinAll();

const Class& registerThread(Registry& registry);

}  // namespace host
