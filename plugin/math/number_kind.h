// Which kind of number a Variant's type code stands for.
#pragma once

#include "frame/host_interface.h"

namespace qtx {

enum class NumberKind { signedInteger, floating, text, unsignedInteger, other };

constexpr NumberKind kindOf(RBInteger typeCode) {
  switch (typeCode) {
    case variantType::nil:  // which the host reads as 0
    case variantType::int32:
    case variantType::int64:
    case variantType::boolean:
    case variantType::otherInteger:
    case variantType::uint32:
      return NumberKind::signedInteger;
    case variantType::single:
    case variantType::floating:
    case variantType::currency:
      return NumberKind::floating;
    case variantType::string:
    case variantType::text18:
    case variantType::text19:
    case variantType::text20:
    case variantType::text21:
    case variantType::text23:
    case variantType::text37:
      return NumberKind::text;
    case variantType::pointer:
    case variantType::uint64:
      return NumberKind::unsignedInteger;
    default:
      return NumberKind::other;
  }
}

inline constexpr const char* unsupportedType = "Unsupported type.";

// Why a floating number is not compared with a value of that type. The other kinds say "Unsupported type."
// alone.
constexpr const char* refusalBesideFloating(RBInteger typeCode) {
  switch (typeCode) {
    case variantType::date:
      return "Can't compare date.";
    case variantType::object:
      return "Can't compare objects.";
    case variantType::window:
      return "Can't compare WindowPtr.";
    case variantType::structure:
      return "Can't compare structure.";
    case variantType::dateTime:
      return "Can't compare DateTime.";
    default:
      return unsupportedType;
  }
}

}  // namespace qtx
