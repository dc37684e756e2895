// Asks the processor itself: the compilers' own functions for it are missing in some of their libraries.
#include "math/processor.h"

#if defined(__x86_64__)
#include <cpuid.h>
#endif

namespace qtx {

#if defined(__x86_64__)
// AMD64 Architecture Programmer's Manual, volume 3, appendix D: function 1. Instructions on the vector
// registers' wider halves need a system that saves them, which register XCR0 tells: volume 2, 11.5.
Processor thisProcessor() {
  unsigned a, b, features, d;
  if (!__get_cpuid(1, &a, &b, &features, &d)) return {};
  bool savesWideRegisters = false;
  if (features & bit_OSXSAVE) {
    unsigned low, high;
    __asm__("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    savesWideRegisters = (low & 6) == 6;
  }
  return {.convertsHalfFloats = (features & bit_F16C) && savesWideRegisters,
          .countsBits = (features & bit_POPCNT) != 0};
}
#else
Processor thisProcessor() { return {.convertsHalfFloats = true, .countsBits = true}; }  // every one there is
#endif

}  // namespace qtx
