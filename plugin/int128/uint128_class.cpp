// UInt128QTX: an unsigned 128-bit integer.
#include "int128/int128_classes.h"
#include "int128/shapes.h"

namespace qtx {
namespace {

using Is = Shapes<UInt128>;
using Word = std::uint64_t;

struct SquareRoot {
  UInt128 operator()(UInt128 value) const { return squareRoot(value); }
};

// The low word, whether or not the value fits.
std::uint64_t Operator_Convert_UInt64(REALobject self) noexcept {
  Trace("Operator_Convert_UInt64");
  const UInt128 value = valueOf<UInt128>(self);
  if (value.high != 0) RaiseException("OutOfBoundsException", "Value too big for UInt64.");
  return value.low;
}

// The one result of the other class. 2^127 is refused although the other class could hold its negative.
REALobject Operator_Negate(REALobject self) noexcept {
  Trace("Operator_Negate");
  const UInt128 value = valueOf<UInt128>(self);
  if (value.topBit()) {
    RaiseException("OutOfBoundsException", "UInt128 is too big to make negative");
    return nullptr;
  }
  return newObject(-Int128(value));
}

REALproperty properties[] = {
    property<&Is::getData>("Data", "Ptr"),
    property<&Is::getLowValue, &Is::setLowValue>("LowValue", "UInt64"),
    property<&Is::getHighValue, &Is::setHighValue>("HighValue", "UInt64"),
    property<&Is::stringValue, &Is::setStringValue>("stringValue", "String"),
    property<&Is::query<popCount<Word>, "PopCount">>("PopCount", "Integer"),
    property<&Is::query<countLeftZeros<Word>, "CountLeftZeros">>("CountLeftZeros", "Integer"),
    property<&Is::query<countRightZeros<Word>, "CountRightZeros">>("CountRightZeros", "Integer"),
    property<&Is::query<bitWidth<Word>, "BitWidth">>("BitWidth", "Integer"),
    property<&Is::doubleValue>("doubleValue", "Double"),
};

REALmethodDefinition sharedMethods[] = {
    method<&Is::issupported>("supported as Boolean"),
    method<&Is::constant<0>>("zero as UInt128QTX"),
    method<&Is::constant<1>>("one as UInt128QTX"),
    method<&Is::constant<2>>("two as UInt128QTX"),
};

// clang-format off
REALmethodDefinition methods[] = {
    method<&Is::unary<SquareRoot, "Sqrt">>("Sqrt as UInt128QTX"),
    method<&Is::Pow>("Pow(exp as UInt64) as UInt128QTX"),
    method<&Is::inPlace<Successor, "IncMethod">>("Inc"),
    method<&Is::inPlace<Predecessor, "DecMethod">>("Dec"),
    method<&Is::unary<Successor, "Inc">>("Inc as UInt128QTX"),
    method<&Is::unary<Predecessor, "Dec">>("Dec as UInt128QTX"),
    method<&Is::binary<std::bit_and<>, "BitwiseAnd_UInt128">>("BitwiseAnd(Value as UInt128QTX) as UInt128QTX"),
    method<&Is::binaryWord<std::bit_and<>, "BitwiseAnd_UInt64">>("BitwiseAnd(Value as UInt64) as UInt128QTX"),
    method<&Is::binary<std::bit_or<>, "BitwiseOr_UInt128">>("BitwiseOr(Value as UInt128QTX) as UInt128QTX"),
    method<&Is::binaryWord<std::bit_or<>, "BitwiseOr_UInt64">>("BitwiseOr(Value as UInt64) as UInt128QTX"),
    method<&Is::binary<std::bit_xor<>, "BitwiseXOr_UInt128">>("BitwiseXOr(Value as UInt128QTX) as UInt128QTX"),
    method<&Is::binaryWord<std::bit_xor<>, "BitwiseXOr_UInt64">>("BitwiseXOr(Value as UInt64) as UInt128QTX"),
    method<&Is::assignWord<"Operator_Assign_UInt64">>("Operator_Convert(value as UInt64)"),
    method<&Is::Operator_Assign_String>("Operator_Convert(value as String)"),
    method<&Operator_Convert_UInt64>("Operator_Convert as UInt64"),
    method<&Is::Operator_Convert_String>("Operator_Convert as String"),
    method<&Is::binary<std::plus<>, "Operator_Add_UInt128">>("Operator_AddRight(other as UInt128QTX) as UInt128QTX"),
    method<&Is::binary<std::plus<>, "Operator_Add_UInt128">>("Operator_Add(other as UInt128QTX) as UInt128QTX"),
    method<&Is::binaryWord<std::plus<>, "Operator_Add_UInt64">>("Operator_Add(other as UInt64) as UInt128QTX"),
    method<&Is::binary<std::minus<>, "Operator_Subtract_UInt128">>("Operator_Subtract(other as UInt128QTX) as UInt128QTX"),
    method<&Is::binaryWord<std::minus<>, "Operator_Subtract_UInt64">>("Operator_Subtract(other as UInt64) as UInt128QTX"),
    method<&Is::reflected<std::minus<>, "Operator_SubtractRight_UInt64">>("Operator_SubtractRight(other as UInt64) as UInt128QTX"),
    method<&Is::binary<std::multiplies<>, "Operator_Multiply_UInt128">>("Operator_Multiply(other as UInt128QTX) as UInt128QTX"),
    method<&Is::binaryWord<std::multiplies<>, "Operator_Multiply_UInt64">>("Operator_Multiply(other as UInt64) as UInt128QTX"),
    method<&Is::reflected<std::multiplies<>, "Operator_MultiplyRight_UInt64">>("Operator_MultiplyRight(other as UInt64) as UInt128QTX"),
    method<&Is::binary<std::divides<>, "Operator_Divide_UInt128">>("Operator_Divide(other as UInt128QTX) as UInt128QTX"),
    method<&Is::binaryWord<std::divides<>, "Operator_Divide_UInt64">>("Operator_Divide(other as UInt64) as UInt128QTX"),
    method<&Is::reflected<std::divides<>, "Operator_DivideRight_UInt64">>("Operator_DivideRight(other as UInt64) as UInt128QTX"),
    method<&Is::compareObject<Int128, "Operator_Compare_Int128">>("Operator_Compare(other as Int128QTX) as Integer"),
    method<&Is::compareObject<UInt128, "Operator_Compare_UInt128">>("Operator_Compare(other as UInt128QTX) as Integer"),
    method<&Is::compareWord<"Operator_Compare_UInt64">>("Operator_Compare(other as UInt64) as Integer"),
    method<&Is::binary<std::modulus<>, "Operator_Modulo_UInt128">>("Operator_Modulo(other as UInt128QTX) as UInt128QTX"),
    method<&Is::binaryWord<std::modulus<>, "Operator_Modulo_UInt64">>("Operator_Modulo(other as UInt64) as UInt128QTX"),
    method<&Is::reflected<std::modulus<>, "Operator_ModuloRight_UInt64">>("Operator_ModuloRight(other as UInt64) as UInt128QTX"),
    method<&Operator_Negate>("Operator_Negate as Int128QTX"),
    method<&Is::equalsWord<"Equals_UInt64">>("Equals(other as UInt64) as Boolean"),
    method<&Is::equalsObject<UInt128, "Equals_UInt128">>("Equals(other as UInt128QTX) as Boolean"),
    method<&Is::equalsObject<Int128, "Equals_Int128">>("Equals(other as Int128QTX) as Boolean"),
    method<&Is::binary<ShiftLeft, "ShiftLeft_UInt128">>("ShiftLeft(other as UInt128QTX) as UInt128QTX"),
    method<&Is::binaryWord<ShiftLeft, "ShiftLeft_UInt64">>("ShiftLeft(other as UInt64) as UInt128QTX"),
    method<&Is::binaryWord<ShiftLeft, "ShiftLeft_Int64", std::int64_t>>("ShiftLeft(other as Int64) as UInt128QTX"),
    method<&Is::binary<ShiftRight, "ShiftRight_UInt128">>("ShiftRight(other as UInt128QTX) as UInt128QTX"),
    method<&Is::binaryWord<ShiftRight, "ShiftRight_UInt64">>("ShiftRight(other as UInt64) as UInt128QTX"),
    method<&Is::binaryWord<ShiftRight, "ShiftRight_Int64", std::int64_t>>("ShiftRight(other as Int64) as UInt128QTX"),
    method<&Is::constructFromWord<std::uint64_t, "Constructor_UInt64">>("Constructor(value as UInt64)"),
    method<&Is::constructFromWord<std::int64_t, "Constructor_Int64">>("Constructor(value as Int64)"),
    method<&Is::constructFromObject<"Constructor_UInt128">>("Constructor(value as UInt128QTX)"),
    method<&Is::constructFromOtherClass<Int128, "Constructor_Int128", "Value is negative!">>("Constructor(value as Int128QTX)"),
    method<&Is::ConstructorString>("Constructor(value as String)"),
    method<&Is::ConstructorData>("Constructor(Data as Ptr, Size as Integer, isUnsigned as boolean = false)"),
    method<&Is::Constructor>("Constructor"),
};
// clang-format on

}  // namespace

REALclassDefinition uint128Class = classDefinition({.name = ClassOf<UInt128>::name,
                                                    .dataSize = sizeof(UInt128),
                                                    .properties = properties,
                                                    .methods = methods,
                                                    .sharedMethods = sharedMethods});

}  // namespace qtx
