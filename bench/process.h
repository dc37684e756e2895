// Programs that are run for what they print and for the time that they take.
#pragma once

#include <string>
#include <vector>

namespace bench {

struct Finished {
  std::string output;  // of the first of them
  double userSeconds;  // of all together
};
// Runs so many of a program at once, each with the same input; ends this program where one fails.
Finished run(const std::vector<std::string>& command, const std::string& input = "", int processes = 1);

}  // namespace bench
