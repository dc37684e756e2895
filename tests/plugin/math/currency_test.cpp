// Currency text against a parser that works on decimal text alone, and wrap-around arithmetic.
#include "math/currency.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <random>
#include <string>
#include <vector>

namespace qtx {

void PrintTo(const ParsedCurrency& parsed, std::ostream* stream) {
  *stream << parsed.count << " error " << static_cast<int>(parsed.error) << " at " << int{parsed.offending};
}
bool operator==(const ParsedCurrency& a, const ParsedCurrency& b) {
  return a.count == b.count && a.error == b.error && a.offending == b.offending;
}

namespace {

using namespace std::string_literals;
constexpr auto tooLong = CurrencyError::tooLong;
constexpr auto tooBig = CurrencyError::tooBig;
constexpr auto invalid = CurrencyError::invalidCharacter;

TEST(ParseCurrency, ReadsWhatIsWritten) {
  const struct {
    std::string text;
    ParsedCurrency expected;
  } rows[] = {
      {"12.5", {125000}},
      {"-0.00015", {-1}},
      {".5", {5000}},
      {"5.", {50000}},
      {"", {0}},
      {"-", {0}},
      {"+", {0}},
      {"-+", {0}},
      {".", {0}},
      {"...", {0}},
      {"-.", {0}},
      {"+5", {50000}},
      {"-+7", {70000}},
      {"+-5", {0, invalid, '-'}},
      {"--5", {0, invalid, '-'}},
      {"++5", {0, invalid, '+'}},
      {"5-", {0, invalid, '-'}},
      {"1.2.3", {12300}},
      {"1..2", {12000}},
      {"1.2345", {12345}},
      {"1.23456xyz", {12345}},
      {"1.2345x", {12345}},
      {"1.2x", {0, invalid, 'x'}},
      {"1.234x", {0, invalid, 'x'}},
      {"1,5", {0, invalid, ','}},
      {" 1", {0, invalid, ' '}},
      {"1 ", {0, invalid, ' '}},
      {"1e5", {0, invalid, 'e'}},
      {"1/", {0, invalid, '/'}},
      {"1:", {0, invalid, ':'}},
      {"\xE2\x82\xAC"
       "5",
       {0, invalid, '\xE2'}},
      {"1\xFF", {0, invalid, '\xFF'}},
      {"922337203685477.5807", {INT64_MAX}},
      {"-922337203685477.5807", {-INT64_MAX}},
      {"922337203685477.58079", {INT64_MAX}},
      {"922337203685477.5808", {0, tooBig}},
      {"-922337203685477.5808", {0, tooBig}},
      {"922337203685477.580", {INT64_MAX - 7}},
      {"922337203685477.581", {0, tooBig}},
      {"922337203685478", {0, tooBig}},
      {"922337203685477", {9223372036854770000}},
      {"9223372036854775807", {0, tooBig}},
      {"99999999999999999999x", {0, tooBig}},
      {"123456789012345678x", {0, invalid, 'x'}},
      {"1234567890123456789x", {0, invalid, 'x'}},
      {"000000000000000000001", {10000}},
      {"0000000000000000000001", {0, tooLong}},
      {"1234567890123456789012", {0, tooLong}},
      {"-1234567890123456789012", {0, tooLong}},
      {"-+000000000000000000001", {10000}},
      {"xxxxxxxxxxxxxxxxxxxxxx", {0, tooLong}},
      {"0.12345678901234567890", {0, tooLong}},
      {"0.1234567890123456789", {1234}},
      {"1.5\0x"s, {15000}},
      {"1.5\0"s + std::string(100, '9'), {15000}},
      {"\0"
       "5"s,
       {0}},
      {"-\0"
       "5"s,
       {0}},
      {std::string(1'000'000, '0'), {0, tooLong}},
  };
  for (const auto& row : rows) EXPECT_EQ(parseCurrency(row.text), row.expected) << row.text;
}

TEST(ParseCurrency, NamesACharacterOnlyWhereOneIsInvalid) {
  EXPECT_EQ(parseCurrency("1x").offending, 'x');
  EXPECT_EQ(parseCurrency("1").offending, 0);
  EXPECT_EQ(parseCurrency("9223372036854775807").offending, 0) << "too big";
}

// Does nothing but move characters and compare texts of digits.
ParsedCurrency modelParse(std::string text) {
  text = text.c_str();  // up to the first NUL
  bool negative = false;
  if (text.starts_with('-')) {
    negative = true;
    text.erase(0, 1);
  }
  if (text.starts_with('+')) {
    negative = false;
    text.erase(0, 1);
  }
  if (text.size() > 21) return {0, tooLong};

  const std::string largest = "9223372036854775807";
  const auto fits = [&](std::string digits) {
    digits.erase(0, digits.find_first_not_of('0'));
    return digits.size() < largest.size() || (digits.size() == largest.size() && digits <= largest);
  };
  std::string digits;
  std::size_t decimals = 0;
  bool point = false;
  for (const char c : text) {
    if (decimals == 4) break;
    if (c == '.') {
      point = true;
      continue;
    }
    if (c < '0' || c > '9') return {0, invalid, c};
    digits += c;
    if (point) ++decimals;
    if (!fits(digits)) return {0, tooBig};
  }
  digits += std::string(4 - decimals, '0');
  if (!fits(digits)) return {0, tooBig};
  return {std::stoll((negative ? "-" : "") + digits)};
}

// The text is copied to memory of exactly that size, so that a read past either end is noticed.
void check(const std::string& text) {
  const std::vector<char> exact(text.begin(), text.end());
  ASSERT_EQ(parseCurrency({exact.data(), exact.size()}), modelParse(text)) << text;
}

// What lies around the text could be more of the number.
TEST(ParseCurrency, ReadsNothingAroundTheText) {
  const std::string digits = "12345678901234567890123456789012345678901234567890";
  for (std::size_t length = 0; length <= 22; ++length) {
    const std::string_view text = std::string_view(digits).substr(20, length);
    EXPECT_EQ(parseCurrency(text), modelParse(std::string(text))) << text;
  }
}

// Every length, the point in every place or nowhere, with and without a sign.
TEST(ParseCurrency, AgreesWithTheModelWhereverThePointIs) {
  const std::string digits = "1234567890987654321012345";
  for (std::size_t length = 0; length <= digits.size(); ++length) {
    for (const char* sign : {"", "-", "+", "-+", "+-"}) {
      const std::string text = sign + digits.substr(0, length);
      check(text);
      for (std::size_t place = 0; place <= text.size(); ++place) {
        const std::string one = text.substr(0, place) + "." + text.substr(place);
        check(one);
        for (std::size_t second = place; second <= one.size(); ++second) {
          check(one.substr(0, second) + "." + one.substr(second));
        }
      }
    }
  }
}

TEST(ParseCurrency, AgreesWithTheModelOnEveryByteInEveryPlace) {
  for (const std::string_view digits :
       {"0", "10", "1.5", "1.50", "12.34", "123.456", "1234.567", "1234.5678", "12345678", "123456789.01",
        "12345678901234567", "000000000000012.3456", "922337203685477.580", "922337203685477.5807",
        "-922337203685477.5807", "-12.3", "0000000000000000012.3", "00000000000000000012.3"}) {
    std::string text(digits);
    for (char& place : text) {
      const char before = place;
      for (int byte = 0; byte < 256; ++byte) {
        place = static_cast<char>(byte);
        check(text);
      }
      place = before;
    }
  }
}

TEST(ParseCurrency, AgreesWithTheModelOnRandomText) {
  std::mt19937 random(4);
  const auto pick = [&](std::string_view from) { return from[random() % from.size()]; };
  for (int i = 0; i < 300000; ++i) {
    std::string text;
    if (random() % 2) text += pick("-+");
    if (random() % 8 == 0) text += pick("-+");
    for (auto length = random() % 24; length > 0; --length) {
      const auto kind = random() % 40;
      text += kind == 0 ? pick(std::string_view("x ,/:-+\0\xC3", 9)) : kind < 4 ? '.' : pick("0123456789");
    }
    check(text);
  }
}

TEST(ParseCurrency, AgreesWithTheModelAroundTheLimits) {
  std::mt19937 random(5);
  for (int i = 0; i < 300000; ++i) {
    std::string text = "9223372036854775807";
    // Changes a few digits near a random place, puts a point somewhere, and maybe cuts or prolongs it.
    for (int changes = static_cast<int>(random() % 3); changes > 0; --changes) {
      text[random() % text.size()] = static_cast<char>('0' + random() % 10);
    }
    if (random() % 3 == 0) text.back() = static_cast<char>('0' + random() % 10);
    if (random() % 4) text.insert(random() % 6 + text.size() - 5, ".");
    if (random() % 4 == 0) text.pop_back();
    if (random() % 8 == 0) text.insert(0, "0");
    if (random() % 8 == 0) text += "x";
    if (random() % 4 == 0) text.insert(0, "-");
    check(text);
  }
}

TEST(ParseCurrency, ReadsBackEveryAmountThatIsPrinted) {
  std::mt19937_64 random(6);
  for (int i = 0; i < 100000; ++i) {
    auto count = static_cast<std::int64_t>(random());
    count = count >> random() % 64;
    if (count == INT64_MIN) continue;
    const std::string digits = std::to_string(std::abs(count));
    std::string text = std::string(digits.size() < 5 ? 5 - digits.size() : 0, '0') + digits;
    text.insert(text.size() - 4, ".");
    ASSERT_EQ(parseCurrency((count < 0 ? "-" : "") + text), ParsedCurrency{count}) << text;
  }
}

TEST(CurrencyArithmetic, WrapsAround) {
  EXPECT_EQ(addCurrency(INT64_MAX, 1), INT64_MIN);
  EXPECT_EQ(addCurrency(15000, -20000), -5000);
  EXPECT_EQ(subtractCurrency(INT64_MIN, 1), INT64_MAX);
  EXPECT_EQ(subtractCurrency(0, INT64_MIN), INT64_MIN);
  EXPECT_EQ(multiplyCurrency(15000, 3), 45000);
  EXPECT_EQ(multiplyCurrency(INT64_MAX, 2), -2);
  EXPECT_EQ(multiplyCurrency(INT64_MIN, -1), INT64_MIN);
  std::mt19937_64 random(7);
  for (int i = 0; i < 10000; ++i) {
    const auto a = static_cast<std::int64_t>(random()), b = static_cast<std::int64_t>(random());
    EXPECT_EQ(addCurrency(a, b), static_cast<std::int64_t>(static_cast<__int128>(a) + b));
    EXPECT_EQ(subtractCurrency(a, b), static_cast<std::int64_t>(static_cast<__int128>(a) - b));
    EXPECT_EQ(multiplyCurrency(a, b), static_cast<std::int64_t>(static_cast<__int128>(a) * b));
  }
}

TEST(CurrencyArithmetic, DividesTowardZero) {
  EXPECT_EQ(divideCurrency(100000, 4), 25000);
  EXPECT_EQ(divideCurrency(1, 2), 0);
  EXPECT_EQ(divideCurrency(-3, 2), -1);
  EXPECT_EQ(divideCurrency(3, -2), -1);
  EXPECT_EQ(divideCurrency(INT64_MIN, -1), INT64_MIN);
  EXPECT_EQ(divideCurrency(INT64_MAX, -1), -INT64_MAX);
  EXPECT_EQ(divideCurrency(INT64_MIN, 1), INT64_MIN);
  EXPECT_EQ(divideCurrency(INT64_MIN, INT64_MIN), 1);
}

}  // namespace
}  // namespace qtx
