// Replaces the global operator new, which every form of it (array, nothrow) ends up in.
#include "failing_allocation.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>

namespace qtx {
namespace {
std::atomic<std::size_t> refusedFrom{0}, refusedTo{0};
std::atomic<int> toSkip{0};
std::atomic<long> living{0};

bool refused(std::size_t size) { return size >= refusedFrom && size < refusedTo && toSkip.fetch_sub(1) <= 0; }

void* allocate(std::size_t size) {
  void* memory = refused(size) ? nullptr : std::malloc(size > 0 ? size : 1);
  if (!memory) return nullptr;
  ++living;
  std::memset(memory, 0xA5, size);  // whoever takes it for zeros is found
  return memory;
}
void release(void* memory) {
  if (memory) --living;
  std::free(memory);
}
}  // namespace

long livingAllocations() { return living; }

FailAllocationsOf::FailAllocationsOf(std::size_t from, std::size_t to, int skip) {
  toSkip = skip;
  refusedFrom = from;
  refusedTo = to;
}
FailAllocationsOf::~FailAllocationsOf() { refusedFrom = refusedTo = 0; }
}  // namespace qtx

void* operator new(std::size_t size) {
  void* memory = qtx::allocate(size);
  if (!memory) throw std::bad_alloc();
  return memory;
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return qtx::allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept { return operator new(size, tag); }
void operator delete(void* memory) noexcept { qtx::release(memory); }
void operator delete[](void* memory) noexcept { qtx::release(memory); }
void operator delete(void* memory, std::size_t) noexcept { qtx::release(memory); }
void operator delete[](void* memory, std::size_t) noexcept { qtx::release(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { qtx::release(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { qtx::release(memory); }
