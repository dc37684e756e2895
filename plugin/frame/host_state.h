// What is known of the host: its resolver, its version, and the record version spoken with it.
#pragma once

#include <atomic>

#include "frame/host_interface.h"

namespace qtx {

// Written once by REALPluginMain, before the host can call any registered function; only read afterwards.
struct HostState {
  std::atomic<REALresolver> resolver{nullptr};
  double version = 0.0;              // such as 2013.04; 0 where the host does not tell
  std::int32_t controlVersion = 15;  // before REALPluginMain has settled it
};
inline constinit HostState hostState;

// The host operation of that name, or null. Asks the resolver every time.
inline void* lookUp(const char* name) {
  const REALresolver resolver = hostState.resolver.load(std::memory_order_acquire);
  return resolver ? resolver(name) : nullptr;
}

}  // namespace qtx
