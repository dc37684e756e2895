// Statements other than assignments and loops.
#pragma once

#include "language/node.h"
#include "language/program.h"
#include "runtime/class.h"

namespace host {

// What takes an expression throws ProgramError where it has the wrong type.

// Runs the body of the first branch one of whose tests holds; one without tests is Else.
struct Branch {
  Exprs tests;
  Block body;
};
Stmt choice(Position position, std::vector<Branch> branches);

struct CatchClause {
  const Class* type;
  std::unique_ptr<Place> variable;  // null: it has no name
  Block body;
};
Stmt tryCatch(Position position, Block body, std::vector<CatchClause> clauses, Block finally);

Stmt raise(Position position, Expr exception);
Stmt returnValue(Position position, Expr value);  // of the Function's type
Stmt print(Position position, Expr value);
Stmt evaluate(Position position, Expr value);                                   // for what it does
Stmt declaration(Position position, std::unique_ptr<Place> place, Expr value);  // null: zero, Nil or ""
// The body of the For with that number among those around it, for which jumps of its own are meant.
Block namedBody(Position position, std::size_t number, Block body);
// Exit or Continue of such a For from within another one.
constexpr Flow namedJump(std::size_t number, bool exits) {
  return static_cast<Flow>(static_cast<std::size_t>(Flow::named) + 2 * number + (exits ? 0 : 1));
}
Stmt jump(Position position, Flow flow);

// AddHandler object.Run, AddressOf sub. Only a Thread has an event, and it is Run.
void expectEvent(const Expression& object, const std::string& event, Position position);
// `self`: whose method it is; null where it needs no object.
Stmt addHandler(Position position, Expr object, const Method& handler, Expr self, Position handlerPosition);

// Runs the block at the first time only, on one thread, for which others wait.
Stmt once(Position position, Block block);

}  // namespace host
