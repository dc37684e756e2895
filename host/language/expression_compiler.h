// Gives the names in expressions their meaning, and hands the rest to the typed code.
#pragma once

#include <optional>
#include <utility>

#include "language/names.h"

namespace host {

class ExpressionCompiler {
 public:
  explicit ExpressionCompiler(Names& names) : names_(names) {}

  Expr compile(const syntax::Expression& expression);
  // What stands as a statement: of several declarations, one without a result is preferred.
  Expr compileStatement(const syntax::Expression& expression);
  Expr condition(const syntax::Expression& expression, const std::string& what);
  // An expression of literals and constants: its value, which the caller owns, and its type.
  std::pair<Slot, Type> constant(const syntax::Expression& expression, std::optional<Type> type,
                                 const std::string& what);

 private:
  class Links;

  Expr chain(const syntax::Chain& chain, bool asStatement);
  Expr name(const syntax::Name& name, Links& links);
  Expr link(Expr value, const syntax::Expression& first, Links& links);
  Expr member(Expr object, const syntax::Name& name, Links& links);
  Expr memberOfObject(const Class& type, Expr object, const syntax::Name& name, Links& links);
  Expr memberOfClass(const Class& type, const syntax::Name& name, Links& links);
  Expr memberOfModule(const Module& module, const syntax::Name& name, Links& links);
  Expr viewAs(const Class& type, const syntax::Name& name, const syntax::Arguments& arguments);
  Expr pointerAccess(Expr pointer, const syntax::Name& name, Links& links);
  Exprs arguments(const syntax::Arguments* given);

  [[noreturn]] Expr compileNode(const syntax::Unread& unread);
  Expr compileNode(const syntax::Literal& literal);
  Expr compileNode(const syntax::Name& name);
  Expr compileNode(const syntax::New& made);
  Expr compileNode(const syntax::Parenthesised& parentheses);
  Expr compileNode(const syntax::Negation& negation);
  Expr compileNode(const syntax::Not& inversion);
  Expr compileNode(const syntax::Chain& chain) { return this->chain(chain, false); }
  Expr compileNode(const syntax::Sequence& sequence);

  // The place of the first part that is no literal, constant or operator.
  std::optional<Position> notConstant(const syntax::Expression& expression) const;

  Names& names_;
  std::size_t depth_ = 0;  // how many operators and members the current part is inside of
};

}  // namespace host
