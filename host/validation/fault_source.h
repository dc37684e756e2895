// Something that can fail while a library's function runs: calls of the host's operations, memory.
#pragma once

#include <cstdint>

namespace host {

class FaultSource {
 public:
  // Counts from now on, on this thread, and lets the nth event fail; `onwards` all later ones too. 0: none.
  virtual void arm(std::uint64_t n, bool onwards) = 0;
  // From now on nothing fails; gives how many events there were.
  virtual std::uint64_t disarm() = 0;
  // "PluginNewInstance answers nil", "memory is refused".
  virtual const char* name() const = 0;

 protected:
  ~FaultSource() = default;
};

}  // namespace host
