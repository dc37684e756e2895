// Throwing the host's exceptions, for what lies below the objects that they are. exception.cpp does it.
#pragma once

#include <exception>
#include <string_view>

namespace host {

struct Heap;

// Ends a thread of a program, and with it the program. No exception of its language: it could catch that and
// go on.
class ProgramEnd : public std::exception {};

// Throws a HostException of that class, or a plain RuntimeException where there is no such class.
[[noreturn]] void throwException(std::string_view className, std::string_view message);

// The exception that a function of a library has left on this thread for when it returns; owned. Null: none.
inline constinit thread_local Heap* pendingException = nullptr;

// Throws it, and leaves none. What the function has returned all the same, if that is a thing, is given back.
[[noreturn]] void throwPending(Heap* returned);

}  // namespace host
