// Reads what stands outside of every Sub: Subs, enumerations, delegates, modules, classes, interfaces.
#pragma once

#include "language/statement_parser.h"

namespace host {

class DeclarationParser {
 public:
  DeclarationParser(TokenReader& tokens, ExpressionParser& expressions, StatementParser& statements)
      : tokens_(tokens), expressions_(expressions), statements_(statements) {}

  // A declaration, where one begins; false where a statement does. `variables` are those that have a word
  // such as Private in front, which says nothing here.
  bool declared(syntax::Members& into, syntax::Block& variables);

 private:
  bool declaredAfter(const syntax::Modifiers& modifiers, syntax::Members& into);
  syntax::Modifiers modifiers();
  void skipAttributes();
  bool opens(Keyword keyword) const;  // the word stands before a name
  bool atWord(const char* word) const;
  void members(const Opener& opener, syntax::Members& into);
  bool memberLine(Keyword owner, syntax::Members& into);
  void member(Keyword owner, syntax::Members& into);
  bool mayBeMember() const;
  void failForForeign();
  void skipTo(const std::string& end);

  void sub(const syntax::Modifiers& modifiers, syntax::Members& into);
  void head(syntax::Sub& sub, bool isFunction);  // after the word Sub or Function
  syntax::TypeName implemented(const std::string& method);
  syntax::Sub::Parameter parameter(const std::vector<syntax::Sub::Parameter>& before);
  void enumeration(syntax::Members& into);
  void delegate(syntax::Members& into);
  void module(syntax::Members& into);
  static void becomeSubs(syntax::Members& members);
  void ofClass(syntax::Members& into);
  void inherits(syntax::Class& made);
  void interface(syntax::Members& into);
  void properties(const syntax::Modifiers& modifiers, syntax::Members& into);
  bool atAccessor() const;
  bool atAccess(std::size_t ahead) const;
  void accessors(syntax::Property& computed);
  bool accessor(syntax::Property& computed);

  TokenReader& tokens_;
  ExpressionParser& expressions_;
  StatementParser& statements_;
  bool inType_ = false;  // in a module or class, where Static means Shared
};

}  // namespace host
