// Calls of every member with random arguments: what they are answered by many threads at once is what one
// thread alone is answered.
#pragma once

#include <memory>
#include <vector>

#include "members.h"

namespace soak {

class Samples {
 public:
  // Makes some for each member, and calls them alone. Throws Loss where a member contradicts itself.
  explicit Samples(Worker& alone);
  ~Samples();

  // Calls an eighth of them, another one each time, in an order of the worker's own. Throws Loss.
  static constexpr std::size_t parts = threadCount;
  void callPart(std::size_t part, Worker& worker) const;

 private:
  struct Sample;
  std::vector<std::unique_ptr<Sample>> all_;
};

}  // namespace soak
