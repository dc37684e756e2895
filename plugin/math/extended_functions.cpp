// ExtendedStrToDoubleQTX and DoubleToExtendedStrQTX: records in strings.
#include "math/extended_functions.h"

#include <cstring>

#include "frame/text_bridge.h"
#include "math/extended.h"

#if defined(__APPLE__)
// Of CoreServices; declared here because the plug-in builds without the platform's frameworks at hand.
struct Float80 {
  std::int16_t exponent;
  std::uint16_t significand[4];
};
static_assert(sizeof(Float80) == 10);
extern "C" void dtox80(const double* x, Float80* record);
extern "C" double x80tod(const Float80* record);
#endif

namespace qtx {

double ExtendedStrToDouble(REALstring bytes) {
#if defined(__APPLE__)
  Float80 record;
#else
  ExtendedRecord record;
#endif
  const rbData data(bytes);
  if (data.length() != sizeof record) return 0;
  std::memcpy(&record, data.data(), sizeof record);
#if defined(__APPLE__)
  return x80tod(&record);
#else
  return decodeExtended(record);
#endif
}

REALstring DoubleToExtendedStr(double x) {
#if defined(__APPLE__)
  Float80 record;
  dtox80(&x, &record);
#else
  const ExtendedRecord record = encodeExtended(x);
#endif
  return REALBuildUnicodeString(&record, sizeof record, encoding::none);
}

}  // namespace qtx
