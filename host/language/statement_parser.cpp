// The grammar of statements.
#include "language/statement_parser.h"

#include <algorithm>

#include "language/absent_words.h"
#include "runtime/class.h"

namespace host {

using namespace syntax;

namespace {

ProgramError expectingEndIf(const Token& found) {
  return {found.position, "expected 'End If' after Else, found '" + found.text + "'"};
}

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
  const std::string text = spellingOf(end.first);
  return end.second == Keyword::none ? text : text + " " + spellingOf(end.second);
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

// End alone, which means the innermost block.
bool StatementParser::acceptBareEnd(BlockEnd end) {
  const bool isBare = tokens_.is(Keyword::endWord) && tokens_.peek(1).kind == TokenKind::endOfLine;
  if (!isBare || end.first != Keyword::endWord) return false;
  tokens_.problems.add(ProgramError(tokens_.peek().position, "write '" + spelled(end) + "'"));
  tokens_.take();
  return true;
}

bool StatementParser::atOneOf(const std::vector<BlockEnd>& ends) const {
  return std::any_of(ends.begin(), ends.end(), [&](const BlockEnd& end) { return at(end); });
}

Block StatementParser::block(const Opener& opener, BlockEnds ends) {
  Block statements;
  linesUntil(opener, ends, Holds::statements, [&] {
    lineInto(statements);
    return true;
  });
  return statements;
}

// Where no block goes on: at the end of the text, where a block further out ends, and for one of statements
// where something is declared.
bool StatementParser::atOuterEnd(Holds holds) const {
  if (tokens_.peek().kind == TokenKind::endOfText) return true;
  if (holds == Holds::statements && tokens_.atDeclaration()) return true;
  const bool isAccessor = tokens_.peek(1).kind == TokenKind::endOfLine &&
                          (tokens_.is(Keyword::getWord) || tokens_.is(Keyword::setWord));
  return std::any_of(open_.begin(), open_.end(), [&](const Open& outer) {
    return atOneOf(outer.ends) ||
           (isAccessor && holds == Holds::statements && outer.opener.word == Keyword::propertyWord);
  });
}

void StatementParser::reportMissing(const Opener& opener, BlockEnd end) {
  const Token& here = tokens_.peek();
  const bool atEnd = here.kind == TokenKind::endOfText;
  std::string message = std::string("'") + spellingOf(opener.word) + "' of line " +
                        std::to_string(opener.position.line) + " has no '" + spelled(end) + "'";
  if (!atEnd) {
    message += " before the '" + here.text;
    if (here.keyword == Keyword::endWord) message += " " + tokens_.peek(1).text;
    message += "' of line " + std::to_string(here.position.line);
  }
  tokens_.problems.addMissing(opener.position, message, atEnd);
}

Block StatementParser::body(const Opener& opener, BlockEnd end) {
  Block statements = block(opener, {end});
  accept(end);
  return statements;
}

void StatementParser::lineInto(Block& block) {
  tokens_.part([&] { block.push_back(line()); });
}

Statement StatementParser::line() {
  Statement parsed = statement();
  // What follows a block that has no end begins a line already.
  if (!tokens_.atLineEnd() && !tokens_.atLineStart()) tokens_.expectLineEnd("after the statement");
  return parsed;
}

Statement StatementParser::statement() {
  const Token& token = tokens_.peek();
  const Position position = token.position;
  const auto after = [&](auto parse) -> Statement {  // the statement that the word taken begins
    tokens_.take();
    return {position, (this->*parse)()};
  };
  const Opener opener{token.keyword, position};
  const auto opened = [&](auto parse) -> Statement {  // with blocks that the word opens
    tokens_.take();
    return {position, (this->*parse)(opener)};
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
      return opened(&StatementParser::ifElse);
    case Keyword::selectWord:
      return opened(&StatementParser::select);
    case Keyword::forWord:
      if (tokens_.is(Keyword::eachWord, 1)) return opened(&StatementParser::forEach);
      return opened(&StatementParser::counting);
    case Keyword::whileWord:
      return opened(&StatementParser::whileLoop);
    case Keyword::doWord:
      return opened(&StatementParser::doLoop);
    case Keyword::tryWord:
      return opened(&StatementParser::tryCatch);
    case Keyword::exitWord:
    case Keyword::continueWord:
      return {position, jump()};
    case Keyword::returnWord:
      tokens_.take();
      return {position, Return{valueIfAny()}};
    case Keyword::printWord:
      return after(&StatementParser::print);
    case Keyword::addHandlerWord:
      return after(&StatementParser::addHandler);
    case Keyword::reDimWord:
      return after(&StatementParser::reDim);
    case Keyword::raiseWord:
      tokens_.take();
      return {position, Raise{expressions_.expression()}};
    case Keyword::callWord:
      tokens_.take();
      if (tokens_.is(Keyword::printWord)) tokens_.failHere("Print is no Sub; leave out Call");
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
      failForStray(token);
    default:
      if (token.kind == TokenKind::integer && beginsStatement(tokens_.peek(1))) {
        tokens_.failHere("expected a statement; this host has no line numbers: leave them out");
      }
      return simple();
  }
}

// A word that goes on with or ends what is not there. Of what would belong together the first one is said.
void StatementParser::failForStray(const Token& token) {
  static constexpr std::pair<Keyword, Keyword> parts[] = {{Keyword::caseWord, Keyword::selectWord},
                                                          {Keyword::elseIfWord, Keyword::ifWord},
                                                          {Keyword::elseWord, Keyword::ifWord},
                                                          {Keyword::catchWord, Keyword::tryWord},
                                                          {Keyword::finallyWord, Keyword::tryWord}};
  const bool ends = token.keyword == Keyword::endWord;
  Keyword whole = ends ? tokens_.peek(1).keyword : Keyword::none;
  for (const auto& [part, of] : parts) {
    if (token.keyword == part) whole = of;
  }
  if (token.keyword == Keyword::elseWord && strays_.contains(Keyword::selectWord))
    whole = Keyword::selectWord;
  const bool isFirst = whole == Keyword::none || strays_.insert(whole).second;
  if (ends) strays_.erase(whole);
  if (!isFirst) throw FollowsFromAnother(token.position);
  const bool inTwoWords = ends && tokens_.peek(1).kind == TokenKind::word;
  tokens_.failHere("'" + token.text + (inTwoWords ? " " + tokens_.peek(1).text : "") +
                   "' has nothing that it belongs to");
}

std::optional<Expression> StatementParser::valueIfAny() {
  if (tokens_.atStatementEnd()) return std::nullopt;
  return expressions_.expression();
}

Print StatementParser::print() {
  Print printed{valueIfAny()};
  if (tokens_.is(Symbol::comma)) {
    tokens_.failHere("Print shows one value; texts are joined with '+', and Str(…) makes a text of a number");
  }
  return printed;
}

// Blocks that this host has not are passed over as a whole, so that they are one mistake.
void StatementParser::failForForeignBlock() {
  const Token& word = tokens_.peek();
  const bool isForeign = sameName(word.text, "With") || sameName(word.text, "Using");
  if (!isForeign || tokens_.peek(1).kind != TokenKind::word) return;
  std::size_t ahead = 0;
  while (!tokens_.is(Keyword::endWord, ahead) || !sameName(tokens_.peek(ahead + 1).text, word.text)) {
    if (tokens_.peek(++ahead).kind == TokenKind::endOfText) return;
  }
  const Position position = word.position;
  const std::string message = "unknown name '" + word.text + "'" + absent(word.text);
  for (; ahead > 0; --ahead) tokens_.take();
  fail(position, message);
}

// A call, an assignment, or an expression.
Statement StatementParser::simple() {
  const Position position = tokens_.peek().position;
  if (sameName(tokens_.peek().text, "GoTo") && tokens_.peek(1).kind == TokenKind::word) {
    tokens_.problems.expectUnknown(tokens_.peek(1).text);  // a label
  }
  failForForeignBlock();
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
  if (!tokens_.atStatementEnd()) {
    const auto* chain = std::get_if<Chain>(&target.node);
    const auto* first = std::get_if<Name>(chain ? &chain->first->node : &target.node);
    tokens_.failExpecting("the end of the statement", first ? absent(first->text) : "");
  }
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
  if (!tokens_.is(Symbol::open)) return;
  variable.array = true;
  if (tokens_.is(Symbol::comma, 1)) {
    syntax::TypeName type;
    tokens_.takeDimensions(type);
    variable.dimensions = type.dimensions;
    return;
  }
  tokens_.take();
  if (!tokens_.is(Symbol::close)) {
    variable.bounds = expressions_.list();
    if (variable.bounds.size() > mostDimensions) tokens_.failHere("an array has too many dimensions");
    variable.dimensions = static_cast<std::uint8_t>(variable.bounds.size());
  }
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
  const std::string& last = group.variables.back().name.text;
  if (tokens_.is(Symbol::equal)) {
    const TokenKind value = tokens_.peek(1).kind;
    tokens_.failHere("the variable " + last + " needs a type: Dim " + last + " As " +
                     (value == TokenKind::integer ? "Integer"
                      : value == TokenKind::real  ? "Double"
                      : value == TokenKind::text  ? "String"
                                                  : "…") +
                     " = …");
  }
  if (tokens_.is(Keyword::subWord) || tokens_.is(Keyword::functionWord)) {  // Override Sub, Virtual Function
    tokens_.failHere("leave out '" + last +
                     "'; a method takes the place of the one above it that has the same parameters");
  }
  tokens_.expect(Keyword::asWord, "after the variable " + last);
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
  if (tokens_.is(Symbol::comma) && !tokens_.isNumberWithComma())
    tokens_.failHere("a line has one Const; write the next one in a line of its own");
  return constant;
}

std::optional<TypeName> StatementParser::typeIfAny() {
  if (!tokens_.accept(Keyword::asWord)) return std::nullopt;
  return tokens_.takeType();
}

// Whether an If with a wrong condition begins a block, as far as its line and the next one show.
bool StatementParser::opensBlock(const Opener& opener) const {
  std::size_t ahead = 0;
  for (; tokens_.peek(ahead).kind != TokenKind::endOfLine; ++ahead) {
    if (tokens_.is(Keyword::thenWord, ahead)) return tokens_.peek(ahead + 1).kind == TokenKind::endOfLine;
  }
  const Token& next = tokens_.peek(ahead + 1);
  return ahead <= 1 || next.position.column > opener.position.column;
}

If StatementParser::ifElse(const Opener& opener) {
  If chosen;
  bool isBlock = false;
  If::Branch first;
  first.condition.emplace();
  tokens_.part([&] {
    try {
      *first.condition = expressions_.expression();
      tokens_.expect(Keyword::thenWord, "after the condition of If");
      isBlock = tokens_.atLineEnd();
    } catch (const ProgramError&) {
      isBlock = opensBlock(opener);
      first.condition.emplace();
      throw;
    }
  });
  if (!isBlock) {  // all in one line
    const bool isRead = !tokens_.atLineEnd();
    if (isRead) first.body = alone();
    chosen.branches.push_back(std::move(first));
    if (isRead && tokens_.accept(Keyword::elseWord)) chosen.branches.push_back({std::nullopt, alone()});
    return chosen;
  }
  const BlockEnds ends = {endOf(Keyword::ifWord), {Keyword::elseWord}, {Keyword::elseIfWord}};
  first.body = block(opener, ends);
  chosen.branches.push_back(std::move(first));
  Opener afterElse = opener;
  afterElse.hasElse = true;
  while (tokens_.is(Keyword::elseWord) || tokens_.is(Keyword::elseIfWord)) {
    if (!chosen.branches.back().condition && isOpenWithoutElse(Keyword::ifWord)) {
      reportMissing(opener, endOf(Keyword::ifWord));
      return chosen;
    }
    If::Branch branch;
    tokens_.part([&] {
      const Token& word = tokens_.take();
      const bool inTwoWords = word.keyword == Keyword::elseWord && tokens_.accept(Keyword::ifWord);
      if (inTwoWords) tokens_.problems.add(ProgramError(word.position, "write 'ElseIf' as one word"));
      const bool isLast = !chosen.branches.back().condition;
      if (isLast) tokens_.problems.add(expectingEndIf(word));
      if (word.keyword == Keyword::elseIfWord || inTwoWords) {
        branch.condition.emplace();
        Expression condition = expressions_.expression();
        tokens_.expect(Keyword::thenWord, "after the condition of ElseIf");
        branch.condition = std::move(condition);
        tokens_.expectLineEnd("after Then");
      } else {
        tokens_.expectLineEnd("after Else");
      }
    });
    branch.body = block(branch.condition ? opener : afterElse, ends);
    chosen.branches.push_back(std::move(branch));
  }
  accept(endOf(Keyword::ifWord));
  return chosen;
}

// Whether what the word opens stands around this, and may go on with Else.
bool StatementParser::isOpenWithoutElse(Keyword word) const {
  return std::any_of(open_.begin(), open_.end(),
                     [&](const Open& outer) { return outer.opener.word == word && !outer.opener.hasElse; });
}

Block StatementParser::alone() {
  const Nesting nesting(depth_, tokens_);
  Block one;
  one.push_back(statement());
  return one;
}

Select StatementParser::select(const Opener& opener) {
  Select chosen;
  tokens_.part([&] {
    tokens_.expect(Keyword::caseWord, "after Select");
    Expression value = expressions_.expression();
    tokens_.expectLineEnd("after the value of Select Case");
    chosen.value = std::move(value);
  });
  const BlockEnd end = endOf(Keyword::selectWord);
  tokens_.skipLineEnds();
  if (!at(end) && !atOuterEnd(Holds::statements)) {
    if (!tokens_.is(Keyword::caseWord) && !tokens_.is(Keyword::elseWord)) {
      tokens_.problems.attempt([&] { tokens_.failExpecting("'Case' or 'End Select'"); });
    }
  }
  const BlockEnds ends = {end, {Keyword::caseWord}, {Keyword::elseWord}};
  block(opener, ends);
  bool hasElse = false;
  Opener afterElse = opener;
  afterElse.hasElse = true;
  while (tokens_.is(Keyword::caseWord) || tokens_.is(Keyword::elseWord)) {  // which may stand alone
    const bool mayBeOuter = isOpenWithoutElse(Keyword::selectWord) ||
                            (tokens_.is(Keyword::elseWord) && isOpenWithoutElse(Keyword::ifWord));
    if (hasElse && mayBeOuter) {
      reportMissing(opener, end);
      return chosen;
    }
    Select::Case each;
    if (hasElse) tokens_.problems.attempt([&] { tokens_.failExpecting("'End Select' after Case Else"); });
    tokens_.part([&] {
      hasElse = tokens_.take().keyword == Keyword::elseWord || tokens_.accept(Keyword::elseWord);
      if (!hasElse) {
        do {
          each.tests.push_back(test());
        } while (tokens_.accept(Symbol::comma));
      }
      tokens_.expectLineEnd("after the values of Case");
    });
    each.body = block(hasElse ? afterElse : opener, ends);
    chosen.cases.push_back(std::move(each));
  }
  accept(end);
  return chosen;
}

Select::Test StatementParser::test() {
  const Position position = tokens_.peek().position;
  if (tokens_.accept(Keyword::isWord)) {
    const Operator comparison = expressions_.comparison();
    return {position, comparison, expressions_.operandOfComparison(), {}};
  }
  if (tokens_.peek().kind == TokenKind::symbol && expressions_.atOperator() && !tokens_.is(Symbol::minus) &&
      !tokens_.is(Symbol::plus)) {
    tokens_.failHere("write Is in front of a comparison, as in Case Is " + tokens_.peek().text + " 5");
  }
  if (tokens_.is(Keyword::isAWord)) {
    tokens_.failHere("a Case compares values; write If … IsA … Then, with ElseIf for the other classes");
  }
  Select::Test test{position, Operator::equal, expressions_.expression(), {}};
  if (tokens_.accept(Keyword::toWord)) test.upTo = expressions_.expression();
  return test;
}

For StatementParser::counting(Opener opener) {
  For loop;
  tokens_.part([&] {
    loop.variable = tokens_.takeName("the variable of For");
    loop.type = typeIfAny();
    tokens_.expect(Symbol::equal, "after the variable of For");
    loop.from = expressions_.expression();
    loop.down = tokens_.accept(Keyword::downToWord);
    if (!loop.down) tokens_.expect(Keyword::toWord, "or 'DownTo' after the start of For");
    loop.to = expressions_.expression();
    if (tokens_.accept(Keyword::stepWord)) loop.step = expressions_.expression();
    tokens_.expectLineEnd("after the head of For");
  });
  opener.variable = loop.variable.text;
  loop.body = block(opener, {{Keyword::nextWord}});
  next(opener);
  return loop;
}

ForEach StatementParser::forEach(const Opener& opener) {
  ForEach loop;
  tokens_.part([&] {
    tokens_.take();
    loop.variable = tokens_.takeName("the variable of For Each");
    loop.type = typeIfAny();
    tokens_.expect(Keyword::inWord, "after the variable of For Each");
    loop.array = expressions_.expression();
    tokens_.expectLineEnd("after the head of For Each");
  });
  Opener named = opener;
  named.variable = loop.variable.text;
  loop.body = block(named, {{Keyword::nextWord}});
  next(named);
  return loop;
}

// Next, or Next with the loop's variable. With that of a loop around it, it is that one's.
void StatementParser::next(const Opener& opener) {
  if (!tokens_.is(Keyword::nextWord)) return;  // which has been reported
  const Token& name = tokens_.peek(1);
  const bool isNamed = name.kind == TokenKind::word && !opener.variable.empty();
  if (isNamed && !sameName(name.text, opener.variable)) {
    for (const Open& outer : open_) {
      if (sameName(name.text, outer.opener.variable)) return reportMissing(opener, {Keyword::nextWord});
    }
  }
  tokens_.part([&] {
    tokens_.take();
    if (isNamed && !sameName(name.text, opener.variable)) {
      tokens_.failHere("expected 'Next " + opener.variable + "', found 'Next " + name.text + "'");
    }
    if (name.kind == TokenKind::word) tokens_.take();
  });
}

Loop StatementParser::whileLoop(const Opener& opener) {
  Loop loop{LoopKind::whileLoop, Loop::Test{}, {}, {}};
  tokens_.part([&] {
    Expression condition = expressions_.expression();
    tokens_.expectLineEnd("after the condition of While");
    loop.before->condition = std::move(condition);
  });
  loop.body = block(opener, {{Keyword::wendWord}, endOf(Keyword::whileWord)});
  if (!tokens_.accept(Keyword::wendWord)) accept(endOf(Keyword::whileWord));
  return loop;
}

Loop StatementParser::doLoop(const Opener& opener) {
  const auto test = [&]() -> std::optional<Loop::Test> {
    const bool until = tokens_.accept(Keyword::untilWord);
    if (!until && !tokens_.accept(Keyword::whileWord)) return std::nullopt;
    return Loop::Test{expressions_.expression(), until};
  };
  Loop loop{LoopKind::doLoop, {}, {}, {}};
  tokens_.part([&] {
    loop.before = test();
    tokens_.expectLineEnd("after Do");
  });
  loop.body = block(opener, {{Keyword::loopWord}});
  tokens_.part([&] {
    if (tokens_.accept(Keyword::loopWord)) loop.after = test();
  });
  return loop;
}

Try StatementParser::tryCatch(const Opener& opener) {
  Try attempt;
  tokens_.part([&] { tokens_.expectLineEnd("after Try"); });
  const BlockEnd end = endOf(Keyword::tryWord);
  const BlockEnds ends = {end, {Keyword::catchWord}, {Keyword::finallyWord}};
  attempt.body = block(opener, ends);
  while (tokens_.is(Keyword::catchWord)) {
    Try::Catch clause;
    tokens_.part([&] {
      tokens_.take();
      if (!tokens_.atLineEnd()) {
        clause.variable = tokens_.takeName("the variable of Catch");
        clause.type = typeIfAny();
      }
      tokens_.expectLineEnd("after Catch");
    });
    clause.body = block(opener, ends);
    attempt.catches.push_back(std::move(clause));
  }
  if (tokens_.is(Keyword::finallyWord)) {
    tokens_.part([&] {
      tokens_.take();
      tokens_.expectLineEnd("after Finally");
    });
    attempt.finally = block(opener, {end});
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
    if (!tokens_.atStatementEnd()) jump.variable = tokens_.takeName("the variable of a For");
  } else if (jump.exits && tokens_.accept(Keyword::subWord)) {
    jump.target = Jump::Target::sub;
  } else if (jump.exits && tokens_.accept(Keyword::functionWord)) {
    jump.target = Jump::Target::function;
  } else if (jump.exits && tokens_.is(Keyword::selectWord)) {
    tokens_.failHere("a Case ends where the next one begins; Exit is for loops, Subs and Functions");
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
