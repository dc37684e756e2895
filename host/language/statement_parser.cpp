// The grammar of statements.
#include "language/statement_parser.h"

#include "runtime/class.h"

namespace host {

using namespace syntax;

namespace {

constexpr BlockEnd endOf(Keyword what) { return {Keyword::endWord, what}; }

// A word that is no operator: what stands behind the number of a line.
bool beginsStatement(const Token& token) {
  switch (token.keyword) {
    case Keyword::modWord:
    case Keyword::andWord:
    case Keyword::orWord:
    case Keyword::xorWord:
    case Keyword::isWord:
    case Keyword::isAWord:
      return false;
    default:
      return token.kind == TokenKind::word;
  }
}

std::string spelled(BlockEnd end) {
  std::string text = spellingOf(end.first);
  if (end.second != Keyword::none) text += std::string(" ") + spellingOf(end.second);
  for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return text;
}

}  // namespace

bool StatementParser::at(BlockEnd end) const {
  return tokens_.is(end.first) && (end.second == Keyword::none || tokens_.is(end.second, 1));
}

bool StatementParser::accept(BlockEnd end) {
  if (!at(end)) return false;
  tokens_.take();
  if (end.second != Keyword::none) tokens_.take();
  return true;
}

// The statements before one of the ends, the first of which is the one that closes it.
Block StatementParser::block(BlockEnds ends) {
  const Nesting nesting(depth_, tokens_);
  const Position start = tokens_.peek().position;
  Block statements;
  while (true) {
    tokens_.skipLineEnds();
    if (tokens_.peek().kind == TokenKind::endOfText) {
      tokens_.failHere("the block that starts in line " + std::to_string(start.line) + " has no '" +
                       spelled(*ends.begin()) + "'");
    }
    for (const BlockEnd& end : ends) {
      if (at(end)) return statements;
    }
    statements.push_back(line());
  }
}

Statement StatementParser::line() {
  Statement parsed = statement();
  if (!tokens_.atLineEnd()) tokens_.expectLineEnd("after the statement");
  return parsed;
}

Statement StatementParser::statement() {
  const Token& token = tokens_.peek();
  const Position position = token.position;
  const auto after = [&](auto parse) -> Statement {  // the statement that the word taken opens
    tokens_.take();
    return {position, (this->*parse)()};
  };
  switch (token.keyword) {
    case Keyword::dimWord:
    case Keyword::varWord:
      return after(&StatementParser::dim);
    case Keyword::constWord:
      return after(&StatementParser::constant);
    case Keyword::staticWord:
      if (tokens_.peek(1).kind != TokenKind::word) return simple();
      return after(&StatementParser::staticDim);
    case Keyword::ifWord:
      return after(&StatementParser::ifElse);
    case Keyword::selectWord:
      return after(&StatementParser::select);
    case Keyword::forWord:
      tokens_.take();
      if (tokens_.accept(Keyword::eachWord)) return {position, forEach()};
      return {position, counting()};
    case Keyword::whileWord:
      return after(&StatementParser::whileLoop);
    case Keyword::doWord:
      return after(&StatementParser::doLoop);
    case Keyword::tryWord:
      return after(&StatementParser::tryCatch);
    case Keyword::exitWord:
    case Keyword::continueWord:
      return {position, jump()};
    case Keyword::returnWord:
      tokens_.take();
      return {position, Return{valueIfAny()}};
    case Keyword::printWord:
      tokens_.take();
      return {position, Print{valueIfAny()}};
    case Keyword::addHandlerWord:
      return after(&StatementParser::addHandler);
    case Keyword::reDimWord:
      return after(&StatementParser::reDim);
    case Keyword::raiseWord:
      tokens_.take();
      return {position, Raise{expressions_.expression()}};
    case Keyword::callWord:
      tokens_.take();
      return simple();
    case Keyword::endWord:
    case Keyword::elseWord:
    case Keyword::elseIfWord:
    case Keyword::nextWord:
    case Keyword::loopWord:
    case Keyword::wendWord:
    case Keyword::caseWord:
    case Keyword::catchWord:
    case Keyword::finallyWord:
      tokens_.failHere("'" + token.text + "' has nothing that it belongs to");
    default:
      if (token.kind == TokenKind::integer && beginsStatement(tokens_.peek(1))) {
        tokens_.failHere("expected a statement; this host has no line numbers: leave them out");
      }
      return simple();
  }
}

std::optional<Expression> StatementParser::valueIfAny() {
  if (tokens_.atStatementEnd()) return std::nullopt;
  return expressions_.expression();
}

// A call, an assignment, or an expression.
Statement StatementParser::simple() {
  const Position position = tokens_.peek().position;
  Expression target = expressions_.chain();
  static constexpr std::pair<Symbol, std::optional<Operator>> assignments[] = {
      {Symbol::equal, std::nullopt},
      {Symbol::plusEqual, Operator::add},
      {Symbol::minusEqual, Operator::subtract},
      {Symbol::timesEqual, Operator::multiply},
      {Symbol::divideEqual, Operator::divide}};
  for (const auto& [symbol, compound] : assignments) {
    if (tokens_.accept(symbol)) {
      return {position, Assign{std::move(target), compound, expressions_.expression()}};
    }
  }
  if (isNamed(target) && atBareArgument()) {
    Chain* chain = std::get_if<Chain>(&target.node);
    if (!chain) {
      Chain longer{std::make_unique<Expression>(std::move(target)), {}};
      target = {position, std::move(longer)};
      chain = &std::get<Chain>(target.node);
    }
    const Position start = tokens_.peek().position;
    chain->links.push_back(Arguments{start, expressions_.list(), false});
  } else if (expressions_.atOperator()) {
    target = expressions_.continued(std::move(target));
  }
  if (!tokens_.atStatementEnd()) tokens_.failExpecting("the end of the statement");
  return {position, Evaluate{std::move(target)}};
}

// Whether it ends with a name, which arguments without parentheses may follow.
bool StatementParser::isNamed(const Expression& expression) {
  if (const auto* chain = std::get_if<Chain>(&expression.node))
    return std::holds_alternative<Name>(chain->links.back());
  return std::holds_alternative<Name>(expression.node);
}
bool StatementParser::atBareArgument() const {
  const TokenKind kind = tokens_.peek().kind;
  if (kind == TokenKind::word) return !tokens_.is(Keyword::elseWord) && !expressions_.atOperator();
  return kind == TokenKind::integer || kind == TokenKind::real || kind == TokenKind::text ||
         (tokens_.is(Symbol::minus) && !interactive_);
}

// One type's variables; more types may follow after a comma.
Dim StatementParser::dim() {
  Dim declared;
  do {
    declared.groups.push_back(dimGroup());
  } while (tokens_.accept(Symbol::comma));
  return declared;
}

Dim StatementParser::staticDim() {
  Dim declared = dim();
  declared.isStatic = true;
  return declared;
}

void StatementParser::bounds(Dim::Variable& variable) {
  if (!tokens_.accept(Symbol::open)) return;
  variable.array = true;
  if (tokens_.is(Symbol::comma)) {
    while (tokens_.accept(Symbol::comma)) ++variable.dimensions;
  } else if (!tokens_.is(Symbol::close)) {
    variable.bounds = expressions_.list();
    variable.dimensions = static_cast<std::uint8_t>(variable.bounds.size());
  }
  if (variable.dimensions > mostDimensions) tokens_.failHere("an array has too many dimensions");
  tokens_.expect(Symbol::close, "after the upper bound of " + variable.name.text);
}

Dim::Group StatementParser::dimGroup() {
  Dim::Group group;
  do {
    Dim::Variable variable{tokens_.takeName("the name of a variable"), false, {}};
    bounds(variable);
    group.variables.push_back(std::move(variable));
  } while (tokens_.accept(Symbol::comma));
  const bool single = group.variables.size() == 1;
  tokens_.expect(Keyword::asWord, "after the variable " + group.variables.back().name.text);
  if (tokens_.accept(Keyword::newWord)) {
    New made = expressions_.newObject();
    group.type = made.type;
    if (!single || group.variables[0].array) fail(group.type.position, "'As New' declares one variable");
    const Position position = made.type.position;
    group.initial = Expression{position, std::move(made)};
  } else {
    group.type = tokens_.takeType();
    if (tokens_.accept(Symbol::equal)) {
      if (!single) tokens_.failHere("only one variable can be given a value");
      group.initial = expressions_.expression();
    }
  }
  return group;
}

Const StatementParser::constant() {
  Const constant;
  constant.name = tokens_.takeName("the name of a constant");
  constant.type = typeIfAny();
  tokens_.expect(Symbol::equal, "after the constant " + constant.name.text);
  constant.value = expressions_.expression();
  return constant;
}

std::optional<TypeName> StatementParser::typeIfAny() {
  if (!tokens_.accept(Keyword::asWord)) return std::nullopt;
  return tokens_.takeType();
}

If StatementParser::ifElse() {
  If chosen;
  Expression condition = expressions_.expression();
  tokens_.expect(Keyword::thenWord, "after the condition of If");
  if (!tokens_.atLineEnd()) {  // all in one line
    chosen.branches.push_back({std::move(condition), alone()});
    if (tokens_.accept(Keyword::elseWord)) chosen.branches.push_back({std::nullopt, alone()});
    return chosen;
  }
  const BlockEnds ends = {endOf(Keyword::ifWord), {Keyword::elseWord}, {Keyword::elseIfWord}};
  chosen.branches.push_back({std::move(condition), block(ends)});
  while (!accept(endOf(Keyword::ifWord))) {
    if (!chosen.branches.back().condition) tokens_.failExpecting("'End If' after Else");
    if (tokens_.accept(Keyword::elseIfWord)) {
      condition = expressions_.expression();
      tokens_.expect(Keyword::thenWord, "after the condition of ElseIf");
      tokens_.expectLineEnd("after Then");
      chosen.branches.push_back({std::move(condition), block(ends)});
    } else {
      tokens_.expect(Keyword::elseWord, "or 'End If'");
      tokens_.expectLineEnd("after Else");
      chosen.branches.push_back({std::nullopt, block(ends)});
    }
  }
  return chosen;
}

Block StatementParser::alone() {
  Block one;
  one.push_back(statement());
  return one;
}

Select StatementParser::select() {
  tokens_.expect(Keyword::caseWord, "after Select");
  Select chosen{expressions_.expression(), {}};
  tokens_.expectLineEnd("after the value of Select Case");
  tokens_.skipLineEnds();
  bool hasElse = false;
  while (!accept(endOf(Keyword::selectWord))) {
    if (hasElse) tokens_.failExpecting("'End Select' after Case Else");
    tokens_.expect(Keyword::caseWord, "or 'End Select'");
    Select::Case each;
    hasElse = tokens_.accept(Keyword::elseWord);
    if (!hasElse) {
      do {
        each.tests.push_back(test());
      } while (tokens_.accept(Symbol::comma));
    }
    tokens_.expectLineEnd("after the values of Case");
    each.body = block({endOf(Keyword::selectWord), {Keyword::caseWord}});
    chosen.cases.push_back(std::move(each));
  }
  return chosen;
}

Select::Test StatementParser::test() {
  const Position position = tokens_.peek().position;
  if (tokens_.accept(Keyword::isWord)) {
    const Operator comparison = expressions_.comparison();
    return {position, comparison, expressions_.operandOfComparison(), {}};
  }
  Select::Test test{position, Operator::equal, expressions_.expression(), {}};
  if (tokens_.accept(Keyword::toWord)) test.upTo = expressions_.expression();
  return test;
}

For StatementParser::counting() {
  For loop;
  loop.variable = tokens_.takeName("the variable of For");
  loop.type = typeIfAny();
  tokens_.expect(Symbol::equal, "after the variable of For");
  loop.from = expressions_.expression();
  loop.down = tokens_.accept(Keyword::downToWord);
  if (!loop.down) tokens_.expect(Keyword::toWord, "or 'DownTo' after the start of For");
  loop.to = expressions_.expression();
  if (tokens_.accept(Keyword::stepWord)) loop.step = expressions_.expression();
  tokens_.expectLineEnd("after the head of For");
  loop.body = block({{Keyword::nextWord}});
  tokens_.take();
  if (tokens_.peek().kind == TokenKind::word) {
    if (!sameName(tokens_.peek().text, loop.variable.text)) {
      tokens_.failHere("expected 'Next " + loop.variable.text + "', found 'Next " + tokens_.peek().text +
                       "'");
    }
    tokens_.take();
  }
  return loop;
}

ForEach StatementParser::forEach() {
  ForEach loop;
  loop.variable = tokens_.takeName("the variable of For Each");
  loop.type = typeIfAny();
  tokens_.expect(Keyword::inWord, "after the variable of For Each");
  loop.array = expressions_.expression();
  tokens_.expectLineEnd("after the head of For Each");
  loop.body = block({{Keyword::nextWord}});
  tokens_.take();
  if (sameName(tokens_.peek().text, loop.variable.text)) tokens_.take();
  return loop;
}

Loop StatementParser::whileLoop() {
  Loop loop{LoopKind::whileLoop, Loop::Test{expressions_.expression()}, {}, {}};
  tokens_.expectLineEnd("after the condition of While");
  loop.body = block({endOf(Keyword::whileWord), {Keyword::wendWord}});
  if (!tokens_.accept(Keyword::wendWord)) accept(endOf(Keyword::whileWord));
  return loop;
}

Loop StatementParser::doLoop() {
  const auto test = [&]() -> std::optional<Loop::Test> {
    const bool until = tokens_.accept(Keyword::untilWord);
    if (!until && !tokens_.accept(Keyword::whileWord)) return std::nullopt;
    return Loop::Test{expressions_.expression(), until};
  };
  Loop loop{LoopKind::doLoop, test(), {}, {}};
  tokens_.expectLineEnd("after Do");
  loop.body = block({{Keyword::loopWord}});
  tokens_.take();
  loop.after = test();
  return loop;
}

Try StatementParser::tryCatch() {
  Try attempt;
  tokens_.expectLineEnd("after Try");
  const BlockEnd end = endOf(Keyword::tryWord);
  const BlockEnds ends = {end, {Keyword::catchWord}, {Keyword::finallyWord}};
  attempt.body = block(ends);
  while (tokens_.accept(Keyword::catchWord)) {
    Try::Catch clause;
    if (!tokens_.atLineEnd()) {
      clause.variable = tokens_.takeName("the variable of Catch");
      clause.type = typeIfAny();
    }
    tokens_.expectLineEnd("after Catch");
    clause.body = block(ends);
    attempt.catches.push_back(std::move(clause));
  }
  if (tokens_.accept(Keyword::finallyWord)) {
    tokens_.expectLineEnd("after Finally");
    attempt.finally = block({end});
  }
  accept(end);
  return attempt;
}

Jump StatementParser::jump() {
  const Token& word = tokens_.take();
  Jump jump{{word.text, word.position}, word.keyword == Keyword::exitWord, Jump::Target::innermost};
  if (tokens_.accept(Keyword::whileWord)) {
    jump.target = Jump::Target::whileLoop;
  } else if (tokens_.accept(Keyword::doWord)) {
    jump.target = Jump::Target::doLoop;
  } else if (tokens_.accept(Keyword::forWord)) {
    jump.target = Jump::Target::forLoop;
  } else if (jump.exits && tokens_.accept(Keyword::subWord)) {
    jump.target = Jump::Target::sub;
  } else if (jump.exits && tokens_.accept(Keyword::functionWord)) {
    jump.target = Jump::Target::function;
  } else if (!tokens_.atStatementEnd()) {
    tokens_.failExpecting("For, While, Do" + std::string(jump.exits ? ", Sub or Function" : "") + " after " +
                          word.text);
  }
  return jump;
}

// AddHandler object.Event, AddressOf Handler
AddHandler StatementParser::addHandler() {
  Expression event = expressions_.chain();
  auto* chain = std::get_if<Chain>(&event.node);
  if (!chain || !std::holds_alternative<Name>(chain->links.back())) {
    tokens_.failExpecting("the event of a Thread, such as t.Run");
  }
  AddHandler added;
  added.event = std::move(std::get<Name>(chain->links.back()));
  chain->links.pop_back();
  added.object = chain->links.empty() ? std::move(*chain->first) : std::move(event);
  tokens_.expect(Symbol::comma, "after the event");
  if (!tokens_.is(Keyword::addressOfWord)) tokens_.failExpecting("'AddressOf' and the name of a Sub");
  const Position position = tokens_.peek().position;
  added.handler = {position, expressions_.addressOf()};
  return added;
}

ReDim StatementParser::reDim() {
  ReDim changed;
  changed.position = tokens_.peek().position;
  if (tokens_.peek().kind != TokenKind::word) tokens_.failExpecting("the name of an array");
  Expression array = expressions_.chain();
  // What it is to be stands at its end, like the indices of an element.
  auto* chain = std::get_if<Chain>(&array.node);
  auto* last = chain ? std::get_if<Arguments>(&chain->links.back()) : nullptr;
  if (!last || last->values.empty()) tokens_.failExpecting("'(' and the upper bounds of the array");
  changed.bounds = std::move(last->values);
  chain->links.pop_back();
  changed.array = chain->links.empty() ? std::move(*chain->first) : std::move(array);
  return changed;
}

}  // namespace host
