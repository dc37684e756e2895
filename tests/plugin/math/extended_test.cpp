// 80-bit records bit by bit: known ones, a model in arithmetic, and the processor's own format where it has
// one.
#include "math/extended.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace qtx {
namespace {

std::uint64_t bits(double x) { return std::bit_cast<std::uint64_t>(x); }
double fromBits(std::uint64_t pattern) { return std::bit_cast<double>(pattern); }

ExtendedRecord makeRecord(unsigned signAndExponent, std::uint64_t significand) {
  ExtendedRecord record;
  record[0] = static_cast<std::uint8_t>(signAndExponent >> 8);
  record[1] = static_cast<std::uint8_t>(signAndExponent);
  for (unsigned i = 0; i < 8; ++i) record[2 + i] = static_cast<std::uint8_t>(significand >> (56 - 8 * i));
  return record;
}

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr std::uint64_t top = std::uint64_t{1} << 63;

TEST(Extended, EncodesKnownValues) {
  const struct {
    double x;
    ExtendedRecord record;
  } rows[] = {
      {44100, {0x40, 0x0E, 0xAC, 0x44, 0, 0, 0, 0, 0, 0}},
      {0, makeRecord(0, 0)},
      {-0.0, makeRecord(0x8000, 0)},
      {1, makeRecord(0x3FFF, top)},
      {-2, makeRecord(0xC000, top)},
      {std::numeric_limits<double>::max(), makeRecord(0x43FE, 0xFFFFFFFFFFFFF800)},
      {0x1p-1022, makeRecord(0x3C01, top)},
      {0x1p-1074, makeRecord(0x3BCD, top)},
      {0x1.8p-1073, makeRecord(0x3BCE, top | top >> 1)},
      {infinity, makeRecord(0x7FFF, top)},
      {-infinity, makeRecord(0xFFFF, top)},
      {fromBits(0x7FF8000000000000), makeRecord(0x7FFF, top | top >> 1)},
      {fromBits(0xFFF8000000000123), makeRecord(0xFFFF, top | top >> 1 | 0x123ULL << 11)},
      {fromBits(0x7FF0000000000001), makeRecord(0x7FFF, top | top >> 1 | 1ULL << 11)},
  };
  for (const auto& row : rows) EXPECT_EQ(encodeExtended(row.x), row.record) << row.x;
}

TEST(Extended, DecodesEveryKindOfRecord) {
  const double largest = std::numeric_limits<double>::max();
  const struct {
    unsigned signAndExponent;
    std::uint64_t significand;
    std::uint64_t expected;
    const char* what;
  } rows[] = {
      {0x0000, 0, bits(0.0), "zero"},
      {0x8000, 0, bits(-0.0), "minus zero"},
      {0x3FFF, 0, bits(0.0), "zero with an exponent"},
      {0x0000, 1, bits(0.0), "the smallest subnormal"},
      {0x8000, top - 1, bits(-0.0), "a negative subnormal"},
      {0x0000, top, bits(0.0), "a pseudo-subnormal"},
      {0x3FFF, top >> 1, bits(0.5), "an unnormal number"},
      {0x403E, 1, bits(1.0), "an unnormal number with its last bit alone"},
      {0x7FFF, top, bits(infinity), "infinity"},
      {0x7FFF, 0, bits(infinity), "infinity without the integer bit"},
      {0xFFFF, top, bits(-infinity), "minus infinity"},
      {0x7FFF, top | top >> 1, 0x7FF8000000000000, "NaN"},
      {0x7FFF, 1, 0x7FF8000000000000, "a signalling NaN without room for its payload"},
      {0xFFFF, top | 0x800, 0xFFF8000000000001, "a signalling NaN"},
      {0x3FFF, top | 0x400, bits(1.0), "a tie to even, down"},
      {0x3FFF, top | 0xC00, bits(1 + 0x1p-51), "a tie to even, up"},
      {0x3FFF, top | 0x401, bits(1 + 0x1p-52), "above a tie"},
      {0x3FFF, top | 0xBFF, bits(1 + 0x1p-52), "below a tie"},
      {0x3FFF, ~std::uint64_t{0}, bits(2.0), "a carry into the exponent"},
      {0x43FE, 0xFFFFFFFFFFFFFBFF, bits(largest), "the largest that stays finite"},
      {0x43FE, 0xFFFFFFFFFFFFFC00, bits(infinity), "the smallest that does not"},
      {0x43FF, top, bits(infinity), "too large"},
      {0x7FFE, top, bits(infinity), "much too large"},
      {0xFFFE, ~std::uint64_t{0}, bits(-infinity), "much too large, negative"},
      {0x3C01, top, bits(0x1p-1022), "the smallest normal Double"},
      {0x3C00, ~std::uint64_t{0}, bits(0x1p-1022), "rounds up to it"},
      {0x3C00, top, bits(0x1p-1023), "a subnormal Double"},
      {0x3BCD, top, 1, "the smallest subnormal Double"},
      {0x3BCC, top, 0, "half of it: a tie to even"},
      {0x3BCC, top | 1, 1, "above half of it"},
      {0x3BCB, ~std::uint64_t{0}, 0, "below half of it"},
      {0x3BCD, top | top >> 1, 2, "one and a half of it: a tie to even"},
      {0x0001, top, 0, "much too small"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(bits(decodeExtended(makeRecord(row.signAndExponent, row.significand))), row.expected)
        << row.what;
  }
}

// Doubles of every exponent, with random and extreme fractions.
std::vector<double> doubles() {
  std::mt19937_64 random(8);
  std::vector<double> all;
  for (std::uint64_t signAndExponent = 0; signAndExponent < 0x1000; ++signAndExponent) {
    const std::uint64_t ones = (std::uint64_t{1} << 52) - 1;
    for (const std::uint64_t fraction :
         {std::uint64_t{0}, std::uint64_t{1}, ones, ones - 1, ones / 2 + 1, random() & ones, random() & ones,
          (random() & ones) >> random() % 52}) {
      all.push_back(fromBits(signAndExponent << 52 | fraction));
    }
  }
  return all;
}

// Records around every exponent that a Double has, ties among them, and random ones.
std::vector<ExtendedRecord> records() {
  std::mt19937_64 random(9);
  std::vector<ExtendedRecord> all;
  for (unsigned exponent = 0x3BC0; exponent < 0x4408; ++exponent) {
    const auto sign = static_cast<unsigned>(random() & 0x8000);
    for (int shift = 0; shift < 64; ++shift) {
      const std::uint64_t bit = std::uint64_t{1} << shift;
      for (const std::uint64_t significand : {top | bit, top | (bit - 1), random() >> shift << shift | top,
                                              (random() | bit) & (0 - bit), random()}) {
        all.push_back(makeRecord(sign | exponent, significand));
      }
    }
  }
  for (int i = 0; i < 100000; ++i) {
    all.push_back(makeRecord(static_cast<unsigned>(random() & 0xFFFF), random()));
  }
  return all;
}

TEST(Extended, GivesEveryDoubleBack) {
  for (const double x : doubles()) {
    const double back = decodeExtended(encodeExtended(x));
    if (std::isnan(x)) {
      ASSERT_EQ(bits(back), bits(x) | 1ULL << 51) << std::hex << bits(x);
    } else {
      ASSERT_EQ(bits(back), bits(x)) << std::hex << bits(x);
    }
  }
}

// The record's value in plain arithmetic. The significand is brought to the bits that the Double keeps, one
// by one, with a sticky bit for what falls out.
double modelDecode(const ExtendedRecord& record) {
  int exponent = (record[0] & 0x7F) * 256 + record[1];
  std::uint64_t significand = 0;
  for (unsigned i = 2; i < 10; ++i) significand = significand * 256 + record[i];
  const double sign = record[0] & 0x80 ? -1.0 : 1.0;
  if (exponent == 0x7FFF) return std::copysign((significand & ~top) ? NAN : infinity, sign);
  if (significand == 0) return std::copysign(0.0, sign);
  if (exponent == 0) exponent = 1;
  // value = significand · 2^power
  int power = exponent - 16383 - 63;
  while (significand < top) {
    significand *= 2;
    --power;
  }
  bool sticky = false, half = false;
  while (significand >= std::uint64_t{1} << 53 || (power < -1074 && significand != 0)) {
    sticky = sticky || half;
    half = significand & 1;
    significand /= 2;
    ++power;
  }
  if (power < -1074) return std::copysign(0.0, sign);
  if (half && (sticky || (significand & 1))) ++significand;
  return std::copysign(std::ldexp(static_cast<double>(significand), power), sign);
}

TEST(Extended, DecodesLikeTheModel) {
  for (const ExtendedRecord& record : records()) {
    const double expected = modelDecode(record), got = decodeExtended(record);
    if (std::isnan(expected)) {
      ASSERT_TRUE(std::isnan(got));
    } else {
      ASSERT_EQ(bits(got), bits(expected)) << testing::PrintToString(record);
    }
  }
}

#if defined(__x86_64__)

TEST(Extended, EncodesLikeTheProcessor) {
  for (const double x : doubles()) {
    const volatile double source = x;
    const long double wide = source;
    std::uint8_t stored[16] = {};
    std::memcpy(stored, &wide, 10);
    ExtendedRecord expected;
    for (std::size_t i = 0; i < 10; ++i) expected[i] = stored[9 - i];
    ASSERT_EQ(encodeExtended(x), expected) << std::hex << bits(x);
  }
}

// The processor refuses numbers whose integer bit is wrong, so these are left out.
TEST(Extended, DecodesLikeTheProcessor) {
  for (const ExtendedRecord& record : records()) {
    const bool integerBit = record[2] & 0x80, smallest = (record[0] & 0x7F) == 0 && record[1] == 0;
    if (integerBit == smallest) continue;
    long double wide = 0;
    std::uint8_t stored[10];
    for (std::size_t i = 0; i < 10; ++i) stored[i] = record[9 - i];
    std::memcpy(&wide, stored, 10);
    const volatile long double source = wide;
    const auto expected = static_cast<double>(source);
    ASSERT_EQ(bits(decodeExtended(record)), bits(expected)) << testing::PrintToString(record);
  }
}

#endif

}  // namespace
}  // namespace qtx
