// References that threads read and replace at once.
#include "language/shared_reference.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "runtime/text.h"

namespace host {
namespace {

TEST(SharedReference, GivesReadersAReferenceOfTheirOwn) {
  beginSharing();
  Slot slot = {};
  EXPECT_FALSE(loadShared(slot));
  storeShared(slot, makeText("held").detach());
  const Ref<Heap> first = loadShared(slot);
  EXPECT_EQ(first->references.load(), 2);
  storeShared(slot, nullptr);
  EXPECT_EQ(first->references.load(), 1);
}

TEST(SharedReference, NeverGivesWhatIsGone) {
  beginSharing();
  Slot slot = {};
  storeShared(slot, makeText("0").detach());
  constexpr int readers = 2, writers = 2;
  std::atomic<int> ready{0}, reading{readers}, strange{0};
  const auto startTogether = [&] {
    for (++ready; ready < readers + writers;) std::this_thread::yield();
  };
  std::vector<std::thread> threads;
  threads.reserve(readers + writers);
  for (int i = 0; i < readers; ++i) {
    threads.emplace_back([&] {
      startTogether();
      for (int round = 0; round < 300000; ++round) {
        const Ref<Heap> held = loadShared(slot);
        const std::string_view text = bytesOf(static_cast<const Text*>(held.get()));
        if (text != "0" && text != "1") ++strange;
      }
      --reading;
    });
  }
  for (int i = 0; i < writers; ++i) {
    threads.emplace_back([&] {
      startTogether();
      for (int round = 0; reading > 0; ++round) storeShared(slot, makeText(round % 2 ? "1" : "0").detach());
    });
  }
  for (std::thread& each : threads) each.join();
  EXPECT_EQ(strange, 0);
  EXPECT_EQ(loadShared(slot)->references.load(), 2) << "none is left counted";
  storeShared(slot, nullptr);
}

}  // namespace
}  // namespace host
