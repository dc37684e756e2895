// Bit operations against models that go bit by bit.
#include "math/bits.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "frame/processor.h"

namespace qtx {
namespace {

constexpr std::uint64_t topBit = std::uint64_t{1} << 63;

TEST(BitCount, CountsTheLow32Bits) {
  std::vector<std::int64_t (*)(std::uint64_t) noexcept> forms = {&bitCount};
  if (thisProcessor().countsBits) forms.push_back(&tuned::bitCount);
  for (const auto count : forms) {
    EXPECT_EQ(count(0), 0);
    EXPECT_EQ(count(0b1011), 3);
    EXPECT_EQ(count(UINT64_MAX), 32);
    EXPECT_EQ(count(0xFFFFFFFF00000000), 0);
    EXPECT_EQ(count(std::uint64_t{1} << 32), 0);
    std::mt19937_64 random(1);
    for (int i = 0; i < 100'000; ++i) {
      const std::uint64_t value = random();
      std::int64_t expected = 0;
      for (int bit = 0; bit < 32; ++bit) expected += static_cast<std::int64_t>(value >> bit & 1);
      ASSERT_EQ(count(value), expected) << std::hex << value;
    }
  }
}

TEST(Shift, TakesCountsModulo64InBothDirections) {
  const std::uint64_t value = 0x8123456789ABCDEF;
  for (std::int64_t count = -300; count <= 300; ++count) {
    std::uint64_t expected = value;
    for (std::int64_t i = 0; i < std::abs(count) % 64; ++i)
      expected = count < 0 ? expected / 2 : expected * 2;
    EXPECT_EQ(shiftBits(value, count), expected) << count;
  }
  EXPECT_EQ(shiftBits(topBit, -1), topBit >> 1) << "no sign fill";
  EXPECT_EQ(shiftBits(value, INT64_MIN), value);
  EXPECT_EQ(shiftBits(value, INT64_MIN + 1), value >> 63);
  EXPECT_EQ(shiftBits(value, INT64_MAX), value << 63);
}

TEST(BitValue, IsNothingFrom64OnAndModulo64Below) {
  const struct {
    std::int64_t number;
    std::uint64_t value;
  } rows[] = {{0, 1},         {1, 2},       {62, topBit >> 1}, {63, topBit}, {64, 0},       {65, 0},
              {INT64_MAX, 0}, {-1, topBit}, {-63, 2},          {-64, 1},     {-65, topBit}, {INT64_MIN, 1}};
  for (const auto& row : rows) EXPECT_EQ(bitValue(row.number), row.value) << row.number;
}

// Moves each bit of the field, one by one.
std::uint64_t modelRotation(std::uint64_t value, std::int64_t count, std::int64_t offset,
                            std::int64_t width) {
  std::vector<int> field;  // the bits that belong to it
  for (int bit = 0; bit < 32; ++bit) {
    const __int128 end = static_cast<__int128>(offset) + width;
    if (bit >= offset && bit < end) field.push_back(bit);
  }
  const auto size = static_cast<std::int64_t>(field.size());
  if (size < 2) return value;
  std::uint64_t result = value;
  for (std::int64_t i = 0; i < size; ++i) {
    const auto to = static_cast<std::size_t>(((i + count % size) % size + size) % size);
    const std::uint64_t bit = std::uint64_t{1} << field[to];
    const bool set = value >> field[static_cast<std::size_t>(i)] & 1;
    result = set ? result | bit : result & ~bit;
  }
  return result;
}

TEST(Words, AreBits16To31And0To15) {
  EXPECT_EQ(highWord(0x12345678), 0x1234);
  EXPECT_EQ(lowWord(0x12345678), 0x5678);
  EXPECT_EQ(highWord(std::int64_t{1} << 32), 0);
  EXPECT_EQ(highWord(-1), 65535);
  EXPECT_EQ(lowWord(-1), 65535);
  EXPECT_EQ(highWord(INT64_MIN), 0);
}

TEST(Rotation, MovesTheFieldAndNothingElse) {
  EXPECT_EQ(rotateField(0b0001, 1, 0, 4), 0b0010u);
  EXPECT_EQ(rotateField(0b1000, 1, 0, 4), 0b0001u);
  EXPECT_EQ(rotateField(0b0001, -1, 0, 4), 0b1000u);
  EXPECT_EQ(rotateField(0x40000000, 1, 30, 8), 0x80000000u) << "two bits are left of the field";
  EXPECT_EQ(rotateField(0xDEADBEEF, 5, 0, 1), 0xDEADBEEFu);
  EXPECT_EQ(rotateField(0xDEADBEEF, 5, 40, 8), 0xDEADBEEFu);
  EXPECT_EQ(rotateField(0b110, 1, -1, 4), 0b101u) << "bits 0 to 2";
}

TEST(Rotation, AgreesWithTheModelOnEveryField) {
  std::mt19937_64 random(2);
  for (std::int64_t offset = -40; offset <= 40; ++offset) {
    for (std::int64_t width = -5; width <= 75; ++width) {
      for (std::int64_t count = -70; count <= 70; ++count) {
        const std::uint64_t value = random();
        ASSERT_EQ(rotateField(value, count, offset, width), modelRotation(value, count, offset, width))
            << std::hex << value << std::dec << " by " << count << " in " << offset << ", " << width;
      }
    }
  }
}

// Counts of every size, by every width: what the reciprocals of the widths are exact for, and what not.
TEST(Rotation, TakesEveryCountModuloTheWidth) {
  std::mt19937_64 random(3);
  for (std::int64_t width = 2; width <= 32; ++width) {
    for (int i = 0; i < 2000; ++i) {
      const std::uint64_t value = random();
      const std::int64_t count = static_cast<std::int64_t>(random()) >> (random() & 63);
      for (const std::int64_t near :
           {count, count - count % width, count - count % width - (count > 0 ? 1 : -1)}) {
        ASSERT_EQ(rotateField(value, near, 0, width), modelRotation(value, near, 0, width))
            << std::hex << value << std::dec << " by " << near << " in " << width;
      }
    }
  }
}

// So it does not matter for the result which of the two a field takes, only for how long it takes.
TEST(Rotation, OfACutFieldTakesWholeFieldsAsWell) {
  const std::uint64_t value = 0x0123456789ABCDEF;
  for (std::int64_t offset = 0; offset <= 30; ++offset) {
    for (std::int64_t width = 2; width <= 32; ++width) {
      for (std::int64_t count = -65; count <= 65; ++count) {
        ASSERT_EQ(detail::rotateCutField(value, count, offset, width),
                  rotateField(value, count, offset, width))
            << count << " in " << offset << ", " << width;
      }
    }
  }
}

TEST(Rotation, TakesNoDivisionForCountsBelow2ToThe50) {
  constexpr std::int64_t limit = std::int64_t{1} << 50;
  for (const std::int64_t count : {-limit, 1 - limit, -limit / 2 - 1, std::int64_t{-1}, std::int64_t{0},
                                   std::int64_t{1}, limit / 2 + 1, limit - 1}) {
    EXPECT_TRUE(detail::isSmallCount(count)) << count;
  }
  for (const std::int64_t count : {INT64_MIN, -limit - 1, limit, INT64_MAX}) {
    EXPECT_FALSE(detail::isSmallCount(count)) << count;
  }
}

TEST(Rotation, IsDefinedForEveryArgument) {
  constexpr std::int64_t large = std::int64_t{1} << 50;
  const std::int64_t limits[] = {
      INT64_MIN, INT64_MIN + 1, -large - 1, -large,    1 - large,     -33,      -1, 0, 1, 2, 30, 31, 32,
      33,        large - 1,     large,      large + 1, INT64_MAX - 1, INT64_MAX};
  for (const std::int64_t count : limits) {
    for (const std::int64_t offset : limits) {
      for (const std::int64_t width : limits) {
        const std::uint64_t value = 0x123456789ABCDEF0;
        ASSERT_EQ(rotateField(value, count, offset, width), modelRotation(value, count, offset, width))
            << count << " in " << offset << ", " << width;
      }
    }
  }
}

}  // namespace
}  // namespace qtx
