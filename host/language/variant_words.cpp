// What a Variant can be asked, as shared methods of a class that is named like the type: v.IntegerValue is
// Variant.IntegerValue(v).
#include <iterator>
#include <string>

#include "language/words.h"
#include "runtime/variant.h"
#include "runtime/wording.h"

namespace host {

namespace {

const Heap* heapOf(REALobject value) { return reinterpret_cast<const Heap*>(value); }

Slot valueAs(REALobject value, Kind kind) {
  return asPending(
      [&] { return convert(Slot{.heap = const_cast<Heap*>(heapOf(value))}, {Kind::Variant}, {kind}); });
}
double doubleValue(REALobject value) { return valueAs(value, Kind::Double).number; }
float singleValue(REALobject value) { return valueAs(value, Kind::Single).single; }
RBInteger integerValue(REALobject value) { return valueAs(value, Kind::Int64).integer; }
std::int32_t int32Value(REALobject value) {
  return static_cast<std::int32_t>(valueAs(value, Kind::Int32).integer);
}
std::uint32_t uint32Value(REALobject value) {
  return static_cast<std::uint32_t>(valueAs(value, Kind::UInt32).word);
}
std::uint64_t uint64Value(REALobject value) { return valueAs(value, Kind::UInt64).word; }
std::int64_t currencyValue(REALobject value) { return valueAs(value, Kind::Currency).integer; }
bool booleanValue(REALobject value) { return valueAs(value, Kind::Boolean).integer != 0; }
REALstring stringValue(REALobject value) {
  return reinterpret_cast<REALstring>(valueAs(value, Kind::String).heap);
}
REALobject objectValue(REALobject value) {
  return asPending([&]() -> REALobject {
    const Type inside = typeIn(heapOf(value));
    if (value && (inside.array || inside.kind != Kind::Object)) {
      throw HostException("TypeMismatchException", withLargeArticle(nameOf(inside)) + " is no Object.");
    }
    return reinterpret_cast<REALobject>(Ref<>::share(const_cast<Heap*>(heapOf(value))).detach());
  });
}

RBInteger typeOfValue(REALobject value) { return varTypeOf(heapOf(value)); }
bool isNull(REALobject value) { return !value; }
bool isArray(REALobject value) { return typeIn(heapOf(value)).array != 0; }
RBInteger elementType(REALobject value) {
  return isArray(value) ? varTypeOf(heapOf(value)) & ~RBInteger{variantType::arrayFlag} : -1;
}

// Of a text: whether all of it is a number.
bool isNumeric(REALobject value) {
  return asPending([&] {
    const Type inside = typeIn(heapOf(value));
    if (inside.array || inside.kind != Kind::String) return inside.isNumber();
    std::string text = utf8Of(toText(heapOf(value)).get());
    text.erase(text.find_last_not_of(" \t\r\n") + 1);
    return !text.empty() && lengthOfNumber(text) == text.size();
  });
}

template <RBInteger code>
RBInteger number() {
  return code;
}

}  // namespace

void registerVariantWords() {
  static REALmethodDefinition members[] = {
      hostMethod("BooleanValue(value as Variant) as Boolean", &booleanValue),
      hostMethod("CurrencyValue(value as Variant) as Currency", &currencyValue),
      hostMethod("DoubleValue(value as Variant) as Double", &doubleValue),
      hostMethod("SingleValue(value as Variant) as Single", &singleValue),
      hostMethod("IntegerValue(value as Variant) as Integer", &integerValue),
      hostMethod("Int32Value(value as Variant) as Int32", &int32Value),
      hostMethod("Int64Value(value as Variant) as Int64", &integerValue),
      hostMethod("UInt32Value(value as Variant) as UInt32", &uint32Value),
      hostMethod("UInt64Value(value as Variant) as UInt64", &uint64Value),
      hostMethod("StringValue(value as Variant) as String", &stringValue),
      hostMethod("ObjectValue(value as Variant) as Object", &objectValue),
      hostMethod("Type(value as Variant) as Integer", &typeOfValue),
      hostMethod("IsNull(value as Variant) as Boolean", &isNull),
      hostMethod("IsNumeric(value as Variant) as Boolean", &isNumeric),
      hostMethod("IsArray(value as Variant) as Boolean", &isArray),
      hostMethod("ArrayElementType(value as Variant) as Integer", &elementType),
      hostMethod("TypeNil as Integer", &number<variantType::nil>),
      hostMethod("TypeInt32 as Integer", &number<variantType::int32>),
      hostMethod("TypeInt64 as Integer", &number<variantType::int64>),
      hostMethod("TypeSingle as Integer", &number<variantType::single>),
      hostMethod("TypeDouble as Integer", &number<variantType::floating>),
      hostMethod("TypeDate as Integer", &number<variantType::date>),
      hostMethod("TypeDateTime as Integer", &number<variantType::dateTime>),
      hostMethod("TypeString as Integer", &number<variantType::string>),
      hostMethod("TypeObject as Integer", &number<variantType::object>),
      hostMethod("TypeBoolean as Integer", &number<variantType::boolean>),
      hostMethod("TypeCurrency as Integer", &number<variantType::currency>),
      hostMethod("TypePtr as Integer", &number<variantType::pointer>),
      hostMethod("TypeArray as Integer", &number<variantType::arrayFlag>),
  };
  static REALclassDefinition record = {};
  record.name = "Variant";
  record.sharedMethods = members;
  record.sharedMethodCount = std::size(members);
  registry().addClass(record, false);

  static REALmethodDefinition table[] = {
      hostMethod("IsNumeric(value as Variant) as Boolean", &isNumeric),
  };
  registerFunctions(table);
}

}  // namespace host
