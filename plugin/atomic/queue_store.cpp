// The rare part of a queue's elements: growth.
#include "atomic/queue_store.h"

namespace qtx {

template <typename Value>
void QueueStore::growAround(Value&& value, std::size_t index) {
  const std::size_t capacity = capacity_ * 2;
  REALObject* const elements = allocator().allocate(capacity);
  std::construct_at(elements + index, std::forward<Value>(value));  // first: it may be one of those that move
  REALObject* next = elements + (index == 0 ? 1 : 0);
  for (std::size_t i = 0; i < size_; ++i) {
    std::construct_at(next++, std::move(*place(i)));
    std::destroy_at(place(i));
  }
  allocator().deallocate(elements_, capacity_);
  elements_ = elements;
  capacity_ = capacity;
  first_ = 0;
  ++size_;
}

template void QueueStore::growAround(REALObject&&, std::size_t);
template void QueueStore::growAround(const REALObject&, std::size_t);

}  // namespace qtx
