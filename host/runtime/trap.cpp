// Handles signals. While one is handled, nothing may be allocated or locked.
#include "runtime/trap.h"

#include <signal.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "runtime/output.h"
#include "runtime/running_call.h"

namespace host {

namespace {

struct Trap {
  int number;
  const char* message;
  struct sigaction before;
};
Trap traps[] = {
    {SIGSEGV, "memory is used that is not there (SIGSEGV)", {}},
    {SIGBUS, "memory is used that is not there (SIGBUS)", {}},
    {SIGFPE, "the processor cannot compute this (SIGFPE)", {}},
    {SIGILL, "this is no instruction of the processor (SIGILL)", {}},
};
constexpr int endings[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

// A message in pieces, on the stack.
class Message {
 public:
  Message& operator<<(const char* text) {
    for (; *text && used_ < sizeof text_; ++text) text_[used_++] = *text;
    return *this;
  }
  Message& operator<<(int number) {
    char digits[16];
    char* first = digits + sizeof digits - 1;
    *first = '\0';
    for (unsigned rest = static_cast<unsigned>(number); rest > 0; rest /= 10)
      *--first = static_cast<char>('0' + rest % 10);
    return *this << first;
  }
  void write() const {
    for (std::size_t done = 0; done < used_;) {
      const ssize_t written = ::write(STDERR_FILENO, text_ + done, used_ - done);
      if (written <= 0) return;
      done += static_cast<std::size_t>(written);
    }
  }

 private:
  char text_[4096];
  std::size_t used_ = 0;
};

// Names the place, and lets the signal do what it would have done.
void trapped(int number, siginfo_t* information, void*) {
  flushOutputInSignal();
  for (const Trap& each : traps) {
    if (each.number != number) continue;
    Message message;
    if (const RunningCall* const call = runningCall) {
      message << call->file << ":" << call->line << ": ";
    } else {
      message << "qtxhost: ";
    }
    message << each.message << "\n";
    int shown = 0;
    for (const RunningCall* call = runningCall; call && shown < 10; call = call->caller, ++shown) {
      message << "  at " << call->file << ":" << call->line;
      if (*call->sub) message << ": " << call->sub;
      message << "\n";
    }
    message.write();
    sigaction(number, &each.before, nullptr);
  }
  // A trap comes once more where this returns to; what somebody has sent does not.
  if (information->si_code <= 0) raise(number);
}

void ended(int number) {
  flushOutputInSignal();
  signal(number, SIG_DFL);
  raise(number);
}

}  // namespace

void handleSignals() {
  struct sigaction action = {};
  sigemptyset(&action.sa_mask);
  action.sa_flags = SA_SIGINFO | SA_ONSTACK;
  action.sa_sigaction = &trapped;
  for (Trap& each : traps) sigaction(each.number, &action, &each.before);

  struct sigaction ending = {};
  sigemptyset(&ending.sa_mask);
  ending.sa_flags = SA_ONSTACK;
  ending.sa_handler = &ended;
  for (const int number : endings) {
    struct sigaction before = {};
    sigaction(number, nullptr, &before);
    const bool isIgnored = (before.sa_flags & SA_SIGINFO) == 0 && before.sa_handler == SIG_IGN;
    if (!isIgnored) sigaction(number, &ending, nullptr);
  }
}

AlternateStack::AlternateStack() : memory_(std::malloc(size)) {
  stack_t stack = {}, before = {};
  stack.ss_sp = memory_;
  stack.ss_size = size;
  if (memory_ && sigaltstack(&stack, &before) == 0 && (before.ss_flags & SS_DISABLE) == 0) {
    before_ = new stack_t(before);
  }
}

AlternateStack::~AlternateStack() {
  stack_t stack = {};
  stack.ss_flags = SS_DISABLE;
  stack.ss_size = size;  // which some systems check all the same
  auto* const before = static_cast<stack_t*>(before_);
  sigaltstack(before ? before : &stack, nullptr);
  delete before;
  std::free(memory_);
}

}  // namespace host
