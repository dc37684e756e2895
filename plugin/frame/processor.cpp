// Asks the C library, whose loader knows already, or else the processor itself: the compilers' own functions
// for it are missing in some of their libraries.
#include "frame/processor.h"

#if !defined(__x86_64__)

namespace qtx {
static Processor ask() {
  return {.countsBits = true, .convertsHalfFloats = true};  // every one of 64-bit Arm
}
}  // namespace qtx

#elif __has_include(<sys/platform/x86.h>) && !defined(__clang__)  // whose C++ does not read it
#include <sys/platform/x86.h>

namespace qtx {
// On a virtual machine, each question to the processor takes microseconds.
static Processor ask() {
  const auto has = [](unsigned feature) { return x86_cpu_active(feature) != 0; };
  return {.countsBits = has(x86_cpu_POPCNT),
          .hasWideVectors = has(x86_cpu_AVX),
          .hasWidestVectors = has(x86_cpu_AVX512F) && has(x86_cpu_AVX512DQ) && has(x86_cpu_AVX512VL),
          .convertsHalfFloats = has(x86_cpu_F16C)};
}
}  // namespace qtx

#else
#include <cpuid.h>

namespace qtx {
// AMD64 Architecture Programmer's Manual, volume 3, appendix D: functions 1 and 7. Instructions on the vector
// registers' wider parts need a system that saves these, which register XCR0 tells: volume 2, 11.5.
static Processor ask() {
  unsigned a, b, features, d, moreFeatures, c;
  if (!__get_cpuid(1, &a, &b, &features, &d)) return {};
  if (!__get_cpuid_count(7, 0, &a, &moreFeatures, &c, &d)) moreFeatures = 0;
  unsigned saved = 0;
  if (features & bit_OSXSAVE) __asm__("xgetbv" : "=a"(saved), "=d"(d) : "c"(0));
  constexpr unsigned wide = 0b0000'0110, widest = 0b1110'0110;
  constexpr unsigned ofWidest = bit_AVX512F | bit_AVX512DQ | bit_AVX512VL;
  const bool savesWide = (saved & wide) == wide;
  return {.countsBits = (features & bit_POPCNT) != 0,
          .hasWideVectors = (features & bit_AVX) && savesWide,
          .hasWidestVectors = (moreFeatures & ofWidest) == ofWidest && (saved & widest) == widest,
          .convertsHalfFloats = (features & bit_F16C) && savesWide};
}
}  // namespace qtx

#endif

namespace qtx {

const Processor& thisProcessor() {
  static const Processor processor = ask();
  return processor;
}

}  // namespace qtx
