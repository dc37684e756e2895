// Goes through all ways of a block.
#include "language/endings.h"

#include <algorithm>

namespace host {

namespace {

using namespace syntax;

// Whether a block leaves the loop of that kind around it by Exit.
bool exits(const Block& block, LoopKind kind, bool inAnother = false);

struct Exits {
  LoopKind kind;
  bool inAnother;  // in a loop inside of that one, which an Exit alone means

  bool in(const Block& block) const { return exits(block, kind, inAnother); }
  bool operator()(const Jump& jump) const {
    return jump.exits &&
           ((jump.target == Jump::Target::innermost && !inAnother) ||
            jump.target == (kind == LoopKind::whileLoop ? Jump::Target::whileLoop : Jump::Target::doLoop));
  }
  bool operator()(const If& choice) const {
    return std::any_of(choice.branches.begin(), choice.branches.end(),
                       [&](const If::Branch& each) { return in(each.body); });
  }
  bool operator()(const Select& choice) const {
    return std::any_of(choice.cases.begin(), choice.cases.end(),
                       [&](const Select::Case& each) { return in(each.body); });
  }
  bool operator()(const For& loop) const { return exits(loop.body, kind, true); }
  bool operator()(const ForEach& loop) const { return exits(loop.body, kind, true); }
  bool operator()(const Loop& loop) const { return loop.kind != kind && exits(loop.body, kind, true); }
  bool operator()(const Try& attempt) const {
    return in(attempt.body) || in(attempt.finally) ||
           std::any_of(attempt.catches.begin(), attempt.catches.end(),
                       [&](const Try::Catch& each) { return in(each.body); });
  }
  template <typename Simple>
  bool operator()(const Simple&) const {
    return false;
  }
};

bool exits(const Block& block, LoopKind kind, bool inAnother) {
  return std::any_of(block.begin(), block.end(), [&](const Statement& each) {
    return std::visit(Exits{kind, inAnother}, each.node);
  });
}

bool isAlwaysTrue(const Loop::Test& test) {
  const auto* literal = std::get_if<Literal>(&test.condition.node);
  const bool* value = literal ? std::get_if<bool>(&literal->value) : nullptr;
  return value && *value != test.until;
}

struct Ends {
  bool operator()(const Return&) const { return true; }
  bool operator()(const Raise&) const { return true; }
  bool operator()(const If& choice) const {
    return !choice.branches.back().condition &&
           std::all_of(choice.branches.begin(), choice.branches.end(),
                       [](const If::Branch& each) { return endsAlways(each.body); });
  }
  bool operator()(const Select& choice) const {
    return !choice.cases.empty() && choice.cases.back().tests.empty() &&
           std::all_of(choice.cases.begin(), choice.cases.end(),
                       [](const Select::Case& each) { return endsAlways(each.body); });
  }
  bool operator()(const Loop& loop) const {
    const bool goesOn =
        (!loop.before || isAlwaysTrue(*loop.before)) && (!loop.after || isAlwaysTrue(*loop.after));
    return (goesOn && !exits(loop.body, loop.kind)) || (loop.after && endsAlways(loop.body));
  }
  bool operator()(const Try& attempt) const {
    return endsAlways(attempt.finally) ||
           (endsAlways(attempt.body) &&
            std::all_of(attempt.catches.begin(), attempt.catches.end(),
                        [](const Try::Catch& each) { return endsAlways(each.body); }));
  }
  template <typename Other>
  bool operator()(const Other&) const {
    return false;
  }
};

}  // namespace

bool endsAlways(const Block& block) {
  return std::any_of(block.begin(), block.end(),
                     [](const Statement& each) { return std::visit(Ends(), each.node); });
}

}  // namespace host
