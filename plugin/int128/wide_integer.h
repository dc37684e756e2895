// Int128 and UInt128: 128-bit integers as plain values, wrapping around modulo 2^128.
#pragma once

#include <bit>
#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace qtx {

// The compilers' own 128-bit type, an extension of both on both processors.
__extension__ typedef unsigned __int128 NativeUInt128;
__extension__ typedef __int128 NativeInt128;

// high · 2^64 + low, in the memory order of the processor's 128-bit integers. A signed high word makes it
// two's complement. No operation overflows: results are taken modulo 2^128.
template <typename High>
struct Wide {
  static_assert(std::is_same_v<High, std::int64_t> || std::is_same_v<High, std::uint64_t>);
  using Word = High;  // the 64-bit integer of the same signedness
  using Native = std::conditional_t<std::is_signed_v<High>, NativeInt128, NativeUInt128>;

  std::uint64_t low = 0;
  High high = 0;

  constexpr Wide() = default;
  constexpr Wide(std::uint64_t lowWord, High highWord) : low(lowWord), high(highWord) {}
  // Extended from its own width: Wide(-1) is all ones, Wide(2^64 − 1) has the high word 0.
  template <std::integral Integer>
  constexpr Wide(Integer value)
      : low(static_cast<std::uint64_t>(value)), high(value < 0 ? static_cast<High>(-1) : High{0}) {}
  // The same bits read with the other signedness.
  template <typename Other>
  requires(!std::same_as<High, Other>) explicit constexpr Wide(Wide<Other> other)
      : low(other.low), high(static_cast<High>(other.high)) {}

  static constexpr Wide fromBits(NativeUInt128 bits) {
    return {static_cast<std::uint64_t>(bits), static_cast<High>(static_cast<std::uint64_t>(bits >> 64))};
  }
  constexpr NativeUInt128 bits() const {
    return static_cast<NativeUInt128>(static_cast<std::uint64_t>(high)) << 64 | low;
  }
  constexpr Native native() const { return static_cast<Native>(bits()); }

  constexpr bool topBit() const { return static_cast<std::int64_t>(high) < 0; }
  constexpr bool isNegative() const { return high < 0; }

  friend constexpr Wide operator+(Wide a, Wide b) { return fromBits(a.bits() + b.bits()); }
  friend constexpr Wide operator-(Wide a, Wide b) { return fromBits(a.bits() - b.bits()); }
  friend constexpr Wide operator*(Wide a, Wide b) { return fromBits(a.bits() * b.bits()); }
  friend constexpr Wide operator&(Wide a, Wide b) { return fromBits(a.bits() & b.bits()); }
  friend constexpr Wide operator|(Wide a, Wide b) { return fromBits(a.bits() | b.bits()); }
  friend constexpr Wide operator^(Wide a, Wide b) { return fromBits(a.bits() ^ b.bits()); }
  friend constexpr Wide operator-(Wide a) { return fromBits(-a.bits()); }

  // Only the low seven bits of the count matter: 128 shifts by 0, −1 by 127. To the right, a signed value
  // draws in copies of its sign.
  friend constexpr Wide operator<<(Wide a, Wide count) { return fromBits(a.bits() << (count.low & 127)); }
  friend constexpr Wide operator>>(Wide a, Wide count) {
    return fromBits(static_cast<NativeUInt128>(a.native() >> (count.low & 127)));
  }

  friend constexpr bool operator==(Wide a, Wide b) { return a.bits() == b.bits(); }
  friend constexpr std::strong_ordering operator<=>(Wide a, Wide b) {
    if (a.native() < b.native()) return std::strong_ordering::less;
    return a.bits() == b.bits() ? std::strong_ordering::equal : std::strong_ordering::greater;
  }
};

using Int128 = Wide<std::int64_t>;
using UInt128 = Wide<std::uint64_t>;
static_assert(sizeof(Int128) == 16 && std::is_trivially_copyable_v<Int128>);
static_assert(offsetof(Int128, low) == 0 && offsetof(Int128, high) == 8);
static_assert(std::endian::native == std::endian::little);

// The distance from 0; 2^127 for −2^127.
constexpr UInt128 magnitude(UInt128 value) { return value; }
constexpr UInt128 magnitude(Int128 value) { return UInt128(value.isNegative() ? -value : value); }

}  // namespace qtx
