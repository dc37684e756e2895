// Reads what stands outside of every Sub: Subs, enumerations, delegates, modules, classes, interfaces.
#pragma once

#include "language/statement_parser.h"

namespace host {

class DeclarationParser {
 public:
  DeclarationParser(TokenReader& tokens, int& depth, ExpressionParser& expressions,
                    StatementParser& statements)
      : tokens_(tokens), depth_(depth), expressions_(expressions), statements_(statements) {}

  // A declaration, where one begins; false where a statement does.
  bool declared(syntax::Members& into);

 private:
  bool declaredAfter(const syntax::Modifiers& modifiers, syntax::Members& into);
  syntax::Modifiers modifiers();
  bool opens(Keyword keyword) const;  // the word stands before a name
  void members(const syntax::Name& owner, Keyword kind, syntax::Members& into);
  void member(const std::string& where, syntax::Members& into);
  void failForForeign() const;

  syntax::Sub sub(const syntax::Modifiers& modifiers);
  syntax::Sub head(bool isFunction);  // after the word Sub or Function
  syntax::Block body(const syntax::Name& name, BlockEnd end);
  syntax::Sub::Parameter parameter(const std::vector<syntax::Sub::Parameter>& before);
  syntax::Enum enumeration();
  syntax::Sub delegate();
  syntax::Module module();
  syntax::Class ofClass();
  void inherits(syntax::Class& made);
  syntax::Class interface();
  void properties(const syntax::Modifiers& modifiers, syntax::Members& into);
  bool atAccessor() const;
  void accessors(syntax::Property& computed);

  TokenReader& tokens_;
  int& depth_;
  ExpressionParser& expressions_;
  StatementParser& statements_;
  bool inType_ = false;  // in a module or class, where Static means Shared
};

}  // namespace host
