// A plug-in library with one fault, which QTX_BROKEN names; "nothing" has none. What the faults are beside is
// as it should be.
#include <sched.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

#include "frame/host_interface.h"

namespace {

REALresolver resolver;

// Asked for at each call; what the host does not have does nothing.
template <typename Result, typename... Arguments>
Result host(const char* name, Arguments... arguments) {
  void* const found = resolver(name);
  return found ? reinterpret_cast<Result (*)(Arguments...)>(found)(arguments...) : Result();
}
REALobject newCounter() { return host<REALobject>("PluginNewInstance", "Counter"); }

REALclassDefinition counterClass;
std::int64_t& dataOf(REALobject counter) {
  return *reinterpret_cast<std::int64_t*>(reinterpret_cast<char*>(counter) + counterClass.dataOffset);
}

// The sound part.
void makeCounter(REALobject self) { dataOf(self) = 1; }
std::int64_t getCount(REALobject self, RBInteger) { return dataOf(self); }
void setCount(REALobject self, RBInteger, std::int64_t value) { dataOf(self) = value; }
std::int64_t plus(REALobject self, REALobject other) { return dataOf(self) ^ (other ? dataOf(other) : 0); }
REALobject next(REALobject self) {
  const REALobject made = newCounter();
  if (made) dataOf(made) = dataOf(self) ^ 1;
  return made;
}
double twice(double x) { return x * 2; }
REALstring echo(REALstring text) {
  if (text) host<void>("REALLockString", text);
  return text;
}

// The faulty ones.
std::int64_t sumOfTwo(std::int64_t a, std::int64_t b) { return a ^ b; }
std::int64_t roundedDown(double x) { return x > 0 && x < 1e9 ? static_cast<std::int64_t>(x) : 0; }
std::int64_t readCounter(REALobject counter) { return dataOf(counter); }
std::int64_t writeCounter(REALobject self, REALobject other) { return dataOf(self) = dataOf(other); }
void countWithoutEnd(std::int64_t from) {
  static std::atomic<std::int64_t> left;
  for (left = from; left < 0; left = -1) {
  }
}
void keepReference(REALobject counter) {
  if (counter) host<void>("REALLockObject", counter);
}
void dropReference(REALobject counter) {
  if (counter) host<void>("REALUnlockObject", counter);
}
REALobject borrowedResult(REALobject counter) { return counter; }
REALstring lostText(std::int64_t number) {
  host<REALstring>("REALBuildStringWithEncoding", "lost", std::int32_t{4}, encoding::utf8);
  (void)number;
  return nullptr;
}
// What the compiler cannot see through, so that it leaves the allocations in.
void* (*volatile allocate)(std::size_t) = std::malloc;
std::mutex once;
void leaveLocked(REALobject counter) {
  once.lock();
  if (counter) once.unlock();
}
std::recursive_mutex again;
void leaveLockedForOthers(std::int64_t) { again.lock(); }
void throwNegative(std::int64_t number) {
  if (number < 0) throw std::out_of_range("negative");
}
std::uint32_t withoutOperation(REALstring text) {
  return reinterpret_cast<std::uint32_t (*)(REALstring)>(resolver("REALGetStringEncoding"))(text);
}
REALobject withoutInstance(std::int64_t value) {
  const REALobject made = newCounter();
  dataOf(made) = value;
  return made;
}
std::int64_t brokenForGood(std::int64_t value) {
  static bool failed = false;
  const REALobject made = newCounter();
  failed = failed || !made;
  if (made) host<void>("REALUnlockObject", made);
  return failed ? -7 : value;
}
REALobject leakWhereRefused(std::int64_t) {
  const REALobject made = newCounter(), other = newCounter();
  if (!other) return nullptr;  // and the first one?
  host<void>("REALUnlockObject", other);
  return made;
}
std::int64_t sharedByThreads(std::int64_t value) {
  static std::atomic<std::int64_t> last;
  last = value;
  for (int i = 0; i < 3; ++i) sched_yield();
  return last;
}
REALobject textForCounter(std::int64_t) {
  return reinterpret_cast<REALobject>(
      host<REALstring>("REALBuildStringWithEncoding", "text", std::int32_t{4}, encoding::utf8));
}
void endProcess(std::int64_t value) {
  if (value < 0) _exit(3);
}
void crashAtSome(std::int64_t value) {
  if (value > std::int64_t{1} << 40 && (value & 7) == 5) std::abort();
}
// Where there is no memory.
REALobject useWithoutLooking(std::int64_t value) {
  auto* const memory = static_cast<volatile char*>(allocate(64));
  memory[0] = static_cast<char>(value);
  std::free(const_cast<char*>(memory));
  return nullptr;
}
void stayLocked(std::int64_t) {
  once.lock();
  void* const memory = allocate(64);
  if (!memory) return;
  std::free(memory);
  once.unlock();
}
REALobject leakWithoutMemory(std::int64_t) {
  const REALobject made = newCounter();
  void* const memory = allocate(64);
  if (!memory) return nullptr;
  std::free(memory);
  return made;
}
std::int64_t otherwiseWithoutMemory(std::int64_t value) {
  static bool failed = false;
  void* const memory = allocate(64);
  failed = failed || !memory;
  std::free(memory);
  return failed ? -7 : value;
}
void crashAtOnce(REALobject) { std::abort(); }

template <typename Function>
REALproc address(Function* function) {
  return reinterpret_cast<REALproc>(function);
}
template <typename Function>
REALmethodDefinition method(const char* declaration, Function* function,
                            std::uint32_t flags = recordFlags::console) {
  return {address(function), nullptr, declaration, flags, nullptr, 0};
}
REALproperty property(const char* name, const char* type, REALproc getter, REALproc setter,
                      std::intptr_t parameter = 0) {
  REALproperty record = {};
  record.name = name;
  record.type = type;
  record.flags = recordFlags::console | recordFlags::property;
  record.getter = getter;
  record.setter = setter;
  record.parameter = parameter;
  return record;
}
const auto field = reinterpret_cast<REALproc>(~std::uintptr_t{0});

std::vector<REALproperty> properties = {property("Count", "Integer", address(getCount), address(setCount)),
                                        property("Raw", "Integer", field, field)};
std::vector<REALmethodDefinition> methods = {method("Plus(other as Counter) as Integer", plus),
                                             method("NextOne as Counter", next)};
std::vector<REALmethodDefinition> functions = {method("Twice(x as Double) as Double", twice),
                                               method("Echo(text as String) as String", echo)};

// What each fault adds.
const std::map<std::string, REALmethodDefinition> faultyFunctions = {
    {"declaration", method("Broken(x as Integer as Integer", twice)},
    {"type", method("Broken(x as integr) as Double", twice)},
    {"no function", method<void()>("Broken", nullptr)},
    {"another argument", method("Broken(a as Integer) as Integer", sumOfTwo)},
    {"argument of another kind", method("Broken(x as Integer) as Integer", roundedDown)},
    {"result of another kind", method("Broken(x as Integer) as Double", sumOfTwo)},
    {"flags for no host", method("Broken(x as Double) as Double", twice, 0x40004)},
    {"no flags", method("Broken(x as Double) as Double", twice, 0)},
    {"flags for newer hosts", method("Broken(x as Double) as Double", twice, 0x30C)},
    {"duplicate", method("twice(y as double) as double", twice)},
    {"parameters of one name", method("Broken(x as Integer, X as Integer) as Integer", sumOfTwo)},
    {"class nobody registers", method("Broken(x as Nowhere)", keepReference)},
    {"nil", method("Broken(counter as Counter) as Integer", readCounter)},
    {"hang", method("Broken(number as Integer)", countWithoutEnd)},
    {"leak", method("Broken(counter as Counter)", keepReference)},
    {"leak of a text", method("Broken(number as Integer) as String", lostText)},
    {"over-release", method("Broken(counter as Counter)", dropReference)},
    {"borrowed result", method("Broken(counter as Counter) as Counter", borrowedResult)},
    {"lock", method("Broken(counter as Counter)", leaveLocked)},
    {"lock for others", method("Broken(number as Integer)", leaveLockedForOthers)},
    {"throw", method("Broken(number as Integer)", throwNegative)},
    {"missing", method("Broken(text as String) as UInt32", withoutOperation)},
    {"refused", method("Broken(number as Integer) as Counter", withoutInstance)},
    {"changed", method("Broken(number as Integer) as Integer", brokenForGood)},
    {"leak where refused", method("Broken(number as Integer) as Counter", leakWhereRefused)},
    {"threads", method("Broken(number as Integer) as Integer", sharedByThreads)},
    {"result", method("Broken(number as Integer) as Counter", textForCounter)},
    {"exit", method("Broken(number as Integer)", endProcess)},
    {"memory", method("Broken(number as Integer) as Counter", useWithoutLooking)},
    {"memory and lock", method("Broken(number as Integer)", stayLocked)},
    {"memory and leak", method("Broken(number as Integer) as Counter", leakWithoutMemory)},
    {"memory and change", method("Broken(number as Integer) as Integer", otherwiseWithoutMemory)},
    {"random", method("Broken(number as Integer)", crashAtSome)},
};

void breakClass(const std::string& fault) {
  if (fault == "offset") properties.push_back(property("Broken", "Integer", field, field, 12));
  if (fault == "odd offset") properties.push_back(property("Broken", "Int32", field, field, 2));
  if (fault == "no getter") properties.push_back(property("Broken", "Integer", nullptr, nullptr));
  if (fault == "property of one name") properties.push_back(property("count", "Integer", field, field));
  if (fault == "name") properties.push_back(property("Bro ken", "Integer", field, field));
  if (fault == "initializer") counterClass.constructor = address(crashAtOnce);
  if (fault == "destructor") counterClass.destructor = address(crashAtOnce);
  if (fault == "method at nil")
    methods.push_back(method("Broken(other as Counter) as Integer", writeCounter));
  if (fault == "superclass") counterClass.superName = "Nowhere";
}

}  // namespace

extern "C" __attribute__((visibility("default"))) void REALPluginMain(REALresolver given) {
  resolver = given;
  const char* named = std::getenv("QTX_BROKEN");
  const std::string fault = named ? named : "nothing";
  if (fault == "load") std::abort();
  if (fault == "load and throw a number") throw 5;
  if (fault == "load and throw") throw std::out_of_range("no");
  const void* const version = resolver("REALGetRBVersion");
  if (fault == "load without an operation" && !version) std::abort();
  const double hostVersion = host<double>("REALGetRBVersion");
  if (fault == "crash on old hosts" && hostVersion < 2012) std::abort();
  std::int32_t newest = hostVersion >= 2013.04 ? 13 : 9;
  if (fault == "version") newest = 14;
  if (fault == "version for newer hosts") newest = 13;
  host<void>("RegisterPluginVersion", newest);

  counterClass.version = fault == "version of a class" ? newest - 1 : newest;
  counterClass.name = "Counter";
  counterClass.dataSize = sizeof(std::int64_t);
  counterClass.constructor = address(makeCounter);
  counterClass.flags = recordFlags::console;
  breakClass(fault);
  counterClass.properties = properties.data();
  counterClass.propertyCount = properties.size();
  counterClass.methods = methods.data();
  counterClass.methodCount = methods.size();
  host<void>("PluginRegisterClass", &counterClass);
  if (fault == "class of one name") host<void>("PluginRegisterClass", &counterClass);

  if (const auto found = faultyFunctions.find(fault); found != faultyFunctions.end()) {
    functions.push_back(found->second);
  }
  for (REALmethodDefinition& each : functions) host<void>("PluginRegisterMethod", &each);
}
