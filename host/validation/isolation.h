// Runs what may crash or never end in a process of its own.
#pragma once

#include <functional>
#include <string>

namespace host {

// How such a process has ended.
struct Ending {
  enum class How { normally, bySignal, byItself, tooLate };
  How how = How::normally;
  int number = 0;       // the signal, or the exit status
  bool isBusy = false;  // of one that was too late: it was computing, not waiting
  std::string text;     // of one that ended normally: what the body gave
  std::string step;     // the last step that it noted
  std::string doing;    // what it noted last, step or preparation
  int steps = 0;        // how many steps there were
};

// Calls the body in a copy of this process, which must have one thread, and waits for it. What it prints is
// dropped unless `shown`.
Ending inProcess(double seconds, bool shown, const std::function<std::string()>& body);

// Notes what this process does next, for who has to say later what it was doing when it ended. From any
// thread. What only prepares a step is not counted among them.
void noteStep(const std::string& step);
void notePreparation(const std::string& step);

// Ends this process at once, as a copy of another one should: nothing that is not its own is touched.
[[noreturn]] void leaveProcess(int status);

// "signal 11 (Segmentation fault)".
std::string nameOfSignal(int number);

}  // namespace host
