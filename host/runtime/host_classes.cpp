#include "runtime/host_classes.h"

#include <array>

namespace host {

namespace {

// Exceptions.

ExceptionData& exceptionIn(REALobject self) { return dataIn<ExceptionData>(self, *hostClasses().exception); }

void setMessage(REALobject self, std::intptr_t, REALstring text) {
  auto* message = reinterpret_cast<Text*>(text);
  retain(message);
  release(std::exchange(exceptionIn(self).message, message));
}
REALstring getMessage(REALobject self, std::intptr_t) {
  retain(exceptionIn(self).message);
  return reinterpret_cast<REALstring>(exceptionIn(self).message);
}
void setErrorNumber(REALobject self, std::intptr_t, RBInteger number) {
  exceptionIn(self).errorNumber = number;
}
RBInteger getErrorNumber(REALobject self, std::intptr_t) { return exceptionIn(self).errorNumber; }
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
      "TypeMismatchException",      "DivisionByZeroException"};
  static REALclassDefinition records[std::size(names)] = {};
  for (std::size_t i = 0; i < std::size(names); ++i) {
    records[i].name = names[i];
    records[i].superName = root.name;
    registry.addClass(records[i], false);
  }
}

// Dates.

template <const Class* HostClasses::*member>
double getSeconds(REALobject self, std::intptr_t) {
  return dataIn<DateData>(self, *(hostClasses().*member)).seconds;
}
template <const Class* HostClasses::*member>
void setSeconds(REALobject self, std::intptr_t, double seconds) {
  dataIn<DateData>(self, *(hostClasses().*member)).seconds = seconds;
}

template <const Class* HostClasses::*member>
void registerDate(Registry& registry, HostClasses& classes, const char* name, const char* propertyName) {
  static REALproperty properties[1];
  properties[0] = hostProperty(propertyName, "Double", &getSeconds<member>, &setSeconds<member>);
  static REALclassDefinition record = hostClass<DateData>(name, properties);
  classes.*member = &registry.addClass(record, false);
}

// Boxes of variants.

struct Box {
  Kind kind;
  const char* name;
  const Class* registered;
};
std::array<Box, 10> boxes = {{{Kind::Int32, "_VariantInt32", nullptr},
                              {Kind::UInt32, "_VariantUInt32", nullptr},
                              {Kind::Int64, "_VariantInt64", nullptr},
                              {Kind::UInt64, "_VariantUInt64", nullptr},
                              {Kind::Single, "_VariantSingle", nullptr},
                              {Kind::Double, "_VariantDouble", nullptr},
                              {Kind::Currency, "_VariantCurrency", nullptr},
                              {Kind::Boolean, "_VariantBoolean", nullptr},
                              {Kind::Pointer, "_VariantPtr", nullptr},
                              {Kind::String, "_VariantString", nullptr}}};

void destroyTextBox(REALobject self) {
  release(dataIn<BoxData>(self, *boxClassOf({Kind::String})).value.heap);
}

void registerBoxes(Registry& registry) {
  static std::array<REALclassDefinition, boxes.size()> records = {};
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    records[i].name = boxes[i].name;
    records[i].dataSize = sizeof(BoxData);
    if (boxes[i].kind == Kind::String) records[i].destructor = reinterpret_cast<REALproc>(&destroyTextBox);
    boxes[i].registered = &registry.addClass(records[i], false);
  }
}

}  // namespace

const Class* boxClassOf(Type type) {
  for (const Box& box : boxes) {
    if (!type.array && box.kind == type.kind) return box.registered;
  }
  return nullptr;
}

void registerHostClasses(Registry& registry, HostClasses& classes) {
  static REALclassDefinition text = {}, array = {};
  text.name = "_String";
  array.name = "_Array";
  classes.text = &registry.addClass(text, false);
  classes.array = &registry.addClass(array, false);
  registerExceptions(registry, classes);
  registerBoxes(registry);
  registerMemoryBlock(registry);
  classes.memoryBlock = registry.findClass("MemoryBlock");
  registerThread(registry);
  classes.thread = registry.findClass("Thread");
  registerDate<&HostClasses::date>(registry, classes, "Date", "TotalSeconds");
  registerDate<&HostClasses::dateTime>(registry, classes, "DateTime", "SecondsFrom1970");
}

}  // namespace host
