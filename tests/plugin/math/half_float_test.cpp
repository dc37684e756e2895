// Half-precision conversion in all its forms: the examples, every half number, and a sample of Singles with
// every exponent.
#include "math/half_float.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <limits>
#include <random>
#include <vector>

#include "frame/processor.h"
#include "half_float_model.h"

namespace qtx {
namespace {

// The portable forms, and those for the processor where it can run them.
struct Form {
  const char* name;
  std::uint16_t (*narrow)(float) noexcept;
  float (*widen)(std::uint16_t) noexcept;
};
class HalfFloat : public testing::TestWithParam<Form> {
 protected:
  static std::uint16_t toHalf(float x) { return GetParam().narrow(x); }
  static float fromHalf(std::uint16_t half) { return GetParam().widen(half); }
};
std::vector<Form> forms() {
  std::vector<Form> all = {{"portable", &toHalf, &fromHalf}};
  if (thisProcessor().convertsHalfFloats) all.push_back({"tuned", &tuned::toHalf, &tuned::fromHalf});
  return all;
}
INSTANTIATE_TEST_SUITE_P(Forms, HalfFloat, testing::ValuesIn(forms()),
                         [](const auto& form) { return form.param.name; });

TEST_P(HalfFloat, TruncatesWhatIsNarrowed) {
  const auto single = [](std::uint32_t bits) { return std::bit_cast<float>(bits); };
  const float infinity = std::numeric_limits<float>::infinity();
  const struct {
    float number;
    std::uint16_t half;
  } rows[] = {
      {0.0f, 0x0000},
      {-0.0f, 0x8000},
      {1.0f, 0x3C00},
      {-2.0f, 0xC000},
      {1.0009f, 0x3C00},
      {65504.0f, 0x7BFF},
      {std::nextafter(65504.0f, 0.0f), 0x7BFE},
      {std::nextafter(65504.0f, infinity), 0x7C00},
      {65519.0f, 0x7C00},
      {-3.4e38f, 0xFC00},
      {infinity, 0x7C00},
      {-infinity, 0xFC00},
      {0x1p-14f, 0x0400},
      {std::nextafter(0x1p-14f, 0.0f), 0x03FF},
      {0x1p-24f, 0x0001},
      {0x1.fffffep-24f, 0x0001},
      {0x1p-25f, 0x0000},
      {-0x1p-25f, 0x8000},
      {std::numeric_limits<float>::denorm_min(), 0x0000},
      {single(0x7F800001), 0x7C01},
      {single(0xFF800001), 0xFC01},
      {single(0x7F801FFF), 0x7C01},
      {single(0x7F802000), 0x7C01},
      {single(0x7F804000), 0x7C02},
      {single(0x7FC00000), 0x7E00},
      {single(0xFFFFFFFF), 0xFFFF},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(toHalf(row.number), row.half) << std::hex << std::bit_cast<std::uint32_t>(row.number);
  }
}

TEST_P(HalfFloat, WidensEveryHalfExactlyAndBack) {
  for (unsigned i = 0; i < 0x10000; ++i) {
    const auto half = static_cast<std::uint16_t>(i);
    const float wide = fromHalf(half);
    const double expected = modelFromHalf(half);
    if (std::isnan(expected)) {
      ASSERT_TRUE(std::isnan(wide)) << i;
      const unsigned sign = i & 0x8000, payload = i & 0x3FF;
      ASSERT_EQ(std::bit_cast<std::uint32_t>(wide), sign << 16 | 0x7F800000 | payload << 13) << i;
    } else {
      ASSERT_EQ(static_cast<double>(wide), expected) << i;
      ASSERT_EQ(std::signbit(wide), i >= 0x8000) << i;
    }
    ASSERT_EQ(toHalf(wide), half) << i;
  }
}

// For each sign and exponent, the fractions around every change of the half's fraction would be too many: a
// random one, and its neighbours, for each of the top ten bits.
TEST_P(HalfFloat, NarrowsASampleOfEveryExponentAndTopFraction) {
  std::mt19937 random(1);
  for (std::uint32_t top = 0; top < 1u << 19; ++top) {
    const auto low = static_cast<std::uint32_t>(random()) & 0x1FFF;
    for (const std::uint32_t rest : {0u, 1u, low, 0x1FFEu, 0x1FFFu}) {
      const std::uint32_t bits = top << 13 | rest;
      const auto x = std::bit_cast<float>(bits);
      ASSERT_EQ(toHalf(x), modelToHalf(x)) << std::hex << bits;
    }
  }
}

// A program may have set any.
TEST_P(HalfFloat, IsTheSameInEveryRoundingMode) {
  const auto results = [] {
    std::vector<std::uint32_t> all;
    for (std::uint32_t top = 0; top < 0x10000; ++top) {
      all.push_back(std::bit_cast<std::uint32_t>(fromHalf(static_cast<std::uint16_t>(top))));
      for (const std::uint32_t rest : {0u, 1u, 0x1FFFu, 0x2000u, 0xFFFFu}) {
        all.push_back(toHalf(std::bit_cast<float>(top << 16 | rest)));
      }
    }
    return all;
  };
  const auto expected = results();
  for (const int mode : {FE_DOWNWARD, FE_UPWARD, FE_TOWARDZERO}) {
    ASSERT_EQ(std::fesetround(mode), 0);
    const auto found = results();
    std::fesetround(FE_TONEAREST);
    EXPECT_TRUE(found == expected) << mode;
  }
}

}  // namespace
}  // namespace qtx
