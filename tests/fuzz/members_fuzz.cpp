// Sequences of calls: an input is read as calls of any registered member or function, with arguments from a
// pool of objects, strings, nil and edge numbers, while chosen calls of host operations fail. After each call
// everything is as the model has it: results, the references and values of all objects, which small values
// are shared, what is in the queues, and the exception raised. Where an operation has failed, what depends on
// it may be missing, but nothing else.
#include <functional>
#include <map>
#include <memory>
#include <optional>

#include "fuzz.h"
#include "int128/shared_values.h"

using namespace fuzz;

namespace {

__extension__ typedef unsigned __int128 Bits;
__extension__ typedef __int128 Signed;
constexpr Bits topBit = Bits{1} << 127;

// The model.

std::vector<Object*> alive;                         // every object there is
std::map<Object*, std::vector<REALobject>> queues;  // what each queue holds, from the front
Object* shared[2][16];  // the small values' objects, of the unsigned and the signed class

constexpr const char* counterClass = "AtomicIntegerQTX";
constexpr const char* flagClass = "AtomicFlagQTX";
constexpr const char* queueClass = "AtomicQueueQTX";
constexpr const char* wideClass[] = {"UInt128QTX", "Int128QTX"};

void gain(REALobject object) {
  if (object) ++of(object)->expected;
}
// To be told before the library or the host does it: afterwards the object may be gone.
void lose(REALobject object) {
  if (!object || --of(object)->expected > 0) return;
  std::erase(alive, of(object));
  if (const auto node = queues.extract(of(object))) {
    for (const REALobject each : node.mapped()) lose(each);
  }
}
void release(REALobject object) {
  lose(object);
  host.unlock(object);
}

Bits bitsOf(REALobject object) {
  return static_cast<Bits>(of(object)->model[1]) << 64 | of(object)->model[0];
}
void setBits(REALobject object, Bits bits) {
  of(object)->model[0] = static_cast<std::uint64_t>(bits);
  of(object)->model[1] = static_cast<std::uint64_t>(bits >> 64);
}
// What a change in place begins with.
void modify(REALobject object, bool isSigned) {
  for (Object*& each : shared[isSigned]) {
    if (each == of(object)) {
      each = nullptr;
      lose(object);
    }
  }
}

void checkAll() {
  for (Object* each : alive) {
    require(each->references == each->expected, "other references");
    if (each->record && each->className != std::string_view(queueClass)) {
      require(std::memcmp(each->data(), each->model, each->record->dataSize) == 0, "another value");
    }
  }
}

// The pool.

std::array<REALobject, 4> wide[2];
std::array<REALobject, 2> counters, flags;
std::array<REALobject, 3> pooledQueues;
std::array<REALobject, 4> variants;
std::array<REALstring, 4> strings;
REALobject spline = nullptr;  // one for good: a spline that ends leaves its points behind

REALobject track(REALobject object) {
  alive.push_back(of(object));
  return object;
}
template <std::size_t size>
REALobject& pick(std::array<REALobject, size>& pool, Bytes& bytes) {
  return pool[bytes.below(size)];
}
// Of any kind, or nil.
REALobject anything(Bytes& bytes) {
  switch (bytes.below(6)) {
    case 0:
      return pick(wide[bytes.below(2)], bytes);
    case 1:
      return pick(counters, bytes);
    case 2:
      return pick(pooledQueues, bytes);
    case 3:
      return nullptr;
    default:
      return pick(variants, bytes);
  }
}

REALstring someString(Bytes& bytes) {
  constexpr std::uint32_t encodings[] = {encoding::utf8, encoding::ascii, encoding::macRoman, encoding::utf16,
                                         encoding::none};
  if (bytes.below(8) == 0) return nullptr;
  REALstring& string = strings[bytes.below(strings.size())];
  if (bytes.below(2) == 0) {
    host.unlock(string);
    const std::uint32_t code = encodings[bytes.below(std::size(encodings))];
    string = host.makeString(bytes.text(30), code);
  }
  return string;
}

void expectRaised(std::string_view className) {
  if (host.failed) {
    require(host.raises <= 1, "more than one exception");
  } else {
    require(host.raises == (className.empty() ? 0 : 1) && host.raised == className, "another exception");
  }
}

// 128-bit integers.

Bits extended(std::int64_t value) { return static_cast<Bits>(static_cast<Signed>(value)); }

Bits readText(REALstring string, bool isSigned) {
  std::string_view text = bytesOf(string);
  if (string) {
    const std::uint32_t code = of(string)->encoding;
    const bool isPlain = std::none_of(text.begin(), text.end(), [](char c) { return (c & 0x80) != 0; });
    if (code == encoding::utf16 || (!isPlain && code != encoding::utf8 && code != encoding::ascii)) text = "";
  }
  std::size_t i = std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size());
  const bool minus = i < text.size() && text[i] == '-';
  if (i < text.size() && (minus || text[i] == '+')) ++i;
  Bits value = 0;
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i)
    value = value * 10 + static_cast<Bits>(text[i] - '0');
  return isSigned && minus ? -value : value;
}

std::string textOf(Bits value, bool isSigned) {
  const bool minus = isSigned && (value & topBit) != 0;
  std::string text;
  for (Bits rest = minus ? -value : value; rest != 0 || text.empty(); rest /= 10) {
    text.insert(text.begin(), static_cast<char>('0' + static_cast<int>(rest % 10)));
  }
  return minus ? "-" + text : text;
}

Bits quotient(Bits a, Bits b, bool isSigned, bool remainder) {
  if (b == 0) return remainder ? a : 0;
  if (!isSigned) return remainder ? a % b : a / b;
  if (b == ~Bits{0}) return remainder ? 0 : -a;
  const auto x = static_cast<Signed>(a), y = static_cast<Signed>(b);
  return static_cast<Bits>(remainder ? x % y : x / y);
}

Bits power(Bits base, std::uint64_t exponent) {
  Bits result = 1;
  for (; exponent; exponent >>= 1, base *= base) {
    if (exponent & 1) result *= base;
  }
  return result;
}

Bits root(Bits value) {
  Bits low = 0, high = Bits{1} << 64;
  while (high - low > 1) {
    const Bits middle = (low + high) / 2;
    (middle * middle <= value ? low : high) = middle;
  }
  return low;
}

// `name` without "Operator_" and "Right".
Bits combined(std::string_view name, Bits a, Bits b, bool isSigned) {
  const auto count = static_cast<int>(b & 127);
  if (name == "Add") return a + b;
  if (name == "Subtract") return a - b;
  if (name == "Multiply") return a * b;
  if (name == "Divide") return quotient(a, b, isSigned, false);
  if (name == "Modulo") return quotient(a, b, isSigned, true);
  if (name == "BitwiseAnd") return a & b;
  if (name == "BitwiseOr") return a | b;
  if (name == "BitwiseXOr") return a ^ b;
  if (name == "ShiftLeft") return a << count;
  require(name == "ShiftRight", name);
  return isSigned ? static_cast<Bits>(static_cast<Signed>(a) >> count) : a >> count;
}

int order(Bits a, bool aIsSigned, Bits b, bool bIsSigned) {
  if (aIsSigned && bIsSigned)
    return (static_cast<Signed>(a) > static_cast<Signed>(b)) -
           (static_cast<Signed>(a) < static_cast<Signed>(b));
  if (aIsSigned && (a & topBit)) return -1;
  if (bIsSigned && (b & topBit)) return 1;
  if (aIsSigned && (b & topBit)) return 1;
  if (bIsSigned && (a & topBit)) return -1;
  return (a > b) - (a < b);
}

// The result of an operator: the shared object of its value or a new one, and kept in the pool or let go.
void receive(REALobject result, bool isSigned, Bits expected, Bytes& bytes) {
  if (!result) {
    require(host.failed, "no result");
    return;
  }
  Object*& slot = shared[isSigned][static_cast<std::size_t>(expected & 15)];
  if (expected < 16 && slot) {
    require(of(result) == slot, "a small value of its own");
    gain(result);
  } else {
    require(std::count(host.made.begin(), host.made.end(), of(result)) == 1, "an old object for a new value");
    track(result);
    setBits(result, expected);
    if (expected < 16) {
      slot = of(result);
      gain(result);
    }
  }
  checkAll();
  if (bytes.below(2) == 0) {
    std::swap(pick(wide[isSigned], bytes), result);
  }
  release(result);
}

// "Name(parameter as Type) as Result", taken apart.
struct Declaration {
  std::string name, parameter, result;
  explicit Declaration(std::string_view text) {
    const std::size_t open = text.find_first_of("( ");
    name = text.substr(0, open);
    if (open == text.npos) return;
    std::string_view rest = text.substr(open);
    if (rest.starts_with('(')) {
      const std::size_t close = rest.rfind(')');
      parameter = rest.substr(1, close - 1);
      parameter.erase(0, parameter.find(" as ") + 4);
      rest.remove_prefix(close + 1);
    }
    if (rest.starts_with(" as ")) result = rest.substr(4);
  }
};

struct Member {
  REALproc function;
  Declaration declaration;
  bool isSigned = false;
  void (*run)(const Member&, Bytes&) = nullptr;
  template <typename Result, typename... Arguments>
  Result call(Arguments... arguments) const {
    return reinterpret_cast<Result (*)(Arguments...)>(function)(arguments...);
  }
};
std::vector<Member> members;

// The one argument of a wide member, whatever its type.
struct Argument {
  bool isObject, isSigned;
  REALobject object = nullptr;
  Bits bits = 0;

  Argument(const std::string& type, Bytes& bytes)
      : isObject(type.ends_with("QTX")), isSigned(type == "Int64" || type == "Int128QTX") {
    if (isObject) {
      if (bytes.below(8) == 0) return;
      object = pick(wide[isSigned], bytes);
      bits = bitsOf(object);
    } else {
      bits = isSigned ? extended(bytes.integer()) : bytes.word();
    }
  }
  template <typename Result>
  Result pass(const Member& member, REALobject self) const {
    if (isObject) return member.call<Result>(self, object);
    if (isSigned) return member.call<Result>(self, static_cast<std::int64_t>(bits));
    return member.call<Result>(self, static_cast<std::uint64_t>(bits));
  }
  bool isNil() const { return isObject && !object; }
};

void runWide(const Member& member, Bytes& bytes) {
  const auto& [name, parameter, result] = member.declaration;
  const bool isSigned = member.isSigned;
  const REALobject self = pick(wide[isSigned], bytes);
  const Bits value = bitsOf(self);
  const std::string_view raised = value & topBit ? "OutOfBoundsException" : "";

  if (parameter.empty() && result.ends_with("QTX")) {
    const bool refused = (name == "Sqrt" && isSigned && (value & topBit)) ||
                         (name == "Operator_Negate" && !isSigned && (value & topBit));
    const REALobject made = member.call<REALobject>(self);
    if (refused) {
      require(!made, "a result beside an exception");
      return expectRaised(name == "Sqrt" ? "UnsupportedOperationException" : raised);
    }
    expectRaised("");
    const Bits expected = name == "Inc"    ? value + 1
                          : name == "Dec"  ? value - 1
                          : name == "Sqrt" ? root(value)
                                           : -value;
    return receive(made, result == wideClass[1], expected, bytes);
  }
  if (name == "Pow") {
    const std::uint64_t exponent = bytes.word();
    return receive(member.call<REALobject>(self, exponent), isSigned, power(value, exponent), bytes);
  }
  if (name == "Inc" || name == "Dec") {
    modify(self, isSigned);
    setBits(self, name == "Inc" ? value + 1 : value - 1);
    return member.call<void>(self);
  }
  if (name == "Operator_Convert" && parameter.empty() && result == "String") {
    const REALstring text = member.call<REALstring>(self);
    if (!host.failed) require(bytesOf(text) == textOf(value, isSigned), "another text");
    return host.unlock(text);
  }
  if (name == "Operator_Convert" && parameter.empty()) {
    const auto low = static_cast<std::uint64_t>(value);
    const bool fits = value == (isSigned ? extended(static_cast<std::int64_t>(low)) : low);
    require((isSigned ? static_cast<std::uint64_t>(member.call<std::int64_t>(self))
                      : member.call<std::uint64_t>(self)) == low,
            "another word");
    return expectRaised(fits ? "" : "OutOfBoundsException");
  }
  if (name == "Constructor" && parameter.empty()) return member.call<void>(self);
  if (parameter == "String") {
    const REALstring text = someString(bytes);
    modify(self, isSigned);
    member.call<void>(self, text);
    Bits read = readText(text, isSigned);
    if (host.failed) std::memcpy(&read, of(self)->data(), sizeof read);
    return setBits(self, read);
  }
  if (parameter.starts_with("Ptr")) {  // Data, Size, isUnsigned
    const RBInteger size = bytes.below(4) == 0 ? bytes.integer() : RBInteger{1} << bytes.below(5);
    const auto isUnsigned = bytes.take();
    const bool valid = size == 1 || size == 2 || size == 4 || size == 8 || size == 16;
    const std::unique_ptr<char[]> memory(new char[valid ? static_cast<std::size_t>(size) : 1]);
    Bits read = 0;
    for (RBInteger i = 0; valid && i < size; ++i) {
      memory[static_cast<std::size_t>(i)] = bytes.take<char>();
      read |= static_cast<Bits>(static_cast<unsigned char>(memory[static_cast<std::size_t>(i)])) << (8 * i);
    }
    member.call<void>(self, static_cast<const void*>(memory.get()), size, isUnsigned);
    if (!valid) return expectRaised("UnsupportedOperationException");
    if (isSigned && isUnsigned && (read & topBit)) return expectRaised("OutOfBoundsException");
    const auto unread = static_cast<int>(128 - 8 * size);
    setBits(self, isSigned && !isUnsigned ? static_cast<Bits>(static_cast<Signed>(read << unread) >> unread)
                                          : read);
    return expectRaised("");
  }

  const Argument other(parameter, bytes);
  if (name == "Operator_Compare" || name == "Equals") {
    const bool isSame = other.object == self;
    const bool refused = other.isNil();
    if (name == "Equals") {
      const bool comparable = other.isSigned == isSigned || !((value | other.bits) & topBit);
      require(other.pass<bool>(member, self) == (!refused && (isSame || (comparable && value == other.bits))),
              "equality");
    } else {
      const int expected = refused ? 0 : order(value, isSigned, other.bits, other.isSigned);
      require(other.pass<RBInteger>(member, self) == expected, "comparison");
    }
    return expectRaised(refused ? "NilObjectException" : "");
  }
  if (name == "Constructor" || name == "Operator_Convert") {
    modify(self, isSigned);
    const bool refused = other.isObject && other.isSigned != isSigned && (other.bits & topBit) != 0;
    if (!other.isNil() && !refused) setBits(self, other.bits);
    other.pass<void>(member, self);
    return expectRaised(refused ? "OutOfBoundsException" : "");
  }
  std::string_view operation = name;
  if (operation.starts_with("Operator_")) operation.remove_prefix(9);
  const bool isReflected = name.starts_with("Operator_") && operation.ends_with("Right");
  if (isReflected) operation.remove_suffix(5);
  const Bits expected = other.isNil() ? value
                        : isReflected && operation != "Add"
                            ? combined(operation, other.bits, value, isSigned)
                            : combined(operation, value, other.bits, isSigned);
  const REALobject made = other.pass<REALobject>(member, self);
  expectRaised("");
  receive(made, isSigned, expected, bytes);
}

void runWideShared(const Member& member, Bytes& bytes) {
  const std::string& name = member.declaration.name;
  if (name == "supported") return require(member.call<bool>(), "supported");
  receive(member.call<REALobject>(), member.isSigned, name == "zero" ? 0 : name == "one" ? 1 : 2, bytes);
}

void runWideGetter(const Member& member, Bytes& bytes) {
  const std::string& name = member.declaration.name;
  const bool isSigned = member.isSigned;
  const REALobject self = pick(wide[isSigned], bytes);
  const Bits value = bitsOf(self);
  const bool minus = isSigned && (value & topBit) != 0;
  const auto low = static_cast<std::uint64_t>(value), high = static_cast<std::uint64_t>(value >> 64);
  const auto zeros = [&] { return high ? std::countl_zero(high) : 64 + std::countl_zero(low); };
  const RBInteger none = 0;
  if (name == "Data") {
    modify(self, isSigned);
    require(member.call<void*>(self, none) == of(self)->data(), "Data");
  } else if (name == "LowValue") {
    require(member.call<std::uint64_t>(self, none) == low, "LowValue");
  } else if (name == "HighValue") {
    require((isSigned ? static_cast<std::uint64_t>(member.call<std::int64_t>(self, none))
                      : member.call<std::uint64_t>(self, none)) == high,
            "HighValue");
  } else if (name == "stringValue") {
    const REALstring text = member.call<REALstring>(self, none);
    if (!host.failed) require(bytesOf(text) == textOf(value, isSigned), "stringValue");
    host.unlock(text);
  } else if (name == "Abs") {
    receive(member.call<REALobject>(self, none), isSigned, minus ? -value : value, bytes);
  } else if (name == "doubleValue") {
    const double x = member.call<double>(self, none);
    require((x < 0) == minus && (x != 0) == (value != 0), "doubleValue");
  } else {
    const int expected = name == "Sign"             ? (minus ? -1 : value != 0)
                         : name == "PopCount"       ? std::popcount(low) + std::popcount(high)
                         : name == "CountLeftZeros" ? zeros()
                         : name == "CountRightZeros"
                             ? (low ? std::countr_zero(low) : 64 + std::countr_zero(high))
                             : 128 - zeros();
    require(member.call<RBInteger>(self, none) == expected, name);
  }
}

void runWideSetter(const Member& member, Bytes& bytes) {
  const std::string& name = member.declaration.name;
  const REALobject self = pick(wide[member.isSigned], bytes);
  const RBInteger none = 0;
  modify(self, member.isSigned);
  if (name == "stringValue") {
    const REALstring text = someString(bytes);
    member.call<void>(self, none, text);
    Bits read = readText(text, member.isSigned);
    if (host.failed) std::memcpy(&read, of(self)->data(), sizeof read);
    return setBits(self, read);
  }
  const std::uint64_t word = bytes.word();
  of(self)->model[name == "HighValue"] = word;
  if (name == "HighValue" && member.isSigned)
    return member.call<void>(self, none, static_cast<std::int64_t>(word));
  member.call<void>(self, none, word);
}

// Counters and flags.

void compareAtomics(const Member& member, REALobject self, REALobject other) {
  const auto mine = static_cast<std::int64_t>(of(self)->model[0]);
  const auto theirs = other ? static_cast<std::int64_t>(of(other)->model[0]) : 0;
  require(member.call<RBInteger>(self, other) == (other ? (mine > theirs) - (mine < theirs) : 0),
          "comparison");
  expectRaised(other ? "" : "NilObjectException");
}

void runCounter(const Member& member, Bytes& bytes) {
  const auto& [name, parameter, result] = member.declaration;
  const REALobject self = pick(counters, bytes);
  std::uint64_t& model = of(self)->model[0];
  const auto before = static_cast<std::int64_t>(model);
  if (name == "Operator_Compare")
    return compareAtomics(member, self, bytes.below(4) == 0 ? nullptr : pick(counters, bytes));
  if (name == "CompareExchange") {
    std::int64_t expected = bytes.below(2) == 0 ? before : bytes.integer();
    const std::int64_t desired = bytes.integer();
    const bool matches = expected == before;
    require(member.call<bool>(self, &expected, desired) == matches && expected == before, "CompareExchange");
    if (matches) model = static_cast<std::uint64_t>(desired);
    return;
  }
  if (parameter.empty()) {
    require(member.call<std::int64_t>(self) == before, name);
    if (name == "Increment") ++model;
    if (name == "Decrement") --model;
    return;
  }
  const std::int64_t given = bytes.integer();
  const auto word = static_cast<std::uint64_t>(given);
  if (result.empty()) {
    member.call<void>(self, given);
    model = word;
    return;
  }
  require(member.call<std::int64_t>(self, given) == before, name);
  if (name.ends_with("Add")) model += word;
  if (name.ends_with("Subtract")) model -= word;
  if (name == "Exchange") model = word;
  if (name == "BitwiseAnd") model &= word;
  if (name == "BitwiseOr") model |= word;
  if (name == "BitwiseXOr") model ^= word;
}

void runFlag(const Member& member, Bytes& bytes) {
  const auto& [name, parameter, result] = member.declaration;
  const REALobject self = pick(flags, bytes);
  std::uint64_t& model = of(self)->model[0];
  if (name == "Operator_Compare") {
    compareAtomics(member, self, bytes.below(4) == 0 ? nullptr : pick(flags, bytes));
  } else if (!parameter.empty()) {
    const auto given = bytes.take();
    member.call<void>(self, given);
    model = given != 0;
  } else if (name == "Clear") {
    member.call<void>(self);
    model = 0;
  } else {
    require(member.call<bool>(self) == (model != 0), name);
    if (name == "TestAndSet") model = 1;
  }
}

void runAtomicGetter(const Member& member, Bytes& bytes) {
  const RBInteger none = 0;
  if (member.declaration.result == "Boolean") {
    const REALobject self = pick(flags, bytes);
    require(member.call<bool>(self, none) == (of(self)->model[0] != 0), "Value");
  } else {
    const REALobject self = pick(counters, bytes);
    require(member.call<std::int64_t>(self, none) == static_cast<std::int64_t>(of(self)->model[0]), "Value");
  }
}
void runAtomicSetter(const Member& member, Bytes& bytes) {
  const RBInteger none = 0;
  if (member.declaration.result == "Boolean") {
    const REALobject self = pick(flags, bytes);
    const auto given = bytes.take();
    member.call<void>(self, none, given);
    of(self)->model[0] = given != 0;
  } else {
    const REALobject self = pick(counters, bytes);
    const std::int64_t given = bytes.integer();
    member.call<void>(self, none, given);
    of(self)->model[0] = static_cast<std::uint64_t>(given);
  }
}

// Queues.

void append(std::vector<REALobject>& to, std::vector<REALobject> values) {
  for (const REALobject each : values) {
    gain(each);
    to.push_back(each);
  }
}

void checkArray(Array* array, const std::vector<REALobject>& expected) {
  if (!array || host.failed) {
    require(host.failed, "no array");
  } else {
    require(array->size() == expected.size(), "another size");
    for (std::size_t i = 0; i < expected.size(); ++i) {
      require(std::bit_cast<REALobject>(array->storage[i]) == expected[i], "another element");
    }
  }
  host.unlock(array);
}

void runQueue(const Member& member, Bytes& bytes) {
  const auto& [name, parameter, result] = member.declaration;
  const REALobject self = pick(pooledQueues, bytes);
  std::vector<REALobject>& model = queues.at(of(self));
  if (name == "Clear") {
    for (const REALobject each : std::exchange(model, {})) lose(each);
    return member.call<void>(self);
  }
  if (name.starts_with("Pop")) {
    REALobject expected = nullptr;
    if (!model.empty()) {
      const auto at = name == "PopFirst" ? model.begin() : model.end() - 1;
      expected = *at;
      model.erase(at);
    }
    require(member.call<REALobject>(self) == expected, name);
    if (expected) release(expected);  // the queue's reference is the caller's now
    return;
  }
  if (name == "Values" || name == "Operator_Convert") {
    return checkArray(reinterpret_cast<Array*>(member.call<REALarrayObject>(self)), model);
  }
  if (name == "Operator_Compare") {
    const REALobject other = bytes.below(4) == 0 ? nullptr : pick(pooledQueues, bytes);
    int expected = 0;
    if (other) {
      const auto& theirs = queues.at(of(other));
      expected = (model.size() > theirs.size()) - (model.size() < theirs.size());
      if (expected == 0) expected = (model > theirs) - (model < theirs);
    }
    require(member.call<RBInteger>(self, other) == expected, name);
    return expectRaised(other ? "" : "NilObjectException");
  }
  if (model.size() > 40) return;
  if (parameter == queueClass) {
    const REALobject other = bytes.below(8) == 0 ? nullptr : pick(pooledQueues, bytes);
    member.call<void>(self, other);
    if (other) append(model, std::vector(queues.at(of(other))));
    return;
  }
  if (member.declaration.name == "Add") {  // an array
    Array* array = nullptr;
    std::vector<REALobject> values(bytes.below(5));
    if (bytes.below(8) != 0) {
      array = host.makeArray(arrayElement::object, 0);
      for (REALobject& each : values) {
        each = anything(bytes);
        host.insert(array, array->size(), each);
      }
    }
    member.call<void>(self, reinterpret_cast<REALarrayObject>(array));
    host.unlock(array);
    if (array && !host.failed) append(model, values);
    return expectRaised("");
  }
  const REALobject value = anything(bytes);
  if (name == "Operator_Add") {
    require(member.call<REALobject>(self, value) == self, "another queue");
    host.unlock(self);
  } else {
    member.call<void>(self, value);
  }
  gain(value);
  model.insert(name == "Insert" ? model.begin() : model.end(), value);
}

void runQueueGetter(const Member& member, Bytes& bytes) {
  const REALobject self = pick(pooledQueues, bytes);
  const std::vector<REALobject>& model = queues.at(of(self));
  const RBInteger none = 0;
  if (member.declaration.name == "Count") {
    require(member.call<RBInteger>(self, none) == static_cast<RBInteger>(model.size()), "Count");
    return;
  }
  const REALobject top = member.call<REALobject>(self, none);
  require(top == (model.empty() ? nullptr : model.back()), "TopValue");
  host.unlock(top);
}

void runQueueSetter(const Member& member, Bytes& bytes) {
  const REALobject self = pick(pooledQueues, bytes);
  const REALobject value = anything(bytes);
  std::vector<REALobject>& model = queues.at(of(self));
  const std::vector<REALobject> now(model.empty() ? 1 : model.size() - 1, value);
  for (std::size_t i = 0; i < now.size(); ++i) gain(value);
  for (const REALobject each : std::exchange(model, now)) lose(each);
  member.call<void>(self, RBInteger{0}, value);
}

// Splines: the model of their numbers is another fuzzer's.

void runSpline(const Member& member, Bytes& bytes) {
  const auto& [name, parameter, result] = member.declaration;
  if (name == "Constructor") {
    Array* arrays[2] = {};
    const std::size_t count = bytes.below(8);
    for (Array*& each : arrays) {
      if (bytes.below(16) == 0) continue;
      each = host.makeArray(arrayElement::integer, bytes.below(16) == 0 ? bytes.below(8) : count);
      for (std::size_t i = 0; i < each->size(); ++i)
        each->storage[i] = std::bit_cast<std::uint64_t>(bytes.real());
    }
    member.call<void>(spline, reinterpret_cast<REALarrayDouble>(arrays[0]),
                      reinterpret_cast<REALarrayDouble>(arrays[1]));
    host.unlock(arrays[0]);
    host.unlock(arrays[1]);
  } else if (name == "calc") {
    member.call<double>(spline, bytes.real());
  } else {
    member.call<double>(spline,
                        bytes.below(2) == 0 ? static_cast<RBInteger>(bytes.below(8)) : bytes.integer());
  }
  require(host.raises <= 1, "more than one exception");
}

// Functions: by their types, so that each is called with what it takes.

template <typename Type>
struct Given {
  Type value;
  explicit Given(Bytes& bytes) {
    if constexpr (std::is_same_v<Type, double>) value = bytes.real();
    if constexpr (std::is_same_v<Type, float>) value = bytes.take<float>();
    if constexpr (std::is_integral_v<Type>) value = static_cast<Type>(bytes.word());
    if constexpr (std::is_same_v<Type, REALstring>) value = someString(bytes);
    if constexpr (std::is_same_v<Type, REALobject>) value = anything(bytes);
  }
};

template <typename Result, typename... Types>
void runFunction(const Member& member, Bytes& bytes) {
  const std::tuple<Given<Types>...> given{Given<Types>(bytes)...};
  const Result result =
      std::apply([&](const auto&... each) { return member.call<Result>(each.value...); }, given);
  if constexpr (std::is_same_v<Result, REALstring>) host.unlock(result);
  require(host.raises <= 1, "more than one exception");
}
void runSplitBinary(const Member& member, Bytes& bytes) {
  RBInteger exponent = 0;
  member.call<double>(bytes.real(), &exponent);
}

const std::map<std::string_view, void (*)(const Member&, Bytes&)> functionsByTypes = {
    {"Double:Double", &runFunction<double, double>},
    {"Double,Double:Double", &runFunction<double, double, double>},
    {"Double,Double,Double:Double", &runFunction<double, double, double, double>},
    {"Double,Integer:Double", &runFunction<double, double, RBInteger>},
    {"Double,byref Integer:Double", &runSplitBinary},
    {"Double:Boolean", &runFunction<bool, double>},
    {"Double:Int64", &runFunction<std::int64_t, double>},
    {"Double:UInt64", &runFunction<std::uint64_t, double>},
    {"Double:String", &runFunction<REALstring, double>},
    {"String:Double", &runFunction<double, REALstring>},
    {"String:Boolean", &runFunction<bool, REALstring>},
    {"String:Currency", &runFunction<std::int64_t, REALstring>},
    {"Single:UInt16", &runFunction<std::uint16_t, float>},
    {"UInt16:Single", &runFunction<float, std::uint16_t>},
    {"Currency,Currency:Currency", &runFunction<std::int64_t, std::int64_t, std::int64_t>},
    {"Currency,Integer:Currency", &runFunction<std::int64_t, std::int64_t, RBInteger>},
    {"Integer:Integer", &runFunction<RBInteger, RBInteger>},
    {"Integer:UInt64", &runFunction<std::uint64_t, RBInteger>},
    {"Integer:Double", &runFunction<double, RBInteger>},
    {"Int64:Double", &runFunction<double, std::int64_t>},
    {"UInt64:Double", &runFunction<double, std::uint64_t>},
    {"UInt64:Integer", &runFunction<RBInteger, std::uint64_t>},
    {"UInt64:UInt64", &runFunction<std::uint64_t, std::uint64_t>},
    {"UInt64,UInt64:UInt64", &runFunction<std::uint64_t, std::uint64_t, std::uint64_t>},
    {"UInt64,Integer:UInt64", &runFunction<std::uint64_t, std::uint64_t, RBInteger>},
    {"UInt64,Integer:Boolean", &runFunction<bool, std::uint64_t, RBInteger>},
    {"UInt64,Integer,Integer,Integer:UInt64",
     &runFunction<std::uint64_t, std::uint64_t, RBInteger, RBInteger, RBInteger>},
    {"Variant,Variant:Integer", &runFunction<RBInteger, REALobject, REALobject>},
};

// "Name(a as double, byref b as integer = 0) as double" → "Double,byref Integer:Double".
std::string typesOf(std::string_view declaration) {
  std::string types;
  std::size_t at = 0;
  const std::size_t close = declaration.rfind(')');
  while ((at = declaration.find(" as ", at)) != declaration.npos) {
    const std::size_t start = declaration.find_last_of("(,)", at);
    std::string_view type = declaration.substr(at + 4, declaration.find_first_of(" ,)", at + 4) - at - 4);
    if (!types.empty()) types += at > close ? ':' : ',';
    if (declaration.substr(start, at - start).find("byref ") != declaration.npos) types += "byref ";
    std::string spelled(type);
    for (const std::string_view known : {"Double", "Integer", "Boolean", "String"}) {
      if (std::equal(known.begin(), known.end(), type.begin(), type.end(),
                     [](char a, char b) { return (a | 32) == (b | 32); }))
        spelled = known;
    }
    types += spelled;
    at += 4;
  }
  return types;
}

void addClass(const REALclassDefinition& record) {
  const std::string_view name = record.name;
  const bool isWide = name.ends_with("128QTX"), isSigned = name == wideClass[1];
  const auto add = [&](REALproc function, std::string_view declaration, void (*run)(const Member&, Bytes&)) {
    if (function) members.push_back({function, Declaration(declaration), isSigned, run});
  };
  for (std::size_t i = 0; i < record.methodCount; ++i) {
    add(record.methods[i].function, record.methods[i].declaration,
        isWide                 ? &runWide
        : name == counterClass ? &runCounter
        : name == flagClass    ? &runFlag
        : name == queueClass   ? &runQueue
                               : &runSpline);
  }
  for (std::size_t i = 0; i < record.sharedMethodCount; ++i) {
    add(record.sharedMethods[i].function, record.sharedMethods[i].declaration, &runWideShared);
  }
  for (std::size_t i = 0; i < record.propertyCount; ++i) {
    const REALproperty& property = record.properties[i];
    if (property.getter == reinterpret_cast<REALproc>(~std::uintptr_t{0})) continue;  // the host's own doing
    const std::string declaration = std::string(property.name) + " as " + property.type;
    add(property.getter, declaration,
        isWide               ? &runWideGetter
        : name == queueClass ? &runQueueGetter
                             : &runAtomicGetter);
    add(property.setter, declaration,
        isWide               ? &runWideSetter
        : name == queueClass ? &runQueueSetter
                             : &runAtomicSetter);
  }
}

void fillPool() {
  for (auto* pool : {&wide[0], &wide[1]}) {
    for (REALobject& each : *pool) each = track(host.makeObject(wideClass[pool == &wide[1]]));
  }
  for (REALobject& each : counters) each = track(host.makeObject(counterClass));
  for (REALobject& each : flags) each = track(host.makeObject(flagClass));
  for (REALobject& each : pooledQueues) {
    each = track(host.makeObject(queueClass));
    queues[of(each)];
  }
  for (std::size_t i = 0; i < variants.size(); ++i)
    variants[i] = track(host.makeVariant(static_cast<RBInteger>(i) + 2, 0));
}

void emptyPool() {
  const auto letGo = [](auto& pool) {
    for (REALobject& each : pool) release(std::exchange(each, nullptr));
  };
  // Also queues that only hold each other.
  static auto* const clear = host.function<void(REALobject)>(queueClass, "Clear");
  const std::vector<Object*> all = alive;
  for (Object* each : all) {
    if (std::find(alive.begin(), alive.end(), each) == alive.end() || !queues.contains(each)) continue;
    host.lock(handle(each));
    gain(handle(each));
    for (const REALobject element : std::exchange(queues.at(each), {})) lose(element);
    clear(handle(each));
    release(handle(each));
  }
  letGo(wide[0]);
  letGo(wide[1]);
  letGo(counters);
  letGo(flags);
  letGo(pooledQueues);
  letGo(variants);
  for (REALstring& each : strings) host.unlock(std::exchange(each, nullptr));
  for (const bool isSigned : {false, true}) {
    for (Object*& each : shared[isSigned]) {
      if (each) release(handle(std::exchange(each, nullptr)));
    }
  }
  // The library's own table, from which they have just been taken.
  std::construct_at(&qtx::constants<qtx::Int128>);
  std::construct_at(&qtx::constants<qtx::UInt128>);
}

// Puts another object in the place of one of the pool's.
void replace(Bytes& bytes) {
  REALobject* place = nullptr;
  REALobject made = nullptr;
  if (bytes.below(2) == 0) {
    constexpr RBInteger types[] = {0, 2, 3, 4, 5, 6, 7, 8, 9, 11, 16, 18, 22, 26, 36, 38, 4096 + 3, 1, -1};
    const RBInteger type = types[bytes.below(std::size(types))];
    place = &pick(variants, bytes);
    made = host.makeVariant(type, bytes.word());
  } else {
    place = &pick(pooledQueues, bytes);
    made = host.makeObject(queueClass);
    queues[of(made)];
  }
  release(std::exchange(*place, track(made)));
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  Host::load();
  for (const REALclassDefinition* record : host.classes) addClass(*record);
  for (std::size_t i = 0; i < host.module->methodCount; ++i) {
    const REALmethodDefinition& record = host.module->methods[i];
    const auto found = functionsByTypes.find(typesOf(record.declaration));
    require(found != functionsByTypes.end(), record.declaration);
    members.push_back({record.function, Declaration(record.declaration), false, found->second});
  }
  spline = host.makeObject("SplineQTX");
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
  Bytes bytes(data, size);
  host.failing = {};
  fillPool();
  for (int calls = 0; calls < 200 && !bytes.empty(); ++calls) {
    host.clear();
    const std::size_t choice = bytes.take<std::uint16_t>() % (members.size() + 24);
    if (choice < members.size()) {
      members[choice].run(members[choice], bytes);
    } else if (choice < members.size() + 12) {
      replace(bytes);
    } else {
      host.failing[bytes.below(host.failing.size())] = static_cast<std::uint8_t>(1 + bytes.below(4));
    }
    checkAll();
  }
  emptyPool();
  require(alive.empty() && queues.empty(), "the model keeps something");
  require(host.objects == 1 && host.strings == 0 && host.arrays == 0 && host.stringData == 0,
          "something is left");
  return 0;
}
