// The elements of a queue: a ring that grows, constant time at both ends.
#pragma once

#include <cstddef>
#include <memory>
#include <stdexcept>

#include "atomic/real_object.h"

namespace qtx {

// Owns its elements' references. Not synchronised.
//
// Only the element concerned is touched. The trace tells of a plain array nevertheless, which is how its
// reader pictures a queue: in it an insertion at the front moves every element back by one, a removal moves
// them forward. With n elements before the call, it is
//   append              one construction from the value
//   insert at front     one move-construction (of the last element, into the place behind it), then n
//                       move-assignments (of the others, and of the value)
//   either, while growing   one construction from the value, then n move-constructions into the new storage
//   remove at front     n − 1 move-assignments, the first of which drops the removed element's reference;
//   where
//                       n is 1, the element's destruction
//   remove at back      the element's destruction
class QueueStore {
 public:
  static constexpr std::size_t initialCapacity = 100;

  QueueStore() : elements_(allocator().allocate(initialCapacity)), capacity_(initialCapacity) {}
  ~QueueStore() {
    clear();
    allocator().deallocate(elements_, capacity_);
  }
  QueueStore(const QueueStore&) = delete;
  QueueStore& operator=(const QueueStore&) = delete;

  std::size_t size() const { return size_; }

  // By position from the front; at checks it and throws std::out_of_range.
  REALObject& operator[](std::size_t index) { return *place(index); }
  const REALObject& operator[](std::size_t index) const { return *place(index); }
  const REALObject& at(std::size_t index) const {
    if (index >= size_) throw std::out_of_range("queue index");
    return *place(index);
  }

  // Both change nothing when memory runs out (std::bad_alloc). A value to be copied may be one of this
  // queue's.
  void append(REALObject&& value) { appendFrom(std::move(value)); }
  void append(const REALObject& value) { appendFrom(value); }
  void insertAtFront(REALObject&& value) {
    if (size_ == capacity_) [[unlikely]] {
      growAround(std::move(value), 0);
      return;
    }
    first_ = (first_ == 0 ? capacity_ : first_) - 1;
    std::construct_at(elements_ + first_, std::move(value));
    traceMoveAssignments(size_);
    ++size_;
  }

  // Of a queue that is not empty.
  void removeAtFront() {
    REALObject* const element = place(0);
    const std::size_t others = --size_;
    first_ = first_ + 1 == capacity_ ? 0 : first_ + 1;
    if (others > 0) {
      *element = REALObject();
      traceMoveAssignments(others - 1);
    }
    std::destroy_at(element);
  }
  void removeAtBack() {
    --size_;
    std::destroy_at(place(size_));
  }

  // From the back to the front; the capacity stays.
  void clear() {
    while (size_ > 0) removeAtBack();
  }

 private:
  static std::allocator<REALObject> allocator() { return {}; }

  REALObject* place(std::size_t index) const {
    const std::size_t position = first_ + index;
    return elements_ + (position < capacity_ ? position : position - capacity_);
  }

  template <typename Value>
  void appendFrom(Value&& value) {
    if (size_ == capacity_) [[unlikely]] {
      growAround(std::forward<Value>(value), size_);
      return;
    }
    std::construct_at(place(size_), std::forward<Value>(value));
    ++size_;
  }

  // Doubles the storage and puts the value in at an index that is either end's.
  template <typename Value>
  void growAround(Value&& value, std::size_t index);

  static void traceMoveAssignments(std::size_t count) {
    if (!debugging.load(std::memory_order_relaxed)) [[likely]]
      return;
    while (count-- > 0) Trace(REALObject::moveAssignment);
  }

  REALObject* elements_;
  std::size_t capacity_;   // doubles when it is exhausted, never shrinks
  std::size_t first_ = 0;  // where the front is
  std::size_t size_ = 0;
};

}  // namespace qtx
