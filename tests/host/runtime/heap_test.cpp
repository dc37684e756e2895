// Things that are alive.
#include "runtime/heap.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "runtime/array.h"
#include "runtime/host_classes.h"
#include "runtime/object.h"
#include "runtime/settings.h"
#include "runtime/text.h"

namespace host {
namespace {

std::string alive() {
  std::string all;
  forEachLive(
      [&](const Heap& thing) { all += std::string(bytesOf(static_cast<const Text*>(&thing))) + " "; });
  return all;
}

TEST(LiveThings, AreListedFromTheNewest) {
  startRuntime();
  const Ref<Text> first = makeText("first");
  Ref<Text> second = makeText("second");
  const Ref<Text> third = makeText("third");
  EXPECT_EQ(alive(), "third second first ");
  second = nullptr;
  EXPECT_EQ(alive(), "third first ");
}

TEST(LiveThings, KeepTheirOrderWhenMostOthersGo) {
  startRuntime();
  std::vector<Ref<Text>> all;
  for (int i = 0; i < 1000; ++i) all.push_back(makeText(std::to_string(i)));
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (i % 250 != 3) all[i] = nullptr;
  }
  EXPECT_EQ(alive(), "753 503 253 3 ");
  for (std::size_t i = 3; i < all.size(); i += 250) all[i] = nullptr;
  EXPECT_EQ(alive(), "");
}

TEST(LiveThings, MayGoOnAnotherThreadThanTheyCameFrom) {
  startRuntime();
  std::vector<Ref<Text>> made;
  std::thread([&] {
    for (int i = 0; i < 100; ++i) made.push_back(makeText(std::to_string(i)));
  }).join();
  made.resize(1);
  EXPECT_EQ(alive(), "0 ");
  made.clear();
  EXPECT_EQ(alive(), "");
}

std::string misused() {
  std::string all;
  forEachMisused(
      [&](const Heap& thing) { all += std::string(bytesOf(static_cast<const Text*>(&thing))) + " "; });
  return all;
}

TEST(DestroyedThings, AreKeptOnRequestAndTellWhetherTheyAreUsed) {
  startRuntime();
  settings().keepsMemory = true;
  Heap* const left = makeText("left alone").detach();
  Heap* const dropped = makeText("dropped").detach();
  Heap* const revived = makeText("revived").detach();
  for (Heap* each : {left, dropped, revived}) {
    EXPECT_TRUE(isAlive(*each));
    release(each);
    EXPECT_FALSE(isAlive(*each));
  }
  EXPECT_EQ(alive(), "");
  EXPECT_EQ(misused(), "");
  release(dropped);
  EXPECT_EQ(misused(), "dropped ");
  retain(revived);
  release(revived);
  EXPECT_EQ(misused(), "dropped revived ");
}

TEST(DestroyedThings, AreNoneOnAHostThatCannotAddReferences) {
  startRuntime();
  settings().keepsMemory = true;
  EXPECT_TRUE(destroysAnything());
  settings().withheld = {"REALLockString"};
  EXPECT_FALSE(destroysAnything());
  Heap* const text = makeText("stays").detach();
  release(text);
  EXPECT_TRUE(isAlive(*text));
  EXPECT_EQ(alive(), "stays ");
}

TEST(LiveThings, GoInAChainOfAnyLength) {
  startRuntime();
  for (const std::int64_t length : {63, 64, 65, 66, 500000}) {
    Ref<> chain;
    for (std::int64_t i = 0; i < length; ++i) {
      Ref<Array> array = makeArray({Kind::Variant}, 2);
      array->set(0, Slot{.heap = chain.get()});
      array->set(1, Slot{.heap = makeObject(*hostClasses().date).get()});
      chain = array;
    }
    chain = nullptr;
    EXPECT_EQ(alive(), "");
  }
}

}  // namespace
}  // namespace host
