// Makes allocations of chosen sizes fail, to reach the code that handles it; counts those that succeed.
#pragma once

#include <cstddef>

namespace qtx {

// While alive, operator new of this process refuses every size in [from, to); the first `skip` of them still
// succeed.
class FailAllocationsOf {
 public:
  FailAllocationsOf(std::size_t from, std::size_t to, int skip = 0);
  ~FailAllocationsOf();
  FailAllocationsOf(const FailAllocationsOf&) = delete;
  FailAllocationsOf& operator=(const FailAllocationsOf&) = delete;
};

// How many blocks of operator new there are.
long livingAllocations();

}  // namespace qtx
