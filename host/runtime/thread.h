// The language's Thread class: real threads of the operating system.
#pragma once

#include <functional>

#include "runtime/object.h"

namespace host {

// Of every thread that runs a program. The thread sanitizer follows only 65,536 nested calls.
#if defined(__SANITIZE_THREAD__)
inline constexpr std::size_t threadStackSize = std::size_t{4} << 20;
#else
inline constexpr std::size_t threadStackSize = std::size_t{64} << 20;
#endif

// What a thread runs when started (AddHandler t.Run, AddressOf ...); called on the new thread with the Thread
// object.
void setRunHandler(Object& thread, std::function<void(Object& thread)> handler);

// Start, Join and the destructor are methods of the registered class. A HostException that leaves the handler
// is reported by this function (by default: to standard error), and makes the process's exit status 1.
void setUncaughtHandler(std::function<void(const class HostException&)> report);

// Waits for every thread that was started.
void joinAll();

}  // namespace host
