// Decimal digits in machine words, eight side by side: what the parsers of numbers and of check digits share.
//
// A digit word holds the values of eight digits, the first in its lowest byte. Where there are fewer, they
// are the last ones, and zeros stand in front of them as they may in any number. Characters that are no
// digits become bytes above 9.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qtx::digitWords {

static_assert(std::endian::native == std::endian::little, "the first character is a word's lowest byte");

using Word = std::uint64_t;

constexpr Word everyByte(std::uint8_t byte) { return byte * Word{0x0101010101010101}; }

// The value of a digit; above 9 for any other character.
constexpr std::uint8_t digitOf(char c) { return static_cast<std::uint8_t>(c ^ '0'); }

// Eight characters.
inline Word load(const char* at) {
  Word word;
  std::memcpy(&word, at, sizeof word);
  return word ^ everyByte('0');
}

// The first or last `count` of the word's digits, 0 to 8. Shifts in two steps, since 64 bits at once are too
// many.
constexpr Word first(Word word, std::size_t count) {
  const std::size_t half = 4 * (8 - count);
  return word << half << half;
}
constexpr Word last(Word word, std::size_t count) {
  const std::size_t half = 4 * (8 - count);
  return word >> half >> half << half << half;
}

constexpr bool areDigits(Word word) {
  return ((word | (word + everyByte(0x80 - 10))) & everyByte(0x80)) == 0;
}

// The number that eight digits make: 12345678 for those of "12345678". Lemire, "Quickly parsing eight digits"
// (2018).
constexpr std::uint64_t valueOf(Word word) {
  constexpr Word pairs = 0x000000FF000000FF;
  constexpr Word firstWeights = 100 + (Word{1000000} << 32);
  constexpr Word secondWeights = 1 + (Word{10000} << 32);
  word = word * 10 + (word >> 8);
  return ((word & pairs) * firstWeights + (word >> 16 & pairs) * secondWeights) >> 32;
}

}  // namespace qtx::digitWords
