// The shapes that the members of the 128-bit classes have, each told once for both classes: what is read, in
// which order, what happens to nil. A member is a shape with an operation and the text of its trace line.
#pragma once

#include <algorithm>
#include <cstring>
#include <functional>

#include "frame/raise.h"
#include "frame/text_bridge.h"
#include "int128/decimal_text.h"
#include "int128/division.h"
#include "int128/shared_values.h"
#include "int128/wide_functions.h"

namespace qtx {

// Text as a template argument.
template <std::size_t size>
struct Text {
  char text[size];
  consteval Text(const char (&literal)[size]) { std::copy_n(literal, size, text); }
};

// Operations that the standard library has no name for.
struct ShiftLeft {
  template <typename Value>
  Value operator()(Value value, Value count) const {
    return value << count;
  }
};
struct ShiftRight {
  template <typename Value>
  Value operator()(Value value, Value count) const {
    return value >> count;
  }
};
struct Successor {
  template <typename Value>
  Value operator()(Value value) const {
    return value + Value(1);
  }
};
struct Predecessor {
  template <typename Value>
  Value operator()(Value value) const {
    return value - Value(1);
  }
};

template <typename Value>
struct Shapes {
  using Word = typename Value::Word;
  static constexpr bool isSigned = std::is_signed_v<Word>;

  // Operators. Each gives a new or shared object and leaves its operands alone.

  // self ∘ other; a copy of self where other is nil.
  template <typename Operation, Text name>
  static REALobject binary(REALobject self, REALobject other) noexcept {
    Trace(name.text);
    const Value value = valueOf<Value>(self);
    return newObject(other ? Operation()(value, valueOf<Value>(other)) : value);
  }
  // The same for a 64-bit integer, extended to 128 bits.
  template <typename Operation, Text name, typename Integer = Word>
  static REALobject binaryWord(REALobject self, Integer other) noexcept {
    Trace(name.text);
    return newObject(Operation()(valueOf<Value>(self), Value(other)));
  }
  // other ∘ self.
  template <typename Operation, Text name>
  static REALobject reflected(REALobject self, Word other) noexcept {
    Trace(name.text);
    return newObject(Operation()(Value(other), valueOf<Value>(self)));
  }
  template <typename Operation, Text name>
  static REALobject unary(REALobject self) noexcept {
    Trace(name.text);
    return newObject(Operation()(valueOf<Value>(self)));
  }
  static REALobject Pow(REALobject self, std::uint64_t exponent) noexcept {
    Trace("Pow", exponent);
    return newObject(power(valueOf<Value>(self), exponent));
  }

  // Comparisons, also with the other class. An object is never compared with itself.

  template <typename Other, Text name>
  static RBInteger compareObject(REALobject self, REALobject other) noexcept {
    Trace(name.text);
    if (other == self) return 0;
    if (refuseNil(other, "Other is nil")) return 0;
    return compareValues(valueOf<Value>(self), valueOf<Other>(other));
  }
  template <Text name>
  static RBInteger compareWord(REALobject self, Word other) noexcept {
    Trace(name.text);
    return compareValues(valueOf<Value>(self), Value(other));
  }
  template <typename Other, Text name>
  static bool equalsObject(REALobject self, REALobject other) noexcept {
    Trace(name.text);
    if (other == self) return true;
    if (refuseNil(other, "other is nil")) return false;
    return equalValues(valueOf<Value>(self), valueOf<Other>(other));
  }
  template <Text name>
  static bool equalsWord(REALobject self, Word other) noexcept {
    Trace(name.text);
    return valueOf<Value>(self) == Value(other);
  }

  // Read-only properties that are numbers.
  template <auto function, Text name>
  static RBInteger query(REALobject self, RBInteger) noexcept {
    Trace(name.text);
    return function(valueOf<Value>(self));
  }
  static double doubleValue(REALobject self, RBInteger) noexcept {
    Trace("doubleValue");
    return toDouble(valueOf<Value>(self));
  }

  // Changes in place.

  template <typename Operation, Text name>
  static void inPlace(REALobject self) noexcept {
    Trace(name.text);
    Modify<Value>(self);
    setValueOf(self, Operation()(valueOf<Value>(self)));
  }
  template <Text name>
  static void assignWord(REALobject self, Word value) noexcept {
    Trace(name.text);
    Modify<Value>(self);
    setValueOf(self, Value(value));
  }
  // A negative Int64 fills the high word with ones in either class.
  template <typename Integer, Text name>
  static void constructFromWord(REALobject self, Integer value) noexcept {
    Trace(name.text, value);
    Modify<Value>(self);
    setValueOf(self, Value(value));
  }
  // Nil leaves the value as it is.
  template <Text name>
  static void constructFromObject(REALobject self, REALobject other) noexcept {
    Trace(name.text);
    Modify<Value>(self);
    if (other) setValueOf(self, valueOf<Value>(other));
  }
  // From the other class, whose top bit does not mean the same here.
  template <typename Other, Text name, Text refusal>
  static void constructFromOtherClass(REALobject self, REALobject other) noexcept {
    Trace(name.text);
    Modify<Value>(self);
    if (!other) return;
    const Other value = valueOf<Other>(other);
    if (value.topBit()) {
      RaiseException("OutOfBoundsException", refusal.text);
    } else {
      setValueOf(self, Value(value));
    }
  }
  static void Constructor(REALobject) noexcept {}
  // A little-endian integer in memory, extended from its size. Only the signed class asks how the top bit is
  // meant. Runs on new objects, which nobody shares yet, and so looks for none to detach.
  static void ConstructorData(REALobject self, const void* data, RBInteger size,
                              std::uint8_t isUnsigned) noexcept {
    if (size != 1 && size != 2 && size != 4 && size != 8 && size != 16) {
      RaiseException("UnsupportedOperationException", "Invalid size");
      return;
    }
    Value value;
    std::memcpy(&value, data, static_cast<std::size_t>(size));
    if constexpr (isSigned) {
      if (!isUnsigned) {
        const Value unread = 128 - 8 * size;
        value = value << unread >> unread;
      } else if (value.isNegative()) {
        RaiseException("OutOfBoundsException", "Unsigned integer is too big!");
        return;
      }
    }
    constants<Value>.overwrite(self);
    setValueOf(self, value);
  }

  // Properties for the words and the memory behind them. Whoever asks for the address may write through it.

  static void* getData(REALobject self, RBInteger) noexcept {
    Trace("getData");
    Modify<Value>(self);
    return self ? &dataOf<Value>(self) : nullptr;
  }
  static std::uint64_t getLowValue(REALobject self, RBInteger) noexcept {
    return loadWord(dataOf<Value>(self).low);
  }
  static void setLowValue(REALobject self, RBInteger, std::uint64_t value) noexcept {
    Trace("setLowValue", value);
    Modify<Value>(self);
    storeWord(dataOf<Value>(self).low, value);
  }
  static Word getHighValue(REALobject self, RBInteger) noexcept { return loadWord(dataOf<Value>(self).high); }
  static void setHighValue(REALobject self, RBInteger, Word value) noexcept {
    Trace("setHighValue", value);
    Modify<Value>(self);
    storeWord(dataOf<Value>(self).high, value);
  }

  // Decimal text.

  static REALstring Operator_Convert_String(REALobject self) {
    Trace("Operator_Convert_String");
    return textOf(self);
  }
  static REALstring stringValue(REALobject self, RBInteger) {
    Trace("stringValue");
    return textOf(self);
  }
  static void ConstructorString(REALobject self, REALstring text) {
    Trace("ConstructorString");
    Modify<Value>(self);
    setValueOf(self, parseDecimal<Value>(rbText(text).utf8()));
  }
  static void Operator_Assign_String(REALobject self, REALstring text) {
    Modify<Value>(self);
    rbText view(text);
    Trace("Operator_Assign_String", view.GetUTF8());
    setValueOf(self, parseDecimal<Value>(view.utf8()));
  }
  static void setStringValue(REALobject self, RBInteger, REALstring text) {
    Trace("setStringValue");
    Modify<Value>(self);
    rbText view(text);
    const Value value = parseDecimal<Value>(view.utf8());
    // Reading the text has run host code. A host that made something else meanwhile, and was given this very
    // object for it, has made it the shared one.
    Modify<Value>(self);
    setValueOf(self, value);
  }

  // Shared methods.

  static bool issupported() noexcept { return true; }
  template <int value>
  static REALobject constant() noexcept {
    return newObject(Value(value));
  }

 private:
  static REALstring textOf(REALobject self) {
    DecimalBuffer buffer;
    std::string_view text;
    if constexpr (isSigned) {
      text = int128_to_string(valueOf<Value>(self), buffer);
    } else {
      text = uint128_to_string(valueOf<Value>(self), buffer);
    }
    return REALBuildUnicodeString(text.data(), static_cast<long long>(text.size()), encoding::ascii);
  }
};

}  // namespace qtx
