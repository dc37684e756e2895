// Where a thread's program is: for messages, and for whoever asks while a signal is handled.
#pragma once

namespace host {

// A call of a Sub or Function, or the module level. Lives on the stack of the thread that runs it.
struct RunningCall {
  const char* file = "";
  const char* sub = "";  // empty: the module level
  int line = 0;          // of the statement being run
  const RunningCall* caller = nullptr;
};

// The innermost one of this thread; null where it runs no program.
inline constinit thread_local const RunningCall* runningCall = nullptr;

}  // namespace host
