// What follows a value in an expression: members and arguments.
#pragma once

#include "language/syntax.h"

namespace host {

// What follows a value, taken one by one.
class Links {
 public:
  // `first`: what they follow. `left`: how many at the end are left to others.
  Links(const std::vector<syntax::Link>& links, bool asStatement, const syntax::Expression* first = nullptr,
        std::size_t left = 0)
      : links_(links), end_(links.size() - left), asStatement_(asStatement), first_(first) {}

  bool atEnd() const { return at_ == end_; }
  bool resultUnused() const { return asStatement_ && atEnd(); }
  const syntax::Name* takeName() { return take<syntax::Name>(); }
  const syntax::Arguments* takeArguments() { return take<syntax::Arguments>(); }
  // What has been taken, as the program writes it; empty where it does not begin with a name.
  std::string taken() const {
    const auto* name = first_ ? std::get_if<syntax::Name>(&first_->node) : nullptr;
    std::string text = name ? name->text : "";
    for (std::size_t i = 0; name && i < at_; ++i) {
      const auto* member = std::get_if<syntax::Name>(&links_[i]);
      text += member                                                  ? "." + member->text
              : std::get<syntax::Arguments>(links_[i]).values.empty() ? "()"
                                                                      : "(…)";
    }
    return text;
  }
  const syntax::Arguments* peekArguments() const {
    return atEnd() ? nullptr : std::get_if<syntax::Arguments>(&links_[at_]);
  }

 private:
  template <typename Kind>
  const Kind* take() {
    const Kind* next = atEnd() ? nullptr : std::get_if<Kind>(&links_[at_]);
    if (next) ++at_;
    return next;
  }

  const std::vector<syntax::Link>& links_;
  std::size_t at_ = 0, end_;
  bool asStatement_;
  const syntax::Expression* first_;
};

}  // namespace host
