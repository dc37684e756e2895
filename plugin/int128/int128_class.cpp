// Int128QTX: a signed 128-bit integer.
#include "int128/int128_classes.h"
#include "int128/shapes.h"

namespace qtx {
namespace {

using Is = Shapes<Int128>;
using Word = std::int64_t;

REALobject Abs(REALobject self, RBInteger) noexcept {
  Trace("Abs");
  return newObject(Int128(magnitude(valueOf<Int128>(self))));  // of −2^127 it is −2^127
}

REALobject Sqrt(REALobject self) noexcept {
  Trace("Sqrt");
  const Int128 value = valueOf<Int128>(self);
  if (value.isNegative()) {
    RaiseException("UnsupportedOperationException", "can't do square root for negative numbers.");
    return nullptr;
  }
  return newObject(Int128(squareRoot(UInt128(value))));
}

// The low word, whether or not the value fits.
std::int64_t Operator_Convert_Int64(REALobject self) noexcept {
  Trace("Operator_Convert_Int64");
  const Int128 value = valueOf<Int128>(self);
  const auto low = static_cast<std::int64_t>(value.low);
  if (value > Int128(INT64_MAX)) RaiseException("OutOfBoundsException", "Value too big for Int64.");
  if (value < Int128(INT64_MIN)) RaiseException("OutOfBoundsException", "Value too small for Int64.");
  return low;
}

REALproperty properties[] = {
    property<&Is::getData>("Data", "Ptr"),
    property<&Is::getLowValue, &Is::setLowValue>("LowValue", "UInt64"),
    property<&Is::getHighValue, &Is::setHighValue>("HighValue", "Int64"),
    property<&Is::stringValue, &Is::setStringValue>("stringValue", "String"),
    property<&Abs>("Abs", "Int128QTX"),
    property<&Is::query<sign, "Sign">>("Sign", "Integer"),
    property<&Is::query<popCount<Word>, "PopCount">>("PopCount", "Integer"),
    property<&Is::query<countLeftZeros<Word>, "CountLeftZeros">>("CountLeftZeros", "Integer"),
    property<&Is::query<countRightZeros<Word>, "CountRightZeros">>("CountRightZeros", "Integer"),
    property<&Is::query<bitWidth<Word>, "BitWidth">>("BitWidth", "Integer"),
    property<&Is::doubleValue>("doubleValue", "Double"),
};

REALmethodDefinition sharedMethods[] = {
    method<&Is::issupported>("supported as Boolean"),
    method<&Is::constant<0>>("zero as Int128QTX"),
    method<&Is::constant<1>>("one as Int128QTX"),
    method<&Is::constant<2>>("two as Int128QTX"),
};

// clang-format off
REALmethodDefinition methods[] = {
    method<&Sqrt>("Sqrt as Int128QTX"),
    method<&Is::Pow>("Pow(exp as UInt64) as Int128QTX"),
    method<&Is::inPlace<Successor, "IncMethod">>("Inc"),
    method<&Is::inPlace<Predecessor, "DecMethod">>("Dec"),
    method<&Is::unary<Successor, "Inc">>("Inc as Int128QTX"),
    method<&Is::unary<Predecessor, "Dec">>("Dec as Int128QTX"),
    method<&Is::binary<std::bit_and<>, "BitwiseAnd_Int128">>("BitwiseAnd(Value as Int128QTX) as Int128QTX"),
    method<&Is::binaryWord<std::bit_and<>, "BitwiseAnd_Int64">>("BitwiseAnd(Value as Int64) as Int128QTX"),
    method<&Is::binary<std::bit_or<>, "BitwiseOr_Int128">>("BitwiseOr(Value as Int128QTX) as Int128QTX"),
    method<&Is::binaryWord<std::bit_or<>, "BitwiseOr_Int64">>("BitwiseOr(Value as Int64) as Int128QTX"),
    method<&Is::binary<std::bit_xor<>, "BitwiseXOr_Int128">>("BitwiseXOr(Value as Int128QTX) as Int128QTX"),
    method<&Is::binaryWord<std::bit_xor<>, "BitwiseXOr_Int64">>("BitwiseXOr(Value as Int64) as Int128QTX"),
    method<&Is::assignWord<"Operator_Assign_Int64">>("Operator_Convert(value as Int64)"),
    method<&Is::Operator_Assign_String>("Operator_Convert(value as String)"),
    method<&Operator_Convert_Int64>("Operator_Convert as Int64"),
    method<&Is::Operator_Convert_String>("Operator_Convert as String"),
    method<&Is::binary<std::plus<>, "Operator_Add_Int128">>("Operator_Add(other as Int128QTX) as Int128QTX"),
    method<&Is::binaryWord<std::plus<>, "Operator_Add_Int64">>("Operator_Add(other as Int64) as Int128QTX"),
    method<&Is::binary<std::plus<>, "Operator_Add_Int128">>("Operator_AddRight(other as Int128QTX) as Int128QTX"),
    method<&Is::binary<std::minus<>, "Operator_Subtract_Int128">>("Operator_Subtract(other as Int128QTX) as Int128QTX"),
    method<&Is::binaryWord<std::minus<>, "Operator_Subtract_Int64">>("Operator_Subtract(other as Int64) as Int128QTX"),
    method<&Is::reflected<std::minus<>, "Operator_SubtractRight_Int64">>("Operator_SubtractRight(other as Int64) as Int128QTX"),
    method<&Is::binary<std::multiplies<>, "Operator_Multiply_Int128">>("Operator_Multiply(other as Int128QTX) as Int128QTX"),
    method<&Is::binaryWord<std::multiplies<>, "Operator_Multiply_Int64">>("Operator_Multiply(other as Int64) as Int128QTX"),
    method<&Is::reflected<std::multiplies<>, "Operator_MultiplyRight_Int64">>("Operator_MultiplyRight(other as Int64) as Int128QTX"),
    method<&Is::binary<std::divides<>, "Operator_Divide_Int128">>("Operator_Divide(other as Int128QTX) as Int128QTX"),
    method<&Is::binaryWord<std::divides<>, "Operator_Divide_Int64">>("Operator_Divide(other as Int64) as Int128QTX"),
    method<&Is::reflected<std::divides<>, "Operator_DivideRight_Int64">>("Operator_DivideRight(other as Int64) as Int128QTX"),
    method<&Is::compareObject<UInt128, "Operator_Compare_UInt128">>("Operator_Compare(other as UInt128QTX) as Integer"),
    method<&Is::compareObject<Int128, "Operator_Compare_Int128">>("Operator_Compare(other as Int128QTX) as Integer"),
    method<&Is::compareWord<"Operator_Compare_Int64">>("Operator_Compare(other as Int64) as Integer"),
    method<&Is::binary<std::modulus<>, "Operator_Modulo_Int128">>("Operator_Modulo(other as Int128QTX) as Int128QTX"),
    method<&Is::binaryWord<std::modulus<>, "Operator_Modulo_Int64">>("Operator_Modulo(other as Int64) as Int128QTX"),
    method<&Is::reflected<std::modulus<>, "Operator_ModuloRight_Int64">>("Operator_ModuloRight(other as Int64) as Int128QTX"),
    method<&Is::unary<std::negate<>, "Operator_Negate">>("Operator_Negate as Int128QTX"),
    method<&Is::equalsWord<"Equals_Int64">>("Equals(other as Int64) as Boolean"),
    method<&Is::equalsObject<Int128, "Equals_Int128">>("Equals(other as Int128QTX) as Boolean"),
    method<&Is::equalsObject<UInt128, "Equals_UInt128">>("Equals(other as UInt128QTX) as Boolean"),
    method<&Is::binary<ShiftLeft, "ShiftLeft_Int128">>("ShiftLeft(other as Int128QTX) as Int128QTX"),
    method<&Is::binaryWord<ShiftLeft, "ShiftLeft_Int64">>("ShiftLeft(other as Int64) as Int128QTX"),
    method<&Is::binary<ShiftRight, "ShiftRight_Int128">>("ShiftRight(other as Int128QTX) as Int128QTX"),
    method<&Is::binaryWord<ShiftRight, "ShiftRight_Int64">>("ShiftRight(other as Int64) as Int128QTX"),
    method<&Is::constructFromWord<std::int64_t, "Constructor_Int64">>("Constructor(value as Int64)"),
    method<&Is::constructFromObject<"Constructor_Int128">>("Constructor(value as Int128QTX)"),
    method<&Is::constructFromOtherClass<UInt128, "Constructor_UInt128", "Value too big!">>("Constructor(value as UInt128QTX)"),
    method<&Is::ConstructorString>("Constructor(value as String)"),
    method<&Is::ConstructorData>("Constructor(Data as Ptr, Size as Integer, isUnsigned as boolean = false)"),
    method<&Is::Constructor>("Constructor"),
};
// clang-format on

}  // namespace

REALclassDefinition int128Class = classDefinition({.name = ClassOf<Int128>::name,
                                                   .dataSize = sizeof(Int128),
                                                   .properties = properties,
                                                   .methods = methods,
                                                   .sharedMethods = sharedMethods});

}  // namespace qtx
