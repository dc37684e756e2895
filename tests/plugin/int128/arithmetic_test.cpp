// The arithmetic of 128-bit values against the compiler's own 128-bit integers, on corners crossed with each
// other and on a million random pairs per operator.
#include <gtest/gtest.h>

#include <memory>

#include "int128/division.h"
#include "int128/wide_functions.h"
#include "int128_samples.h"

namespace qtx {
namespace {

// What the operators must give. The rule for a zero divisor and the one quotient that does not fit are spelt
// out; all else is the compiler's.
NativeUInt128 quotientOf(NativeUInt128 a, NativeUInt128 b) { return b == 0 ? 0 : a / b; }
NativeUInt128 remainderOf(NativeUInt128 a, NativeUInt128 b) { return b == 0 ? a : a % b; }
NativeInt128 quotientOf(NativeInt128 a, NativeInt128 b) {
  if (b == 0) return 0;
  if (b == -1) return static_cast<NativeInt128>(-static_cast<NativeUInt128>(a));
  return a / b;
}
NativeInt128 remainderOf(NativeInt128 a, NativeInt128 b) {
  if (b == 0) return a;
  return b == -1 ? 0 : a % b;
}

template <typename Value>
class Arithmetic : public testing::Test {
 protected:
  using Native = typename Value::Native;
  static Value value(NativeUInt128 bits) { return Value::fromBits(bits); }
  static Native native(NativeUInt128 bits) { return static_cast<Native>(bits); }

  // Calls check(a, b) for all the pairs; it returns whether the operator was right.
  template <typename Check>
  static void forPairs(Check check) {
    int wrong = 0;
    const auto run = [&](NativeUInt128 a, NativeUInt128 b) {
      if (!check(a, b) && ++wrong <= 5) ADD_FAILURE() << "for " << hex(a) << " and " << hex(b);
    };
    for (const NativeUInt128 a : corners()) {
      for (const NativeUInt128 b : corners()) run(a, b);
    }
    RandomBits random;
    for (int i = 0; i < 1'000'000; ++i) run(random.ofAnyWidth(), random.ofAnyWidth());
    EXPECT_EQ(wrong, 0);
  }
};
using Values = testing::Types<Int128, UInt128>;
TYPED_TEST_SUITE(Arithmetic, Values);

TYPED_TEST(Arithmetic, Adds) {
  this->forPairs([&](auto a, auto b) { return (this->value(a) + this->value(b)).bits() == a + b; });
}
TYPED_TEST(Arithmetic, Subtracts) {
  this->forPairs([&](auto a, auto b) { return (this->value(a) - this->value(b)).bits() == a - b; });
}
TYPED_TEST(Arithmetic, Multiplies) {
  this->forPairs([&](auto a, auto b) { return (this->value(a) * this->value(b)).bits() == a * b; });
}
TYPED_TEST(Arithmetic, Divides) {
  this->forPairs([&](auto a, auto b) {
    return (this->value(a) / this->value(b)).native() == quotientOf(this->native(a), this->native(b));
  });
}
TYPED_TEST(Arithmetic, LeavesRemainders) {
  this->forPairs([&](auto a, auto b) {
    return (this->value(a) % this->value(b)).native() == remainderOf(this->native(a), this->native(b));
  });
}
TYPED_TEST(Arithmetic, Compares) {
  this->forPairs([&](auto a, auto b) {
    const auto x = this->native(a), y = this->native(b);
    const auto v = this->value(a), w = this->value(b);
    return compareValues(v, w) == (x < y   ? -1
                                   : x > y ? 1
                                           : 0) &&
           (v < w) == (x < y) && (v <= w) == (x <= y) && (v == w) == (x == y);
  });
}
TYPED_TEST(Arithmetic, CombinesBits) {
  this->forPairs([&](auto a, auto b) {
    const auto v = this->value(a), w = this->value(b);
    return (v & w).bits() == (a & b) && (v | w).bits() == (a | b) && (v ^ w).bits() == (a ^ b) &&
           (-v).bits() == -a;
  });
}
TYPED_TEST(Arithmetic, ShiftsByTheCountModulo128) {
  this->forPairs([&](auto a, auto b) {
    const int count = static_cast<int>(b % 128);
    return (this->value(a) << this->value(b)).bits() == a << count &&
           (this->value(a) >> this->value(b)).native() == this->native(a) >> count;
  });
}

// A bit at a time.
template <typename Value>
void checkBitQueries(Value value) {
  const NativeUInt128 bits = value.bits();
  int ones = 0, width = 0, trailing = 128;
  for (int i = 127; i >= 0; --i) {
    if (!(bits >> i & 1)) continue;
    ++ones;
    if (width == 0) width = i + 1;
    trailing = i;
  }
  EXPECT_EQ(popCount(value), ones) << hex(bits);
  EXPECT_EQ(bitWidth(value), width) << hex(bits);
  EXPECT_EQ(countLeftZeros(value), 128 - width) << hex(bits);
  EXPECT_EQ(countRightZeros(value), trailing) << hex(bits);
}
TYPED_TEST(Arithmetic, CountsBits) {
  for (const NativeUInt128 bits : corners()) checkBitQueries(this->value(bits));
  RandomBits random;
  for (int i = 0; i < 10'000; ++i) checkBitQueries(this->value(random.ofAnyWidth()));
}

TYPED_TEST(Arithmetic, RaisesToPowers) {
  for (const NativeUInt128 base : corners()) {
    NativeUInt128 expected = 1;
    for (std::uint64_t exponent = 0; exponent < 200; ++exponent) {
      EXPECT_EQ(hex(power(this->value(base), exponent).bits()), hex(expected))
          << hex(base) << "^" << exponent;
      expected *= base;
    }
  }
  // Odd numbers form a group whose order divides 2^126: a huge exponent can be reduced.
  EXPECT_EQ(power(this->value(3), ~std::uint64_t{0}).bits() * 3,
            power(this->value(NativeUInt128{3}), std::uint64_t{1} << 63).bits() *
                power(this->value(3), std::uint64_t{1} << 63).bits());
}

TEST(Division, DoesNotFault) {
  const Int128 lowest = Int128::fromBits(NativeUInt128{1} << 127);
  EXPECT_EQ(Int128(5) / Int128(0), Int128(0));
  EXPECT_EQ(Int128(-5) % Int128(0), Int128(-5));
  EXPECT_EQ(lowest / Int128(-1), lowest);
  EXPECT_EQ(lowest % Int128(-1), Int128(0));
  EXPECT_EQ(Int128(7) / Int128(-2), Int128(-3));
  EXPECT_EQ(Int128(7) % Int128(-2), Int128(1));
  EXPECT_EQ(Int128(-7) % Int128(2), Int128(-1));
}

// Quotient digits whose estimate is too big, and quotients at their ends: the dividend is put together from a
// quotient, a divisor and a remainder, each of them with many ones or zeros.
TEST(Division, UndoesMultiplication) {
  RandomBits random;
  const auto word = [&] {
    const std::uint64_t shape = random.word();
    const std::uint64_t ones = ~std::uint64_t{0} >> (shape & 63);
    if (shape >> 6 & 1) return ones << (shape >> 7 & 63);
    return ones - (random.word() & 3);
  };
  int wrong = 0;
  for (int i = 0; i < 1'000'000; ++i) {
    const NativeUInt128 divisor = random.word() & 1 ? NativeUInt128{word()} << 64 | word() : word();
    if (divisor == 0) continue;
    const NativeUInt128 quotient = divisor >> 64 ? word() % (~NativeUInt128{0} / divisor) : word();
    const NativeUInt128 remainder = (i & 1 ? divisor - 1 - (random.word() & 1) : word()) % divisor;
    const NativeUInt128 dividend = quotient * divisor + remainder;
    const auto found = divide(UInt128::fromBits(dividend), UInt128::fromBits(divisor));
    const bool right = found.quotient.bits() == quotient && found.remainder.bits() == remainder;
    if (!right && ++wrong <= 5) ADD_FAILURE() << hex(dividend) << " by " << hex(divisor);
  }
  EXPECT_EQ(wrong, 0);
}

TEST(Division, WorksWithoutTheInstruction) {
  const auto check = [](std::uint64_t high, std::uint64_t low, std::uint64_t divisor) {
    const NativeUInt128 dividend = NativeUInt128{high} << 64 | low;
    const auto [quotient, remainder] = divideTwoWordsPortably(high, low, divisor);
    const bool right = quotient == dividend / divisor && remainder == dividend % divisor;
    EXPECT_TRUE(right) << hex(dividend) << " by " << hex(divisor);
    return right;
  };
  RandomBits random;
  for (int i = 0; i < 1'000'000; ++i) {
    const auto divisor = static_cast<std::uint64_t>(random.ofAnyWidth() >> 64 | 1);
    if (!check(random.word() % divisor, random.word(), divisor)) return;
  }
  // Digits of ones, which are estimated two too big.
  for (int i = 0; i < 100'000; ++i) {
    const std::uint64_t divisor = std::uint64_t{1} << 63 | ~std::uint64_t{0} >> (32 + (random.word() & 31));
    const std::uint64_t below = random.word() & 7;
    if (!check(divisor - 1 - below, ~(random.word() & 7), divisor)) return;
    if (!check((divisor - 1) >> (random.word() & 31), random.word() & 7, divisor + below)) return;
  }
  for (const NativeUInt128 a : corners()) {
    for (const NativeUInt128 b : corners()) {
      const auto divisor = static_cast<std::uint64_t>(b);
      if (divisor == 0) continue;
      check(static_cast<std::uint64_t>(a >> 64) % divisor, static_cast<std::uint64_t>(a), divisor);
      check(divisor - 1, static_cast<std::uint64_t>(a), divisor);
    }
  }
}

bool isRoot(std::uint64_t root, NativeUInt128 value) {
  const NativeUInt128 square = NativeUInt128{root} * root;
  return square <= value && value - square <= NativeUInt128{root} * 2;
}

TEST(SquareRoot, IsExactAroundSquares) {
  EXPECT_EQ(squareRoot(0), 0u);
  RandomBits random;
  int wrong = 0;
  const auto check = [&](std::uint64_t r) {
    const NativeUInt128 square = NativeUInt128{r} * r;
    const NativeUInt128 values[] = {square, square + 2 * NativeUInt128{r}, r == 0 ? 0 : square - 1};
    const std::uint64_t expected[] = {r, r, r == 0 ? 0 : r - 1};
    for (int i = 0; i < 3; ++i) {
      if (squareRoot(UInt128::fromBits(values[i])) != expected[i] && ++wrong <= 5)
        ADD_FAILURE() << hex(values[i]);
    }
  };
  for (std::uint64_t r = 0; r < 100'000; ++r) check(r);
  for (std::uint64_t r = ~std::uint64_t{0}; r > ~std::uint64_t{0} - 100'000; --r) check(r);
  for (int i = 0; i < 64; ++i) {
    for (int offset = -3; offset <= 3; ++offset)
      check((std::uint64_t{1} << i) + static_cast<std::uint64_t>(offset));
  }
  for (int i = 0; i < 1'000'000; ++i) check(random.word() >> (i % 64));
  EXPECT_EQ(wrong, 0);
}

TEST(SquareRoot, IsExactAnywhere) {
  RandomBits random;
  for (int i = 0; i < 1'000'000; ++i) {
    const NativeUInt128 value = random.ofAnyWidth();
    ASSERT_TRUE(isRoot(squareRoot(UInt128::fromBits(value)), value)) << hex(value);
  }
  for (const NativeUInt128 value : corners()) {
    EXPECT_TRUE(isRoot(squareRoot(UInt128::fromBits(value)), value)) << hex(value);
  }
}

TEST(ToDouble, RoundsTwice) {
  const NativeUInt128 one = 1;
  struct Row {
    NativeUInt128 bits;
    double asUnsigned, asSigned;
  };
  const Row rows[] = {
      {0, 0.0, 0.0},
      {1, 1.0, 1.0},
      {~NativeUInt128{0}, 0x1p128, -1.0},
      {(one << 64) + 1, 0x1p64, 0x1p64},
      {one << 127, 0x1p127, -0x1p127},
      // The low word rounds up to 2^64 − 2^63 + 2^11 + …; rounded once, this would be 2^116.
      {(one << 116) + (one << 63) + 1, 0x1p116, 0x1p116},
      // The high word alone rounds to even: 2^53 + 1 to 2^53. Rounded once, the low word would tip it.
      {((one << 53) + 1) << 64 | 1, 0x1p117, 0x1p117},
      {-(((one << 53) + 1) << 64 | 1), 0x1p128 - 0x1p117, -0x1p117},
      // Words with their top bit set are unsigned ones; 2^63 + 1025 rounds up to 2^63 + 2048.
      {one << 63, 0x1p63, 0x1p63},
      {(one << 63) + 1025, 0x1p63 + 0x1p11, 0x1p63 + 0x1p11},
      {(one << 64) - 1, 0x1p64, 0x1p64},
      {-(one << 63), 0x1p128, -0x1p63},
      {(one << 100) + (one << 63), 0x1p100 + 0x1p63, 0x1p100 + 0x1p63},
      {((one << 63) + 1025) << 64, 0x1p127 + 0x1p75, -0x1p127 + 0x1p74},
      {(one << 127) - 1, 0x1p127, 0x1p127},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(toDouble(UInt128::fromBits(row.bits)), row.asUnsigned) << hex(row.bits);
    EXPECT_EQ(toDouble(Int128::fromBits(row.bits)), row.asSigned) << hex(row.bits);
  }
  EXPECT_FALSE(std::signbit(toDouble(Int128(0))));
  EXPECT_NE(static_cast<double>(((one << 53) + 1) << 64 | 1), 0x1p117) << "a conversion rounded once differs";
}

TEST(Sign, IsMinusOneZeroOrOne) {
  for (const NativeUInt128 bits : corners()) {
    const auto value = static_cast<NativeInt128>(bits);
    EXPECT_EQ(sign(Int128::fromBits(bits)), value < 0 ? -1 : value > 0 ? 1 : 0);
    EXPECT_EQ(magnitude(Int128::fromBits(bits)).bits(), value < 0 ? -bits : bits);
  }
}

TEST(Wide, IsZeroAtFirst) {
  EXPECT_EQ(*std::make_unique<Int128>(), Int128(0));
  EXPECT_EQ(*std::make_unique<UInt128>(), UInt128(0));
}

}  // namespace
}  // namespace qtx
