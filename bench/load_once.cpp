// Opens one library in a process that has opened nothing else, lets it register if it is one of ours, and
// prints the nanoseconds that this took: load_once LIBRARY [enter]. Uses nothing of the C++ runtime, which is
// thus linked, or not, as the build wants.
#include <dlfcn.h>
#include <stdio.h>
#include <string.h>
#include <time.h>

namespace {

double hostVersion() { return 2024.01; }
template <typename... Arguments>
void accept(Arguments...) {}

void* resolve(const char* name) {
  if (strcmp(name, "REALGetRBVersion") == 0) return reinterpret_cast<void*>(&hostVersion);
  if (strcmp(name, "RegisterPluginVersion") == 0) return reinterpret_cast<void*>(&accept<int>);
  if (strncmp(name, "PluginRegister", 14) == 0) return reinterpret_cast<void*>(&accept<void*>);
  return nullptr;
}

long long now() {
  timespec time;
  clock_gettime(CLOCK_MONOTONIC, &time);
  return time.tv_sec * 1000000000LL + time.tv_nsec;
}

}  // namespace

int main(int argc, char** argv) {
  const long long start = now();
  void* library = argc > 1 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : nullptr;
  if (!library) return 1;
  if (argc > 2) {
    void* enter = dlsym(library, "REALPluginMain");
    if (!enter) return 1;
    reinterpret_cast<void (*)(void* (*)(const char*))>(enter)(&resolve);
  }
  printf("%lld\n", now() - start);
  return 0;
}
