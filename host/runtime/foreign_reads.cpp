// Two epochs that follow each other. What is taken in one can have been seen by calls that began in it or in
// the one before; the next begins when all calls of the one before have ended, and what was taken in that one
// goes.
#include "runtime/foreign_reads.h"

#include <atomic>
#include <cstddef>
#include <mutex>
#include <new>
#include <vector>

namespace host {

namespace {

struct Taken {
  void* thing;
  void (*drop)(void*);
};
struct Epoch {
  std::size_t calls = 0;
  std::vector<Taken> taken;
};

// Never destroyed: threads may still run at the end of the process.
std::mutex& lock = *new std::mutex;
Epoch* const epochs = new Epoch[2];
unsigned current = 0;
// Both epochs' calls. Whoever takes something out writes here before he looks; a call that begins after that
// finds it gone.
constinit std::atomic<std::size_t> allCalls{0};

}  // namespace

ForeignReads::ForeignReads() {
  const std::lock_guard guard(lock);
  epoch_ = current;
  ++epochs[epoch_].calls;
  ++allCalls;
}

ForeignReads::~ForeignReads() {
  std::vector<Taken> former, latter;
  {
    const std::lock_guard guard(lock);
    --epochs[epoch_].calls;
    --allCalls;
    Epoch& other = epochs[1 - current];
    if (other.calls != 0) return;
    former.swap(other.taken);
    if (epochs[current].calls == 0) latter.swap(epochs[current].taken);
    current = 1 - current;
  }
  for (const std::vector<Taken>* all : {&former, &latter}) {
    for (const Taken& each : *all) each.drop(each.thing);
  }
}

bool keepsWhileRead(void* taken, void (*drop)(void*)) {
  if (allCalls.fetch_add(0) == 0) return false;
  const std::lock_guard guard(lock);
  if (allCalls == 0) return false;
  try {
    epochs[current].taken.push_back({taken, drop});
  } catch (const std::bad_alloc&) {  // then nobody knows when it may go
  }
  return true;
}

}  // namespace host
