// Loops: For, For Each, While, Do.
#pragma once

#include "language/node.h"

namespace host {

// For place = from To/DownTo end [Step step]: all of the place's type, an integer type or Double; the end and
// the step are computed once. `step` may be null. An integer variable never passes the end, so it never wraps
// around.
Stmt countingLoop(Position position, std::unique_ptr<Place> place, Expr from, Expr end, Expr step, bool down,
                  Block body);

// Before each round `current` holds the next element of the array, and `assign` is run.
Stmt elementLoop(Position position, Expr array, std::unique_ptr<Place> current, Stmt assign, Block body);

// A Boolean that ends a loop where it does not hold; null: there is none.
struct LoopTest {
  Expr value;
  bool until = false;  // the loop ends where the value holds
};
enum class TestedLoop : std::uint8_t { whileLoop, doLoop };
Stmt testedLoop(Position position, TestedLoop kind, LoopTest before, LoopTest after, Block body);

}  // namespace host
