// Decimal text of 128-bit integers, both ways, against a digit at a time.
#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>

#include "int128/decimal_text.h"
#include "int128_samples.h"

namespace qtx {
namespace {

std::string slowText(NativeUInt128 value) {
  std::string text;
  do {
    text.insert(text.begin(), static_cast<char>('0' + static_cast<int>(value % 10)));
    value /= 10;
  } while (value != 0);
  return text;
}

std::string textOf(UInt128 value) {
  DecimalBuffer buffer;
  return std::string(uint128_to_string(value, buffer));
}
std::string textOf(Int128 value) {
  DecimalBuffer buffer;
  return std::string(int128_to_string(value, buffer));
}

// The rule told as a state machine over bytes.
template <typename Value>
Value slowParse(std::string_view text) {
  enum { blanks, digits } state = blanks;
  NativeUInt128 value = 0;
  bool negative = false;
  for (const char c : text) {
    if (state == blanks) {
      if (std::string_view(" \t\n\v\f\r").find(c) != std::string_view::npos) continue;
      state = digits;
      if (c == '-') negative = true;
      if (c == '-' || c == '+') continue;
    }
    if (c < '0' || c > '9') break;
    value = value * 10 + static_cast<NativeUInt128>(c - '0');
  }
  return Value::fromBits(negative && std::is_signed_v<typename Value::Word> ? -value : value);
}

template <typename Value>
void checkParse(std::string_view text) {
  // A copy of exactly that size, so that a read past the end is noticed.
  const std::vector<char> exact(text.begin(), text.end());
  ASSERT_EQ(hex(parseDecimal<Value>({exact.data(), exact.size()}).bits()), hex(slowParse<Value>(text).bits()))
      << "\"" << text << "\"";
}

void checkRoundTrip(NativeUInt128 bits) {
  const auto asUnsigned = UInt128::fromBits(bits);
  const auto asSigned = Int128::fromBits(bits);
  ASSERT_EQ(textOf(asUnsigned), slowText(bits));
  ASSERT_EQ(textOf(asSigned), asSigned.isNegative() ? "-" + slowText(-bits) : slowText(bits));
  ASSERT_EQ(hex(parseDecimal<UInt128>(textOf(asUnsigned)).bits()), hex(bits));
  ASSERT_EQ(hex(parseDecimal<Int128>(textOf(asSigned)).bits()), hex(bits));
}

TEST(DecimalText, GoesBothWaysForAllDigitCounts) {
  NativeUInt128 powerOf10 = 1;
  for (int digits = 1; digits <= 39; ++digits, powerOf10 *= 10) {
    for (const int factor : {1, 2, 3, 5, 9}) {
      if (digits == 39 && factor > 3) continue;
      for (int offset = -2; offset <= 2; ++offset) {
        checkRoundTrip(powerOf10 * static_cast<unsigned>(factor) + static_cast<NativeUInt128>(offset));
        checkRoundTrip(-(powerOf10 * static_cast<unsigned>(factor) + static_cast<NativeUInt128>(offset)));
      }
    }
  }
  for (const NativeUInt128 bits : corners()) checkRoundTrip(bits);
}

// Up to eight digits are computed in parts side by side: each part, with the others at either end.
TEST(DecimalText, WritesEveryPartOfShortNumbers) {
  int wrong = 0;
  const auto check = [&](std::uint64_t value) {
    const std::string expected = std::to_string(value);
    wrong += textOf(UInt128(value)) != expected;
    wrong += textOf(-Int128(value)) != (value == 0 ? "0" : "-" + expected);
  };
  for (std::uint64_t part = 0; part < 10'000; ++part) {
    for (const std::uint64_t other : {0, 1, 9, 10, 99, 100, 999, 1000, 5050, 9999}) {
      check(part * 10'000 + other);
      check(other * 10'000 + part);
      for (const std::uint64_t above : {1, 99'999'999}) {
        check(above * 100'000'000 + part * 10'000 + other);
        check((above * 100'000'000 + other * 10'000 + part) * 100);
      }
    }
  }
  for (std::uint64_t value = 0; value < 100'000'000; value += 97) check(value);
  EXPECT_EQ(wrong, 0);
}

// Where the digits are cut in two: on both sides of the multiples of 10^19.
TEST(DecimalText, GoesBothWaysAroundMultiplesOfTenTo19) {
  const std::uint64_t tenTo19 = 10'000'000'000'000'000'000u;
  const auto check = [&](std::uint64_t multiple) {
    for (const std::uint64_t rest : {std::uint64_t{0}, std::uint64_t{1}, tenTo19 - 1}) {
      checkRoundTrip(NativeUInt128{multiple} * tenTo19 + rest);
    }
  };
  for (std::uint64_t i = 0; i < 1000; ++i) {
    check(i);
    check(tenTo19 - 1 - i);
  }
  RandomBits random;
  for (int i = 0; i < 20'000; ++i) check(random.word());  // up to 10^38 and beyond
}

TEST(DecimalText, GoesBothWaysAtRandom) {
  RandomBits random;
  for (int i = 0; i < 300'000; ++i) checkRoundTrip(random.ofAnyWidth());
}

TEST(DecimalText, IsAsLongAsItNeedsToBe) {
  EXPECT_EQ(textOf(Int128(0)), "0");
  EXPECT_EQ(textOf(Int128(-1)), "-1");
  EXPECT_EQ(textOf(Int128::fromBits(NativeUInt128{1} << 127)), "-170141183460469231731687303715884105728");
  EXPECT_EQ(textOf(UInt128::fromBits(~NativeUInt128{0})), "340282366920938463463374607431768211455");
}

TEST(DecimalText, IsReadLeniently) {
  struct Row {
    std::string_view text;
    long long asSigned, asUnsigned;
  };
  using namespace std::string_view_literals;
  const Row rows[] = {
      {"", 0, 0},
      {"   ", 0, 0},
      {" \t\n\v\f\r7", 7, 7},
      {"  -42xyz", -42, 42},
      {"+7", 7, 7},
      {"-5", -5, 5},
      {"- 5", 0, 0},
      {"+-5", 0, 0},
      {"--5", 0, 0},
      {"-", 0, 0},
      {"abc", 0, 0},
      {"12.9", 12, 12},
      {"12 9", 12, 12},
      {"1_000", 1, 1},
      {"12\0"
       "34"sv,
       12, 12},
      {"\0"
       "34"sv,
       0, 0},
      {"\xC3\xA9"
       "5",
       0, 0},
      {"\xC2\xA0"
       "5",
       0, 0},  // a no-break space is no blank
      {"5\xC3\xA9", 5, 5},
      // The characters beside blanks and digits.
      {"\x08"
       "5",
       0, 0},
      {"\x0E"
       "5",
       0, 0},
      {"4:", 4, 4},
      {"4/", 4, 4},
      {"0000000000000000000000000000000000000000000000000012", 12, 12},
      {"12345678", 12345678, 12345678},
      {"1234567:", 1234567, 1234567},
      {"1234567/", 1234567, 1234567},
      {"340282366920938463463374607431768211456", 0, 0},
      {"-340282366920938463463374607431768211457", -1, 1},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(parseDecimal<Int128>(row.text), Int128(row.asSigned)) << row.text;
    EXPECT_EQ(parseDecimal<UInt128>(row.text), UInt128(row.asUnsigned)) << row.text;
  }
  EXPECT_EQ(hex(parseDecimal<Int128>("170141183460469231731687303715884105728").bits()),
            hex(NativeUInt128{1} << 127));
}

// Whatever lies behind it.
TEST(DecimalText, EndsWhereItEnds) {
  for (const std::string_view behind : {"  7", "  -7", "7", "-7"}) {
    const std::string text = "  " + std::string(behind);
    for (std::size_t size = 0; size <= 2; ++size) {
      EXPECT_EQ(parseDecimal<Int128>(std::string_view(text).substr(0, size)), Int128(0)) << text << size;
    }
  }
}

TEST(DecimalText, IsReadAsTheSlowModelReadsIt) {
  RandomBits random;
  const std::string_view alphabets[] = {"0123456789", "0123456789 -+", "0123456789/:;\t\r\n\v\f x.", ""};
  for (int i = 0; i < 400'000; ++i) {
    const std::string_view alphabet = alphabets[i % 4];
    std::string text;
    for (std::uint64_t length = random.word() % 60; length > 0; --length) {
      const std::uint64_t pick = random.word();
      // Mostly digits, so that long runs come up in every alphabet.
      text += pick % 8 != 0      ? static_cast<char>('0' + pick / 8 % 10)
              : alphabet.empty() ? static_cast<char>(pick / 8)
                                 : alphabet[pick / 8 % alphabet.size()];
    }
    checkParse<Int128>(text);
    checkParse<UInt128>(text);
  }
}

TEST(DecimalText, OfAMegabyteIsReadModulo2To128) {
  std::string text(1 << 20, '7');
  checkParse<Int128>(text);
  text[0] = '-';
  checkParse<Int128>(text);
  checkParse<UInt128>(text);
  checkParse<Int128>(std::string(1 << 20, ' ') + "-9");
}

// Every byte in every place of runs of digits of every length: ends the number there, or is a digit.
TEST(DecimalText, StaysAtOneByteOfDifference) {
  const std::string digits = "98765432101234567890123456789012345678909876543210123456789012345";
  for (std::size_t length = 0; length <= 64; ++length) {
    std::string text = digits.substr(0, length);
    checkParse<Int128>(text);
    checkParse<UInt128>(text);
    for (char& place : text) {
      const char before = place;
      for (int byte = 0; byte < 256; ++byte) {
        place = static_cast<char>(byte);
        checkParse<Int128>(text);
      }
      place = before;
    }
  }
}

TEST(DecimalText, OfEveryLengthIsReadBehindEveryPrefix) {
  RandomBits random;
  for (const char* prefix : {"", "-", "+", " ", "\t -", "        ", "                -", "--", "-+", "- "}) {
    for (std::size_t length = 0; length <= 64; ++length) {
      std::string text = prefix;
      for (std::size_t i = 0; i < length; ++i) text += static_cast<char>('0' + random.word() % 10);
      for (const char* suffix : {"", " ", ".5", "x", "\xFF", "                  1"}) {
        checkParse<Int128>(text + suffix);
        checkParse<UInt128>(text + suffix);
      }
    }
  }
}

}  // namespace
}  // namespace qtx
