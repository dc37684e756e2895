// Which of the problems of a text are worth saying.
#include "language/problem.h"

#include <algorithm>
#include <tuple>

#include "language/spelling.h"

namespace host {

namespace {

thread_local Problems* listening = nullptr;

bool isError(const Problem& problem) { return !problem.isWarning; }

const Problem& firstError(const std::vector<Problem>& all) {
  const auto found = std::find_if(all.begin(), all.end(), isError);
  return found == all.end() ? all.front() : *found;
}

}  // namespace

ProgramError::ProgramError(std::vector<Problem> all)
    : std::runtime_error(firstError(all).message),
      problems(std::move(all)),
      position(firstError(problems).position),
      atEnd(std::all_of(problems.begin(), problems.end(),
                        [](const Problem& each) { return each.isWarning || each.atEnd; })),
      isUnfinished(
          std::any_of(problems.begin(), problems.end(), [](const Problem& each) { return each.atEnd; })) {}

void warn(Position position, const std::string& message) {
  if (listening) listening->addWarning(position, message);
}

Problems::Problems() : outer_(std::exchange(listening, this)) { allowSuggestions(); }

Problems::~Problems() { listening = outer_; }

void Problems::keep(Problem problem) {
  problem.message = withoutMiddle(problem.message);
  const Position at = problem.position;
  if (said_.emplace(at.line, at.column, problem.message).second) found_.push_back(std::move(problem));
}

void Problems::add(const ProgramError& error) {
  const auto [known, isNew] = passOfLine_.try_emplace(error.position.line, pass_);
  if (known->second < pass_) return;
  anyError_ = true;
  keep({error.position, error.what(), false, error.atEnd});
}

void Problems::addMissing(Position position, const std::string& message, bool atEnd) {
  anyError_ = true;
  keep({position, message, false, atEnd});
}

void Problems::addWarning(Position position, const std::string& message) { keep({position, message, true}); }

bool Problems::expectUnknown(const std::string& name) { return unknown_.insert(lowerCase(name)).second; }

bool Problems::isExpected(const std::string& name) const { return unknown_.contains(lowerCase(name)); }

void Problems::throwIfAny() const {
  if (anyError_) throw ProgramError(found());
}

std::vector<Problem> Problems::found() const {
  std::vector<Problem> sorted = found_;
  std::stable_sort(sorted.begin(), sorted.end(), [](const Problem& a, const Problem& b) {
    return std::tie(a.position.line, a.position.column) < std::tie(b.position.line, b.position.column);
  });
  return sorted;
}

}  // namespace host
