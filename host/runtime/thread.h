// The language's Thread class: real threads of the operating system.
#pragma once

#include <cstddef>
#include <functional>

#include "runtime/exception.h"
#include "runtime/registry.h"

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

// What is told of a HostException that leaves a thread's handler, on that thread. Without it nobody is.
void setUncaughtHandler(std::function<void(const HostException&)> report);

// Tells it, of one that leaves what nothing waits for: the Destructor of a class.
void reportUncaught(const HostException& exception);

// Waits for every thread that was started.
void joinAll();

const Class& registerThread(Registry& registry);

}  // namespace host
