// What C++20 has and emscripten's C++ library lacks.
#pragma once

#include <bit>
#include <compare>

namespace std {

template <typename To, typename From>
constexpr To bit_cast(const From& from) noexcept {
  return __builtin_bit_cast(To, from);
}

constexpr bool is_eq(partial_ordering order) noexcept { return order == 0; }
constexpr bool is_neq(partial_ordering order) noexcept { return order != 0; }

}  // namespace std
