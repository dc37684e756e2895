// Asks the processor itself: the compilers' own functions for it are missing in some of their libraries.
#include "frame/processor.h"

#if defined(__x86_64__)
#include <cpuid.h>
#endif

namespace qtx {

namespace {

#if defined(__x86_64__)
// AMD64 Architecture Programmer's Manual, volume 3, appendix D: function 1. Instructions on the vector
// registers' wider halves need a system that saves them, which register XCR0 tells: volume 2, 11.5.
Processor ask() {
  unsigned a, b, features, d;
  if (!__get_cpuid(1, &a, &b, &features, &d)) return {};
  bool savesWideVectors = false;
  if (features & bit_OSXSAVE) {
    unsigned low, high;
    __asm__("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    constexpr unsigned bothHalves = 0b110;
    savesWideVectors = (low & bothHalves) == bothHalves;
  }
  return {.countsBits = (features & bit_POPCNT) != 0,
          .hasWideVectors = (features & bit_AVX) && savesWideVectors,
          .convertsHalfFloats = (features & bit_F16C) && savesWideVectors};
}
#else
Processor ask() { return {.countsBits = true, .convertsHalfFloats = true}; }  // every one of 64-bit Arm
#endif

}  // namespace

const Processor& thisProcessor() {
  static const Processor processor = ask();
  return processor;
}

}  // namespace qtx
