// Everything that the library registers, and calling it from a thread that counts its calls.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <initializer_list>
#include <random>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/class.h"
#include "runtime/heap.h"

namespace soak {

inline constexpr std::size_t threadCount = 8;

// What ends a run: something was not as it has to be.
struct Loss : std::runtime_error {
  using runtime_error::runtime_error;
};

// A method, a function, or one accessor of a property.
struct Member {
  std::size_t index = 0;
  const host::Class* of = nullptr;  // null: a function, or a module's property
  std::string name;                 // "AtomicIntegerQTX.Increment as Int64"
  const host::Call* call = nullptr;
  bool takesSelf = false;
  std::vector<host::Passing> parameters;  // behind the object
  host::Type result;
  bool isGetter = false;
  bool isHidden = false;  // a switch that is to stay as it is
};

const std::vector<Member>& members();
// Of a class, by the declaration or, for a property, "get Name" or "set Name". Ends the process where there
// is none.
const Member& member(std::string_view className, std::string_view declaration);

using Random = std::mt19937_64;

struct Worker {
  Worker(std::size_t number, std::uint64_t seed) : index(number), random(seed), calls(members().size()) {}

  // Throws HostException as the member does.
  host::Slot call(const Member& member, std::span<const host::Slot> arguments) {
    current.store(&member, std::memory_order_relaxed);
    ++calls[member.index];
    return (*member.call)(arguments);
  }
  host::Slot call(const Member& member, std::initializer_list<host::Slot> arguments) {
    return call(member, std::span(arguments.begin(), arguments.size()));
  }
  std::size_t below(std::size_t limit) { return random() % limit; }

  std::size_t index;
  Random random;
  std::vector<std::uint64_t> calls;             // of each member
  std::atomic<const Member*> current{nullptr};  // for who waits in vain
};

inline host::Slot slotOf(host::Heap* thing) { return {.heap = thing}; }
inline host::Slot slotOf(std::int64_t value) { return {.integer = value}; }

}  // namespace soak
