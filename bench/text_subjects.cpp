// Texts in and out: 128-bit integers, currency and credit card numbers.
#include <fmt/format.h>

#include <boost/multiprecision/cpp_int.hpp>
#include <charconv>
#include <random>

#include "limits.h"
#include "subjects.h"

namespace bench {
namespace {

using BoostInt128 = boost::multiprecision::int128_t;

constexpr std::size_t sampleCount = 1000;

// Random numbers of so many digits, that an Int128 can hold; 0 stands for all lengths, with a sign now and
// then.
std::vector<std::string> numbers(int digits) {
  std::mt19937_64 engine(static_cast<unsigned>(digits));
  std::vector<std::string> all(sampleCount);
  for (std::string& text : all) {
    const int length = digits ? digits : 1 + static_cast<int>(engine() % 39);
    text = length == 39 ? '1' : static_cast<char>('1' + engine() % 9);
    while (static_cast<int>(text.size()) < length) {
      const unsigned range = length == 39 && text.size() == 1 ? 7 : 10;  // below 2^127, 1.7e38
      text += static_cast<char>('0' + engine() % range);
    }
    if (!digits && engine() % 4 == 0) text.insert(0, 1, '-');
  }
  return all;
}

Inputs<REALstring> strings(const std::vector<std::string>& texts) {
  std::vector<std::tuple<REALstring>> all;
  for (const std::string& text : texts) all.emplace_back(stringOf(text));
  return inputs(std::move(all));
}

UInt128 digitAtATime(std::string_view text) {
  const bool negative = text.starts_with('-');
  UInt128 value = 0;
  for (const char c : text.substr(negative)) {
    if (c < '0' || c > '9') break;
    value = value * 10 + static_cast<unsigned>(c - '0');
  }
  return negative ? -value : value;
}
UInt128 fromChars(std::string_view text) {
  std::uint64_t value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}
UInt128 fromBoost(std::string_view text) {
  return static_cast<UInt128>(static_cast<Int128>(BoostInt128(std::string(text))));
}

using FromText = void(REALobject, REALstring);
template <UInt128 (*parse)(std::string_view)>
void parseInto(REALobject self, REALstring string) {
  const Text text(string);
  write(self, parse({text.begin(), text.size()}));
}

Subject fromText(int digits) {
  return {.name = digits ? "Int128 from text" : "Int128 from text of 1 to 39 digits, some negative",
          .contenders =
              [digits] {
                const auto texts = strings(numbers(digits));
                std::vector<Named<FromText>> all = {
                    {"own", method<FromText>("Int128QTX", "Constructor(value as String)")},
                    {"digit by digit", &parseInto<&digitAtATime>},
                    {"Boost", &parseInto<&fromBoost>},
                    {"limit", &limits::int128FromText}};
                if (digits && digits <= 19)
                  all.insert(all.begin() + 2, {"std::from_chars", &parseInto<&fromChars>});
                std::vector<Contender> contenders;
                for (const auto& each : all) {
                  const auto call = [self = host.newInstance("Int128QTX"),
                                     parse = opaque(each.function)](REALstring text) {
                    parse(self, text);
                    return read<UInt128>(self);
                  };
                  contenders.push_back(contender(each.name, call, texts, texts));
                }
                return contenders;
              },
          .size = digits,
          .unit = "digits"};
}

REALstring toTextByFmt(REALobject self, RBInteger) {
  char text[40];
  const char* end = fmt::format_to(text, "{}", read<Int128>(self));
  return built(text, static_cast<std::size_t>(end - text));
}
REALstring toTextByToChars(REALobject self, RBInteger) {
  char text[40];
  const char* end =
      std::to_chars(text, text + sizeof text, static_cast<std::uint64_t>(read<Int128>(self))).ptr;
  return built(text, static_cast<std::size_t>(end - text));
}
REALstring toTextByBoost(REALobject self, RBInteger) {
  const std::string text = BoostInt128(read<Int128>(self)).str();
  return built(text.data(), text.size());
}

using ToText = REALstring(REALobject, RBInteger);
Subject toText(int digits) {
  return {.name = "Int128 to text",
          .contenders =
              [digits] {
                std::vector<std::tuple<REALobject, RBInteger>> objects;
                for (const std::string& text : numbers(digits)) {
                  objects.emplace_back(host.newInstance("Int128QTX"), 0);
                  write(std::get<0>(objects.back()), digitAtATime(text));
                }
                std::vector<Named<ToText>> others = {
                    {"fmt", &toTextByFmt}, {"Boost", &toTextByBoost}, {"limit", &limits::textOfInt128}};
                if (digits <= 19) others.insert(others.begin(), {"std::to_chars", &toTextByToChars});
                return contendersOf(getter<ToText>("Int128QTX", "stringValue"), others,
                                    inputs(std::move(objects)));
              },
          .size = digits,
          .unit = "digits"};
}

// --- Currency ---

Inputs<REALstring> amounts() {
  std::mt19937_64 engine(1);
  std::vector<std::string> all(sampleCount);
  for (std::string& text : all) {
    const std::uint64_t count = engine() >> (1 + engine() % 50);
    const std::string decimals = std::to_string(10000 + count % 10000).substr(1, 1 + engine() % 4);
    text = (engine() % 4 ? "" : "-") + std::to_string(count / 10000) + "." + decimals;
  }
  return strings(all);
}

std::int64_t currencyByFromChars(REALstring string) {
  const Text text(string);
  const char *at = text.begin(), *const end = text.end();
  const bool negative = at != end && *at == '-';
  std::uint64_t whole = 0, part = 0;
  at = std::from_chars(at + negative, end, whole).ptr;
  if (at != end && *at == '.') {
    const char* const last = end - at > 5 ? at + 5 : end;
    const char* const behind = std::from_chars(at + 1, last, part).ptr;
    static constexpr std::uint64_t scale[] = {10000, 1000, 100, 10, 1};
    part *= scale[behind - at - 1];
  }
  const auto value = static_cast<std::int64_t>(whole * 10000 + part);
  return negative ? -value : value;
}

// --- Credit card numbers ---

Inputs<REALstring> cardNumbers() {
  std::mt19937_64 engine(5);
  std::vector<std::string> all(sampleCount);
  for (std::string& number : all) number = std::to_string(1000000000000000 + engine() % 9000000000000000);
  return strings(all);
}

bool luhnByLoop(REALstring string) {
  const Text text(string);
  int sum = 0;
  bool twice = false;
  for (const char* at = text.end(); at != text.begin(); twice = !twice) {
    int digit = *--at - '0';
    if (digit < 0 || digit > 9) return false;
    if (twice) digit = digit * 2 > 9 ? digit * 2 - 9 : digit * 2;
    sum += digit;
  }
  return sum % 10 == 0;
}

}  // namespace

std::vector<Subject> textSubjects() {
  std::vector<Subject> all;
  for (const int digits : {1, 5, 19, 39, 0}) all.push_back(fromText(digits));
  for (const int digits : {5, 19, 39}) all.push_back(toText(digits));
  all.push_back(functionSubject<std::int64_t, REALstring>(
      "CurrencyValueQTX", "CurrencyValueQTX(", &amounts,
      {{"std::from_chars", &currencyByFromChars}, {"limit", &limits::currencyValue}}));
  all.push_back(functionSubject<bool, REALstring>(
      "IsValidCreditCardNumberQTX, 16 digits", "IsValidCreditCardNumberQTX(", &cardNumbers,
      {{"digit by digit", &luhnByLoop}, {"limit", &limits::isValidCreditCardNumber}}));
  return all;
}

}  // namespace bench
