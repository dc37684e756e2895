// How two numbers of different kinds compare.
#pragma once

#include <cstdint>

namespace qtx {

// 1 where a is greater, −1 where it is smaller, 0 where they are equal.
constexpr int compareNumbers(std::int64_t a, std::int64_t b) { return (a > b) - (a < b); }
constexpr int compareNumbers(std::uint64_t a, std::uint64_t b) { return (a > b) - (a < b); }
constexpr int compareNumbers(std::uint64_t a, std::int64_t b) {
  return a > INT64_MAX ? 1 : compareNumbers(static_cast<std::int64_t>(a), b);
}
constexpr int compareNumbers(std::int64_t a, std::uint64_t b) { return -compareNumbers(b, a); }

// A comparison with NaN gives −1, on whichever side it stands.
constexpr int compareNumbers(double a, double b) { return a == b ? 0 : a > b ? 1 : -1; }

}  // namespace qtx
