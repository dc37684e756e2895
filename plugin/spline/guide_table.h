// GuideTable: where among ascending knots a search for a coordinate should begin, in one step.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qtx {

// The range of the knots is cut into buckets of one width, two knots to each, were they evenly spread. The
// table holds for each bucket how many knots can be passed over for every coordinate in it.
//
// Why no rounding can lead past the knot that is looked for: the bucket of a value is computed by a
// subtraction, a product with a positive factor, two limits and a truncation. Each of these, as it is
// rounded, keeps order: of two values, the smaller never gets the greater result. So a knot whose bucket lies
// before that of the coordinate is less than the coordinate, whatever the bucket's exact border is. All knots
// passed over are such knots or lie before one. How many lie behind the first one that is not passed over
// does not matter here: who does not find the interval near it has to search by other means.
class GuideTable {
 public:
  // The knots to look at, from the start on.
  static constexpr std::size_t window = 8;

  // How many entries fill wants to write for that many knots.
  static std::size_t size(std::size_t knots) { return bucketsFor(knots) + spare; }

  // knots: ascending, none of them NaN. entries: room for size(count), which is kept in use. Without effect
  // where the knots' range allows no table: infinite or empty, or beyond what a double holds. Then, and
  // before, nothing but isFilled may be called.
  void fill(const double* knots, std::size_t count, std::uint32_t* entries);
  bool isFilled() const { return entries_ != nullptr; }

  // How many knots, at least, are less than `at`; a whole window of them is left. 0 for NaN.
  std::size_t start(double at) const { return entries_[bucketOf(at)]; }

 private:
  // Every fourth knot stands for itself and the three before it.
  static constexpr std::size_t group = 4;
  // Entries are written by fours, the last ones beyond the last bucket.
  static constexpr std::size_t spare = 4;

  static std::size_t bucketsFor(std::size_t knots) { return knots / 2 + 1; }

  // The limits are written so that NaN becomes 0.
  std::int32_t bucketOf(double value) const {
    const double scaled = (value - low_) * scale_;
    const double notBelow = scaled > 0 ? scaled : 0;
    return static_cast<std::int32_t>(notBelow < last_ ? notBelow : last_);
  }

  double low_ = 0;
  double scale_ = 0;  // buckets per unit
  double last_ = 0;   // the last bucket
  const std::uint32_t* entries_ = nullptr;
};

}  // namespace qtx
