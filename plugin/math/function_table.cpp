#include "math/function_table.h"

#include <cmath>

#include "frame/records.h"
#include "math/bits.h"
#include "math/compare_numbers.h"
#include "math/currency.h"
#include "math/currency_functions.h"
#include "math/elementary.h"
#include "math/half_float.h"
#include "math/random_functions.h"
#include "math/string_functions.h"

namespace qtx {

namespace {

using Unary = double (*)(double);
using Binary = double (*)(double, double);

// A function of the C library is registered as it is: it throws nothing, and the host calls it without a
// detour.
template <auto function>
REALmethodDefinition library(CheckedDeclaration<std::remove_const_t<decltype(function)>> declaration) {
  return {
      reinterpret_cast<REALproc>(function), nullptr, declaration.text(), recordFlags::console, nullptr, 0};
}

std::uint16_t ConvertToFloat16QTX(float number) noexcept { return toHalf(number); }
float ConvertFromFloat16QTX(std::uint16_t number) noexcept { return fromHalf(number); }

std::int64_t CurrencyAddQTX(std::int64_t a, std::int64_t b) noexcept { return addCurrency(a, b); }
std::int64_t CurrencySubQTX(std::int64_t a, std::int64_t b) noexcept { return subtractCurrency(a, b); }
std::int64_t CurrencyMulQTX(std::int64_t a, RBInteger b) noexcept { return multiplyCurrency(a, b); }

std::uint64_t DoubleToUInt64QTX(double value) noexcept { return toUInt64(value); }
double UInt64ToDoubleQTX(std::uint64_t value) noexcept { return static_cast<double>(value); }
std::int64_t DoubleToInt64QTX(double value) noexcept { return toInt64(value); }
double Int64ToDoubleQTX(std::int64_t value) noexcept { return static_cast<double>(value); }

std::uint64_t withoutBits(std::uint64_t x, std::uint64_t y) noexcept { return x & ~y; }
std::uint64_t complementOfAnd(std::uint64_t x, std::uint64_t y) noexcept { return ~(x & y); }
std::uint64_t complementOfOr(std::uint64_t x, std::uint64_t y) noexcept { return ~(x | y); }
std::uint64_t BitwiseNotQTX(std::uint64_t value) noexcept { return ~value; }
RBInteger BitCountQTX(std::uint64_t value) noexcept { return bitCount(value); }
std::uint64_t ShiftQTX(std::uint64_t value, RBInteger count) noexcept { return shiftBits(value, count); }
std::uint64_t BitwiseRotateQTX(std::uint64_t value, RBInteger count, RBInteger offset,
                               RBInteger width) noexcept {
  return rotateField(value, count, offset, width);
}
std::uint64_t BitValQTX(RBInteger bitNumber) noexcept { return bitValue(bitNumber); }
std::uint64_t BitInclQTX(std::uint64_t value, RBInteger bitNumber) noexcept {
  return value | bitValue(bitNumber);
}
std::uint64_t BitExclQTX(std::uint64_t value, RBInteger bitNumber) noexcept {
  return value & ~bitValue(bitNumber);
}
bool BitIsSetQTX(std::uint64_t value, RBInteger bitNumber) noexcept { return value & bitValue(bitNumber); }
RBInteger HiWordQTX(RBInteger i) noexcept { return highWord(i); }
RBInteger LoWordQTX(RBInteger i) noexcept { return lowWord(i); }

double SqrtQTX(double x, double y) noexcept { return root(x, y); }
double RoundQTX(double x, RBInteger decimals) noexcept { return roundTo(x, decimals); }
double FRExpQTX(double x, RBInteger* expValue) noexcept { return splitBinary(x, expValue); }
bool IsNANQTX(double x) noexcept { return isNaN(x); }
bool IsFiniteQTX(double x) noexcept { return isFinite(x); }
bool IsInfQTX(double x) noexcept { return isInfinite(x); }
double FacQTX(RBInteger x) noexcept { return factorial(x); }

REALmethodDefinition functions[] = {
    method<&Random_NormalDistribution>(
        "RandomNormalDistributionQTX(Mean as Double, StdDev as Double) as double"),
    method<&Random_PoissonDistribution>("RandomPoissonDistributionQTX(Mean as Integer) as Integer"),
    method<&Random_ExponentialDistribution>("RandomExponentialDistributionQTX(lambda as Double) as double"),
    method<&NormInv>("NormInvQTX(p as Double, mu as double = 0.0, sigma as double = 1.0) as double"),
    method<&ConvertToFloat16QTX>("ConvertToFloat16QTX(Number as Single) as UInt16"),
    method<&ConvertFromFloat16QTX>("ConvertFromFloat16QTX(Number as UInt16) as Single"),
    method<&IsValidCreditCardNumber>("IsValidCreditCardNumberQTX(Number as String) as boolean"),
    method<&CurrencyAddQTX>("CurrencyAddQTX(value1 as Currency, value2 as Currency) as Currency"),
    method<&CurrencySubQTX>("CurrencySubQTX(value1 as Currency, value2 as Currency) as Currency"),
    method<&CurrencyDiv>("CurrencyDivQTX(value1 as Currency, value2 as Integer) as Currency"),
    method<&CurrencyMulQTX>("CurrencyMulQTX(value1 as Currency, value2 as Integer) as Currency"),
    method<&CurrencyValue>("CurrencyValueQTX(value as string) as Currency"),
    method<&DoubleToUInt64QTX>("DoubleToUInt64QTX(value as double) as UInt64"),
    method<&UInt64ToDoubleQTX>("UInt64ToDoubleQTX(value as UInt64) as double"),
    method<&DoubleToInt64QTX>("DoubleToInt64QTX(value as double) as Int64"),
    method<&Int64ToDoubleQTX>("Int64ToDoubleQTX(value as Int64) as double"),
    method<&withoutBits>("BitClearQTX(value as UInt64, mask as UInt64) as UInt64"),
    method<&BitCountQTX>("BitCountQTX(value as UInt64) as Integer"),
    method<&HiWordQTX>("HiWordQTX(i as integer) as integer"),
    method<&LoWordQTX>("LoWordQTX(i as integer) as integer"),
    method<&ShiftQTX>("ArithmeticShiftQTX(value as UInt64, count as Integer) as UInt64"),
    method<&ShiftQTX>("LogicalShiftQTX(value as UInt64, count as Integer) as UInt64"),
    method<&BitwiseRotateQTX>(
        "BitwiseRotateQTX(value as UInt64, count as Integer, offset as Integer, width as Integer) as UInt64"),
    method<&BitwiseNotQTX>("BitwiseNotQTX(value as UInt64) as UInt64"),
    method<&BitValQTX>("BitValQTX(bitNumber as Integer) as UInt64"),
    method<&BitInclQTX>("BitInclQTX(value as UInt64, bitNumber as Integer) as UInt64"),
    method<&BitExclQTX>("BitExclQTX(value as UInt64, bitNumber as Integer) as UInt64"),
    method<&BitIsSetQTX>("BitIsSetQTX(value as UInt64, bitNumber as Integer) as Boolean"),
    method<&withoutBits>("BitwiseDiffQTX(x as UInt64, y as UInt64) as UInt64"),
    // The names are crosswise, and programs rely on it.
    method<&complementOfAnd>("BitwiseNOrQTX(x as UInt64, y as UInt64) as UInt64"),
    method<&complementOfOr>("BitwiseNAndQTX(x as UInt64, y as UInt64) as UInt64"),
    library<Binary{&::hypot}>("HypotQTX(x as double, y as double) as double"),
    library<Unary{&::floor}>("FloorQTX(x as double) as double"),
    library<Unary{&::cos}>("CosQTX(x as double) as double"),
    library<Unary{&::cosh}>("CosHQTX(x as double) as double"),
    library<Unary{&::sin}>("SinQTX(x as double) as double"),
    library<Unary{&::sinh}>("SinHQTX(x as double) as double"),
    library<Unary{&::tan}>("TanQTX(x as double) as double"),
    library<Unary{&::tanh}>("TanHQTX(x as double) as double"),
    library<Unary{&::acos}>("ACosQTX(x as double) as double"),
    library<Unary{&::acosh}>("ACosHQTX(x as double) as double"),
    library<Unary{&::asin}>("ASinQTX(x as double) as double"),
    library<Unary{&::asinh}>("ASinHQTX(x as double) as double"),
    library<Unary{&::atan}>("ATanQTX(x as double) as double"),
    library<Binary{&::atan2}>("ATan2QTX(x as double, y as double) as double"),
    library<Unary{&::atanh}>("ATanHQTX(x as double) as double"),
    library<Unary{&::exp}>("ExpQTX(x as double) as double"),
    library<Unary{&::exp2}>("Exp2QTX(x as double) as double"),
    library<Unary{&::log}>("LogQTX(x as double) as double"),
    library<Unary{&::log2}>("Log2QTX(x as double) as double"),
    library<Unary{&::log10}>("Log10QTX(x as double) as double"),
    library<Binary{&::pow}>("PowQTX(x as double, y as double) as double"),
    method<&SqrtQTX>("SqrtQTX(x as double, y as double) as double"),
    method<&RoundQTX>("RoundQTX(x as double, decimals as integer = 0) as double"),
    method<&FRExpQTX>("FRExpQTX(inputx as double, byref expValue as integer) as double"),
    method<&ExtendedStrToDouble>("ExtendedStrToDoubleQTX(v as string) as double"),
    method<&DoubleToExtendedStr>("DoubleToExtendedStrQTX(x as double) as string"),
    method<&IsNANQTX>("IsNANQTX(x as double) as boolean"),
    method<&IsFiniteQTX>("IsFiniteQTX(x as double) as boolean"),
    method<&IsInfQTX>("IsInfQTX(x as double) as boolean"),
    method<&FacQTX>("FacQTX(x as integer) as double"),
    method<&CompareNumberVariants>("CompareNumbersQTX(v1 as Variant, v2 as Variant) as Integer"),
};

}  // namespace

std::span<REALmethodDefinition> mathFunctions() { return functions; }

}  // namespace qtx
