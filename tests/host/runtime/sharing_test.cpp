// What threads do to one thing at once.
#include "runtime/sharing.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <cstring>
#include <functional>
#include <thread>
#include <vector>

#include "frame/host_interface.h"
#include "runtime/array.h"
#include "runtime/call.h"
#include "runtime/exception.h"
#include "runtime/host_classes.h"
#include "runtime/text.h"

namespace host {
namespace {

void onThreads(int count, const std::function<void(int thread)>& body) {
  beginSharing();
  std::atomic<int> ready{0};
  std::vector<std::thread> threads;
  threads.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    threads.emplace_back([&, i] {
      for (++ready; ready < count;) std::this_thread::yield();
      body(i);
    });
  }
  for (std::thread& each : threads) each.join();
}

TEST(Sharing, LetsOneChangeOrManyUse) {
  std::int64_t left = 0, right = 0;  // plain: the sanitizer would see two at once
  std::atomic<int> odd{0};
  onThreads(4, [&](int thread) {
    for (int round = 0; round < 20000; ++round) {
      if (thread % 2 == 0) {
        const Changing change(&left);
        ++left;
        ++right;
      } else {
        const Using use(&left);
        if (left != right) ++odd;
      }
    }
  });
  EXPECT_EQ(left, 40000);
  EXPECT_EQ(odd, 0);
}

TEST(Sharing, OfOneThingLeavesOthersAlone) {
  beginSharing();
  std::int64_t things[200] = {};
  const Using use(&things[0]);
  // Another thing, even one that shares its place, is changed meanwhile.
  std::thread([&] {
    for (std::size_t i = 1; i < std::size(things); ++i) {
      const Changing change(&things[i]);
      ++things[i];
    }
  }).join();
  for (std::size_t i = 1; i < std::size(things); ++i) EXPECT_EQ(things[i], 1);
}

TEST(Sharing, CopiesBytesAtAnyAddress) {
  for (const bool shares : {false, true}) {
    if (shares) beginSharing();
    alignas(8) unsigned char memory[32];
    for (std::size_t i = 0; i < sizeof memory; ++i) memory[i] = static_cast<unsigned char>(i);
    for (std::size_t size = 0; size <= 16; ++size) {
      for (std::size_t at = 0; at < 8; ++at) {
        unsigned char copied[17] = {}, written[32] = {};
        copyFromShared(copied, memory + at, size);
        EXPECT_EQ(std::memcmp(copied, memory + at, size), 0);
        EXPECT_EQ(copied[size], 0);
        copyToShared(written + at, copied, size);
        EXPECT_EQ(std::memcmp(written + at, copied, size), 0);
        EXPECT_EQ(written[at + size], 0);
        clearShared(written + at, size);
        for (const unsigned char each : written) EXPECT_EQ(each, 0);
      }
    }
  }
}

TEST(SharedArray, LosesNothingThatIsAppendedOrSet) {
  startRuntime();
  const Ref<Array> numbers = makeArray({Kind::Int64}, 4);
  const Ref<Array> texts = makeArray({Kind::String}, 4);
  constexpr std::int64_t rounds = 5000;
  onThreads(4, [&](int thread) {
    for (std::int64_t i = 1; i <= rounds; ++i) {
      numbers->append(Slot{.integer = 1});
      numbers->set(thread, Slot{.integer = i});
      const Ref<Text> text = makeText("text");
      texts->append(Slot{.heap = text.get()});
      texts->set(thread, Slot{.heap = text.get()});
      if (numbers->get(thread).integer != i) ADD_FAILURE();
      const Ref<> held = Ref<>::adopt(texts->get(thread).heap);
      if (held.get() != text.get()) ADD_FAILURE();
    }
  });
  ASSERT_EQ(numbers->count(), 4 + 4 * rounds);
  ASSERT_EQ(texts->count(), 4 + 4 * rounds);
  for (std::int64_t i = 0; i < 4; ++i) EXPECT_EQ(numbers->get(i).integer, rounds);
  for (std::int64_t i = 4; i < numbers->count(); ++i) EXPECT_EQ(numbers->get(i).integer, 1);
  for (std::int64_t i = 4; i < texts->count(); ++i) {
    const Ref<> held = Ref<>::adopt(texts->get(i).heap);
    EXPECT_EQ(bytesOf(static_cast<const Text*>(held.get())), "text");
  }
}

TEST(SharedGrid, IsReadAndWrittenWhileItsBoundsChange) {
  startRuntime();
  const Ref<Grid> numbers = makeGrid({Kind::Int64}, std::vector<std::int64_t>{4, 4});
  const Ref<Grid> texts = makeGrid({Kind::String}, std::vector<std::int64_t>{4, 4});
  std::atomic<int> odd{0};
  onThreads(4, [&](int thread) {
    const Ref<Text> text = makeText("text");
    for (std::int64_t round = 0; round < 3000; ++round) {
      if (thread == 0) {
        numbers->resize(std::vector{round % 6, 1 + round % 5});
        texts->resize(std::vector{1 + round % 5, round % 6});
        continue;
      }
      const Slot indices[] = {{.integer = round % 3}, {.integer = round % 4}};
      try {
        numbers->set(indices, {.integer = 5});
        texts->set(indices, {.heap = text.get()});
        const std::int64_t number = numbers->get(indices).integer;
        const Ref<> held = Ref<>::adopt(texts->get(indices).heap);
        if (number != 0 && number != 5) ++odd;
        if (held && bytesOf(static_cast<const Text*>(held.get())) != "text") ++odd;
      } catch (const HostException&) {  // outside of the bounds of the moment
      }
    }
  });
  EXPECT_EQ(odd, 0);
}

TEST(SharedArray, GivesEachElementToOneThread) {
  startRuntime();
  constexpr std::int64_t count = 20000;
  const Ref<Array> array = makeArray({Kind::Int64}, count);
  for (std::int64_t i = 0; i < count; ++i) array->set(i, Slot{.integer = i});
  std::atomic<std::int64_t> sum{0}, taken{0};
  onThreads(3, [&](int) {
    try {
      while (true) {
        sum += array->pop().integer;
        ++taken;
      }
    } catch (const HostException&) {
    }
  });
  EXPECT_EQ(taken, count);
  EXPECT_EQ(sum, count * (count - 1) / 2);
}

// As libraries do it: the number first, then where the elements are, then one of them. They need no more than
// plain loads, each of which takes its address from the one before; the language wants to be told.
TEST(SharedArray, IsReadFromMemoryWhileItGrows) {
  startRuntime();
  const Ref<Array> array = makeArray({Kind::Double}, 0);
  array->append(Slot{.number = 1.5});
  std::atomic<bool> done{false};
  std::atomic<int> odd{0};
  onThreads(2, [&](int thread) {
    if (thread == 0) {
      for (int i = 0; i < 100000; ++i) array->append(Slot{.number = 1.5});
      done = true;
    }
    while (!done) {
      const std::int64_t count = array->count();
      const double* elements;
      __atomic_load(reinterpret_cast<const double* const*>(reinterpret_cast<const char*>(array.get()) +
                                                           arrayShape::storage),
                    &elements, __ATOMIC_ACQUIRE);
      if (loadRelaxed(elements[count - 1]) != 1.5) ++odd;
    }
  });
  EXPECT_EQ(odd, 0);
}

// A function of a library that locks each element of an array that it finds in memory.
std::atomic<int> strange{0};
void lockEach(Array* array) {
  const std::int64_t count = array->count();
  Heap* const* elements;
  __atomic_load(
      reinterpret_cast<Heap* const* const*>(reinterpret_cast<const char*>(array) + arrayShape::storage),
      &elements, __ATOMIC_ACQUIRE);
  for (std::int64_t i = 0; i < count; ++i) {
    Heap* const seen = __atomic_load_n(&elements[i], __ATOMIC_ACQUIRE);
    if (i == 4) std::this_thread::yield();
    const Ref<> locked = Ref<>::share(seen);
    if (seen && bytesOf(static_cast<const Text*>(seen)) != "text") ++strange;
  }
}

TEST(SharedArray, KeepsWhatALibraryMayHaveSeen) {
  startRuntime();
  const Call call(reinterpret_cast<REALproc>(&lockEach), {{{Kind::Variant, true}}}, Type{});
  const Ref<Array> array = makeArray({Kind::String}, 8);
  onThreads(4, [&](int thread) {
    for (int round = 0; round < 1000; ++round) {
      if (thread % 2 == 0) {
        const Slot arguments[] = {{.heap = array.get()}};
        call(arguments);
        continue;
      }
      array->append(Slot{.heap = makeText("text").get()});
      array->set(round % 8, Slot{.heap = makeText("text").get()});
      if (round % 5 == 0) array->remove(0);
      release(array->pop().heap);
      // Between two looks, the other thread takes up to two away, and 8 have to be left.
      if (array->count() < 10 || round % 7 == 0) array->resize(round % 2 == 0 ? 10 : 14);
    }
  });
  EXPECT_EQ(strange, 0);
  array->resize(0);
  const Slot arguments[] = {{.heap = array.get()}};
  call(arguments);
  int texts = 0;
  forEachLive([&](const Heap& thing) { texts += thing.objectClass == hostClasses().text; });
  EXPECT_EQ(texts, 0) << "none is kept longer";
}

}  // namespace
}  // namespace host
