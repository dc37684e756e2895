// Registers the host's own classes; exceptions and dates stand here.
#include "runtime/host_classes.h"

#include <iterator>
#include <mutex>
#include <utility>

#include "runtime/array.h"
#include "runtime/dictionary.h"
#include "runtime/exception.h"
#include "runtime/host_record.h"
#include "runtime/locks.h"
#include "runtime/memory_block.h"
#include "runtime/random.h"
#include "runtime/registry.h"
#include "runtime/sharing.h"
#include "runtime/thread.h"
#include "runtime/variant.h"

namespace host {

namespace {

// Exceptions.

ExceptionData& exceptionIn(REALobject self) { return dataIn<ExceptionData>(self, *hostClasses().exception); }

void setMessage(REALobject self, RBInteger, REALstring text) {
  auto* message = reinterpret_cast<Text*>(text);
  retain(message);
  Text* old;
  {
    const Changing change(self);
    old = std::exchange(exceptionIn(self).message, message);
  }
  release(old);
}
REALstring getMessage(REALobject self, RBInteger) {
  const Using use(self);
  Text* const message = exceptionIn(self).message;
  retain(message);
  return reinterpret_cast<REALstring>(message);
}
void setErrorNumber(REALobject self, RBInteger, RBInteger number) {
  storeRelaxed(exceptionIn(self).errorNumber, number);
}
RBInteger getErrorNumber(REALobject self, RBInteger) { return loadRelaxed(exceptionIn(self).errorNumber); }
void makeException(REALobject) {}
void makeExceptionWith(REALobject self, REALstring message, RBInteger number) {
  setMessage(self, 0, message);
  setErrorNumber(self, 0, number);
}
void destroyException(REALobject self) { release(exceptionIn(self).message); }

void registerExceptions(Registry& registry, HostClasses& classes) {
  static REALproperty properties[] = {
      hostProperty("Message", "String", &getMessage, &setMessage),
      hostProperty("ErrorNumber", "Integer", &getErrorNumber, &setErrorNumber),
  };
  static REALmethodDefinition methods[] = {
      hostMethod("Constructor", &makeException),
      hostMethod("Constructor(message as String, errorNumber as Integer = 0)", &makeExceptionWith),
  };
  static REALclassDefinition root =
      hostClass<ExceptionData>("RuntimeException", properties, methods, &destroyException);
  classes.exception = &registry.addClass(root, false);

  static constexpr const char* names[] = {
      "NilObjectException",         "OutOfBoundsException",          "OutOfMemoryException",
      "UnsupportedFormatException", "UnsupportedOperationException", "StackOverflowException",
      "TypeMismatchException",      "DivisionByZeroException",       "IllegalLockingException",
      "KeyNotFoundException"};
  static REALclassDefinition records[std::size(names)] = {};
  for (std::size_t i = 0; i < std::size(names); ++i) {
    records[i].name = names[i];
    records[i].superName = root.name;
    registry.addClass(records[i], false);
  }
}

// Dates.

// Instance data of Date and DateTime.
struct DateData {
  double seconds;
};

template <const Class* HostClasses::*member>
double getSeconds(REALobject self, RBInteger) {
  return loadRelaxed(dataIn<DateData>(self, *(hostClasses().*member)).seconds);
}
template <const Class* HostClasses::*member>
void setSeconds(REALobject self, RBInteger, double seconds) {
  storeRelaxed(dataIn<DateData>(self, *(hostClasses().*member)).seconds, seconds);
}

template <const Class* HostClasses::*member>
void registerDate(Registry& registry, HostClasses& classes, const char* name, const char* propertyName) {
  static REALproperty properties[1];
  properties[0] = hostProperty(propertyName, "Double", &getSeconds<member>, &setSeconds<member>);
  static REALclassDefinition record = hostClass<DateData>(name, properties);
  classes.*member = &registry.addClass(record, false);
}

}  // namespace

void startRuntime() {
  static std::once_flag once;
  std::call_once(once, [] {
    static REALclassDefinition text = {}, array = {};
    Registry& all = registry();
    HostClasses& classes = detail::hostClasses;
    text.name = "_String";
    array.name = "_Array";
    classes.text = &all.addClass(text, false);
    Class& arrays = all.addClass(array, false);
    arrays.finalize = &finalizeArray;
    classes.array = &arrays;
    registerExceptions(all, classes);
    registerBoxes(all);
    classes.memoryBlock = &registerMemoryBlock(all);
    classes.thread = &registerThread(all);
    registerLocks(all);
    registerDictionary(all);
    registerRandom(all);
    registerDate<&HostClasses::date>(all, classes, "Date", "TotalSeconds");
    registerDate<&HostClasses::dateTime>(all, classes, "DateTime", "SecondsFrom1970");
  });
}

}  // namespace host
