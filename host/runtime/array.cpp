// Keeps the elements of arrays, and publishes where they are.
#include "runtime/array.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "frame/host_interface.h"
#include "runtime/class.h"
#include "runtime/foreign_reads.h"
#include "runtime/settings.h"
#include "runtime/sharing.h"
#include "runtime/throwing.h"
#include "runtime/wording.h"

namespace host {

namespace {

constexpr std::size_t publishedAt = arrayShape::storage;
constexpr std::int64_t mostElements = std::int64_t{1} << 27;  // 1 GiB

// In front of the elements: the memory that they were in before, which threads may still read. It is half as
// large or less, so all that is kept is never more than what is used.
struct alignas(8) Former {
  Former* former;
};
Former* headOf(Slot* elements) { return elements ? reinterpret_cast<Former*>(elements) - 1 : nullptr; }
Slot* behind(void* head) { return reinterpret_cast<Slot*>(static_cast<Former*>(head) + 1); }

Slot load(const Slot& from) { return Slot{.word = loadRelaxed(from.word)}; }
// Whoever finds a thing here, a library by a plain load, finds it complete.
void store(Slot& to, Slot value) { __atomic_store_n(&to.word, value.word, __ATOMIC_RELEASE); }

// Gives back what has been in an array.
void releaseTaken(Heap* taken) {
  const auto drop = [](void* thing) { release(static_cast<Heap*>(thing)); };
  if (taken && threadsShare() && keepsWhileRead(taken, drop)) return;
  release(taken);
}

struct Dropped : std::vector<Heap*> {
  ~Dropped() {
    for (Heap* each : *this) releaseTaken(each);
  }
};

// Like std::memmove. Threads that read the elements meanwhile see some of them where they were.
void move(Slot* to, const Slot* from, std::int64_t count) {
  if (!threadsShare()) {
    std::memmove(to, from, static_cast<std::size_t>(count) * sizeof(Slot));
  } else if (to < from) {
    for (std::int64_t i = 0; i < count; ++i) store(to[i], load(from[i]));
  } else {
    for (std::int64_t i = count; i > 0; --i) store(to[i - 1], load(from[i - 1]));
  }
}

}  // namespace

void Array::setCount(std::int64_t newCount) {
  static_assert(sizeof(Heap) + sizeof(elementType) + sizeof(capacity) == publishedAt);
  elementCount.store(newCount, std::memory_order_release);
  const Settings& chosen = settings();
  if (chosen.otherArrayShape) return;
  const auto publish = [this](std::size_t offset, auto value) {
    __atomic_store_n(reinterpret_cast<decltype(value)*>(published + (offset - publishedAt)), value,
                     __ATOMIC_RELEASE);
  };
  const auto upperBound = static_cast<std::int32_t>(newCount - 1);
  publish(arrayShape::storage, reinterpret_cast<std::uintptr_t>(memory()));
  if (chosen.version >= arrayShape::widerSinceHostVersion) {
    publish(arrayShape::dimensions, dimensions);
    publish(arrayShape::upperBoundSince2021, upperBound);
  } else {
    publish(arrayShape::dimensions, static_cast<std::int32_t>(dimensions));
    publish(arrayShape::upperBoundBefore2021, upperBound);
  }
}

void Array::check(std::int64_t index) const {
  const std::int64_t known = count();
  if (index < 0 || index >= known) [[unlikely]] {
    throwException("OutOfBoundsException", "The index " + std::to_string(index) +
                                               " is outside of the array, whose upper bound is " +
                                               std::to_string(known - 1) + ".");
  }
}

void Array::reserve(std::int64_t wanted) {
  if (wanted <= capacity) return;
  const std::int64_t larger = wanted > 2 * capacity ? wanted : 2 * capacity;
  const bool isTooLarge =
      wanted > mostElements || static_cast<std::size_t>(wanted) > settings().mostBytes / sizeof(Slot);
  Former* const head = headOf(memory());
  const std::size_t bytes = sizeof(Former) + static_cast<std::size_t>(larger) * sizeof(Slot);
  const bool keeps = threadsShare();
  void* const made = isTooLarge ? nullptr : keeps ? std::malloc(bytes) : std::realloc(head, bytes);
  if (!made) {
    throwException("OutOfMemoryException",
                   "There is no memory for an array of " + counted(wanted, "element") + ".");
  }
  if (keeps) {
    if (head) std::memcpy(made, head, sizeof(Former) + static_cast<std::size_t>(count()) * sizeof(Slot));
    static_cast<Former*>(made)->former = head;
  } else if (!head) {
    static_cast<Former*>(made)->former = nullptr;
  }
  elements.store(behind(made), std::memory_order_release);
  capacity = larger;
  setCount(count());  // says where they are, before there are more
}

Slot Array::get(std::int64_t index) const {
  if (!elementType.isReference()) {
    check(index);
    return load(memory()[index]);
  }
  const Using use(this);
  check(index);
  const Slot value = memory()[index];
  retain(value.heap);
  return value;
}

template <typename Locate>
void Array::put(Locate locate, Slot value) {
  if (!elementType.isReference()) {
    const Using use(this);
    store(memory()[locate()], value);
    return;
  }
  Heap* old;
  {
    const Changing change(this);
    const std::int64_t index = locate();
    retain(value.heap);
    old = load(memory()[index]).heap;
    store(memory()[index], value);
  }
  releaseTaken(old);
}

void Array::set(std::int64_t index, Slot value) {
  const auto locate = [&] {
    check(index);
    return index;
  };
  put(locate, value);
}

void Array::insert(std::int64_t index, Slot value) {
  const Changing change(this);
  const std::int64_t known = count();
  if (index != known) check(index);
  reserve(known + 1);
  if (elementType.isReference()) retain(value.heap);
  move(memory() + index + 1, memory() + index, known - index);
  store(memory()[index], value);
  setCount(known + 1);
}

void Array::append(Slot value) {
  const Changing change(this);
  const std::int64_t known = count();
  if (known >= capacity) reserve(known + 1);
  if (elementType.isReference()) retain(value.heap);
  store(memory()[known], value);
  setCount(known + 1);
}

Slot Array::take(std::int64_t index) {
  check(index);
  const Slot old = load(memory()[index]);
  const std::int64_t known = count();
  move(memory() + index, memory() + index + 1, known - index - 1);
  setCount(known - 1);
  return old;
}

Slot Array::pop() {
  Slot last;
  {
    const Changing change(this);
    last = take(count() - 1);
  }
  if (elementType.isReference() && threadsShare()) {
    retain(last.heap);
    releaseTaken(last.heap);
  }
  return last;
}

void Array::remove(std::int64_t index) {
  Slot old;
  {
    const Changing change(this);
    old = take(index);
  }
  if (elementType.isReference()) releaseTaken(old.heap);
}

void Array::resize(std::int64_t newCount) {
  newCount = std::max<std::int64_t>(newCount, 0);
  Dropped dropped;  // given back when this thread is no longer alone with the array
  const Changing change(this);
  const std::int64_t known = count();
  if (elementType.isReference() && newCount < known) {
    dropped.reserve(static_cast<std::size_t>(known - newCount));
    for (std::int64_t i = known; i > newCount; --i) dropped.push_back(memory()[i - 1].heap);
  }
  reserve(newCount);
  for (std::int64_t i = known; i < newCount; ++i) store(memory()[i], Slot{});
  setCount(newCount);
}

void Array::rearrange(const std::function<void(std::vector<Slot>&)>& arrange) {
  const Changing change(this);
  std::vector<Slot> arranged(static_cast<std::size_t>(count()));
  for (std::size_t i = 0; i < arranged.size(); ++i) arranged[i] = load(memory()[i]);
  arrange(arranged);
  for (std::size_t i = 0; i < arranged.size(); ++i) store(memory()[i], arranged[i]);
}

std::int64_t Array::find(std::int64_t from, const std::function<bool(Slot)>& matches) const {
  const Using use(this);
  for (std::int64_t i = from < 0 ? 0 : from; i < count(); ++i) {
    if (matches(load(memory()[i]))) return i;
  }
  return -1;
}

std::int64_t Array::upperBound(std::int64_t dimension) const {
  if (dimension < 1 || dimension > dimensions) {
    throwException("OutOfBoundsException", "There is no dimension " + std::to_string(dimension) +
                                               " in an array of " + counted(dimensions, "dimension") + ".");
  }
  if (dimensions == 1) return count() - 1;
  const Using use(this);
  return static_cast<const Grid&>(*this).counts[dimension - 1] - 1;
}

std::int64_t Grid::locate(const Slot* indices) const {
  std::uint64_t at = 0;  // which wraps around only where another dimension has no indices
  for (std::int64_t i = 0; i < dimensions; ++i) {
    const std::int64_t index = indices[i].integer;
    if (index < 0 || index >= counts[i]) [[unlikely]] {
      throwException("OutOfBoundsException", "The index " + std::to_string(index) +
                                                 " is outside of dimension " + std::to_string(i + 1) +
                                                 " of the array, whose upper bound is " +
                                                 std::to_string(counts[i] - 1) + ".");
    }
    at = at * static_cast<std::uint64_t>(counts[i]) + static_cast<std::uint64_t>(index);
  }
  return static_cast<std::int64_t>(at);
}

Slot Grid::get(const Slot* indices) const {
  const Using use(this);
  const Slot value = load(memory()[locate(indices)]);
  if (elementType.isReference()) retain(value.heap);
  return value;
}

void Grid::set(const Slot* indices, Slot value) {
  put([&] { return locate(indices); }, value);
}

// Whether the indices of that element, where there are `of` so many, are among `others` too.
bool Grid::isWithin(std::int64_t at, const std::int64_t* of, const std::int64_t* others) const {
  for (std::int64_t i = dimensions; i > 0; --i) {
    if (at % of[i - 1] >= others[i - 1]) return false;
    at /= of[i - 1];
  }
  return true;
}

void Grid::resize(std::span<const std::int64_t> newCounts) {
  std::int64_t wanted = 1;
  for (const std::int64_t each : newCounts) wanted = std::min(wanted, each);
  for (const std::int64_t each : newCounts) {
    if (wanted != 0 && each > mostElements / wanted) {
      throwException("OutOfMemoryException", "There is no memory for an array of so many elements.");
    }
    wanted *= each;
  }
  Dropped dropped;  // given back when this thread is no longer alone with the array
  const Changing change(this);
  const std::int64_t known = count();
  reserve(wanted);
  if (elementType.isReference()) dropped.reserve(static_cast<std::size_t>(known));
  // What stays moves to the front, where it lies as if there were nothing else, and from there to its place.
  std::int64_t kept = 0;
  for (std::int64_t i = 0; i < known; ++i) {
    const Slot value = load(memory()[i]);
    if (isWithin(i, counts, newCounts.data())) {
      store(memory()[kept++], value);
    } else if (elementType.isReference()) {
      dropped.push_back(value.heap);
    }
  }
  setCount(kept);
  for (std::int64_t i = wanted, left = kept; i > 0; --i) {
    const bool stays = left > 0 && isWithin(i - 1, newCounts.data(), counts);
    store(memory()[i - 1], stays ? load(memory()[--left]) : Slot{});
  }
  setCount(wanted);
  std::copy(newCounts.begin(), newCounts.end(), counts);
}

namespace {

template <typename Made, typename Size>
Ref<Made> make(Type elementType, std::int64_t dimensions, Size size) {
  Heap* thing = allocate(*hostClasses().array, sizeof(Made));
  if (!thing) throwException("OutOfMemoryException", "There is no memory for an array.");
  std::memset(static_cast<void*>(thing + 1), 0, sizeof(Made) - sizeof(Heap));
  auto* array = static_cast<Made*>(thing);
  array->elementType = elementType;
  array->dimensions = dimensions;
  Ref<Made> made = Ref<Made>::adopt(array);
  array->resize(size);
  return made;
}

}  // namespace

Ref<Array> makeArray(Type elementType, std::int64_t count) { return make<Array>(elementType, 1, count); }

Ref<Grid> makeGrid(Type elementType, std::span<const std::int64_t> counts) {
  return make<Grid>(elementType, static_cast<std::int64_t>(counts.size()), counts);
}

void finalizeArray(Heap& thing) {
  auto& array = static_cast<Array&>(thing);
  Slot* const elements = array.elements.load(std::memory_order_relaxed);
  if (array.elementType.isReference()) {
    for (std::int64_t i = array.count(); i > 0; --i) release(elements[i - 1].heap);
  }
  for (Former* head = headOf(elements); head;) std::free(std::exchange(head, head->former));
}

}  // namespace host
