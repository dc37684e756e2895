// Variants read by the operations of newer hosts and of older ones.
#include "frame/variant_access.h"

#include "frame/host_operations.h"

namespace qtx {

namespace {

// Through the host's conversion, or on a host without it through the older property of the same meaning.
template <typename Value>
Value read(HostOperation<Value(REALobject)>& convert,
           HostOperation<bool(REALobject, const char*, Value*)>& getProperty, const char* propertyName,
           REALobject variant) {
  if (convert.resolve()) return convert(variant);
  Value value = {};
  getProperty(variant, propertyName, &value);
  return value;
}

}  // namespace

RBInteger GetVariantType(REALobject value) {
  const RBInteger code = read<RBInteger>(VarType, REALGetPropValueInteger, "Type", value);
  if (code == variantType::int64) {
    static const REALclassRef unsigned64 = REALGetClassRef("_VariantUInt64");
    return unsigned64 && REALObjectIsA(value, unsigned64) ? variantType::uint64 : code;
  }
  if (code == variantType::int32) {
    static const REALclassRef unsigned32 = REALGetClassRef("_VariantUInt32");
    return unsigned32 && REALObjectIsA(value, unsigned32) ? variantType::uint32 : code;
  }
  return code;
}

std::int64_t GetVariantInt64(REALobject value) {
  return read<std::int64_t>(VariantToInt64, REALGetPropValueInt64, "LongValue", value);
}

std::uint64_t GetVariantUInt64(REALobject value) {
  return read<std::uint64_t>(VariantToUInt64, REALGetPropValueUInt64, "UInt64Value", value);
}

double GetVariantDouble(REALobject value) {
  return read<double>(VariantToDouble, REALGetPropValueDouble, "DoubleValue", value);
}

REALstring GetVariantString(REALobject value) {
  return read<REALstring>(VariantToString, REALGetPropValueString, "StringValue", value);
}

}  // namespace qtx
