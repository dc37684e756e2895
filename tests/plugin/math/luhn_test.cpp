// The check digit: known numbers, a doubled-digit model, and what is no digit.
#include "math/luhn.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

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

TEST(Luhn, AgreesWithAddingTheDigitsOfTheDoubled) {
  std::mt19937 random(3);
  for (int i = 0; i < 20000; ++i) {
    std::string text;
    for (auto length = random() % 30; length > 0; --length) text += static_cast<char>('0' + random() % 10);
    int sum = 0;
    for (std::size_t position = 0; position < text.size(); ++position) {
      const int digit = text[text.size() - 1 - position] - '0';
      const std::string added = std::to_string(position % 2 == 0 ? digit : 2 * digit);
      for (const char c : added) sum += c - '0';
    }
    ASSERT_EQ(passesLuhn(text), sum % 10 == 0) << text;
  }
}

TEST(Luhn, TakesMillionsOfDigits) {
  EXPECT_TRUE(passesLuhn(std::string(10'000'000, '9')));  // each pair sums up to 18
  EXPECT_FALSE(passesLuhn(std::string(10'000'001, '9')));
}

}  // namespace
}  // namespace qtx
