// Preloaded into a Linux process, makes dlopen and dlsym take dynamic libraries for macOS as well.
#include <dlfcn.h>

#include <mutex>
#include <set>
#include <string>

#include "macho/load.h"

namespace {

template <class Function>
Function* real(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

// The libraries opened here; a handle is the library's address. Never destroyed: programs open libraries until they end.
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
  if (!file || !macho::isMachO(file)) return real<void*(const char*, int)>("dlopen")(file, mode);
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
  // Found by version, because the name alone would lead here.
  static const auto next = reinterpret_cast<void* (*)(void*, const char*)>(dlvsym(RTLD_NEXT, "dlsym", "GLIBC_2.34"));
  if (!isOurs(handle)) return next(handle, symbol);
  void* const found = static_cast<const macho::LoadedLibrary*>(handle)->find(symbol);
  return found ? found : fail(std::string("there is no symbol ") + symbol);
}

[[gnu::visibility("default")]] char* dlerror() noexcept {
  static const auto next = real<char*()>("dlerror");
  if (!failed) return next();
  failed = false;
  return message.data();
}

[[gnu::visibility("default")]] int dlclose(void* handle) noexcept {
  static const auto next = real<int(void*)>("dlclose");
  return isOurs(handle) ? 0 : next(handle);
}

}  // extern "C"
