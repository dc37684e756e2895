// Typed code without a program around it: a frame to run in, operands, and what comes out.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "language/conversions.h"
#include "language/places.h"
#include "runtime/exception.h"
#include "runtime/host_classes.h"

namespace host {

inline constexpr Type integerType{Kind::Int64}, realType{Kind::Double}, textType{Kind::String},
    variantType{Kind::Variant}, booleanType{Kind::Boolean};

// A frame whose variables are given back at the end.
class TestFrame {
 public:
  TestFrame() { frame_.locals = locals_; }
  // A new variable of the type.
  std::unique_ptr<Place> variable(Type type) {
    types_.push_back(type);
    return localPlace(type, types_.size() - 1);
  }
  operator Frame&() { return frame_; }
  ~TestFrame() {
    for (std::size_t i = 0; i < types_.size(); ++i) releaseSlot(locals_[i], types_[i]);
  }

 private:
  std::vector<Type> types_;
  Slot locals_[16] = {};
  Frame frame_;
};

inline Expr integer(std::int64_t value) {  // no literal, whose type may change
  return integerNode(integerType, [value](Frame&) { return value; });
}
inline Expr ofType(Kind kind, std::int64_t value) {
  return integerNode({kind}, [value](Frame&) { return value; });
}
inline Expr real(double value) {
  return realNode([value](Frame&) { return value; });
}
inline Expr text(const std::string& value) { return textLiteral(value); }
inline Expr nil() {
  return referenceNode({Kind::Nil}, [](Frame&) { return Ref<Heap>(); });
}
inline Expr variant(Expr value) { return convertTo(std::move(value), variantType, "a variant"); }
inline Expr object(const Class& objectClass) {
  return referenceNode({Kind::Object, false, &objectClass},
                       [made = Ref<Heap>(makeObject(objectClass))](Frame&) { return made; });
}

// Adds its name to the log when it is evaluated.
inline Expr logged(std::string& log, const std::string& name, std::int64_t value) {
  return integerNode(integerType, [&log, name, value](Frame&) {
    log += name + " ";
    return value;
  });
}

// What Print would show.
inline std::string shown(Expr value, Frame& frame) {
  const Expr text = displayed(std::move(value));
  return utf8Of(static_cast<const Text*>(text->reference(frame).get()));
}
inline std::string shown(Expr value) {
  TestFrame frame;
  return shown(std::move(value), frame);
}

// The message of the ProgramError, or the class of the exception, that it throws; empty if none.
template <typename Body>
std::string failureOf(Body body) {
  try {
    body();
  } catch (const ProgramError& error) {
    return error.what();
  } catch (const HostException& exception) {
    return exception.exception->objectClass->name;
  }
  return "";
}

// A class "Amount" with one number and some operators, each of which writes down that it was called.
const Class& amountClass();
std::string takeAmountLog();

}  // namespace host
