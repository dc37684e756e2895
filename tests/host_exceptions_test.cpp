// C++ exceptions of the host's, thrown through the library itself, which may have a C++ runtime of its own.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <map>
#include <new>
#include <stdexcept>
#include <string>

#include "frame/host_interface.h"

namespace {

struct Object {
  char head[16] = {};
  char data[16] = {};
};

// The class and message of what the library raised last.
std::string raisedClass, raisedMessage;
std::function<void()> lockObject;
REALclassDefinition* queueClass = nullptr;

REALobject handleOf(Object& object) { return reinterpret_cast<REALobject>(&object); }
Object exceptionObject, queue, value;

template <typename Result, typename... Arguments>
void* operation(Result (*function)(Arguments...)) {
  return reinterpret_cast<void*>(function);
}

void* resolve(const char* name) {
  static const std::map<std::string, void*> operations = {
      {"REALGetRBVersion", operation(+[] { return 2024.01; })},
      {"RegisterPluginVersion", operation(+[](std::int32_t) {})},
      {"PluginRegisterClass", operation(+[](REALclassDefinition* record) {
         record->dataOffset = sizeof Object::head;
         if (std::strcmp(record->name, "AtomicQueueQTX") == 0) queueClass = record;
       })},
      {"REALLockObject", operation(+[](REALobject) { lockObject(); })},
      {"PluginNewInstance", operation(+[](const char* className) {
         raisedClass = className;
         return handleOf(exceptionObject);
       })},
      {"REALBuildStringWithEncoding", operation(+[](const char* bytes, std::int32_t length, std::uint32_t) {
         raisedMessage.assign(bytes, static_cast<std::size_t>(length));
         return REALstring{};
       })},
  };
  const auto found = operations.find(name);
  return found == operations.end() ? nullptr : found->second;
}

template <typename Function>
Function member(const char* declaration) {
  for (std::size_t i = 0; i < queueClass->methodCount; ++i) {
    const REALmethodDefinition& method = queueClass->methods[i];
    if (std::strcmp(method.declaration, declaration) == 0) return reinterpret_cast<Function>(method.function);
  }
  ADD_FAILURE() << declaration;
  return nullptr;
}

struct HostExceptions : testing::Test {
  HostExceptions() {
    void* library = dlopen(QTX_LIBRARY_FILE, RTLD_NOW | RTLD_LOCAL);
    if (!library) throw std::runtime_error(dlerror());
    reinterpret_cast<void (*)(REALresolver)>(dlsym(library, "REALPluginMain"))(resolve);
    lockObject = [] {};
    queue = {};
    reinterpret_cast<void (*)(REALobject)>(queueClass->constructor)(handleOf(queue));
  }
  ~HostExceptions() override {
    reinterpret_cast<void (*)(REALobject)>(queueClass->destructor)(handleOf(queue));
  }
  void push() {
    member<void (*)(REALobject, REALobject)>("Push(value as Variant)")(handleOf(queue), handleOf(value));
  }
  REALobject popFirst() { return member<REALobject (*)(REALobject)>("PopFirst as Variant")(handleOf(queue)); }
};

struct OwnException : std::exception {
  const char* what() const noexcept override { return "own"; }
};
struct Unrelated {
  std::string text = "long enough that the string has memory of its own to give back";
};

template <typename Exception>
std::function<void()> throwing(Exception exception) {
  return [exception] { throw exception; };
}

TEST_F(HostExceptions, KeepTheirNames) {
  const struct {
    std::function<void()> lock;
    const char *className, *message;
  } rows[] = {
      {throwing(std::range_error("far")), "OutOfBoundsException", "C++ reports range error: far"},
      {throwing(std::out_of_range("out")), "OutOfBoundsException", "C++ reports range error: out"},
      {throwing(std::overflow_error("much")), "OutOfBoundsException", "C++ reports overflow error: much"},
      {throwing(std::underflow_error("little")), "OutOfBoundsException",
       "C++ reports underflow error: little"},
      {throwing(std::logic_error("odd")), "RuntimeException", "C++ Exception: odd"},
      {throwing(OwnException()), "RuntimeException", "C++ Exception: own"},
      {throwing(Unrelated()), "RuntimeException", "Sorry, but there was an unnamed C++ Exception."},
      {throwing(1), "RuntimeException", "Sorry, but there was an unnamed C++ Exception."},
  };
  for (const auto& row : rows) {
    lockObject = row.lock;
    raisedClass = raisedMessage = "";
    push();
    EXPECT_EQ(raisedClass, row.className);
    EXPECT_EQ(raisedMessage, row.message);
    EXPECT_EQ(popFirst(), nullptr) << "nothing was put in, and the queues' lock is free";
  }
  lockObject = throwing(std::bad_alloc());
  push();
  EXPECT_EQ(raisedClass, "OutOfMemoryException");
  EXPECT_EQ(raisedMessage.substr(0, 27), "Failed to allocate memory: ");
}

// The runtimes' records of what is thrown and caught stay in order, however often that happens.
TEST_F(HostExceptions, MayBeThrownAgainAndAgain) {
  for (int i = 0; i < 10'000; ++i) {
    lockObject = throwing(Unrelated());
    push();
    lockObject = throwing(std::range_error("far"));
    push();
    ASSERT_EQ(raisedMessage, "C++ reports range error: far");
    try {
      throw std::out_of_range("the host's own");
    } catch (const std::exception& exception) {
      ASSERT_STREQ(exception.what(), "the host's own");
      push();  // while one is being handled
      ASSERT_STREQ(exception.what(), "the host's own");
    }
  }
}

// Its own exceptions, which never leave it, while one of the host's is on its way.
TEST_F(HostExceptions, LeaveTheLibrarysOwnAlone) {
  lockObject = [] {};
  for (int i = 0; i < 101; ++i) push();
  for (int i = 0; i < 101; ++i) EXPECT_EQ(popFirst(), handleOf(value));
  struct AtTheEnd {
    HostExceptions& test;
    ~AtTheEnd() {
      lockObject = throwing(std::range_error("far"));
      test.push();
    }
  };
  try {
    const AtTheEnd atTheEnd{*this};
    throw std::logic_error("odd");
  } catch (const std::logic_error& exception) {
    EXPECT_STREQ(exception.what(), "odd");
  }
  EXPECT_EQ(raisedMessage, "C++ reports range error: far");
}

}  // namespace
