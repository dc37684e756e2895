// Reads expressions.
#pragma once

#include <optional>

#include "language/token_reader.h"

namespace host {

class ExpressionParser {
 public:
  ExpressionParser(TokenReader& tokens, int& depth) : tokens_(tokens), depth_(depth) {}

  syntax::Expression expression();
  syntax::Expression operandOfComparison();  // what may stand after "Case Is <"
  syntax::Expression chain();                // a value with its members and arguments
  // The expression that goes on after what was taken for a whole statement.
  syntax::Expression continued(syntax::Expression first);
  bool atOperator() const;
  syntax::Expressions list();     // with commas between
  syntax::New newObject();        // after the word New
  syntax::AddressOf addressOf();  // the word included
  // The operator of a comparison, as after "Case Is".
  Operator comparison();

 private:
  using First = std::optional<syntax::Expression>;
  syntax::Expression sequence(std::size_t level, First first = {});
  syntax::Expression negation();
  syntax::Expression unary(First first);
  syntax::Expression power(First first);
  syntax::Expression primary();
  syntax::Arguments arguments();  // in parentheses
  syntax::Conditional conditional();

  TokenReader& tokens_;
  int& depth_;
};

}  // namespace host
