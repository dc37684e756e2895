// Variants: nil, an object as it is, or a box of one of the host's hidden classes around a plain value.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "runtime/object.h"
#include "runtime/registry.h"
#include "runtime/text.h"
#include "runtime/value.h"

namespace host {

// Registers the hidden classes of the boxes.
void registerBoxes(Registry& registry);

// A variant holding the value; the slot is borrowed. Int8, Int16, Int32, UInt8 and UInt16 become Int32;
// UInt32 and UInt64 keep their kinds in boxes of "_VariantUInt32" and "_VariantUInt64". An empty string gives
// a box, nil gives null.
Ref<Heap> box(Slot value, Type type);

// What is in it: for a box the plain type, for an object its class, for an array its type; Kind::Nil for
// null.
Type typeIn(const Heap* variant);

std::int64_t varTypeOf(const Heap* variant);

// Conversions as the language makes them. Text is read as a number as far as it goes (0 where there is none);
// numbers round toward zero and saturate; nil gives 0 or "". Objects and arrays: throws HostException
// TypeMismatchException.
std::int64_t toInt64(const Heap* variant);
std::uint64_t toUInt64(const Heap* variant);
double toDouble(const Heap* variant);
Ref<Text> toText(const Heap* variant);

// How much of a text is a decimal number at its start, with the blanks in front of it; 0: none is there.
std::size_t lengthOfNumber(std::string_view text);

// A slot of type `to` from one of type `from`, both plain (numbers, Boolean, Currency, String, Variant). A
// reference result is owned by the caller. This is the one table of the language's implicit conversions.
Slot convert(Slot value, Type from, Type to);
bool isConvertible(Type from, Type to);

// As Print and Str write a value: Doubles in the shortest form that reads back, "True"/"False", Currency with
// up to four decimals.
std::string display(Slot value, Type type);

}  // namespace host
