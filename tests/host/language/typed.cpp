// The class "Amount" of the tests of typed code.
#include "typed.h"

#include <utility>

#include "runtime/host_classes.h"
#include "runtime/host_record.h"
#include "runtime/registry.h"

namespace host {

namespace {

// The host's own classes are there before any test.
class StartedRuntime : public testing::Environment {
  void SetUp() override { startRuntime(); }
};
[[maybe_unused]] const testing::Environment* const started =
    testing::AddGlobalTestEnvironment(new StartedRuntime);

struct AmountData {
  std::int64_t value;
};
std::string amountLog;

AmountData& dataOf(REALobject self) { return dataIn<AmountData>(self, amountClass()); }
REALobject made(std::int64_t value) {
  Ref<Object> object = makeObject(amountClass());
  auto* handle = reinterpret_cast<REALobject>(object.detach());
  dataOf(handle).value = value;
  return handle;
}

void construct(REALobject self, std::int64_t value) {
  amountLog += "Constructor ";
  dataOf(self).value = value;
}
void convertFrom(REALobject self, std::int64_t value) {
  amountLog += "ConvertFrom ";
  dataOf(self).value = value;
}
std::int64_t convertToNumber(REALobject self) {
  amountLog += "ConvertTo ";
  return dataOf(self).value;
}
REALobject add(REALobject self, std::int64_t other) {
  amountLog += "Add ";
  return made(dataOf(self).value + other);
}
REALobject subtractRight(REALobject self, std::int64_t other) {
  amountLog += "SubtractRight ";
  return made(other - dataOf(self).value);
}
std::int64_t compare(REALobject self, std::int64_t other) {
  amountLog += "Compare ";
  return dataOf(self).value < other ? -1 : dataOf(self).value > other;
}
REALobject negate(REALobject self) { return made(-dataOf(self).value); }
std::int64_t getDigit(REALobject self, std::int64_t index) {
  amountLog += "GetDigit ";
  return dataOf(self).value + index;
}
void setDigit(REALobject self, std::int64_t index, std::int64_t value) {
  amountLog += "SetDigit ";
  dataOf(self).value = value - index;
}
std::int64_t getValue(REALobject self, RBInteger) { return dataOf(self).value; }
void setValue(REALobject self, RBInteger, std::int64_t value) { dataOf(self).value = value; }

}  // namespace

const Class& amountClass() {
  static REALmethodDefinition methods[] = {
      hostMethod("Constructor(value as Int64)", &construct),
      hostMethod("Operator_Convert(value as Int64)", &convertFrom),
      hostMethod("Operator_Convert as Int64", &convertToNumber),
      hostMethod("Operator_Add(other as Int64) as Amount", &add),
      hostMethod("Operator_SubtractRight(other as Int64) as Amount", &subtractRight),
      hostMethod("Operator_Compare(other as Int64) as Int64", &compare),
      hostMethod("Operator_Negate as Amount", &negate),
      {reinterpret_cast<REALproc>(&getDigit), reinterpret_cast<REALproc>(&setDigit),
       "Digit(index as Int64) as Int64", recordFlags::console, nullptr, 0},
  };
  static REALproperty properties[] = {hostProperty("Value", "Int64", &getValue, &setValue)};
  static REALclassDefinition record = hostClass<AmountData>("Amount", properties, methods);
  static const Class& registered = registry().addClass(record, false);
  return registered;
}

std::string takeAmountLog() { return std::exchange(amountLog, ""); }

}  // namespace host
