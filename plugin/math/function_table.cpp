#include "math/function_table.h"

#include <cmath>

#include "frame/records.h"
#include "math/elementary.h"

namespace qtx {

namespace {

// A function of the C library is registered as it is: the host calls it without a detour.
using Unary = double (*)(double);
using Binary = double (*)(double, double);

std::uint64_t DoubleToUInt64QTX(double value) noexcept { return toUInt64(value); }
double UInt64ToDoubleQTX(std::uint64_t value) noexcept { return static_cast<double>(value); }
std::int64_t DoubleToInt64QTX(double value) noexcept { return toInt64(value); }
double Int64ToDoubleQTX(std::int64_t value) noexcept { return static_cast<double>(value); }
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
    method<&DoubleToUInt64QTX>("DoubleToUInt64QTX(value as double) as UInt64"),
    method<&UInt64ToDoubleQTX>("UInt64ToDoubleQTX(value as UInt64) as double"),
    method<&DoubleToInt64QTX>("DoubleToInt64QTX(value as double) as Int64"),
    method<&Int64ToDoubleQTX>("Int64ToDoubleQTX(value as Int64) as double"),
    method<&HiWordQTX>("HiWordQTX(i as integer) as integer"),
    method<&LoWordQTX>("LoWordQTX(i as integer) as integer"),
    method<Binary{&::hypot}>("HypotQTX(x as double, y as double) as double"),
    method<Unary{&::floor}>("FloorQTX(x as double) as double"),
    method<Unary{&::cos}>("CosQTX(x as double) as double"),
    method<Unary{&::cosh}>("CosHQTX(x as double) as double"),
    method<Unary{&::sin}>("SinQTX(x as double) as double"),
    method<Unary{&::sinh}>("SinHQTX(x as double) as double"),
    method<Unary{&::tan}>("TanQTX(x as double) as double"),
    method<Unary{&::tanh}>("TanHQTX(x as double) as double"),
    method<Unary{&::acos}>("ACosQTX(x as double) as double"),
    method<Unary{&::acosh}>("ACosHQTX(x as double) as double"),
    method<Unary{&::asin}>("ASinQTX(x as double) as double"),
    method<Unary{&::asinh}>("ASinHQTX(x as double) as double"),
    method<Unary{&::atan}>("ATanQTX(x as double) as double"),
    method<Binary{&::atan2}>("ATan2QTX(x as double, y as double) as double"),
    method<Unary{&::atanh}>("ATanHQTX(x as double) as double"),
    method<Unary{&::exp}>("ExpQTX(x as double) as double"),
    method<Unary{&::exp2}>("Exp2QTX(x as double) as double"),
    method<Unary{&::log}>("LogQTX(x as double) as double"),
    method<Unary{&::log2}>("Log2QTX(x as double) as double"),
    method<Unary{&::log10}>("Log10QTX(x as double) as double"),
    method<Binary{&::pow}>("PowQTX(x as double, y as double) as double"),
    method<&SqrtQTX>("SqrtQTX(x as double, y as double) as double"),
    method<&RoundQTX>("RoundQTX(x as double, decimals as integer = 0) as double"),
    method<&FRExpQTX>("FRExpQTX(inputx as double, byref expValue as integer) as double"),
    method<&IsNANQTX>("IsNANQTX(x as double) as boolean"),
    method<&IsFiniteQTX>("IsFiniteQTX(x as double) as boolean"),
    method<&IsInfQTX>("IsInfQTX(x as double) as boolean"),
    method<&FacQTX>("FacQTX(x as integer) as double"),
};

}  // namespace

std::span<REALmethodDefinition> mathFunctions() { return functions; }

}  // namespace qtx
