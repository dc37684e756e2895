// The check digit: known numbers, a doubled-digit model, and what is no digit.
#include "math/luhn.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace qtx {
namespace {

TEST(Luhn, AcceptsDigitsWithTheRightSum) {
  const struct {
    std::string_view text;
    bool valid;
  } rows[] = {
      {"4111111111111111", true},
      {"4111111111111112", false},
      {"4111 1111 1111 1111", false},
      {"4111-1111-1111-1111", false},
      {"", true},
      {"0", true},
      {"00000", true},
      {"18", true},
      {"1", false},
      {"79927398713", true},
      {"79927398710", false},
      {" 18", false},
      {"18 ", false},
      {std::string_view("18\0", 3), false},
      {std::string_view("\0", 1), false},
      {"1/", false},
      {"1:", false},
      {"\xB1\xB8", false},
  };
  for (const auto& row : rows) EXPECT_EQ(passesLuhn(row.text), row.valid) << row.text;
}

bool slowlyPasses(std::string_view text) {
  int sum = 0;
  for (std::size_t position = 0; position < text.size(); ++position) {
    const char c = text[text.size() - 1 - position];
    if (c < '0' || c > '9') return false;
    const int digit = c - '0';
    const std::string added = std::to_string(position % 2 == 0 ? digit : 2 * digit);
    for (const char each : added) sum += each - '0';
  }
  return sum % 10 == 0;
}

// The text is copied to memory of exactly that size, so that a read past either end is noticed.
bool passes(std::string_view text) {
  const std::vector<char> exact(text.begin(), text.end());
  return passesLuhn({exact.data(), exact.size()});
}

TEST(Luhn, AgreesWithAddingTheDigitsOfTheDoubled) {
  std::mt19937 random(3);
  for (int i = 0; i < 100000; ++i) {
    std::string text;
    for (auto length = random() % 65; length > 0; --length) text += static_cast<char>('0' + random() % 10);
    ASSERT_EQ(passes(text), slowlyPasses(text)) << text;
  }
}

// Of all digits in one place, one is right.
TEST(Luhn, HangsOnEveryDigit) {
  std::mt19937 random(8);
  for (std::size_t length = 1; length <= 64; ++length) {
    std::string text;
    for (std::size_t i = 0; i < length; ++i) text += static_cast<char>('0' + random() % 10);
    for (char& place : text) {
      const char before = place;
      int valid = 0;
      for (place = '0'; place <= '9'; ++place) {
        ASSERT_EQ(passes(text), slowlyPasses(text)) << text;
        valid += passes(text);
      }
      ASSERT_EQ(valid, 1) << text;
      place = before;
    }
  }
}

TEST(Luhn, RefusesEveryOtherByteInEveryPlace) {
  for (std::size_t length = 1; length <= 64; ++length) {
    std::string text(length, '0');
    for (char& place : text) {
      for (int byte = 0; byte < 256; ++byte) {
        place = static_cast<char>(byte);
        ASSERT_EQ(passes(text), slowlyPasses(text)) << text << " " << byte;
      }
      place = '0';
    }
  }
}

TEST(Luhn, TakesMillionsOfDigits) {
  EXPECT_TRUE(passesLuhn(std::string(10'000'000, '9')));  // each pair sums up to 18
  EXPECT_FALSE(passesLuhn(std::string(10'000'001, '9')));
}

}  // namespace
}  // namespace qtx
