// What becomes of a program that a signal ends: its output is written, and where the signal is a trap of the
// processor, the line is named that ran into it.
#pragma once

#include <cstddef>

namespace host {

// From now on, for the whole process.
void handleSignals();

// For its lifetime, signals on this thread have a stack of their own: the thread's may be used up.
class AlternateStack {
 public:
  AlternateStack();
  ~AlternateStack();
  AlternateStack(const AlternateStack&) = delete;
  AlternateStack& operator=(const AlternateStack&) = delete;

 private:
  static constexpr std::size_t size = std::size_t{64} << 10;
  void* memory_;
  void* before_ = nullptr;
};

}  // namespace host
