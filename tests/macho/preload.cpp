// Preloaded into a Linux process, makes dlopen and dlsym take dynamic libraries for macOS as well.
#include <dlfcn.h>

#include <mutex>
#include <set>
#include <string>

#include "macho/load.h"

namespace {

// The system's own functions. All are looked up at the first use of any, because a look-up forgets the last
// error.
struct System {
  // By version, because the name alone would lead to the function here.
  void* (*dlsym)(void*,
                 const char*) = reinterpret_cast<void* (*)(void*, const char*)>(dlvsym(RTLD_NEXT, "dlsym",
                                                                                       "GLIBC_2.34"));
  void* (*dlopen)(const char*,
                  int) = reinterpret_cast<void* (*)(const char*, int)>(dlsym(RTLD_NEXT, "dlopen"));
  char* (*dlerror)() = reinterpret_cast<char* (*)()>(dlsym(RTLD_NEXT, "dlerror"));
  int (*dlclose)(void*) = reinterpret_cast<int (*)(void*)>(dlsym(RTLD_NEXT, "dlclose"));
};
const System& theSystem() {
  static const System functions;
  return functions;
}

// The libraries opened here; a handle is the library's address. Never destroyed: programs open libraries
// until they end.
struct Opened {
  std::mutex mutex;
  std::set<void*> handles;
};
Opened& opened() {
  static Opened& all = *new Opened;
  return all;
}
bool isOurs(void* handle) {
  const std::lock_guard lock(opened().mutex);
  return opened().handles.contains(handle);
}

thread_local std::string message;  // of the last failure here, until dlerror hands it out
thread_local bool failed = false;

void* fail(std::string why) {
  message = std::move(why);
  failed = true;
  return nullptr;
}

}  // namespace

extern "C" {

[[gnu::visibility("default")]] void* dlopen(const char* file, int mode) noexcept {
  if (!file || !macho::isMachO(file)) return theSystem().dlopen(file, mode);
  try {
    const macho::LoadedLibrary& library = macho::load(file);
    void* const handle = const_cast<macho::LoadedLibrary*>(&library);
    const std::lock_guard lock(opened().mutex);
    opened().handles.insert(handle);
    return handle;
  } catch (const std::exception& error) {
    return fail(error.what());
  }
}

[[gnu::visibility("default")]] void* dlsym(void* __restrict handle, const char* __restrict symbol) noexcept {
  if (!isOurs(handle)) return theSystem().dlsym(handle, symbol);
  void* const found = static_cast<const macho::LoadedLibrary*>(handle)->find(symbol);
  return found ? found : fail(std::string("there is no symbol ") + symbol);
}

[[gnu::visibility("default")]] char* dlerror() noexcept {
  if (!failed) return theSystem().dlerror();
  failed = false;
  return message.data();
}

[[gnu::visibility("default")]] int dlclose(void* handle) noexcept {
  return isOurs(handle) ? 0 : theSystem().dlclose(handle);
}

}  // extern "C"
