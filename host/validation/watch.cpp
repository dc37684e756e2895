// Counts, refuses, and looks at handles.
#include "validation/watch.h"

#include "runtime/class.h"
#include "runtime/heap.h"

namespace host {

namespace {

// Of this thread.
struct Arming {
  bool isArmed = false;
  std::uint64_t n = 0;
  bool onwards = false;
  std::uint64_t count = 0;
};
thread_local Arming arming;

}  // namespace

bool Watch::refuses(const char* name, bool answers, std::span<Heap* const> handles) noexcept {
  for (const Heap* each : handles) {
    if (!each || isAlive(*each)) continue;
    const std::lock_guard lock(lock_);
    if (violation_.empty()) {
      violation_ = std::string(name) + " is called with a thing whose last reference was dropped before: " +
                   each->objectClass->name;
    }
  }
  if (!arming.isArmed) return false;
  called.insert(name);
  if (!answers) return false;
  answered.insert(name);
  if (!operation_.empty() && operation_ != name) return false;
  ++arming.count;
  return arming.n != 0 && (arming.count == arming.n || (arming.onwards && arming.count > arming.n));
}

std::string Watch::violation() {
  const std::lock_guard lock(lock_);
  if (violation_.empty()) {
    forEachMisused([&](const Heap& thing) {
      violation_ = "one reference more than there were was dropped: " + thing.objectClass->name;
    });
  }
  return violation_;
}

void Watch::choose(const std::string& operation) {
  operation_ = operation;
  name_ = operation + " answers nil";
}
void Watch::arm(std::uint64_t n, bool onwards) { arming = {true, n, onwards, 0}; }
std::uint64_t Watch::disarm() {
  arming.isArmed = false;
  return arming.count;
}

Watch& watch() {
  static Watch& one = *new Watch;
  return one;
}

}  // namespace host
