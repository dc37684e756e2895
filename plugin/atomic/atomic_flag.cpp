// The flag's members, each one atomic instruction.
#include "atomic/atomic_flag.h"

#include "frame/raise.h"
#include "frame/records.h"

namespace qtx {
namespace {

// The instance data is one byte, handed over as 0, of which only bit 0 counts. Not a std::atomic, because no
// constructor ever runs on it; every access is sequentially consistent.
using Flag = std::uint8_t;
constexpr int order = __ATOMIC_SEQ_CST;

Flag* flagOf(REALobject self) { return &instanceData<Flag>(self, atomicFlagClass); }

bool test_and_set(REALobject self) noexcept {
  return (__atomic_exchange_n(flagOf(self), Flag{1}, order) & 1) != 0;
}
bool test(REALobject self) noexcept { return (__atomic_load_n(flagOf(self), order) & 1) != 0; }
void clear(REALobject self) noexcept { __atomic_store_n(flagOf(self), Flag{0}, order); }

// `value` is a Boolean whose byte may be other than 0 and 1.
void Operator_Assign(REALobject self, std::uint8_t value) noexcept {
  if (value != 0) {
    test_and_set(self);
  } else {
    clear(self);
  }
}

bool getValue(REALobject self, RBInteger) noexcept { return test(self); }
void setValue(REALobject self, RBInteger, std::uint8_t value) noexcept { Operator_Assign(self, value); }

// Two loads, one after the other; clear is less than set.
RBInteger Operator_Compare(REALobject self, REALobject other) {
  if (refuseNil(other, "Other is nil")) return 0;
  const int mine = test(self);
  const int theirs = test(other);
  return mine - theirs;
}

void AtomicFlagDestructor(REALobject) noexcept {}

REALproperty properties[] = {property<&getValue, &setValue>("Value", "Boolean")};

REALmethodDefinition methods[] = {
    method<&test_and_set>("TestAndSet as Boolean"),
    method<&test>("Test as Boolean"),
    method<&clear>("Clear"),
    method<&Operator_Assign>("Operator_Convert(value as Boolean)"),
    method<&test>("Operator_Convert as Boolean"),
    method<&Operator_Compare>("Operator_Compare(other as AtomicFlagQTX) as Integer"),
};

}  // namespace

REALclassDefinition atomicFlagClass = classDefinition({.name = "AtomicFlagQTX",
                                                       .dataSize = sizeof(Flag),
                                                       .destructor = entryOf<&AtomicFlagDestructor>(),
                                                       .properties = properties,
                                                       .methods = methods});

}  // namespace qtx
