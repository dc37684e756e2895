// How two numbers of different kinds compare, and which kind a variant's type code stands for.
#pragma once

#include <cstdint>

namespace qtx {

enum class NumberKind { signedInteger, floating, text, unsignedInteger, other };

constexpr NumberKind kindOf(std::int64_t typeCode) {
  switch (typeCode) {
    case 0:  // nil, which the host reads as 0
    case 2:
    case 3:
    case 11:
    case 16:
    case 102:  // unsigned, but of 32 bits
      return NumberKind::signedInteger;
    case 4:
    case 5:
    case 6:
      return NumberKind::floating;
    case 8:
    case 18:
    case 19:
    case 20:
    case 21:
    case 23:
    case 37:
      return NumberKind::text;
    case 26:
    case 103:
      return NumberKind::unsignedInteger;
    default:
      return NumberKind::other;
  }
}

inline constexpr const char* unsupportedType = "Unsupported type.";

// Why a floating number is not compared with a value of that type. The other kinds say "Unsupported type."
// alone.
constexpr const char* refusalBesideFloating(std::int64_t typeCode) {
  switch (typeCode) {
    case 7:
      return "Can't compare date.";
    case 9:
      return "Can't compare objects.";
    case 22:
      return "Can't compare WindowPtr.";
    case 36:
      return "Can't compare structure.";
    case 38:
      return "Can't compare DateTime.";
    default:
      return unsupportedType;
  }
}

// 1 where a is greater, −1 where it is smaller, 0 where they are equal.
constexpr int compareNumbers(std::int64_t a, std::int64_t b) { return (a > b) - (a < b); }
constexpr int compareNumbers(std::uint64_t a, std::uint64_t b) { return (a > b) - (a < b); }
constexpr int compareNumbers(std::uint64_t a, std::int64_t b) {
  return a > INT64_MAX ? 1 : compareNumbers(static_cast<std::int64_t>(a), b);
}
constexpr int compareNumbers(std::int64_t a, std::uint64_t b) { return -compareNumbers(b, a); }

// A comparison with NaN gives −1, on whichever side it stands.
constexpr int compareNumbers(double a, double b) { return a == b ? 0 : a > b ? 1 : -1; }

}  // namespace qtx
