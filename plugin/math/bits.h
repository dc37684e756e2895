// Operations on the bits of 64-bit words. Bit 0 is the least significant; counts and bit numbers are signed
// and may have any value.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

namespace qtx {

// The low 32 bits alone are counted: bitCount(1 << 32) is 0.
constexpr std::int64_t bitCount(std::uint64_t value) noexcept {
  return std::popcount(static_cast<std::uint32_t>(value));
}

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

// Rotates a field of `width` bits from bit `offset` on within the low 32 bits, toward higher bits for a
// positive count: rotateField(0b1000, 1, 0, 4) is 0b0001. The part of the field that lies outside of bits 0 …
// 31 is cut off first; a field of less than two bits, and everything outside of the field, stays as it is.
constexpr std::uint64_t rotateField(std::uint64_t value, std::int64_t count, std::int64_t offset,
                                    std::int64_t width) noexcept {
  if (count == 0 || width < 2 || offset > 30) return value;
  const std::int64_t first = std::max<std::int64_t>(offset, 0);
  const std::int64_t cut = std::min(width + std::min<std::int64_t>(offset, 0), 32 - first);
  if (cut < 2) return value;
  const auto w = static_cast<std::uint64_t>(cut);

  std::uint64_t turns = count < 0 ? 0 - static_cast<std::uint64_t>(count) : count;
  if (turns >= w) turns %= w;
  const std::uint64_t left = count < 0 ? w - turns : turns;  // 0 … w

  const std::uint64_t mask = ((std::uint64_t{1} << w) - 1) << first;
  const std::uint64_t field = value & mask;
  return (((field << left) | (field >> (w - left))) & mask) | (value & ~mask);
}

}  // namespace qtx
