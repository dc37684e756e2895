// Operations on the bits of 64-bit words. Bit 0 is the least significant; counts and bit numbers are signed
// and may have any value.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

namespace qtx {

// The low 32 bits alone are counted: bitCount(1 << 32) is 0.
constexpr std::int64_t bitCount(std::uint64_t value) noexcept {
  return std::popcount(static_cast<std::uint32_t>(value));
}

// Forms for processors that have an instruction for it (frame/processor.h).
namespace tuned {
#if defined(__x86_64__)
__attribute__((target("popcnt"))) inline std::int64_t bitCount(std::uint64_t value) noexcept {
  return __builtin_popcount(static_cast<std::uint32_t>(value));
}
#else
using qtx::bitCount;
#endif
}  // namespace tuned

// To the left, or to the right where count is negative, filling with zeros. Counts go modulo 64: 65 shifts by
// 1, and 64 and −64 leave the value as it is.
constexpr std::uint64_t shiftBits(std::uint64_t value, std::int64_t count) noexcept {
  const std::uint64_t magnitude = count < 0 ? 0 - static_cast<std::uint64_t>(count) : count;
  return count < 0 ? value >> (magnitude & 63) : value << (magnitude & 63);
}

// 2^bitNumber; 0 from bit 64 on. A negative number goes modulo 64: −1 is bit 63.
constexpr std::uint64_t bitValue(std::int64_t bitNumber) noexcept {
  return bitNumber >= 64 ? 0 : std::uint64_t{1} << (bitNumber & 63);
}

constexpr std::uint64_t withBit(std::uint64_t value, std::int64_t bitNumber) noexcept {
  return value | bitValue(bitNumber);
}
constexpr std::uint64_t withoutBit(std::uint64_t value, std::int64_t bitNumber) noexcept {
  return value & ~bitValue(bitNumber);
}
constexpr bool hasBit(std::uint64_t value, std::int64_t bitNumber) noexcept {
  return (value & bitValue(bitNumber)) != 0;
}

constexpr std::uint64_t complement(std::uint64_t value) noexcept { return ~value; }
constexpr std::uint64_t complementOfAnd(std::uint64_t x, std::uint64_t y) noexcept { return ~(x & y); }
constexpr std::uint64_t complementOfOr(std::uint64_t x, std::uint64_t y) noexcept { return ~(x | y); }
constexpr std::uint64_t withoutBits(std::uint64_t x, std::uint64_t y) noexcept { return x & ~y; }

constexpr std::int64_t highWord(std::int64_t i) noexcept { return (i >> 16) & 0xFFFF; }  // bits 16 to 31
constexpr std::int64_t lowWord(std::int64_t i) noexcept { return i & 0xFFFF; }

namespace detail {

__extension__ typedef unsigned __int128 DoubleWord;

// 2^64 / width, rounded up, from width 2 on.
inline constexpr std::array<std::uint64_t, 33> reciprocals = [] {
  std::array<std::uint64_t, 33> table{};
  for (std::size_t width = 2; width < table.size(); ++width) table[width] = ~std::uint64_t{0} / width + 1;
  return table;
}();

// A count of which a multiple of any width can be made positive without overflow.
constexpr std::int64_t greatestCount = std::int64_t{1} << 50;
constexpr bool isSmallCount(std::int64_t count) {
  return static_cast<std::uint64_t>(count) + greatestCount < 2 * greatestCount;
}

// For a field of 2 to 32 bits that lies within bits 0 to 31, and a small count. Takes neither a branch nor a
// division: the count modulo the width is the fraction of its product with the reciprocal, times the width
// (Lemire, Kaser and Kurz, "Faster remainder by direct computation", 2019), exact below 2^59.
constexpr std::uint64_t rotateWholeField(std::uint64_t value, std::int64_t count, std::uint64_t first,
                                         std::uint64_t width) noexcept {
  const std::uint64_t positive = static_cast<std::uint64_t>(count) + width * greatestCount;
  const std::uint64_t fraction = reciprocals[static_cast<std::size_t>(width)] * positive;
  const std::uint64_t left = static_cast<std::uint64_t>(static_cast<DoubleWord>(fraction) * width >> 64);

  const std::uint64_t mask = (std::uint64_t{1} << width) - 1;
  const std::uint64_t field = value >> first & mask;
  const std::uint64_t rotated = (field << width | field) >> (width - left) & mask;
  return value ^ (rotated ^ field) << first;
}

// For every other field and count.
__attribute__((noinline)) constexpr std::uint64_t rotateCutField(std::uint64_t value, std::int64_t count,
                                                                 std::int64_t offset,
                                                                 std::int64_t width) noexcept {
  if (width < 2 || offset > 30) return value;
  const std::int64_t first = std::max<std::int64_t>(offset, 0);
  const std::int64_t cut = std::min(width + std::min<std::int64_t>(offset, 0), 32 - first);
  if (cut < 2) return value;
  return rotateWholeField(value, count % cut, static_cast<std::uint64_t>(first),
                          static_cast<std::uint64_t>(cut));
}

}  // namespace detail

// Rotates a field of `width` bits from bit `offset` on within the low 32 bits, toward higher bits for a
// positive count: rotateField(0b1000, 1, 0, 4) is 0b0001. The part of the field that lies outside of bits 0 …
// 31 is cut off first; a field of less than two bits, and everything outside of the field, stays as it is.
constexpr std::uint64_t rotateField(std::uint64_t value, std::int64_t count, std::int64_t offset,
                                    std::int64_t width) noexcept {
  // Of the conditions, each also refuses what is negative.
  const auto first = static_cast<std::uint64_t>(offset), bits = static_cast<std::uint64_t>(width);
  if (first > 30 || bits - 2 > 30 || !detail::isSmallCount(count)) [[unlikely]] {
    return detail::rotateCutField(value, count, offset, width);
  }
  return detail::rotateWholeField(value, count, first, std::min(bits, 32 - first));
}

}  // namespace qtx
