// Objects that all threads use at once, in ways whose sums and orders are known.
#pragma once

#include <memory>

#include "members.h"

namespace soak {

// For one round: made and checked while no other thread runs.
class Scenarios {
 public:
  static const std::size_t count;
  explicit Scenarios(std::size_t round);
  ~Scenarios();

  // Some steps of each, on a thread of the round. Throws Loss.
  void run(Worker& worker);
  // After the threads have ended. Throws Loss.
  void check(Worker& alone);

  struct Objects;
  struct Share;  // what one thread has done

 private:
  std::size_t round_;
  std::unique_ptr<Objects> objects_;
  std::array<std::unique_ptr<Share>, threadCount> shares_;
};

// Gives back what the library has kept for a later call; what is left are the small values, once each. Throws
// Loss for anything else that is alive.
void checkNothingLeft(Worker& alone);

}  // namespace soak
