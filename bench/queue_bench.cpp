// The queue, called through its records, beside a std::deque of counted pointers with a std::mutex. A queue
// of some length takes one value and gives one, over and over.
#include <benchmark/benchmark.h>

#include <atomic>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "bench_host.h"

namespace {

// A host object: its count, and room for instance data.
struct Object {
  std::atomic<long> references{1};
  alignas(16) char data[16] = {};
};
static_assert(offsetof(Object, data) == bench::dataOffset);
constexpr std::size_t objectCount = 4096;
Object objects[objectCount];

void lock(REALobject handle) {
  if (handle) reinterpret_cast<Object*>(handle)->references.fetch_add(1, std::memory_order_relaxed);
}
void unlock(REALobject handle) {
  if (handle) reinterpret_cast<Object*>(handle)->references.fetch_sub(1, std::memory_order_acq_rel);
}

// Three ways to hold a queue, all with push, popFirst and popLast that deal in references of the caller's
// own.

class Own {
 public:
  Own() {
    bench::offer("REALLockObject", &lock);
    bench::offer("REALUnlockObject", &unlock);
    push_ = bench::method<void(REALobject, REALobject)>(name, "Push(");
    popFirst_ = bench::method<REALobject(REALobject)>(name, "PopFirst");
    popLast_ = bench::method<REALobject(REALobject)>(name, "PopLast");
    reinterpret_cast<void (*)(REALobject)>(bench::classNamed(name).constructor)(self());
  }
  ~Own() { reinterpret_cast<void (*)(REALobject)>(bench::classNamed(name).destructor)(self()); }
  Own(const Own&) = delete;
  Own& operator=(const Own&) = delete;

  void push(Object& object) { push_(self(), reinterpret_cast<REALobject>(&object)); }
  void popFirst() { unlock(popFirst_(self())); }
  void popLast() { unlock(popLast_(self())); }

 private:
  REALobject self() { return reinterpret_cast<REALobject>(&object_); }
  static constexpr std::string_view name = "AtomicQueueQTX";

  Object object_;
  void (*push_)(REALobject, REALobject);
  REALobject (*popFirst_)(REALobject);
  REALobject (*popLast_)(REALobject);
};

// As a host programmer's C++ colleague would write it: read the end, then remove it.
class Counted {
 public:
  explicit Counted(Object& object) : object_(&object) { add(); }
  Counted(const Counted& other) : object_(other.object_) { add(); }
  Counted(Counted&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  Counted& operator=(Counted other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~Counted() { unlock(reinterpret_cast<REALobject>(object_)); }

 private:
  void add() { lock(reinterpret_cast<REALobject>(object_)); }
  Object* object_;
};
template <bool moveOut>
class Deque {
 public:
  __attribute__((noinline)) void push(Object& object) {
    const std::lock_guard<std::mutex> guard(mutex_);
    elements_.push_back(Counted(object));
  }
  void popFirst() { const Counted dropped = takeFirst(); }
  void popLast() { const Counted dropped = takeLast(); }

 private:
  static decltype(auto) taken(Counted& end) {
    if constexpr (moveOut) {
      return std::move(end);
    } else {
      return std::as_const(end);
    }
  }
  __attribute__((noinline)) Counted takeFirst() {
    const std::lock_guard<std::mutex> guard(mutex_);
    Counted value = taken(elements_.front());
    elements_.pop_front();
    return value;
  }
  __attribute__((noinline)) Counted takeLast() {
    const std::lock_guard<std::mutex> guard(mutex_);
    Counted value = taken(elements_.back());
    elements_.pop_back();
    return value;
  }

  std::mutex mutex_;
  std::deque<Counted> elements_;
};

template <typename Queue>
std::unique_ptr<Queue> filled(benchmark::State& state) {
  auto queue = std::make_unique<Queue>();
  for (std::int64_t i = 0; i < state.range(0); ++i) {
    queue->push(objects[static_cast<std::size_t>(i) % objectCount]);
  }
  return queue;
}

template <typename Queue, void (Queue::*pop)()>
void exchange(benchmark::State& state) {
  // One queue for all threads; the first of them makes it, and the loop's start holds the others back.
  static std::unique_ptr<Queue> queue;
  if (state.thread_index() == 0) queue = filled<Queue>(state);
  auto i = static_cast<std::size_t>(state.thread_index()) * 1000;
  for (auto _ : state) {
    queue->push(objects[i++ % objectCount]);
    ((*queue).*pop)();
  }
  if (state.thread_index() == 0) queue.reset();
}

template <typename Queue>
void add(const std::string& peer) {
  const std::string first = "Push+PopFirst" + peer, last = "Push+PopLast" + peer;
  for (const std::int64_t length : {10, 1'000, 1'000'000}) {
    benchmark::RegisterBenchmark(first.c_str(), exchange<Queue, &Queue::popFirst>)->Arg(length);
    benchmark::RegisterBenchmark(last.c_str(), exchange<Queue, &Queue::popLast>)->Arg(length);
  }
  for (const int threads : {2, 4}) {
    benchmark::RegisterBenchmark(first.c_str(), exchange<Queue, &Queue::popFirst>)
        ->Arg(1000)
        ->Threads(threads)
        ->UseRealTime();
  }
}

const bool registered = [] {
  add<Own>("");
  add<Deque<false>>(" vs std::deque");
  add<Deque<true>>(" vs std::deque, moving out");
  return true;
}();

}  // namespace
