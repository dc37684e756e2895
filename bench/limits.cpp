// Compiled for the processor of this machine, and linked last: of inline functions that other files have as
// well, the linker keeps the first.
#include "limits.h"

#include <Imath/half.h>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace bench::limits {
namespace {

#if defined(__AVX512VBMI2__) && defined(__AVX512BW__) && defined(__AVX512VL__)

// The value of 16 digits, 0 to 9 each.
inline std::uint64_t valueOf(__m128i digits) {
  const __m128i pairs = _mm_maddubs_epi16(digits, _mm_set1_epi16(0x010A));
  const __m128i fours = _mm_madd_epi16(pairs, _mm_set1_epi32(0x00010064));
  const __m128i eights = _mm_madd_epi16(_mm_packus_epi32(fours, fours), _mm_set1_epi32(0x00012710));
  const auto both = static_cast<std::uint64_t>(_mm_cvtsi128_si64(eights));
  return (both & 0xFFFFFFFF) * 100000000 + (both >> 32);
}

// Up to 16 digits at the right of a register; false where there is another character.
inline bool load(const char* text, std::size_t count, __m128i& digits) {
  const auto mask = static_cast<__mmask16>(0xFFFFu << (16 - count));
  // What lies before the text is not read, only counted from.
  const auto* const start =
      reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(text) - (16 - count));
  digits = _mm_maskz_sub_epi8(mask, _mm_maskz_loadu_epi8(mask, start), _mm_set1_epi8('0'));
  return _mm_cmpgt_epu8_mask(digits, _mm_set1_epi8(9)) == 0;
}

inline bool parse(const char* text, std::size_t length, UInt128& value) {
  if (length == 0 || length > 48) return false;
  const std::size_t head = (length - 1) % 16 + 1;
  __m128i digits;
  if (!load(text, head, digits)) return false;
  value = valueOf(digits);
  for (std::size_t at = head; at < length; at += 16) {
    if (!load(text + at, 16, digits)) return false;
    value = value * 10000000000000000 + valueOf(digits);
  }
  return true;
}

inline bool parseCurrency(const char* text, std::size_t length, std::int64_t& value) {
  const bool negative = length > 0 && *text == '-';
  text += negative;
  length -= negative;
  if (length == 0 || length > 21) return false;
  const auto all = static_cast<__mmask32>((std::uint64_t{1} << length) - 1);
  const __m256i bytes = _mm256_maskz_loadu_epi8(all, text);
  const __m256i digits = _mm256_sub_epi8(bytes, _mm256_set1_epi8('0'));
  const __mmask32 isDigit = _mm256_mask_cmple_epu8_mask(all, digits, _mm256_set1_epi8(9));
  const __mmask32 others = all & ~isDigit;
  const auto point = static_cast<unsigned>(_tzcnt_u64(others | std::uint64_t{1} << length));
  if ((others & (others - 1)) || (point < length && text[point] != '.')) return false;
  const unsigned behind = point < length ? static_cast<unsigned>(length) - point - 1 : 0;
  const unsigned decimals = behind < 4 ? behind : 4;
  const unsigned count = point + decimals;
  const __mmask32 taken = isDigit & static_cast<__mmask32>((std::uint64_t{1} << (count + 1)) - 1);
  const __m256i packed = _mm256_maskz_compress_epi8(taken, digits);
  const auto places =
      static_cast<__mmask32>(((std::uint64_t{1} << count) - 1) << (32 - count - (4 - decimals)));
  const __m256i aligned = _mm256_maskz_expand_epi8(places, packed);
  const std::uint64_t high = valueOf(_mm256_castsi256_si128(aligned));
  const UInt128 magnitude = UInt128{high} * 10000000000000000 + valueOf(_mm256_extracti128_si256(aligned, 1));
  if (magnitude >> 63) return false;
  value = static_cast<std::int64_t>(negative ? -magnitude : magnitude);
  return true;
}

inline bool luhn(const char* text, std::size_t length, bool& valid) {
  if (length == 0 || length > 16) return false;
  __m128i digits;
  valid = load(text, length, digits);
  if (!valid) return true;
  const __mmask16 second = 0x5555;
  digits = _mm_mask_add_epi8(digits, second, digits, digits);
  digits = _mm_mask_sub_epi8(digits, _mm_cmpgt_epu8_mask(digits, _mm_set1_epi8(9)), digits, _mm_set1_epi8(9));
  const __m128i sums = _mm_sad_epu8(digits, _mm_setzero_si128());
  valid = (_mm_cvtsi128_si64(sums) + _mm_extract_epi64(sums, 1)) % 10 == 0;
  return true;
}

#else

inline bool parse(const char*, std::size_t, UInt128&) { return false; }
inline bool parseCurrency(const char*, std::size_t, std::int64_t&) { return false; }
inline bool luhn(const char*, std::size_t, bool&) { return false; }

#endif

UInt128 parseAll(const char* at, const char* end) {
  bool negative = false;
  while (at != end && (*at == ' ' || (*at >= '\t' && *at <= '\r'))) ++at;
  if (at != end && (*at == '-' || *at == '+')) negative = *at++ == '-';
  UInt128 value = 0;
  if (end - at < 6 || !parse(at, static_cast<std::size_t>(end - at), value)) {
    value = 0;
    for (; at != end && *at >= '0' && *at <= '9'; ++at) value = value * 10 + static_cast<unsigned>(*at - '0');
  }
  return negative ? -value : value;
}

bool luhnByLoop(const char* text, std::size_t length) {
  int sum = 0;
  for (std::size_t i = 0; i < length; ++i) {
    const int digit = text[length - 1 - i] - '0';
    if (digit < 0 || digit > 9) return false;
    sum += i % 2 == 0 ? digit : digit * 2 - (digit > 4 ? 9 : 0);
  }
  return sum % 10 == 0;
}

std::int64_t currencyByLoop(const char* at, const char* end) {
  const bool negative = at != end && *at == '-';
  at += negative;
  std::int64_t value = 0;
  int decimals = -1;
  for (; at != end && decimals < 4; ++at) {
    if (*at == '.') {
      decimals = 0;
    } else {
      value = value * 10 + (*at - '0');
      decimals += decimals >= 0;
    }
  }
  for (decimals = decimals < 0 ? 0 : decimals; decimals < 4; ++decimals) value *= 10;
  return negative ? -value : value;
}

// Two digits at a time, from the right.
struct Pairs {
  char text[200];
};
constexpr Pairs makePairs() {
  Pairs pairs = {};
  for (int i = 0; i < 100; ++i) {
    pairs.text[2 * i] = static_cast<char>('0' + i / 10);
    pairs.text[2 * i + 1] = static_cast<char>('0' + i % 10);
  }
  return pairs;
}
constexpr Pairs pairs = makePairs();

inline void write2(char* at, unsigned value) { std::memcpy(at, pairs.text + 2 * value, 2); }
inline void write4(char* at, unsigned value) {
  write2(at, value / 100);
  write2(at + 2, value % 100);
}
inline void write8(char* at, unsigned value) {
  write4(at, value / 10000);
  write4(at + 4, value % 10000);
}
inline void write16(char* at, std::uint64_t value) {
  write8(at, static_cast<unsigned>(value / 100000000));
  write8(at + 8, static_cast<unsigned>(value % 100000000));
}
// As many as there are, to the left of an end.
inline char* writeDigits(char* end, std::uint64_t value) {
  constexpr std::uint64_t sixteen = 10000000000000000;
  if (value >= sixteen) {
    write16(end -= 16, value % sixteen);
    value /= sixteen;
  }
  for (; value >= 10000; value /= 10000) write4(end -= 4, static_cast<unsigned>(value % 10000));
  const auto rest = static_cast<unsigned>(value);
  if (rest >= 1000) {
    write4(end -= 4, rest);
  } else if (rest >= 100) {
    write2(end -= 2, rest % 100);
    *--end = static_cast<char>('0' + rest / 100);
  } else if (rest >= 10) {
    write2(end -= 2, rest);
  } else {
    *--end = static_cast<char>('0' + rest);
  }
  return end;
}

struct Division {
  UInt128 quotient, remainder;
};

#if defined(__x86_64__)

inline std::uint64_t divide(std::uint64_t high, std::uint64_t low, std::uint64_t divisor,
                            std::uint64_t& rest) {
  std::uint64_t quotient;
  asm("divq %[divisor]" : "=a"(quotient), "=d"(rest) : "a"(low), "d"(high), [divisor] "r"(divisor) : "cc");
  return quotient;
}

// By one or two division instructions; for wide divisors after Knuth (The Art of Computer Programming 4.3.1),
// with the quotient's only word estimated from the divisor's upper 64 bits.
inline Division divide(UInt128 a, UInt128 b) {
  const auto high = static_cast<std::uint64_t>(a >> 64), low = static_cast<std::uint64_t>(a);
  const auto bHigh = static_cast<std::uint64_t>(b >> 64), bLow = static_cast<std::uint64_t>(b);
  std::uint64_t rest = 0;
  if (bHigh == 0) {
    if (bLow == 0) return {0, a};
    const std::uint64_t upper = high < bLow ? 0 : high / bLow;
    const std::uint64_t lower = divide(high < bLow ? high : high % bLow, low, bLow, rest);
    return {UInt128{upper} << 64 | lower, rest};
  }
  if (a < b) return {0, a};
  const int shift = __builtin_clzll(bHigh);
  const auto top = static_cast<std::uint64_t>((b << shift) >> 64);
  const UInt128 halved = a >> 1;
  std::uint64_t quotient =
      divide(static_cast<std::uint64_t>(halved >> 64), static_cast<std::uint64_t>(halved), top, rest);
  quotient >>= 63 - shift;
  if (quotient) --quotient;
  UInt128 remainder = a - quotient * b;
  if (remainder >= b) {
    ++quotient;
    remainder -= b;
  }
  return {quotient, remainder};
}

#else

inline Division divide(UInt128 a, UInt128 b) { return b == 0 ? Division{0, a} : Division{a / b, a % b}; }

#endif

inline UInt128 magnitude(Int128 value) {
  return value < 0 ? -static_cast<UInt128>(value) : static_cast<UInt128>(value);
}

}  // namespace

void int128FromText(REALobject self, REALstring string) {
  const Text text(string);
  write(self, parseAll(text.begin(), text.end()));
}

REALstring textOfInt128(REALobject self, RBInteger) {
  const auto value = read<Int128>(self);
  char text[40];
  char *const end = text + sizeof text, *start = end;
  // Of what has 128 bits with a sign, a division by 10^19 leaves two words.
  constexpr std::uint64_t unit = 10000000000000000000u, sixteen = 10000000000000000;
  UInt128 rest = magnitude(value);
  if (rest >= unit) {
    const Division parts = divide(rest, unit);
    const auto low = static_cast<std::uint64_t>(parts.remainder);
    write16(start -= 16, low % sixteen);
    const auto leading = static_cast<unsigned>(low / sixteen);
    write2(start -= 2, leading % 100);
    *--start = static_cast<char>('0' + leading / 100);
    rest = parts.quotient;
  }
  start = writeDigits(start, static_cast<std::uint64_t>(rest));
  if (value < 0) *--start = '-';
  return built(start, static_cast<std::size_t>(end - start));
}

std::int64_t currencyValue(REALstring string) {
  const Text text(string);
  std::int64_t value;
  return parseCurrency(text.begin(), text.size(), value) ? value : currencyByLoop(text.begin(), text.end());
}

bool isValidCreditCardNumber(REALstring number) {
  const Text text(number);
  bool valid;
  return luhn(text.begin(), text.size(), valid) ? valid : luhnByLoop(text.begin(), text.size());
}

#if defined(__F16C__)
float fromHalf(std::uint16_t half) { return _cvtsh_ss(half); }
std::uint16_t toHalf(float value) { return static_cast<std::uint16_t>(_cvtss_sh(value, _MM_FROUND_TO_ZERO)); }
#else
float fromHalf(std::uint16_t half) { return imath_half_to_float(half); }
// Rounded to nearest, and back by one step where that went too far.
std::uint16_t toHalf(float value) {
  const std::uint16_t half = imath_float_to_half(value);
  return static_cast<std::uint16_t>(half - (__builtin_fabsf(fromHalf(half)) > __builtin_fabsf(value)));
}
#endif

RBInteger bitCount(std::uint64_t value) { return __builtin_popcount(static_cast<std::uint32_t>(value)); }

std::uint64_t rotate(std::uint64_t value, RBInteger count, RBInteger offset, RBInteger width) {
  const RBInteger start = offset < 0 ? 0 : offset;
  RBInteger bits = offset < 0 ? width + offset : width;
  if (bits + start >= 33) bits = 32 - start;
  if (count == 0 || bits < 2) return value;
  const auto narrow = static_cast<std::int32_t>(bits);
  std::int32_t left = static_cast<std::int32_t>(count) % narrow;
  if (left < 0) left += narrow;
  const std::uint64_t mask = ((std::uint64_t{1} << bits) - 1) << start;
  const std::uint64_t field = value & mask;
  return (((field << left) | (field >> (narrow - left))) & mask) | (value & ~mask);
}

double floor(double x) { return __builtin_floor(x); }

std::int64_t increment(REALobject self) {
  return __atomic_fetch_add(reinterpret_cast<std::int64_t*>(dataOf(self)), 1, __ATOMIC_SEQ_CST);
}

REALobject add(REALobject a, REALobject b) {
  return result(static_cast<Int128>(read<UInt128>(a) + read<UInt128>(b)));
}
REALobject multiply(REALobject a, REALobject b) {
  return result(static_cast<Int128>(read<UInt128>(a) * read<UInt128>(b)));
}
REALobject divideUnsigned(REALobject a, REALobject b) {
  return result(divide(read<UInt128>(a), read<UInt128>(b)).quotient);
}
REALobject remainderUnsigned(REALobject a, REALobject b) {
  return result(divide(read<UInt128>(a), read<UInt128>(b)).remainder);
}
REALobject divideSigned(REALobject a, REALobject b) {
  const auto s = read<Int128>(a), o = read<Int128>(b);
  const UInt128 quotient = divide(magnitude(s), magnitude(o)).quotient;
  return result(static_cast<Int128>((s < 0) != (o < 0) ? -quotient : quotient));
}
REALobject remainderSigned(REALobject a, REALobject b) {
  const auto s = read<Int128>(a);
  const UInt128 remainder = divide(magnitude(s), magnitude(read<Int128>(b))).remainder;
  return result(static_cast<Int128>(s < 0 ? -remainder : remainder));
}

// Loop by loop over blocks that stay in the nearest cache, so that each becomes vector code.
void splineCoefficients(std::size_t n, const double* __restrict x, const double* __restrict y,
                        double* __restrict cubic) {
  constexpr std::size_t block = 256;
  double dx[block + 1], dy[block + 1], ratio[block + 1], slope[block + 1];
  for (int i = 0; i < 4; ++i) cubic[i] = 0;
  for (std::size_t first = 1; first < n; first += block) {
    const std::size_t count = n - first < block ? n - first : block;
    const bool isLast = first + count == n;
    const std::size_t differences = isLast ? count : count + 1;
    for (std::size_t i = 0; i < differences; ++i) {
      dx[i] = x[first + i] - x[first + i - 1];
      dy[i] = y[first + i] - y[first + i - 1];
      ratio[i] = dy[i] > 0 ? dx[i] / dy[i] : __builtin_inf();
    }
    for (std::size_t i = 0; i + 1 < differences; ++i) {
      const double q = ratio[i] + ratio[i + 1];
      slope[i + 1] = q > 0 ? 2.0 / q : 0.0;
    }
    if (first == 1) slope[0] = 1.5 * dy[0] / dx[0] - 0.5 * slope[1];
    if (isLast) slope[count] = 1.5 * dy[count - 1] / dx[count - 1] - 0.5 * slope[count - 1];
    double* const out = cubic + 4 * first;
    for (std::size_t i = 0; i < count; ++i) {
      const double x0 = x[first + i - 1], x1 = x[first + i];
      const double curvature = 6 * dy[i] / (dx[i] * dx[i]);
      const double l = curvature - 2 * (slope[i + 1] + 2 * slope[i]) / dx[i];
      const double r = 2 * (2 * slope[i + 1] + slope[i]) / dx[i] - curvature;
      const double d = (r - l) / (6 * dx[i]);
      const double c = (x1 * l - x0 * r) / (2 * dx[i]);
      const double b = (dy[i] - c * (x1 * x1 - x0 * x0) - d * (x1 * x1 * x1 - x0 * x0 * x0)) / dx[i];
      out[4 * i] = y[first + i - 1] - b * x0 - c * (x0 * x0) - d * (x0 * x0 * x0);
      out[4 * i + 1] = b;
      out[4 * i + 2] = c;
      out[4 * i + 3] = d;
    }
    slope[0] = slope[count];
  }
}

double splineValue(const Intervals& intervals, const double* cubic, double at) {
  const std::size_t last = intervals.n - 1;
  std::size_t i = 1;
  if (last > 8) i = intervals.table[static_cast<std::size_t>((at - intervals.x[0]) * intervals.scale)];
#if defined(__AVX512F__)
  const __m512d limit = _mm512_set1_pd(at);
  for (;;) {
    const unsigned below = _mm512_cmp_pd_mask(limit, _mm512_loadu_pd(intervals.x + i), _CMP_GT_OQ);
    i += static_cast<unsigned>(__builtin_popcount(below));
    if (below != 0xFF) break;
  }
#else
  while (i < last && at > intervals.x[i]) ++i;
#endif
  const double* const k = cubic + 4 * (i < last ? i : last);
  return k[3] * at * at * at + (k[2] * at * at + (k[1] * at + k[0]));
}

}  // namespace bench::limits
