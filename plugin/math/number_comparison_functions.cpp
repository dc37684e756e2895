// CompareNumbersQTX: variants read as their types say, and compared.
#include "math/number_comparison_functions.h"

#include "frame/host_operations.h"
#include "frame/raise.h"
#include "frame/reference.h"
#include "frame/variant_access.h"
#include "math/number_comparison.h"
#include "math/number_kind.h"

namespace qtx {

namespace {

RBInteger refuse(const char* message) {
  RaiseException("UnsupportedOperationException", message);
  return -1;
}

RBInteger compareSigned(std::int64_t left, REALobject right, RBInteger rightType) {
  switch (kindOf(rightType)) {
    case NumberKind::signedInteger:
    case NumberKind::text:
      return compareNumbers(left, GetVariantInt64(right));
    case NumberKind::floating:
      return compareNumbers(static_cast<double>(left), GetVariantDouble(right));
    case NumberKind::unsignedInteger:
      return compareNumbers(left, GetVariantUInt64(right));
    case NumberKind::other:
      break;
  }
  return refuse(unsupportedType);
}

RBInteger compareFloating(double left, REALobject right, RBInteger rightType) {
  switch (kindOf(rightType)) {
    case NumberKind::signedInteger:
      return compareNumbers(left, static_cast<double>(GetVariantInt64(right)));
    case NumberKind::floating:
    case NumberKind::text:
      return compareNumbers(left, GetVariantDouble(right));
    case NumberKind::unsignedInteger:
      return compareNumbers(left, static_cast<double>(GetVariantUInt64(right)));
    case NumberKind::other:
      break;
  }
  return refuse(refusalBesideFloating(rightType));
}

RBInteger compareUnsigned(std::uint64_t left, REALobject right, RBInteger rightType) {
  switch (kindOf(rightType)) {
    case NumberKind::signedInteger:
      return compareNumbers(left, GetVariantInt64(right));
    case NumberKind::floating:
      return compareNumbers(static_cast<double>(left), GetVariantDouble(right));
    case NumberKind::unsignedInteger:
    case NumberKind::text:
      return compareNumbers(left, GetVariantUInt64(right));
    case NumberKind::other:
      break;
  }
  return refuse(unsupportedType);
}

// A variant's text; nil is the empty string.
Reference<REALstring> textOf(REALobject variant) {
  return Reference<REALstring>(variant ? GetVariantString(variant) : nullptr);
}

}  // namespace

RBInteger CompareNumberVariants(REALobject left, REALobject right) {
  const RBInteger leftType = GetVariantType(left);
  const RBInteger rightType = GetVariantType(right);
  if ((leftType | rightType) & variantType::arrayFlag) return refuse("Can't compare arrays.");
  switch (kindOf(leftType)) {
    case NumberKind::signedInteger:
      return compareSigned(GetVariantInt64(left), right, rightType);
    case NumberKind::floating:
      return compareFloating(GetVariantDouble(left), right, rightType);
    case NumberKind::unsignedInteger:
      return compareUnsigned(GetVariantUInt64(left), right, rightType);
    case NumberKind::text: {
      const Reference leftText = textOf(left);
      const Reference rightText = textOf(right);
      return REALCompareStrings(leftText.borrow(), rightText.borrow());
    }
    case NumberKind::other:
      break;
  }
  return refuse(unsupportedType);
}

}  // namespace qtx
