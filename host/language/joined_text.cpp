// Joins texts, and lets them grow.
#include "language/joined_text.h"

#include <algorithm>

#include "runtime/text.h"

namespace host {

namespace {

Ref<Text> textOf(const Expression& expression, Frame& frame) {
  return Ref<Text>::adopt(static_cast<Text*>(expression.reference(frame).detach()));
}

Growth growthOf(Ref<Text> text, const Exprs& added, Frame& frame) {
  Growth growth{std::move(text), {}};
  growth.more.reserve(added.size());
  for (const Expr& each : added) growth.more.push_back(textOf(*each, frame));
  return growth;
}

}  // namespace

JoinedText::JoinedText(Expr first, Expr second)
    : Expression({Kind::String}), left(std::move(first)), right(std::move(second)) {}

Ref<Heap> JoinedText::reference(Frame& frame) const {
  const Ref<Text> first = textOf(*left, frame);
  const Ref<Text> second = textOf(*right, frame);
  return joined(first.get(), second.get());
}

Exprs takeAdded(const Place& place, Expression& value) {
  std::vector<JoinedText*> sums;
  Expression* first = &value;
  while (auto* sum = dynamic_cast<JoinedText*>(first)) {
    sums.push_back(sum);
    first = sum->left.get();
  }
  Exprs added;
  if (!isText(place.type) || !first->place() || !place.isSame(*first->place())) return added;
  for (auto sum = sums.rbegin(); sum != sums.rend(); ++sum) added.push_back(std::move((*sum)->right));
  return added;
}

void appendTexts(const Place& place, Frame& frame, const Exprs& added) {
  const Growth growth = growthOf(textOf(place, frame), added, frame);
  if (!place.grow(frame, growth)) place.put(frame, Slot{.heap = growth.copy().detach()});
}

void appendTextsToFound(const Place& place, Frame& frame, const Exprs& added) {
  if (place.withFound(frame, [&](const Place& found) { appendTexts(found, frame, added); })) return;
  place.update(frame, [&](Slot current) {
    const Growth growth = growthOf(Ref<Text>::share(static_cast<Text*>(current.heap)), added, frame);
    return std::optional(Slot{.heap = growth.copy().detach()});
  });
}

}  // namespace host
