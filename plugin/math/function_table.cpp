// The functions' declarations beside what is called.
#include "math/function_table.h"

#include <cmath>

#include "frame/processor.h"
#include "frame/records.h"
#include "math/bits.h"
#include "math/currency.h"
#include "math/currency_functions.h"
#include "math/elementary.h"
#include "math/extended_functions.h"
#include "math/half_float.h"
#include "math/luhn_functions.h"
#include "math/normal_quantile_functions.h"
#include "math/number_comparison_functions.h"
#include "math/random_draws_functions.h"

namespace qtx {

namespace {

using Unary = double (*)(double);
using Binary = double (*)(double, double);
using SignedToDouble = double (*)(std::int64_t) noexcept;
using UnsignedToDouble = double (*)(std::uint64_t) noexcept;

// A function of the C library is registered as it is: it throws nothing, and the host calls it without a
// detour.
template <auto function>
REALmethodDefinition library(DeclarationOf<function> declaration) {
  return methodRecord<function>(reinterpret_cast<REALproc>(function), declaration);
}

REALmethodDefinition functions[] = {
    method<&Random_NormalDistribution>(
        "RandomNormalDistributionQTX(Mean as Double, StdDev as Double) as double"),
    method<&Random_PoissonDistribution>("RandomPoissonDistributionQTX(Mean as Integer) as Integer"),
    method<&Random_ExponentialDistribution>("RandomExponentialDistributionQTX(lambda as Double) as double"),
    method<&NormInv>("NormInvQTX(p as Double, mu as double = 0.0, sigma as double = 1.0) as double"),
    method<&tuned::toHalf, &toHalf>(thisProcessor().convertsHalfFloats,
                                    "ConvertToFloat16QTX(Number as Single) as UInt16"),
    method<&tuned::fromHalf, &fromHalf>(thisProcessor().convertsHalfFloats,
                                        "ConvertFromFloat16QTX(Number as UInt16) as Single"),
    method<&IsValidCreditCardNumber>("IsValidCreditCardNumberQTX(Number as String) as boolean"),
    method<&addCurrency>("CurrencyAddQTX(value1 as Currency, value2 as Currency) as Currency"),
    method<&subtractCurrency>("CurrencySubQTX(value1 as Currency, value2 as Currency) as Currency"),
    method<&CurrencyDiv>("CurrencyDivQTX(value1 as Currency, value2 as Integer) as Currency"),
    method<&multiplyCurrency>("CurrencyMulQTX(value1 as Currency, value2 as Integer) as Currency"),
    method<&CurrencyValue>("CurrencyValueQTX(value as string) as Currency"),
    method<&toUInt64>("DoubleToUInt64QTX(value as double) as UInt64"),
    method<UnsignedToDouble{&toDouble}>("UInt64ToDoubleQTX(value as UInt64) as double"),
    method<&toInt64>("DoubleToInt64QTX(value as double) as Int64"),
    method<SignedToDouble{&toDouble}>("Int64ToDoubleQTX(value as Int64) as double"),
    method<&withoutBits>("BitClearQTX(value as UInt64, mask as UInt64) as UInt64"),
    method<&tuned::bitCount, &bitCount>(thisProcessor().countsBits,
                                        "BitCountQTX(value as UInt64) as Integer"),
    method<&highWord>("HiWordQTX(i as integer) as integer"),
    method<&lowWord>("LoWordQTX(i as integer) as integer"),
    method<&shiftBits>("ArithmeticShiftQTX(value as UInt64, count as Integer) as UInt64"),
    method<&shiftBits>("LogicalShiftQTX(value as UInt64, count as Integer) as UInt64"),
    method<&rotateField>(
        "BitwiseRotateQTX(value as UInt64, count as Integer, offset as Integer, width as Integer) as UInt64"),
    method<&complement>("BitwiseNotQTX(value as UInt64) as UInt64"),
    method<&bitValue>("BitValQTX(bitNumber as Integer) as UInt64"),
    method<&withBit>("BitInclQTX(value as UInt64, bitNumber as Integer) as UInt64"),
    method<&withoutBit>("BitExclQTX(value as UInt64, bitNumber as Integer) as UInt64"),
    method<&hasBit>("BitIsSetQTX(value as UInt64, bitNumber as Integer) as Boolean"),
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
    method<&root>("SqrtQTX(x as double, y as double) as double"),
    method<&roundTo>("RoundQTX(x as double, decimals as integer = 0) as double"),
    method<&splitBinary>("FRExpQTX(inputx as double, byref expValue as integer) as double"),
    method<&ExtendedStrToDouble>("ExtendedStrToDoubleQTX(v as string) as double"),
    method<&DoubleToExtendedStr>("DoubleToExtendedStrQTX(x as double) as string"),
    method<&isNaN>("IsNANQTX(x as double) as boolean"),
    method<&isFinite>("IsFiniteQTX(x as double) as boolean"),
    method<&isInfinite>("IsInfQTX(x as double) as boolean"),
    method<&factorial>("FacQTX(x as integer) as double"),
    method<&CompareNumberVariants>("CompareNumbersQTX(v1 as Variant, v2 as Variant) as Integer"),
};

}  // namespace

std::span<REALmethodDefinition> mathFunctions() { return functions; }

}  // namespace qtx
