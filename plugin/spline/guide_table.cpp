// Fills the table in one sweep over the knots.
#include "spline/guide_table.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qtx {

void GuideTable::fill(const double* knots, std::size_t count, std::uint32_t* entries) {
  if (count < window || count > std::numeric_limits<std::int32_t>::max()) return;
  const auto buckets = static_cast<std::int32_t>(bucketsFor(count));
  low_ = knots[0];
  scale_ = buckets / (knots[count - 1] - low_);
  last_ = buckets - 1;
  // The range may be 0, infinite, or so small that its inverse is. Between these, no product is NaN that is
  // not made of one: an infinite difference meets no zero factor.
  if (!(scale_ > 0) || !std::isfinite(scale_)) return;
  entries_ = entries;

  const auto mostPassed = static_cast<std::uint32_t>(count - window);
  std::uint32_t passed = 0;
  std::int32_t bucket = -1;  // of the knot before
  std::fill_n(entries, spare, passed);
  // The bucket's own entry stands; up to `spare` behind it are written already, and are overwritten as long
  // as knots lie in buckets further left. So evenly spread knots take no branch that could be mispredicted.
  const auto fillGap = [&](std::int32_t to) {
    for (std::int32_t i = bucket + 1 + std::int32_t{spare}; i < to; ++i) entries[i] = passed;
  };
  for (std::size_t i = group - 1; i < count; i += group) {
    const std::int32_t next = bucketOf(knots[i]);
    if (next > bucket + std::int32_t{spare}) [[unlikely]]
      fillGap(next + 1);
    bucket = next;
    passed = std::min(static_cast<std::uint32_t>(i + 1), mostPassed);
    std::fill_n(entries + bucket + 1, spare, passed);
  }
  fillGap(buckets);
}

}  // namespace qtx
