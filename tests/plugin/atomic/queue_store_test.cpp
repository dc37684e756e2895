// The queue's elements and their owner: host calls and trace lines in their order, against a plain array.
#include "atomic/queue_store.h"

#include <algorithm>
#include <random>

#include "frame/failing_allocation.h"
#include "frame/fake_host.h"

namespace qtx {
namespace {

// What happens, in order: the trace's lines and the host's locks and unlocks among them.
std::vector<std::string> events;

REALobject thing(int number) { return reinterpret_cast<REALobject>(static_cast<std::intptr_t>(number) * 16); }

void note(const char* what, REALobject handle) {
  const std::string line =
      std::string(what) + " " + std::to_string(reinterpret_cast<std::intptr_t>(handle) / 16);
  if (debugging) {
    LogMessageX("%s", line.c_str());  // in its place among the trace's lines
  } else {
    events.push_back(line);
  }
}

struct Recorder {
  FakeHost host;
  Recorder() {
    host.offer(
        "REALLockObject", +[](REALobject handle) { note("lock", handle); });
    host.offer(
        "REALUnlockObject", +[](REALobject handle) { note("unlock", handle); });
  }

  // With Debugging off: locks and unlocks.
  template <typename Body>
  std::vector<std::string> calls(Body&& body) {
    events.clear();
    body();
    return events;
  }
  // With Debugging on: the trace too.
  template <typename Body>
  std::vector<std::string> trace(Body&& body) {
    debugging = true;
    const std::string log = logOf(body);
    debugging = false;
    std::vector<std::string> lines;
    for (std::size_t start = 0, end; (end = log.find('\n', start)) != std::string::npos; start = end + 1) {
      lines.push_back(log.substr(start, end - start));
    }
    return lines;
  }
};

using Lines = std::vector<std::string>;

const std::string prefix = "QTX Debug: ";
const std::string construction = prefix + "REALObject::REALObject(REALobject)";
const std::string copyConstruction = prefix + "REALObject::REALObject(const REALObject &)";
const std::string moveConstruction = prefix + "REALObject::REALObject(REALObject &&)";
const std::string copyAssignment = prefix + "REALObject &REALObject::operator=(const REALObject &)";
const std::string moveAssignment = prefix + "REALObject &REALObject::operator=(REALObject &&)";
const std::string destruction = prefix + "REALObject::~REALObject()";

TEST(REALObject, LocksWhatItIsMadeFrom) {
  Recorder recorder;
  EXPECT_EQ(recorder.trace([] { REALObject object(thing(1)); }),
            (Lines{construction, "lock 1", destruction, "unlock 1"}));
  EXPECT_EQ(recorder.trace([] { REALObject object(nullptr); }), (Lines{construction, "lock 0"}));
}

TEST(REALObject, LocksWhenCopied) {
  Recorder recorder;
  const REALObject source(thing(1)), nil(nullptr);
  EXPECT_EQ(recorder.trace([&] { REALObject copy(source); }),
            (Lines{copyConstruction, "lock 1", destruction, "unlock 1"}));
  EXPECT_EQ(recorder.trace([&] { REALObject copy(nil); }), (Lines{copyConstruction, "lock 0"}));
}

TEST(REALObject, TakesOverWhenMoved) {
  Recorder recorder;
  REALObject source(thing(1));
  EXPECT_EQ(recorder.trace([&] {
    REALObject target(std::move(source));
    EXPECT_EQ(source.borrow(), nullptr);
    EXPECT_EQ(target.borrow(), thing(1));
  }),
            (Lines{moveConstruction, destruction, "unlock 1"}));
}

TEST(REALObject, LocksTheIncomingObjectFirst) {
  Recorder recorder;
  REALObject target(thing(1)), nil(nullptr);
  const REALObject source(thing(2));
  EXPECT_EQ(recorder.trace([&] { target = source; }), (Lines{copyAssignment, "lock 2", "unlock 1"}));
  EXPECT_EQ(recorder.trace([&] { target = source; }), (Lines{copyAssignment, "lock 2", "unlock 2"}));
  EXPECT_EQ(recorder.trace([&] { nil = source; }), (Lines{copyAssignment, "lock 2"}));
  EXPECT_EQ(nil.borrow(), thing(2));
  const REALObject empty(nullptr);
  EXPECT_EQ(recorder.trace([&] { target = empty; }), (Lines{copyAssignment, "lock 0", "unlock 2"}));
}

TEST(REALObject, UnlocksWhatAMoveReplaces) {
  Recorder recorder;
  REALObject target(thing(1)), source(thing(2));
  EXPECT_EQ(recorder.trace([&] { target = std::move(source); }), (Lines{moveAssignment, "unlock 1"}));
  EXPECT_EQ(source.borrow(), nullptr);
  EXPECT_EQ(recorder.trace([&] { source = std::move(target); }), (Lines{moveAssignment}));
  EXPECT_EQ(source.borrow(), thing(2));
}

TEST(REALObject, GivesTheCallerAReference) {
  Recorder recorder;
  const REALObject object(thing(1));
  EXPECT_EQ(recorder.trace([&] { EXPECT_EQ(object.get(), thing(1)); }),
            (Lines{prefix + "REALobject REALObject::get() const", "lock 1"}));
  const REALObject nil(nullptr);
  EXPECT_EQ(recorder.trace([&] { EXPECT_EQ(nil.get(), nullptr); }),
            (Lines{prefix + "REALobject REALObject::get() const", "lock 0"}));
}

TEST(REALObject, ComparesHandles) {
  Recorder recorder;
  const REALObject one(thing(1)), same(thing(1)), two(thing(2)), nil(nullptr);
  const std::string equal = prefix + "bool REALObject::operator==(const REALObject &) const ";
  const std::string less = prefix + "bool REALObject::operator<(const REALObject &) const ";
  EXPECT_EQ(recorder.trace([&] { EXPECT_TRUE(one == same); }), (Lines{equal + "0x10, 0x10"}));
  EXPECT_EQ(recorder.trace([&] { EXPECT_FALSE(one == nil); }), (Lines{equal + "0x10, 0x0"}));
  EXPECT_EQ(recorder.trace([&] { EXPECT_TRUE(one < two); }), (Lines{less + "0x10, 0x20"}));
  EXPECT_EQ(recorder.trace([&] { EXPECT_FALSE(two < one); }), (Lines{less + "0x20, 0x10"}));
  EXPECT_EQ(recorder.trace([&] { EXPECT_FALSE(one < same); }), (Lines{less + "0x10, 0x10"}));
}

TEST(REALObject, SkipsOperationsThatTheHostLacks) {
  FakeHost host;
  host.withhold("REALLockObject");
  host.withhold("REALUnlockObject");
  REALObject object(thing(1));
  EXPECT_EQ(object.get(), thing(1));
}

// The oracle: an array that really moves its elements.
class PlainArray {
 public:
  PlainArray() { elements_.reserve(QueueStore::initialCapacity); }
  void append(REALObject&& value) { elements_.push_back(std::move(value)); }
  void append(const REALObject& value) { elements_.push_back(value); }
  void insertAtFront(REALObject&& value) { elements_.insert(elements_.begin(), std::move(value)); }
  void removeAtFront() { elements_.erase(elements_.begin()); }
  void removeAtBack() { elements_.pop_back(); }
  void clear() {
    while (!elements_.empty()) elements_.pop_back();
  }
  std::size_t size() const { return elements_.size(); }
  REALObject& operator[](std::size_t index) { return elements_[index]; }

 private:
  std::vector<REALObject> elements_;
};

struct Step {
  int what;
  REALobject value;
  std::size_t index;
};

template <typename Store>
void run(const std::vector<Step>& steps, std::vector<REALobject>* contents = nullptr) {
  Store store;
  for (const Step& step : steps) {
    switch (step.what) {
      case 0:
        store.append(REALObject(step.value));
        break;
      case 1:
        store.insertAtFront(REALObject(step.value));
        break;
      case 2:
        store.removeAtFront();
        break;
      case 3:
        store.removeAtBack();
        break;
      case 4:
        store.append(store[step.index]);
        break;  // a copy of one of its own, also while growing
      case 5:
        store.clear();
        break;
    }
  }
  for (std::size_t i = 0; contents && i < store.size(); ++i) contents->push_back(store[i].borrow());
  store.clear();
}

std::vector<Step> randomSteps(unsigned seed, int count, int growth) {
  std::mt19937 engine(seed);
  std::vector<Step> steps;
  std::size_t size = 0;
  for (int i = 1; i <= count; ++i) {
    Step step{static_cast<int>(engine() % 2), engine() % 10 == 0 ? nullptr : thing(i), 0};
    if (size > 0) {
      if (static_cast<int>(engine() % 10) >= growth) step.what = 2 + static_cast<int>(engine() % 2);
      if (step.what < 2 && engine() % 5 == 0) step = {4, nullptr, engine() % size};
      if (engine() % 1000 == 0) step.what = 5;
    }
    size = step.what == 5 ? 0 : step.what == 2 || step.what == 3 ? size - 1 : size + 1;
    steps.push_back(step);
  }
  return steps;
}

TEST(QueueStore, TracesAsAPlainArrayDoes) {
  Recorder recorder;
  for (const int growth : {3, 5, 9}) {
    const auto steps = randomSteps(static_cast<unsigned>(growth), 450, growth);
    const Lines expected = recorder.trace([&] { run<PlainArray>(steps); });
    const Lines actual = recorder.trace([&] { run<QueueStore>(steps); });
    EXPECT_EQ(actual.size(), expected.size());
    EXPECT_TRUE(actual == expected);
  }
}

TEST(QueueStore, HoldsAndCallsTheHostAsAPlainArrayDoes) {
  Recorder recorder;
  for (unsigned seed = 0; seed < 60; ++seed) {
    const auto steps = randomSteps(seed, 3000, 3 + static_cast<int>(seed % 7));
    std::vector<REALobject> expected, actual;
    const Lines expectedCalls = recorder.calls([&] { run<PlainArray>(steps, &expected); });
    const Lines actualCalls = recorder.calls([&] { run<QueueStore>(steps, &actual); });
    ASSERT_EQ(actual, expected);
    ASSERT_TRUE(actualCalls == expectedCalls);
  }
}

TEST(QueueStore, ReleasesFromTheBack) {
  Recorder recorder;
  EXPECT_EQ(recorder.calls([] {
    QueueStore store;
    for (int i = 1; i <= 3; ++i) store.append(REALObject(thing(i)));
    events.clear();
  }),
            (Lines{"unlock 3", "unlock 2", "unlock 1"}));
}

// Elements move to new storage when one is added to 100 · 2^n of them, at whichever end.
TEST(QueueStore, DoublesAndKeepsItsCapacity) {
  Recorder recorder;
  QueueStore store;
  // How many elements move while those from `first` to `last` are added, besides the added ones themselves.
  const auto moved = [&](int first, int last, void (QueueStore::*add)(REALObject &&)) {
    const Lines lines = recorder.trace([&] {
      for (int i = first; i <= last; ++i) (store.*add)(REALObject(thing(i)));
    });
    return std::count(lines.begin(), lines.end(), moveConstruction) - (last - first + 1);
  };
  void (QueueStore::*const append)(REALObject &&) = &QueueStore::append;
  EXPECT_EQ(moved(1, 100, append), 0);
  EXPECT_EQ(moved(101, 101, append), 100);
  EXPECT_EQ(moved(102, 200, &QueueStore::insertAtFront), 0);
  EXPECT_EQ(moved(201, 201, &QueueStore::insertAtFront), 200);
  store.clear();
  EXPECT_EQ(moved(1, 400, append), 0);
}

TEST(QueueStore, GivesItsMemoryBack) {
  FakeHost host;
  QueueStore().append(REALObject(nullptr));  // looks the operations up
  const long before = livingAllocations();
  {
    QueueStore store;
    for (int i = 1; i <= 201; ++i) store.append(REALObject(nullptr));
    EXPECT_EQ(livingAllocations(), before + 1);
  }
  EXPECT_EQ(livingAllocations(), before);
}

TEST(QueueStore, ChecksIndexes) {
  FakeHost host;
  QueueStore store;
  EXPECT_THROW(store.at(0), std::out_of_range);
  store.append(REALObject(nullptr));
  EXPECT_EQ(store.at(0).borrow(), nullptr);
  EXPECT_THROW(store.at(1), std::out_of_range);
}

}  // namespace
}  // namespace qtx
