// The language's Thread class: real threads of the operating system.
#pragma once

#include <functional>

#include "runtime/object.h"

namespace host {

// What a thread runs when started (AddHandler t.Run, AddressOf ...); called on the new thread with the Thread
// object.
void setRunHandler(Object& thread, std::function<void(Object& thread)> handler);

// Start, Join and the destructor are methods of the registered class. A HostException that leaves the handler
// is reported by this function (by default: to standard error), and makes the process's exit status 1.
void setUncaughtHandler(std::function<void(const class HostException&)> report);

// Waits for every thread that was started.
void joinAll();

}  // namespace host
