// Declarations against the functions behind them: all of it happens while compiling.
#include "frame/checked_declaration.h"

#include <gtest/gtest.h>

namespace qtx {
namespace {

template <typename Signature>
constexpr bool fits(std::string_view declaration) {
  return detail::Fit<Signature>::check(declaration);
}

// The object in front of a method's parameters is not declared.
static_assert(fits<void (*)(REALobject)>("Clear"));
static_assert(fits<bool (*)(REALobject) noexcept>("Test as Boolean"));
static_assert(fits<std::int64_t (*)(REALobject, std::int64_t)>("Add(Value as Int64) as Int64"));
static_assert(fits<double (*)(double, double)>("NormInvQTX(p as Double, mu as double = 0.0) as double"));
static_assert(!fits<void (*)(REALstring)>("Clear"));
static_assert(!fits<void (*)(REALobject, REALobject)>("Clear"));

// Results.
static_assert(!fits<void (*)(REALobject)>("Test as Boolean"));
static_assert(!fits<bool (*)(REALobject)>("Clear"));
static_assert(!fits<std::int64_t (*)(REALobject)>("Operator_Convert as UInt64"));

// Parameters: number, kind, order, default, reference, array.
static_assert(!fits<double (*)()>("FacQTX(x as integer) as double"));
static_assert(!fits<double (*)(double)>("FacQTX(x as integer) as double"));
static_assert(
    fits<double (*)(double, RBInteger)>("RoundQTX(x as double, decimals as integer = 0) as double"));
static_assert(
    !fits<double (*)(RBInteger, double)>("RoundQTX(x as double, decimals as integer = 0) as double"));
static_assert(
    fits<double (*)(double, RBInteger*)>("FRExpQTX(inputx as double, byref expValue as integer) as double"));
static_assert(
    !fits<double (*)(double, RBInteger)>("FRExpQTX(inputx as double, byref expValue as integer) as double"));
static_assert(
    !fits<double (*)(double, RBInteger*)>("FRExpQTX(inputx as double, expValue as integer) as double"));
static_assert(fits<void (*)(REALobject, REALarrayDouble)>("Set(values() as Double)"));
static_assert(fits<void (*)(REALobject, REALarrayObject)>("Add(Values as Variant())"));
static_assert(!fits<void (*)(REALobject, REALobject)>("Add(Values as Variant())"));
static_assert(!fits<void (*)(REALobject, double)>("Set(values() as Double)"));

// Each type of the host's language.
static_assert(fits<REALstring (*)(void*)>("A(p as Ptr) as String"));
static_assert(fits<float (*)(std::uint16_t)>("A(n as UInt16) as Single"));
static_assert(fits<std::int64_t (*)(std::uint64_t)>("A(n as UInt64) as Currency"));
static_assert(fits<REALobject (*)(REALobject)>("A(v as Variant) as Int128QTX"));
static_assert(!fits<double (*)(float)>("A(x as Double) as Double"));
static_assert(!fits<REALstring (*)(REALobject)>("A(s as String) as String"));

}  // namespace
}  // namespace qtx
