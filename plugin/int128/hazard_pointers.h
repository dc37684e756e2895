// Hazard pointers: which objects threads have found and are about to add a reference to, so that nobody drops
// the last one meanwhile. Maged M. Michael, "Hazard Pointers: Safe Memory Reclamation for Lock-Free Objects",
// IEEE Transactions on Parallel and Distributed Systems 15 (2004).
#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

#include "frame/host_interface.h"

namespace qtx {

// Announces objects for as long as each is being taken. Nothing belongs to a thread: a place is claimed with
// the announcement itself, by its one locked instruction, and is free again afterwards. Which one, the stack
// says, so that threads seldom meet in a place. Who finds it taken, as an announcement within another may,
// counts itself among the unnamed, who could be about to take anything.
class HazardPointers {
 public:
  using Place = std::atomic<REALobject>;

  // The place where the object is announced now; nothing where it was taken.
  Place* announce(REALobject object) {
    Place& place = places_[placeOfThisStack()].object;
    REALobject none = nullptr;
    return place.compare_exchange_strong(none, object) ? &place : nullptr;
  }
  // What was announced has its reference.
  static void clear(Place& place) { place.store(nullptr, std::memory_order_release); }

  void enterUnnamed() { unnamed_.fetch_add(1); }
  void leaveUnnamed() { unnamed_.fetch_sub(1); }

  // Whether a thread may be about to take the object, which it could find until now.
  bool isAnnounced(REALobject object) const {
    return unnamed_.load() != 0 || std::any_of(places_.begin(), places_.end(), [object](const Line& line) {
             return line.object.load() == object;
           });
  }

 private:
  static constexpr std::size_t countBits = 5;
  // As long as the longest cache line among the processors.
  struct alignas(128) Line {
    Place object{nullptr};
  };

  // Stacks lie 16 KiB apart, or more.
  static std::size_t placeOfThisStack() {
    const auto stack = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)) >> 14;
    return static_cast<std::uint64_t>(stack) * 0x9E3779B97F4A7C15 >> (64 - countBits);
  }

  std::array<Line, std::size_t{1} << countBits> places_;
  std::atomic<std::uint32_t> unnamed_{0};
};

}  // namespace qtx
