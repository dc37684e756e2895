// Calls a member and sees what becomes of it: what it answers, what it leaves alive, whether it stays the
// same.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "validation/arguments.h"
#include "validation/fault_source.h"

namespace host {

// What is alive, by class: how many, and how many references there are to them.
using Census = std::map<std::string, std::pair<std::int64_t, std::int64_t>>;
Census takeCensus();

// Calls with what was given and gives the answer as a text: the result, what byref arguments and the object
// then hold, or the exception. The nth event of a source fails while it runs, where there is a source; how
// many events there were is added to its count. Drops what was given. Throws Failure.
struct Faults {
  FaultSource* source;
  std::uint64_t n;
  bool onwards;
  std::uint64_t events = 0;
};
std::string callWith(const Member& member, const Call& call, Given given, Faults* faults = nullptr);

class Exercise {
 public:
  Exercise(const ValueSource& values, const Member& tested) : values_(values), member_(tested) {}

  std::string atEdges(const EdgeSet& edges, Faults* faults = nullptr, bool lastFirst = false) const;

  // What each set of edges is answered.
  std::vector<std::string> answers(const std::vector<EdgeSet>& sets, bool lastFirst = false) const;

  // Runs the round until nothing more stays alive after it than before. Throws Failure if that does not
  // happen.
  template <typename Round>
  static void untilNothingStays(Round round);

  // For each of the sets, lets each event of the source fail in turn, alone and with all later ones; after
  // each the member must answer as expected. No expectations: its answers differ anyway. Throws Failure.
  // Gives how many events were made to fail.
  std::uint64_t underFaults(FaultSource& source, const std::vector<EdgeSet>& sets,
                            const std::vector<std::string>& expected) const;

 private:
  const ValueSource& values_;
  const Member& member_;
};

// Throws Failure that says what grows; nothing where nothing does. Between the censuses lies the same round.
void compareCensuses(const std::vector<Census>& censuses);

template <typename Round>
void Exercise::untilNothingStays(Round round) {
  // What is kept for later is there after the first rounds; what leaks is more after each.
  std::vector<Census> censuses;
  for (int i = 0; i < 2; ++i) {
    round();
    censuses.push_back(takeCensus());
  }
  if (censuses[0] == censuses[1]) return;
  for (int i = 0; i < 2; ++i) {
    round();
    censuses.push_back(takeCensus());
  }
  compareCensuses(censuses);
}

}  // namespace host
