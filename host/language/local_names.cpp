// Goes through all declarations of a block and the blocks in it.
#include "language/local_names.h"

#include "runtime/name.h"

namespace host {

namespace {

using namespace syntax;

class Finder {
 public:
  explicit Finder(const std::string& name) : name_(name) {}

  void in(const Block& block) {
    for (const Statement& each : block) std::visit(*this, each.node);
  }

  void operator()(const Dim& dim) {
    for (const Dim::Group& group : dim.groups) {
      for (const Dim::Variable& each : group.variables) look(each.name);
    }
  }
  void operator()(const Const& constant) { look(constant.name); }
  void operator()(const If& choice) {
    for (const If::Branch& each : choice.branches) in(each.body);
  }
  void operator()(const Select& choice) {
    for (const Select::Case& each : choice.cases) in(each.body);
  }
  void operator()(const For& loop) { ofLoop(loop); }
  void operator()(const ForEach& loop) { ofLoop(loop); }
  void operator()(const Loop& loop) { in(loop.body); }
  void operator()(const Try& attempt) {
    in(attempt.body);
    for (const Try::Catch& each : attempt.catches) {
      if (each.variable) look(*each.variable);
      in(each.body);
    }
    in(attempt.finally);
  }
  template <typename Simple>
  void operator()(const Simple&) {}

  std::optional<Position> found;

 private:
  template <typename Counting>
  void ofLoop(const Counting& loop) {
    if (loop.type) look(loop.variable);
    in(loop.body);
  }
  void look(const Name& declared) {
    if (!found && sameName(declared.text, name_)) found = declared.position;
  }

  const std::string& name_;
};

}  // namespace

std::optional<Position> declarationOf(const std::string& name, const Block& block) {
  Finder finder(name);
  finder.in(block);
  return finder.found;
}

}  // namespace host
