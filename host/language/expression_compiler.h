// Gives the names in expressions their meaning, and hands the rest to the typed code.
#pragma once

#include <optional>
#include <utility>

#include "language/links.h"
#include "language/names.h"

namespace host {

class ExpressionCompiler {
 public:
  explicit ExpressionCompiler(Names& names) : names_(names) {}

  Expr compile(const syntax::Expression& expression);
  // What stands as a statement: of several declarations, one without a result is preferred.
  Expr compileStatement(const syntax::Expression& expression);
  Expr condition(const syntax::Expression& expression, const std::string& what);
  Type typeOf(const syntax::TypeName& name) const { return names_.typeOf(name); }
  // An expression of literals and constants: its value, which the caller owns, and its type.
  std::pair<Slot, Type> constant(const syntax::Expression& expression, std::optional<Type> type,
                                 const std::string& what);

 private:
  Expr chain(const syntax::Chain& chain, bool asStatement);
  Expr linked(const syntax::Chain& chain, Links& links);
  Expr name(const syntax::Name& name, Links& links);
  Expr member(Expr object, const syntax::Name& name, Links& links);
  Expr memberOfObject(const Class& type, Expr object, const syntax::Name& name, Links& links);
  Expr memberOfVariant(Expr value, const syntax::Name& name, Links& links);
  Expr viewAsNamed(const syntax::Name& name, Links& links);
  Expr plainView(Expr value, Type type);
  Expr plainType(Type type, const syntax::Name& name, Links& links);
  Expr memberOfClass(const Class& type, const syntax::Name& name, Links& links);
  Expr function(const std::vector<const Method*>& functions, const syntax::Name& name, Exprs given,
                Links& links);
  Expr memberOfModule(const Module& module, const syntax::Name& name, Links& links);
  // In own_names.cpp: what a name is where the program itself gives it a meaning. Null where it does not.
  Expr ownName(const syntax::Name& name, Links& links);
  Expr callOwn(const std::vector<const Method*>& methods, const syntax::Name& name, Expr self, Links& links);
  Expr callOther(const syntax::Name& name, Exprs& given, Links& links);
  Expr memberOfSelf(const syntax::Name& name, Links& links);
  Expr memberOfSuper(const syntax::Name& name, Links& links);
  Expr memberOfSpace(const Declarations& space, const syntax::Name& name, Links& links);
  Expr nameOfSpace(const Declarations& space, const syntax::Name& name, Links& links);
  Expr sharedValue(const Class& type, const syntax::Name& name);
  Expr sharedSpace(const Class& type, const syntax::Name& name, Links& links);
  Expr extension(Expr& object, const syntax::Name& name, Links& links);
  std::vector<const Method*> allowed(std::vector<const Method*> methods, const syntax::Name& name) const;
  const Declarations* spaceOf(const syntax::Chain& chain) const;
  Expr allButLast(const syntax::Chain& chain);
  void checkConstructor(const Class& made, const syntax::Name& name) const;
  bool isConstantOfSpace(const syntax::Chain& chain) const;
  Expr elements(Expr value, Position start, const syntax::Arguments& indices, const std::string& written);
  Expr viewAs(const Class& type, const syntax::Name& name, Exprs given);
  // That there is no such member, where that does not follow from something else that is wrong.
  [[noreturn]] static void failForMember(const Class* type, const syntax::Name& name,
                                         const std::string& message, const std::vector<std::string>& known);
  Expr pointerAccess(Expr pointer, const syntax::Name& name, Links& links);
  Exprs arguments(const syntax::Arguments* given);
  Exprs argumentsOf(const std::vector<const Method*>& methods, Links& links);

  [[noreturn]] Expr compileNode(const syntax::Unread& unread);
  Expr compileNode(const syntax::Literal& literal);
  Expr compileNode(const syntax::Name& name);
  Expr compileNode(const syntax::New& made);
  Expr compileNode(const syntax::Parenthesised& parentheses);
  Expr compileNode(const syntax::Negation& negation);
  Expr compileNode(const syntax::Not& inversion);
  Expr compileNode(const syntax::Conditional& chosen);
  Expr compileNode(const syntax::AddressOf& taken);
  Expr compileNode(const syntax::Chain& chain) { return this->chain(chain, false); }
  Expr compileNode(const syntax::Sequence& sequence);

  // The place of the first part that is no literal, constant or operator.
  std::optional<Position> notConstant(const syntax::Expression& expression) const;

  Names& names_;
  std::size_t depth_ = 0;  // how many operators and members the current part is inside of
};

}  // namespace host
