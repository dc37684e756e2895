// The counter's members, each one atomic instruction.
#include "atomic/atomic_integer.h"

#include "frame/raise.h"
#include "frame/records.h"

namespace qtx {
namespace {

// The instance data is the counter itself; the host hands it over as 0. It is no std::atomic, because no
// constructor ever runs on it; the compiler's atomic operations work on the plain word, sequentially
// consistent.
using Counter = std::int64_t;
constexpr int order = __ATOMIC_SEQ_CST;

Counter* counterOf(REALobject self) { return &instanceData<Counter>(self, atomicIntegerClass); }

std::int64_t Operator_Convert(REALobject self) noexcept { return __atomic_load_n(counterOf(self), order); }
void Operator_Assign(REALobject self, std::int64_t value) noexcept {
  __atomic_store_n(counterOf(self), value, order);
}

std::int64_t getValue(REALobject self, RBInteger) noexcept { return Operator_Convert(self); }
void setValue(REALobject self, RBInteger, std::int64_t value) noexcept { Operator_Assign(self, value); }

// All of these change the counter, wrapping around, and give its value before the change: the operators too,
// which is what makes `c + 5` on a shared counter safe.
std::int64_t Add(REALobject self, std::int64_t value) noexcept {
  return __atomic_fetch_add(counterOf(self), value, order);
}
std::int64_t Sub(REALobject self, std::int64_t value) noexcept {
  return __atomic_fetch_sub(counterOf(self), value, order);
}
constexpr auto Operator_Add = &Add;
constexpr auto Operator_Subtract = &Sub;
std::int64_t Inc(REALobject self) noexcept { return Add(self, 1); }
std::int64_t Dec(REALobject self) noexcept { return Add(self, -1); }
std::int64_t Exchange(REALobject self, std::int64_t value) noexcept {
  return __atomic_exchange_n(counterOf(self), value, order);
}
std::int64_t BitwiseAnd(REALobject self, std::int64_t value) noexcept {
  return __atomic_fetch_and(counterOf(self), value, order);
}
std::int64_t BitwiseOr(REALobject self, std::int64_t value) noexcept {
  return __atomic_fetch_or(counterOf(self), value, order);
}
std::int64_t BitwiseXOr(REALobject self, std::int64_t value) noexcept {
  return __atomic_fetch_xor(counterOf(self), value, order);
}

// Where the counter is not as expected, `expected` becomes what was found instead. Never fails spuriously.
bool CompareExchange(REALobject self, std::int64_t* expected, std::int64_t desired) noexcept {
  return __atomic_compare_exchange_n(counterOf(self), expected, desired, false, order, order);
}

// Two loads, one after the other: no snapshot of both counters.
RBInteger Operator_Compare(REALobject self, REALobject other) {
  if (refuseNil(other, "Other is nil")) return 0;
  const std::int64_t mine = Operator_Convert(self);
  const std::int64_t theirs = Operator_Convert(other);
  return (mine > theirs) - (mine < theirs);
}

void AtomicIntegerDestructor(REALobject) noexcept {}

REALproperty properties[] = {property<&getValue, &setValue>("Value", "Int64")};

REALmethodDefinition methods[] = {
    method<&Inc>("Increment as Int64"),
    method<&Dec>("Decrement as Int64"),
    method<&Exchange>("Exchange(Value as Int64) as Int64"),
    method<&Add>("Add(Value as Int64) as Int64"),
    method<&Sub>("Subtract(Value as Int64) as Int64"),
    method<&BitwiseAnd>("BitwiseAnd(Value as Int64) as Int64"),
    method<&BitwiseOr>("BitwiseOr(Value as Int64) as Int64"),
    method<&BitwiseXOr>("BitwiseXOr(Value as Int64) as Int64"),
    method<&Operator_Assign>("Operator_Convert(value as Int64)"),
    method<&Operator_Convert>("Operator_Convert as Int64"),
    method<Operator_Add>("Operator_Add(other as Int64) as Int64"),
    method<Operator_Subtract>("Operator_Subtract(other as Int64) as Int64"),
    method<&CompareExchange>("CompareExchange(byref expected as Int64, desired as Int64) as Boolean"),
    method<&Operator_Compare>("Operator_Compare(other as AtomicIntegerQTX) as Integer"),
};

}  // namespace

REALclassDefinition atomicIntegerClass = classDefinition({.name = "AtomicIntegerQTX",
                                                          .dataSize = sizeof(Counter),
                                                          .destructor = entryOf<&AtomicIntegerDestructor>(),
                                                          .properties = properties,
                                                          .methods = methods});

}  // namespace qtx
