// What libraries for macOS ask of their system, out of what Linux has: most functions are the same, some need
// a shim.
#pragma once

#include <pthread.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace macho {

// The address for an import of that name; null: it is not known.
void* systemSymbol(const std::string& name);

// The thread-local variables of one image: what each thread's copy starts as.
struct ThreadLocals {
  pthread_key_t key = 0;
  const void* initial = nullptr;
  std::size_t initialBytes = 0, bytes = 0, alignment = 1;
};

// The record through which compiled code reaches one thread-local variable: it calls `function` with the
// record's address. The linker leaves the key to the loader.
struct ThreadLocalVariable {
  void* function;
  const ThreadLocals* variables;
  std::uint64_t offset;
};

// Where the calling thread's copy of the variable is.
extern "C" void* machoThreadLocalAddress(const ThreadLocalVariable* variable);

}  // namespace macho
