// Reads statements, and blocks of them.
#pragma once

#include <initializer_list>

#include "language/expression_parser.h"

namespace host {

// The words before which a block ends.
struct BlockEnd {
  Keyword first, second = Keyword::none;  // such as End If
};
using BlockEnds = std::initializer_list<BlockEnd>;

class StatementParser {
 public:
  StatementParser(TokenReader& tokens, int& depth, ExpressionParser& expressions, bool interactive)
      : tokens_(tokens), depth_(depth), expressions_(expressions), interactive_(interactive) {}

  syntax::Statement line();  // one or more statements may follow on it after a colon
  bool accept(BlockEnd end);
  bool at(BlockEnd end) const;
  syntax::Dim::Group dimGroup();  // variables of one type
  syntax::Const constant();       // after the word Const

 private:
  // The statements before one of the ends, the first of which is the one that closes it.
  syntax::Block block(BlockEnds ends);
  syntax::Block alone();  // one statement
  syntax::Statement statement();
  syntax::Statement simple();
  static bool isNamed(const syntax::Expression& expression);
  bool atBareArgument() const;
  std::optional<syntax::Expression> valueIfAny();
  std::optional<syntax::TypeName> typeIfAny();

  // What follows the word that opens the statement.
  syntax::Dim dim();
  syntax::Dim staticDim();
  void bounds(syntax::Dim::Variable& variable);
  syntax::If ifElse();
  syntax::Select select();
  syntax::Select::Test test();
  syntax::For counting();
  syntax::ForEach forEach();
  syntax::Loop whileLoop();
  syntax::Loop doLoop();
  syntax::Try tryCatch();
  syntax::Jump jump();  // the word included
  syntax::AddHandler addHandler();
  syntax::ReDim reDim();

  TokenReader& tokens_;
  int& depth_;
  ExpressionParser& expressions_;
  bool interactive_;
};

}  // namespace host
