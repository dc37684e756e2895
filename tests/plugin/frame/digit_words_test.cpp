// Digits in words against digits one by one.
#include "frame/digit_words.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace qtx::digitWords {
namespace {

TEST(DigitWords, KnowEveryCharacter) {
  for (int c = 0; c < 256; ++c) {
    const bool isDigit = c >= '0' && c <= '9';
    ASSERT_EQ(digitOf(static_cast<char>(c)) <= 9, isDigit) << c;
    if (isDigit) {
      ASSERT_EQ(digitOf(static_cast<char>(c)), c - '0');
    }
    // In every place, among the smallest and the largest digits.
    for (const char other : {'0', '9'}) {
      for (std::size_t place = 0; place < 8; ++place) {
        std::string text(8, other);
        text[place] = static_cast<char>(c);
        ASSERT_EQ(areDigits(load(text.data())), isDigit) << text;
      }
    }
  }
}

TEST(DigitWords, AreNoDigitsWhereSeveralCharactersAreNone) {
  std::mt19937 random(11);
  for (int i = 0; i < 100000; ++i) {
    std::string text = "12345678";
    const std::size_t place = random() % 8;
    for (char& c : text) {
      if (random() % 2) c = static_cast<char>(random());
    }
    text[place] = static_cast<char>(random() % 2 ? ':' + random() % 198 : random() % '0');
    ASSERT_FALSE(areDigits(load(text.data()))) << text;
  }
}

TEST(DigitWords, HaveTheValueOfTheirText) {
  std::mt19937 random(12);
  for (int i = 0; i < 100000; ++i) {
    const auto value = random() % 100'000'000 >> random() % 27;
    std::string text = std::to_string(value);
    text.insert(0, 8 - text.size(), '0');
    ASSERT_EQ(valueOf(load(text.data())), value);
  }
  EXPECT_EQ(valueOf(load("99999999")), 99'999'999u);
}

TEST(DigitWords, KeepTheFirstOrTheLastDigits) {
  const std::string text = "98765432";
  for (std::size_t count = 0; count <= 8; ++count) {
    const std::string zeros(8 - count, '0');
    EXPECT_EQ(first(load(text.data()), count), load((zeros + text.substr(0, count)).data())) << count;
    EXPECT_EQ(last(load(text.data()), count), load((zeros + text.substr(8 - count)).data())) << count;
  }
}

}  // namespace
}  // namespace qtx::digitWords
