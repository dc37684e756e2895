// The queue: a queue of some length takes one value and gives one, over and over, by one thread or by several
// that share it. What is counted is one Push, one PopFirst, and giving up the value that came out.
#include <algorithm>
#include <atomic>
#include <barrier>
#include <boost/lockfree/queue.hpp>
#include <deque>
#include <iterator>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include "subjects.h"

namespace bench {
namespace {

constexpr std::size_t objectCount = 4096;

class Counted {
 public:
  explicit Counted(REALobject object) : object_(object) { host.lockObject(object_); }
  Counted(const Counted& other) : Counted(other.object_) {}
  Counted(Counted&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  Counted& operator=(Counted other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~Counted() {
    if (object_) host.unlockObject(object_);
  }
  REALobject release() { return std::exchange(object_, nullptr); }

 private:
  REALobject object_;
};

// Of an element that leaves, either its reference is handed on, or the taker gets one more and it is dropped.
template <bool moveOut>
class Deque {
 public:
  void push(REALobject value) {
    const std::lock_guard guard(mutex_);
    elements_.push_back(Counted(value));
  }
  REALobject popFirst() {
    const std::lock_guard guard(mutex_);
    if (elements_.empty()) return nullptr;
    Counted first = moveOut ? std::move(elements_.front()) : Counted(elements_.front());
    elements_.pop_front();
    return first.release();
  }

 private:
  std::mutex mutex_;
  std::deque<Counted> elements_;
};

// Its nodes come from a list of its own; references are handed on.
class LockFree {
 public:
  ~LockFree() {
    while (REALobject each = popFirst()) host.unlockObject(each);
  }
  void push(REALobject value) {
    host.lockObject(value);
    elements_.push(value);
  }
  REALobject popFirst() {
    REALobject first = nullptr;
    elements_.pop(first);
    return first;
  }

 private:
  boost::lockfree::queue<REALobject> elements_{objectCount};
};

// A ring that never grows, under a lock that waits by trying again. A taker gets one more reference and the
// queue's is dropped: these calls of the host are asked for.
class Ring {
 public:
  ~Ring() {
    while (first_ != last_) host.unlockObject(elements_[first_++ % size]);
  }
  void push(REALobject value) {
    host.lockObject(value);
    const Guard guard(lock_);
    elements_[last_++ % size] = value;
  }
  REALobject popFirst() {
    const Guard guard(lock_);
    if (first_ == last_) return nullptr;
    REALobject value = elements_[first_++ % size];
    host.lockObject(value);
    host.unlockObject(value);
    return value;
  }

 private:
  static constexpr std::size_t size = 1 << 21;
  class Guard {
   public:
    explicit Guard(std::atomic<bool>& lock) : lock_(lock) {
      for (int tries = 1; lock_.exchange(true, std::memory_order_acquire); ++tries) {
        if (tries % 64 == 0) std::this_thread::yield();
      }
    }
    ~Guard() { lock_.store(false, std::memory_order_release); }
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;

   private:
    std::atomic<bool>& lock_;
  };
  std::atomic<bool> lock_ = false;
  std::size_t first_ = 0, last_ = 0;
  std::unique_ptr<REALobject[]> elements_{new REALobject[size]};
};

struct QueueKind {
  const char* name;
  REALobject (*make)();
  void (*destroy)(REALobject);
  void (*push)(REALobject, REALobject);
  REALobject (*popFirst)(REALobject);
};
QueueKind ownKind() {
  const char* const name = "AtomicQueueQTX";
  return {"own", [] { return host.newInstance("AtomicQueueQTX"); }, host.unlockObject,
          method<void(REALobject, REALobject)>(name, "Push("),
          method<REALobject(REALobject)>(name, "PopFirst ")};
}
template <typename Queue>
QueueKind kind(const char* name) {
  return {name, [] { return reinterpret_cast<REALobject>(new Queue); },
          [](REALobject self) { delete reinterpret_cast<Queue*>(self); },
          [](REALobject self, REALobject value) { reinterpret_cast<Queue*>(self)->push(value); },
          [](REALobject self) { return reinterpret_cast<Queue*>(self)->popFirst(); }};
}

// The values, the same for all queues.
const std::vector<REALobject>& values() {
  static const std::vector<REALobject> all = [] {
    std::vector<REALobject> made;
    for (std::size_t i = 0; i < objectCount; ++i) made.push_back(host.newInstance("AtomicIntegerQTX"));
    return made;
  }();
  return all;
}

class Filled {
 public:
  Filled(const QueueKind& kind, std::size_t length)
      : kind_(kind), push_(opaque(kind.push)), popFirst_(opaque(kind.popFirst)), self_(kind.make()) {
    for (std::size_t i = 0; i < length; ++i) push_(self_, values()[i % objectCount]);
  }
  ~Filled() { kind_.destroy(self_); }
  Filled(const Filled&) = delete;
  Filled& operator=(const Filled&) = delete;

  void exchange(std::size_t first, std::size_t times) const {
    const auto push = push_;
    const auto popFirst = popFirst_;
    const REALobject* const all = values().data();
    for (std::size_t i = first; i < first + times; ++i) {
      push(self_, all[i % objectCount]);
      host.unlockObject(popFirst(self_));
    }
  }
  // Seconds that several threads take together.
  double exchangeInThreads(int threads, std::size_t times) const {
    if (threads == 1) {
      const Stopwatch watch;
      exchange(0, times);
      return watch.seconds();
    }
    std::optional<Stopwatch> watch;
    std::barrier start(threads, [&]() noexcept { watch.emplace(); });
    std::vector<std::jthread> all;
    for (int i = 0; i < threads; ++i) {
      all.emplace_back([&, i] {
        start.arrive_and_wait();
        exchange(static_cast<std::size_t>(i) * 1000, times / static_cast<std::size_t>(threads) + 1);
      });
    }
    all.clear();
    return watch->seconds();
  }
  // Which values come out, in their order.
  std::string contents() const {
    std::string numbers;
    while (const REALobject value = popFirst_(self_)) {
      numbers += std::to_string(std::find(values().begin(), values().end(), value) - values().begin()) + " ";
      host.unlockObject(value);
    }
    return numbers;
  }

 private:
  QueueKind kind_;
  void (*push_)(REALobject, REALobject);
  REALobject (*popFirst_)(REALobject);
  REALobject self_;
};

// What comes out of a short queue after some exchanges, and whether many threads keep references in order.
std::string behaviourOf(const QueueKind& kind, int threads) {
  const auto references = [] {
    std::vector<std::int64_t> all;
    std::transform(values().begin(), values().end(), std::back_inserter(all), &referencesOf);
    return all;
  };
  const std::vector<std::int64_t> before = references();
  std::string seen;
  {
    const Filled queue(kind, 10);
    queue.exchange(100, 500);
    seen = queue.contents();
  }
  Filled(kind, 10).exchangeInThreads(threads, 1000);
  return seen + (references() == before ? "with" : "without") + " all references in order";
}

Subject exchanges(std::size_t length, int threads) {
  return {.name = "AtomicQueueQTX, Push and PopFirst",
          .contenders =
              [=] {
                const QueueKind kinds[] = {ownKind(), kind<Deque<false>>("std::deque, copying out"),
                                           kind<Deque<true>>("std::deque, moving out (less)"),
                                           kind<LockFree>("Boost lock-free (less)"), kind<Ring>("limit")};
                std::vector<Contender> all;
                for (const QueueKind& each : kinds) {
                  const auto queue = std::make_shared<Filled>(each, length);
                  all.push_back({each.name,
                                 [=](std::size_t calls) { return queue->exchangeInThreads(threads, calls); },
                                 [=](std::size_t) { return behaviourOf(each, threads); }, 1});
                }
                return all;
              },
          .size = static_cast<std::int64_t>(length),
          .unit = "elements",
          .threads = threads};
}

}  // namespace

std::vector<Subject> queueSubjects() {
  std::vector<Subject> all;
  for (const std::size_t length : {10, 1'000, 100'000, 1'000'000}) all.push_back(exchanges(length, 1));
  for (const int threads : {2, 4, 8}) all.push_back(exchanges(1'000, threads));
  return all;
}

}  // namespace bench
