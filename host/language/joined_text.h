// Texts that are joined, and those that grow: where a text is put behind the one in a variable, which nobody
// else holds, the bytes of the first are not copied each time.
#pragma once

#include "language/node.h"

namespace host {

struct JoinedText final : Expression {
  JoinedText(Expr first, Expr second);
  Ref<Heap> reference(Frame& frame) const override;
  Expr left, right;
};

// What stands behind the first text of a sum, where that text is what the place holds: `b` and `c` of
// `a + b + c` for the place `a`. Empty for any other value, and all of it is still there.
Exprs takeAdded(const Place& place, Expression& value);

// place = place + added, as a program does it: reads the place, computes what is added, finds the place.
void appendTexts(const Place& place, Frame& frame, const Exprs& added);
// place += added: finds the place once.
void appendTextsToFound(const Place& place, Frame& frame, const Exprs& added);

}  // namespace host
