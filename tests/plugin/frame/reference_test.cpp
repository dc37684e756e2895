// The owning handle: which host operations it calls, and when.
#include "frame/reference.h"

#include <utility>

#include "fake_host.h"

namespace qtx {
namespace {

using Lines = std::vector<std::string>;
Lines calls;
std::map<const void*, std::string> names;

template <typename Handle>
void note(const char* what, Handle handle) {
  calls.push_back(std::string(what) + " " + (handle ? names.at(handle) : "nil"));
}

// Handles that only have names, and a host that writes down what is done with them.
struct Recorder {
  FakeHost host;
  char places[2] = {};
  Recorder() {
    calls.clear();
    names = {{&places[0], "a"}, {&places[1], "b"}};
    host.offer(
        "REALLockObject", +[](REALobject handle) { note("lock object", handle); });
    host.offer(
        "REALUnlockObject", +[](REALobject handle) { note("unlock object", handle); });
    host.offer(
        "REALLockString", +[](REALstring handle) { note("lock string", handle); });
    host.offer(
        "REALUnlockString", +[](REALstring handle) { note("unlock string", handle); });
  }
  template <typename Handle>
  Handle handle(int i) {
    return reinterpret_cast<Handle>(&places[i]);
  }
};

// What is called while `body` runs.
template <typename Body>
Lines callsOf(const Body& body) {
  calls.clear();
  body();
  return std::exchange(calls, {});
}

template <typename Handle>
class References : public testing::Test {
 public:
  Recorder recorder;
  Handle a = recorder.handle<Handle>(0), b = recorder.handle<Handle>(1);
  const std::string kind =
      std::is_same_v<Handle, REALstring> ? "string " : "object ";  // an array is an object
  std::string lock(const char* name) const { return "lock " + kind + name; }
  std::string unlock(const char* name) const { return "unlock " + kind + name; }
};
using Handles = testing::Types<REALobject, REALstring, REALarray>;
TYPED_TEST_SUITE(References, Handles);

TYPED_TEST(References, AreTakenOverOrAdded) {
  EXPECT_EQ(callsOf([&] { const Reference adopted(this->a); }), Lines({this->unlock("a")}));
  EXPECT_EQ(callsOf([&] { const auto added = Reference<TypeParam>::to(this->a); }),
            Lines({this->lock("a"), this->unlock("a")}));
  EXPECT_EQ(callsOf([&] { const Reference<TypeParam> nothing; }), Lines());
  EXPECT_EQ(callsOf([&] { const Reference nothing(static_cast<TypeParam>(nullptr)); }), Lines());
  EXPECT_EQ(callsOf([&] { Reference<TypeParam>::to(nullptr); }), Lines({this->lock("nil")}));
}

TYPED_TEST(References, AreCopiedWithOneMoreAndMovedWithout) {
  EXPECT_EQ(callsOf([&] {
              const Reference first(this->a);
              const Reference second(first);
              EXPECT_EQ(second.borrow(), this->a);
            }),
            Lines({this->lock("a"), this->unlock("a"), this->unlock("a")}));
  EXPECT_EQ(callsOf([&] {
              Reference first(this->a);
              const Reference second(std::move(first));
              EXPECT_EQ(second.borrow(), this->a);
              EXPECT_FALSE(first);
            }),
            Lines({this->unlock("a")}));
}

TYPED_TEST(References, AreAssigned) {
  EXPECT_EQ(callsOf([&] {
              Reference first(this->a);
              const Reference second(this->b);
              first = second;
              EXPECT_EQ(first.borrow(), this->b);
            }),
            Lines({this->lock("b"), this->unlock("a"), this->unlock("b"), this->unlock("b")}));
  EXPECT_EQ(callsOf([&] {
              Reference first(this->a), second(this->b);
              first = std::move(second);
              EXPECT_EQ(first.borrow(), this->b);
              EXPECT_FALSE(second);
            }),
            Lines({this->unlock("a"), this->unlock("b")}));
}

TYPED_TEST(References, AreAssignedToThemselves) {
  EXPECT_EQ(callsOf([&] {
              Reference first(this->a);
              const auto& same = first;
              first = same;
              EXPECT_EQ(first.borrow(), this->a);
            }),
            Lines({this->lock("a"), this->unlock("a"), this->unlock("a")}));
  EXPECT_EQ(callsOf([&] {
              Reference first(this->a);
              auto& same = first;
              first = std::move(same);
              EXPECT_EQ(first.borrow(), this->a);
            }),
            Lines({this->unlock("a")}));
}

TYPED_TEST(References, AreHandedOut) {
  EXPECT_EQ(callsOf([&] {
              Reference first(this->a);
              EXPECT_TRUE(first);
              EXPECT_EQ(first.release(), this->a);
              EXPECT_FALSE(first);
              EXPECT_EQ(first.release(), nullptr);
            }),
            Lines());
}

}  // namespace
}  // namespace qtx
