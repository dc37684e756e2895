// The grammar of expressions: one function per kind of operand, one table for all binary operators.
#include "language/expression_parser.h"

#include <algorithm>

namespace host {

using syntax::Expression;

namespace {

syntax::Box boxed(Expression expression) { return std::make_unique<Expression>(std::move(expression)); }

// Or and Xor bind least; each level's operands are of the next, those of the last are signed.
enum Level : std::size_t {
  disjunction,
  conjunction,
  inversion,
  comparing,
  summing,
  multiplying,
  signedOperand
};

constexpr struct BinaryOperator {
  Level level;
  Keyword keyword;
  Symbol symbol;
  Operator what;
} binaryOperators[] = {
    {disjunction, Keyword::orWord, Symbol::none, Operator::either},
    {disjunction, Keyword::xorWord, Symbol::none, Operator::differ},
    {conjunction, Keyword::andWord, Symbol::none, Operator::both},
    {comparing, Keyword::none, Symbol::equal, Operator::equal},
    {comparing, Keyword::none, Symbol::unequal, Operator::unequal},
    {comparing, Keyword::none, Symbol::less, Operator::less},
    {comparing, Keyword::none, Symbol::lessOrEqual, Operator::lessOrEqual},
    {comparing, Keyword::none, Symbol::greater, Operator::greater},
    {comparing, Keyword::none, Symbol::greaterOrEqual, Operator::greaterOrEqual},
    {comparing, Keyword::isWord, Symbol::none, Operator::is},
    {summing, Keyword::none, Symbol::plus, Operator::add},
    {summing, Keyword::none, Symbol::minus, Operator::subtract},
    {multiplying, Keyword::none, Symbol::times, Operator::multiply},
    {multiplying, Keyword::none, Symbol::divide, Operator::divide},
    {multiplying, Keyword::none, Symbol::backslash, Operator::integerDivide},
    {multiplying, Keyword::modWord, Symbol::none, Operator::modulo},
};

const BinaryOperator* binaryOperator(const Token& token) {
  for (const BinaryOperator& each : binaryOperators) {
    if (token.keyword == each.keyword && token.symbol == each.symbol) return &each;
  }
  return nullptr;
}

}  // namespace

Expression ExpressionParser::expression() {
  const Nesting nesting(depth_, tokens_);
  return sequence(disjunction);
}

Expression ExpressionParser::operandOfComparison() { return sequence(summing); }

Expression ExpressionParser::continued(Expression first) { return sequence(disjunction, std::move(first)); }

bool ExpressionParser::atOperator() const {
  return binaryOperator(tokens_.peek()) || tokens_.is(Keyword::isAWord) || tokens_.is(Symbol::caret);
}

Operator ExpressionParser::comparison() {
  const Token& token = tokens_.peek();
  const BinaryOperator* found = binaryOperator(token);
  if (!found || !isComparison(found->what)) {
    fail(token.position, "expected a comparison such as < or =, found '" + token.text + "'");
  }
  tokens_.take();
  return found->what;
}

Expression ExpressionParser::sequence(std::size_t level, First first) {
  if (level == signedOperand) return unary(std::move(first));
  if (level == inversion && !first && tokens_.is(Keyword::notWord)) return negation();
  Expression left = sequence(level + 1, std::move(first));
  syntax::Sequence sequence;
  while (true) {
    const Position position = tokens_.peek().position;
    if (level == comparing && tokens_.accept(Keyword::isAWord)) {
      sequence.rest.push_back({position, tokens_.takeType(), nullptr});
      continue;
    }
    const BinaryOperator* found = binaryOperator(tokens_.peek());
    if (!found || found->level != level) break;
    tokens_.take();
    sequence.rest.push_back({position, found->what, boxed(this->sequence(level + 1))});
  }
  if (sequence.rest.empty()) return left;
  const Position position = left.position;
  sequence.first = boxed(std::move(left));
  return {position, std::move(sequence)};
}

Expression ExpressionParser::negation() {
  const Nesting nesting(depth_, tokens_);
  const Position position = tokens_.take().position;
  Expression operand = tokens_.is(Keyword::notWord) ? negation() : sequence(comparing);
  return {position, syntax::Not{position, boxed(std::move(operand))}};
}

Expression ExpressionParser::unary(First first) {
  if (first || !(tokens_.is(Symbol::minus) || tokens_.is(Symbol::plus))) return power(std::move(first));
  const Nesting nesting(depth_, tokens_);
  const Token& sign = tokens_.take();
  Expression operand = unary({});
  if (sign.symbol == Symbol::plus) return operand;
  return {sign.position, syntax::Negation{sign.position, boxed(std::move(operand))}};
}

Expression ExpressionParser::power(First first) {
  Expression left = first ? std::move(*first) : chain();
  syntax::Sequence sequence;
  while (tokens_.is(Symbol::caret)) {
    const Position position = tokens_.take().position;
    Expression right = tokens_.is(Symbol::minus) ? unary({}) : chain();
    sequence.rest.push_back({position, Operator::power, boxed(std::move(right))});
  }
  if (sequence.rest.empty()) return left;
  const Position position = left.position;
  sequence.first = boxed(std::move(left));
  return {position, std::move(sequence)};
}

Expression ExpressionParser::chain() {
  Expression first = primary();
  syntax::Chain chain;
  while (true) {
    if (tokens_.accept(Symbol::dot)) {
      const Token& name = tokens_.peek();
      if (name.kind != TokenKind::word) tokens_.failExpecting("the name of a member");
      chain.links.push_back(syntax::Name{name.text, name.position});
      tokens_.take();
    } else if (tokens_.is(Symbol::open)) {
      chain.links.push_back(arguments());
    } else {
      break;
    }
  }
  if (chain.links.empty()) return first;
  const Position position = first.position;
  chain.first = boxed(std::move(first));
  return {position, std::move(chain)};
}

syntax::Arguments ExpressionParser::arguments() {
  syntax::Arguments given{tokens_.peek().position, {}};
  tokens_.take();
  if (!tokens_.accept(Symbol::close)) {
    given.values = list();
    tokens_.expect(Symbol::close, "after the arguments");
  }
  return given;
}

syntax::Expressions ExpressionParser::list() {
  syntax::Expressions values;
  do {
    values.push_back(expression());
  } while (tokens_.accept(Symbol::comma));
  return values;
}

Expression ExpressionParser::primary() {
  const Token& token = tokens_.peek();
  const auto literal = [&](auto value) -> Expression {
    tokens_.take();
    return {token.position, syntax::Literal{std::move(value)}};
  };
  switch (token.kind) {
    case TokenKind::integer:
      return literal(token.integer);
    case TokenKind::real:
      return literal(token.real);
    case TokenKind::text:
      return literal(token.text);
    case TokenKind::word:
      break;
    default:
      if (!tokens_.accept(Symbol::open)) tokens_.failExpecting("an expression");
      Expression inner = expression();
      if (tokens_.is(Symbol::comma))
        tokens_.failHere(
            "only one value stands in parentheses; texts are joined with '+', an array is written Array(…)");
      tokens_.expect(Symbol::close, "after the expression");
      return {token.position, syntax::Parenthesised{boxed(std::move(inner))}};
  }
  switch (token.keyword) {
    case Keyword::trueWord:
      return literal(true);
    case Keyword::falseWord:
      return literal(false);
    case Keyword::nilWord:
      return literal(syntax::NilLiteral());
    case Keyword::notWord:
      return negation();
    case Keyword::newWord:
      tokens_.take();
      return {token.position, newObject()};
    case Keyword::ifWord:
      return {token.position, conditional()};
    case Keyword::addressOfWord:
      if (tokens_.peek(1).kind == TokenKind::word) return {token.position, addressOf()};
      [[fallthrough]];
    default:
      return {token.position, tokens_.takeName("an expression")};
  }
}

syntax::Conditional ExpressionParser::conditional() {
  tokens_.take();
  tokens_.expect(Symbol::open, "after If, which is a function here");
  Expression condition = expression();
  tokens_.expect(Symbol::comma, "after the condition");
  Expression first = expression();
  tokens_.expect(Symbol::comma, "and the value where the condition does not hold");
  Expression second = expression();
  tokens_.expect(Symbol::close, "after the values");
  return {boxed(std::move(condition)), boxed(std::move(first)), boxed(std::move(second))};
}

syntax::AddressOf ExpressionParser::addressOf() {
  tokens_.take();
  return {boxed(chain())};
}

syntax::New ExpressionParser::newObject() {
  syntax::New made{tokens_.takeType(), {}};
  if (tokens_.is(Symbol::open)) made.arguments = arguments();
  return made;
}

}  // namespace host
