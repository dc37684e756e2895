// Compiles statements.
#include <cmath>
#include <cstdio>

#include "language/compiler.h"
#include "runtime/array.h"
#include "runtime/text.h"
#include "runtime/thread.h"
#include "runtime/variant.h"

namespace host {

namespace {

// Text is written in whole lines, so that lines of several threads never mix.
void printLine(std::string line) {
  line += '\n';
  std::fwrite(line.data(), 1, line.size(), stdout);
}

// What a loop does with how its body ended: true where it goes on.
bool goesOn(Flow flow, Flow continues) { return flow == Flow::next || flow == continues; }
Flow afterLoop(Flow flow, Flow exits) { return flow == exits ? Flow::next : flow; }

}  // namespace

void Compiler::parseBlock(Block& block, const std::set<std::string>& ends) {
  const DepthGuard guard(*this);
  const Position start = peek().position;
  while (true) {
    while (peek().kind == TokenKind::endOfLine) take();
    if (peek().kind == TokenKind::endOfText) {
      if (ends.empty()) return;
      fail("the block that starts in line " + std::to_string(start.line) + " has no '" + *ends.begin() + "'");
    }
    if (peek().kind == TokenKind::word) {
      const std::string first = lowerCase(peek().text);
      const std::string two = peek(1).kind == TokenKind::word ? first + " " + lowerCase(peek(1).text) : first;
      if (ends.contains(first) || ends.contains(two)) return;
      if (ends.empty() && (first == "sub" || first == "function")) {  // compiled by itself
        while (!(isWord("End") && isWord(first, 1))) take();
        take();
        take();
        continue;
      }
    }
    parseStatement(block);
    if (!atLineEnd()) expectLineEnd("after the statement");
  }
}

void Compiler::parseScope(Block& block, const std::set<std::string>& ends) {
  scopes_.emplace_back();
  parseBlock(block, ends);
  scopes_.pop_back();
}

std::shared_ptr<Block> Compiler::parseLoopBody(int& depth, const std::set<std::string>& ends) {
  auto body = std::make_shared<Block>();
  ++depth;
  parseScope(*body, ends);
  --depth;
  return body;
}

void Compiler::parseStatement(Block& block) {
  const Token& token = peek();
  if (token.kind != TokenKind::word) return parseSimple(block);
  using Parser = void (Compiler::*)(Block&);
  static const std::map<std::string, Parser> parsers = {{"dim", &Compiler::parseDim},
                                                        {"var", &Compiler::parseDim},
                                                        {"if", &Compiler::parseIf},
                                                        {"select", &Compiler::parseSelect},
                                                        {"for", &Compiler::parseFor},
                                                        {"while", &Compiler::parseWhile},
                                                        {"do", &Compiler::parseDo},
                                                        {"try", &Compiler::parseTry},
                                                        {"exit", &Compiler::parseJump},
                                                        {"continue", &Compiler::parseJump},
                                                        {"return", &Compiler::parseReturn},
                                                        {"print", &Compiler::parsePrint},
                                                        {"addhandler", &Compiler::parseAddHandler},
                                                        {"redim", &Compiler::parseReDim}};
  const std::string word = lowerCase(token.text);
  if (const auto found = parsers.find(word); found != parsers.end()) return (this->*found->second)(block);
  if (word == "const") return parseConst();
  if (word == "call") {
    take();
    return parseSimple(block);
  }
  if (word == "raise") {
    const Position position = take().position;
    Expr thrown = parseExpression();
    const Class* exception = hostClasses().exception;
    if (thrown->type.kind != Kind::Object || thrown->type.array || !thrown->type.objectClass ||
        !thrown->type.objectClass->isA(*exception)) {
      fail(position, "expected an exception after Raise, found " + nameOf(thrown->type));
    }
    block.statements.push_back(statement(position, [thrown = std::move(thrown)](Frame& frame) {
      Ref<Heap> object = thrown->reference(frame);
      if (!object) throw HostException("NilObjectException", "The exception to raise is Nil.");
      throw HostException(Ref<Object>::adopt(static_cast<Object*>(object.detach())));
    }));
    return;
  }
  if (word == "end" || word == "else" || word == "elseif" || word == "next" || word == "loop" ||
      word == "wend" || word == "case" || word == "catch" || word == "finally") {
    fail("'" + token.text + "' has nothing that it belongs to");
  }
  parseSimple(block);
}

Stmt Compiler::assignment(Position position, Expr target, Expr value) {
  auto* place = dynamic_cast<Place*>(target.get());
  if (!place) fail(position, "this cannot be assigned to");
  const Type type = place->type;
  // An assignment to an object from something else changes the object that is there.
  if (type.kind == Kind::Object && !type.array && type.objectClass && cost(*value, type, false) >= 1000) {
    const Method* convert = conversionInto(*type.objectClass, *value).method;
    value = convertTo(std::move(value), convert->declaration.parameters[0].type, "the value");
    return statement(position, [target = std::move(target), value = std::move(value),
                                objectClass = type.objectClass, convert](Frame& frame) {
      const Held held(*value, frame);
      Ref<Heap> object = target->reference(frame);
      const bool fresh = !object;
      if (fresh) object = makeObject(*objectClass);
      const Slot arguments[] = {{.heap = object.get()}, held.slot};
      convert->call(arguments);
      if (fresh) static_cast<const Place&>(*target).put(frame, Slot{.heap = object.detach()});
    });
  }
  value = convertTo(std::move(value), type, "the value");
  std::unique_ptr<Place> owned(static_cast<Place*>(target.release()));
  return statement(position, [place = std::move(owned), value = std::move(value)](Frame& frame) {
    place->put(frame, value->evaluate(frame));
  });
}

void Compiler::parseDim(Block& block) {
  take();
  do {
    struct Variable {
      std::string name;
      Position position;
      bool array = false;
      Expr bound;
    };
    std::vector<Variable> variables;
    do {
      Variable variable;
      variable.position = peek().position;
      variable.name = takeName("the name of a variable");
      if (takeSymbol("(")) {
        variable.array = true;
        if (!isSymbol(")")) {
          if (isSymbol("-") && peek(1).kind == TokenKind::integer && peek(1).integer == 1) {  // Dim a(-1)
            take();
            take();
          } else {
            variable.bound = convertTo(parseExpression(), {Kind::Int64}, "the upper bound");
          }
        }
        expectSymbol(")", "after the upper bound of " + variable.name);
      }
      variables.push_back(std::move(variable));
    } while (takeSymbol(","));
    expectWord("As", "after the variable " + variables.back().name);

    const bool isNew = takeWord("New");
    const Position typePosition = peek().position;
    Expr initial;
    Type type;
    if (isNew) {
      initial = parseNew();
      type = initial->type;
      if (variables.size() > 1 || variables[0].array) fail(typePosition, "'As New' declares one variable");
    } else {
      type = parseType();
      if (takeSymbol("=")) {
        if (variables.size() > 1) fail("only one variable can be given a value");
        initial = parseExpression();
      }
    }
    for (Variable& variable : variables) {
      const Type declared = variable.array ? type.arrayOf() : type;
      // The value is compiled before the name is known, so that it cannot use itself.
      if (initial && declared.kind == Kind::Object && !declared.array) {
        // Starts as Nil and is then assigned to, which is where a class converts from other types.
        std::unique_ptr<Place> place = declare(variable.name, declared, variable.position);
        Expr again = findVariable(variable.name);
        block.statements.push_back(statement(
            variable.position, [place = std::move(place)](Frame& frame) { place->put(frame, Slot{}); }));
        block.statements.push_back(assignment(variable.position, std::move(again), std::move(initial)));
        continue;
      }
      if (initial) initial = convertTo(std::move(initial), declared, "the value of " + variable.name);
      std::unique_ptr<Place> place = declare(variable.name, declared, variable.position);
      block.statements.push_back(
          statement(variable.position, [place = std::move(place), declared, initial = std::move(initial),
                                        bound = std::move(variable.bound)](Frame& frame) {
            Slot value = {};
            if (initial) {
              value = initial->evaluate(frame);
            } else if (declared.array) {
              const std::int64_t upper = bound ? bound->integer(frame) : -1;
              if (upper < -1) throw HostException("OutOfBoundsException", "The upper bound is less than -1.");
              if (upper == INT64_MAX) throw HostException("OutOfMemoryException", "The array is too big.");
              value.heap = makeArray(declared.element(), upper + 1).detach();
            }
            place->put(frame, value);
          }));
    }
  } while (takeSymbol(","));
}

void Compiler::parseConst() {
  take();
  const Position position = peek().position;
  const std::string name = takeName("the name of a constant");
  checkFree(name, position);
  std::optional<Type> type;
  if (takeWord("As")) type = parseType();
  expectSymbol("=", "after the constant " + name);
  const Position valuePosition = peek().position;
  Constant constant;
  std::tie(constant.slot, constant.type) = parseConstant(type, "the value of " + name);
  if (constant.type.isReference()) constant.keep = Ref<Heap>::adopt(constant.slot.heap);
  if (!constant.type.isNumber() && constant.type.kind != Kind::Boolean &&
      (constant.type.kind != Kind::String || constant.type.array)) {
    fail(valuePosition,
         name + " is a " + nameOf(constant.type) + "; a constant is a number, a Boolean or a String");
  }
  program_.constants[lowerCase(name)] = std::move(constant);
}

std::pair<Slot, Type> Compiler::parseConstant(std::optional<Type> type, const std::string& what) {
  static const std::set<std::string> operators = {"and", "or", "xor", "not", "mod", "true", "false", "nil"};
  const Position position = peek().position;
  const std::size_t first = at_;
  Expr value = parseExpression();
  // It is computed now, when no variable has a value yet.
  for (std::size_t i = first; i < at_; ++i) {
    if (tokens_[i].kind != TokenKind::word || operators.contains(lowerCase(tokens_[i].text))) continue;
    const Expr named = findVariable(tokens_[i].text);
    if (!named || dynamic_cast<const Place*>(named.get()))
      fail(tokens_[i].position, what + " is not constant");
  }
  if (type) value = convertTo(std::move(value), *type, what);
  Frame none;
  try {
    return {value->evaluate(none), value->type};
  } catch (const HostException& exception) {
    fail(position, what + " cannot be computed: " + messageOf(*exception.exception));
  }
}

Expr Compiler::condition(const std::string& what) {
  const Position position = peek().position;
  Expr value = parseExpression();
  if (cost(*value, {Kind::Boolean}, false) < 0) {
    fail(position, "expected Boolean as " + what + ", found " + nameOf(value->type));
  }
  return convertTo(std::move(value), {Kind::Boolean}, what);
}

void Compiler::parseIf(Block& block) {
  struct Branch {
    Expr test;  // null: Else
    Block body;
  };
  auto branches = std::make_shared<std::vector<Branch>>();
  const Position position = take().position;
  Branch first;
  first.test = condition("the condition of If");
  expectWord("Then", "after the condition of If");
  if (!atLineEnd()) {  // all in one line
    scopes_.emplace_back();
    parseStatement(first.body);
    branches->push_back(std::move(first));
    scopes_.pop_back();
    if (takeWord("Else")) {
      Branch otherwise;
      scopes_.emplace_back();
      parseStatement(otherwise.body);
      scopes_.pop_back();
      branches->push_back(std::move(otherwise));
    }
  } else {
    const std::set<std::string> ends = {"else", "elseif", "end if"};
    parseScope(first.body, ends);
    branches->push_back(std::move(first));
    bool hasElse = false;
    while (!(isWord("End") && isWord("If", 1))) {
      if (hasElse) fail("expected 'End If' after Else, found " + describe(peek()));
      Branch branch;
      if (takeWord("ElseIf")) {
        branch.test = condition("the condition of ElseIf");
        expectWord("Then", "after the condition of ElseIf");
      } else {
        expectWord("Else", "or 'End If'");
        hasElse = true;
      }
      expectLineEnd(hasElse ? "after Else" : "after Then");
      parseScope(branch.body, ends);
      branches->push_back(std::move(branch));
    }
    take();
    take();
  }
  block.statements.push_back(statement(position, [branches](Frame& frame) {
    for (const Branch& branch : *branches) {
      if (!branch.test || branch.test->integer(frame) != 0) return branch.body.run(frame);
    }
    return Flow::next;
  }));
}

void Compiler::parseSelect(Block& block) {
  const Position position = take().position;
  expectWord("Case", "after Select");
  Expr value = parseExpression();
  expectLineEnd("after the value of Select Case");
  while (peek().kind == TokenKind::endOfLine) take();
  scopes_.emplace_back();
  // The value is kept in a variable of its own, which every case compares.
  const std::size_t slot = newLocal(value->type);
  const Local kept{value->type, slot, false};
  std::unique_ptr<Place> keep(static_cast<Place*>(localPlace(kept).release()));
  block.statements.push_back(
      statement(position, [keep = std::move(keep), value = std::move(value)](Frame& frame) {
        keep->put(frame, value->evaluate(frame));
      }));
  struct Case {
    std::vector<Expr> tests;  // none: Case Else
    Block body;
  };
  auto cases = std::make_shared<std::vector<Case>>();
  bool hasElse = false;
  while (!(isWord("End") && isWord("Select", 1))) {
    if (hasElse) fail("expected 'End Select' after Case Else, found " + describe(peek()));
    expectWord("Case", "or 'End Select'");
    Case each;
    if (takeWord("Else")) {
      hasElse = true;
    } else {
      do {
        const Position at = peek().position;
        if (takeWord("Is")) {
          const std::string symbol = take().text;
          each.tests.push_back(comparison(symbol, localPlace(kept), parseBinary(4), at));
          continue;
        }
        Expr low = parseExpression();
        if (takeWord("To")) {
          Expr above = comparison(">=", localPlace(kept), std::move(low), at);
          Expr below = comparison("<=", localPlace(kept), parseExpression(), at);
          each.tests.push_back(logical("and", std::move(above), std::move(below), at));
        } else {
          each.tests.push_back(comparison("=", localPlace(kept), std::move(low), at));
        }
      } while (takeSymbol(","));
    }
    expectLineEnd("after the values of Case");
    parseScope(each.body, {"case", "end select"});
    cases->push_back(std::move(each));
  }
  take();
  take();
  scopes_.pop_back();
  block.statements.push_back(statement(position, [cases](Frame& frame) {
    for (const Case& each : *cases) {
      bool chosen = each.tests.empty();
      for (const Expr& test : each.tests) chosen = chosen || test->integer(frame) != 0;
      if (chosen) return each.body.run(frame);
    }
    return Flow::next;
  }));
}

void Compiler::parseFor(Block& block) {
  const Position position = take().position;
  scopes_.emplace_back();
  if (takeWord("Each")) {
    parseForEach(block, position);
    scopes_.pop_back();
    return;
  }
  const Position namePosition = peek().position;
  const std::string name = takeName("the variable of For");
  Expr variable;
  if (takeWord("As")) {
    const Type type = parseType();
    const std::size_t slot = newLocal(type);
    scopes_.back()[lowerCase(name)] = {type, slot, false};
  }
  variable = findVariable(name);
  if (!variable) unknownName(name, namePosition);
  const Type type = variable->type;
  if (!type.isInteger() && type.kind != Kind::Double) {
    fail(namePosition, "the variable of For is a " + nameOf(type) + "; it must be an integer or a Double");
  }
  expectSymbol("=", "after the variable of For");
  Expr from = convertTo(parseExpression(), type, "the start of For");
  const bool down = takeWord("DownTo");
  if (!down) expectWord("To", "or 'DownTo' after the start of For");
  Expr to = convertTo(parseExpression(), type, "the end of For");
  Expr step;
  if (takeWord("Step")) step = convertTo(parseExpression(), type, "the step of For");
  expectLineEnd("after the head of For");
  const std::shared_ptr<Block> body = parseLoopBody(forDepth_, {"next"});
  take();
  if (peek().kind == TokenKind::word) {
    if (!sameName(peek().text, name)) fail("expected 'Next " + name + "', found 'Next " + peek().text + "'");
    take();
  }
  scopes_.pop_back();
  std::shared_ptr<Place> place(dynamic_cast<Place*>(variable.release()));
  if (!place) fail(namePosition, name + " is constant");

  if (type.kind == Kind::Double) {
    block.statements.push_back(statement(position, [place, from = std::move(from), to = std::move(to),
                                                    step = std::move(step), body, down](Frame& frame) {
      place->put(frame, Slot{.number = from->real(frame)});
      const double end = to->real(frame);
      double by = step ? step->real(frame) : 1;
      if (down) by = -by;
      while (by < 0 ? place->real(frame) >= end : place->real(frame) <= end) {
        const Flow flow = body->run(frame);
        if (!goesOn(flow, Flow::continueFor)) return afterLoop(flow, Flow::exitFor);
        place->put(frame, Slot{.number = place->real(frame) + by});
      }
      return Flow::next;
    }));
    return;
  }
  const bool isUnsigned = type.kind == Kind::UInt64;
  block.statements.push_back(
      statement(position, [place, from = std::move(from), to = std::move(to), step = std::move(step), body,
                           down, isUnsigned, type](Frame& frame) {
        place->put(frame, Slot{.integer = from->integer(frame)});
        const std::int64_t end = to->integer(frame);
        const std::int64_t given = step ? step->integer(frame) : 1;
        // A step from DownTo, or a negative one, counts down.
        const bool falling = isUnsigned ? down : (given < 0) != down;
        const std::uint64_t by = given < 0 && !isUnsigned ? 0 - static_cast<std::uint64_t>(given)
                                                          : static_cast<std::uint64_t>(given);
        const auto key = [&](std::int64_t value) {  // orders both kinds as unsigned numbers
          return static_cast<std::uint64_t>(value) ^ (isUnsigned ? 0 : std::uint64_t{1} << 63);
        };
        while (true) {
          const std::uint64_t at = key(place->integer(frame)), last = key(end);
          if (falling ? at < last : at > last) return Flow::next;
          const Flow flow = body->run(frame);
          if (!goesOn(flow, Flow::continueFor)) return afterLoop(flow, Flow::exitFor);
          // Stops before the variable would pass the end, so that it never wraps around.
          const std::int64_t value = place->integer(frame);
          const std::uint64_t now = key(value);
          if (by != 0 && (falling ? now < last || now - last < by : now > last || last - now < by))
            return Flow::next;
          const std::uint64_t next =
              falling ? static_cast<std::uint64_t>(value) - by : static_cast<std::uint64_t>(value) + by;
          place->put(frame, convert(Slot{.word = next}, {isUnsigned ? Kind::UInt64 : Kind::Int64}, type));
        }
      }));
}

void Compiler::parseForEach(Block& block, Position position) {
  const Position namePosition = peek().position;
  const std::string name = takeName("the variable of For Each");
  std::optional<Type> declared;
  if (takeWord("As")) declared = parseType();
  expectWord("In", "after the variable of For Each");
  const Position arrayPosition = peek().position;
  Expr array = parseExpression();
  if (!array->type.array)
    array = convertTo(std::move(array), Type{Kind::Variant}.arrayOf(), "what For Each goes through");
  if (!array->type.array) fail(arrayPosition, "expected an array after In, found " + nameOf(array->type));
  expectLineEnd("after the head of For Each");
  const Type element = array->type.element();
  if (declared) {
    const std::size_t slot = newLocal(*declared);
    scopes_.back()[lowerCase(name)] = {*declared, slot, false};
  }
  Expr variable = findVariable(name);
  if (!variable) unknownName(name, namePosition);
  // The element passes through a hidden variable, from which it is assigned like any other value.
  const Local hidden{element, newLocal(element), false};
  std::shared_ptr<Place> current(static_cast<Place*>(localPlace(hidden).release()));
  std::shared_ptr<Statement> assign = assignment(
      position, std::move(variable), convertTo(localPlace(hidden), declared.value_or(element), name));
  const std::shared_ptr<Block> body = parseLoopBody(forDepth_, {"next"});
  take();
  if (peek().kind == TokenKind::word && sameName(peek().text, name)) take();
  block.statements.push_back(
      statement(position, [array = std::move(array), current, assign, body, element](Frame& frame) {
        const Ref<Heap> held = array->reference(frame);
        auto* elements = static_cast<Array*>(held.get());
        for (std::int64_t i = 0; elements && i < elements->count(); ++i) {
          Slot value = elements->at(i);
          if (element.isReference()) retain(value.heap);
          current->put(frame, value);
          assign->run(frame);
          const Flow flow = body->run(frame);
          if (!goesOn(flow, Flow::continueFor)) return afterLoop(flow, Flow::exitFor);
        }
        return Flow::next;
      }));
}

void Compiler::parseWhile(Block& block) {
  const Position position = take().position;
  Expr test = condition("the condition of While");
  expectLineEnd("after the condition of While");
  const std::shared_ptr<Block> body = parseLoopBody(whileDepth_, {"wend", "end while"});
  if (!takeWord("Wend")) {
    take();
    take();
  }
  block.statements.push_back(statement(position, [test = std::move(test), body](Frame& frame) {
    while (test->integer(frame) != 0) {
      const Flow flow = body->run(frame);
      if (!goesOn(flow, Flow::continueWhile)) return afterLoop(flow, Flow::exitWhile);
    }
    return Flow::next;
  }));
}

void Compiler::parseDo(Block& block) {
  const Position position = take().position;
  // Do [While|Until test] … Loop [While|Until test]
  struct Test {
    Expr value;
    bool until = false;
    bool holds(Frame& frame) const { return !value || (value->integer(frame) != 0) != until; }
  };
  const auto parseTest = [&](const std::string& where) {
    Test test;
    if (isWord("While") || isWord("Until")) {
      test.until = isWord("Until");
      take();
      test.value = condition(where);
    }
    return test;
  };
  auto before = std::make_shared<Test>(parseTest("the condition of Do"));
  expectLineEnd("after Do");
  const std::shared_ptr<Block> body = parseLoopBody(doDepth_, {"loop"});
  take();
  auto after = std::make_shared<Test>(parseTest("the condition of Loop"));
  block.statements.push_back(statement(position, [before, after, body](Frame& frame) {
    while (before->holds(frame)) {
      const Flow flow = body->run(frame);
      if (!goesOn(flow, Flow::continueDo)) return afterLoop(flow, Flow::exitDo);
      if (!after->holds(frame)) break;
    }
    return Flow::next;
  }));
}

void Compiler::parseTry(Block& block) {
  struct Catch {
    const Class* type = nullptr;
    std::shared_ptr<Place> variable;
    Block body;
  };
  struct Try {
    Block body;
    std::vector<Catch> catches;
    Block finally;
  };
  auto attempt = std::make_shared<Try>();
  const Position position = take().position;
  expectLineEnd("after Try");
  const std::set<std::string> ends = {"catch", "finally", "end try"};
  parseScope(attempt->body, ends);
  while (takeWord("Catch")) {
    Catch clause;
    clause.type = hostClasses().exception;
    scopes_.emplace_back();
    if (!atLineEnd()) {
      const Position namePosition = peek().position;
      const std::string name = takeName("the variable of Catch");
      if (takeWord("As")) {
        const Position typePosition = peek().position;
        const Type type = parseType();
        if (type.kind != Kind::Object || !type.objectClass ||
            !type.objectClass->isA(*hostClasses().exception)) {
          fail(typePosition, "expected a class of exceptions, found " + nameOf(type));
        }
        clause.type = type.objectClass;
      }
      const Type type{Kind::Object, false, clause.type};
      const std::size_t slot = newLocal(type);
      scopes_.back()[lowerCase(name)] = {type, slot, false};
      clause.variable.reset(static_cast<Place*>(localPlace({type, slot, false}).release()));
      static_cast<void>(namePosition);
    }
    expectLineEnd("after Catch");
    parseBlock(clause.body, ends);
    scopes_.pop_back();
    attempt->catches.push_back(std::move(clause));
  }
  if (takeWord("Finally")) {
    expectLineEnd("after Finally");
    parseScope(attempt->finally, {"end try"});
  }
  if (!(isWord("End") && isWord("Try", 1))) fail("expected 'End Try', found " + describe(peek()));
  take();
  take();
  block.statements.push_back(statement(position, [attempt](Frame& frame) {
    const auto guarded = [&]() -> Flow {
      try {
        return attempt->body.run(frame);
      } catch (HostException& exception) {
        for (const Catch& clause : attempt->catches) {
          if (!isInstance(exception.exception.get(), *clause.type)) continue;
          if (clause.variable) {
            clause.variable->put(frame, Slot{.heap = Ref<Object>(exception.exception).detach()});
          }
          return clause.body.run(frame);
        }
        throw;
      }
    };
    Flow flow;
    try {
      flow = guarded();
    } catch (const HostException&) {
      const Flow last = attempt->finally.run(frame);
      if (last != Flow::next) return last;
      throw;
    }
    const Flow last = attempt->finally.run(frame);
    return last != Flow::next ? last : flow;
  }));
}

void Compiler::parseJump(Block& block) {
  const Token& jump = take();
  const bool exits = sameName(jump.text, "Exit");
  Flow flow;
  bool inside;
  if (exits && (isWord("Sub") || isWord("Function"))) {
    flow = Flow::leave;
    inside = sub_ != nullptr && (isWord("Function") == (sub_->result.kind != Kind::None));
  } else if (isWord("While")) {
    flow = exits ? Flow::exitWhile : Flow::continueWhile;
    inside = whileDepth_ > 0;
  } else if (isWord("Do")) {
    flow = exits ? Flow::exitDo : Flow::continueDo;
    inside = doDepth_ > 0;
  } else {
    flow = exits ? Flow::exitFor : Flow::continueFor;
    inside = forDepth_ > 0;
    if (!isWord("For") && !atLineEnd() && !isWord("Else")) {
      fail("expected For, While, Do" + std::string(exits ? ", Sub or Function" : "") + " after " + jump.text +
           ", found " + describe(peek()));
    }
    if (atLineEnd() && forDepth_ == 0) {  // alone: the only kind of loop there is
      if (whileDepth_ > 0) {
        flow = exits ? Flow::exitWhile : Flow::continueWhile;
        inside = true;
      } else if (doDepth_ > 0) {
        flow = exits ? Flow::exitDo : Flow::continueDo;
        inside = true;
      }
    }
  }
  if (!inside) fail(jump.position, "'" + jump.text + "' is outside of what it names");
  if (!atLineEnd() && !isWord("Else")) take();
  block.statements.push_back(statement(jump.position, [flow](Frame&) { return flow; }));
}

void Compiler::parseReturn(Block& block) {
  const Position position = take().position;
  if (atLineEnd() || isWord("Else")) {
    if (sub_ && sub_->result.kind != Kind::None) fail(position, "Return needs a " + nameOf(sub_->result));
    block.statements.push_back(statement(position, [](Frame&) { return Flow::leave; }));
    return;
  }
  if (!sub_ || sub_->result.kind == Kind::None) fail(position, "only a Function can return a value");
  const Type type = sub_->result;
  Expr value = convertTo(parseExpression(), type, "the result of " + sub_->name);
  block.statements.push_back(statement(position, [value = std::move(value), type](Frame& frame) {
    const Slot result = value->evaluate(frame);
    releaseSlot(frame.result, type);
    frame.result = result;
    return Flow::leave;
  }));
}

void Compiler::parsePrint(Block& block) {
  const Position position = take().position;
  Expr value = atLineEnd() || isWord("Else") ? text("") : displayed(parseExpression());
  block.statements.push_back(statement(position, [value = std::move(value)](Frame& frame) {
    const Ref<Heap> line = value->reference(frame);
    printLine(utf8Of(static_cast<const Text*>(line.get())));
  }));
}

void Compiler::parseAddHandler(Block& block) {
  const Position position = take().position;
  // The event is the last member of what stands before the comma.
  Expr object = parsePrimary(false);
  while (true) {
    if (takeSymbol(".")) {
      if (isWord("Run") && isSymbol(",", 1)) break;
      object = parseMember(std::move(object), false);
    } else if (object->type.array && isSymbol("(")) {
      object = arrayMember(std::move(object), peek(), parseArguments(false));
    } else {
      fail("expected the event of a Thread, such as t.Run, found " + describe(peek()));
    }
  }
  take();
  if (!(object->type.kind == Kind::Object && object->type.objectClass &&
        object->type.objectClass->isA(*hostClasses().thread))) {
    fail(position, "a " + nameOf(object->type) + " has no event Run");
  }
  expectSymbol(",", "after the event");
  expectWord("AddressOf", "and the name of a Sub");
  const Position namePosition = peek().position;
  const std::string name = takeName("the name of a Sub");
  const auto found = program_.subs.find(lowerCase(name));
  if (found == program_.subs.end()) fail(namePosition, "there is no Sub " + name);
  const Sub* sub = found->second.get();
  const Type threadType{Kind::Object, false, hostClasses().thread};
  if (sub->result.kind != Kind::None || sub->parameters.size() > 1 ||
      (sub->parameters.size() == 1 && (sub->parameters[0].type != threadType || sub->parameters[0].byRef))) {
    fail(namePosition,
         "a thread runs a Sub without parameters, or with one parameter As Thread; " + name + " is not");
  }
  block.statements.push_back(
      statement(position, [object = std::move(object), sub, program = &program_](Frame& frame) {
        const Ref<Heap> held = object->reference(frame);
        if (!held) throw HostException("NilObjectException", "The thread is Nil.");
        setRunHandler(static_cast<Object&>(*held), [sub, program](Object& thread) {
          Slot argument = {};
          if (!sub->parameters.empty()) {
            retain(&thread);
            argument.heap = &thread;
          }
          host::callSub(*program, *sub, &argument);
        });
      }));
}

void Compiler::parseReDim(Block& block) {
  const Position position = take().position;
  const std::string name = takeName("the name of an array");
  Expr array = findVariable(name);
  if (!array) unknownName(name, position);
  if (!array->type.array) fail(position, name + " is no array");
  expectSymbol("(", "after " + name);
  Expr bound = convertTo(parseExpression(), {Kind::Int64}, "the upper bound");
  expectSymbol(")", "after the upper bound");
  block.statements.push_back(
      statement(position, [array = std::move(array), bound = std::move(bound)](Frame& frame) {
        const Ref<Heap> held = array->reference(frame);
        const std::int64_t upper = bound->integer(frame);
        if (!held) throw HostException("NilObjectException", "The array is Nil.");
        if (upper < -1) throw HostException("OutOfBoundsException", "The upper bound is less than -1.");
        if (upper == INT64_MAX) throw HostException("OutOfMemoryException", "The array is too big.");
        static_cast<Array*>(held.get())->resize(upper + 1);
      }));
}

// A call, an assignment, or in the interactive mode an expression to be shown.
void Compiler::parseSimple(Block& block) {
  const Position position = peek().position;
  const std::size_t start = at_;
  Expr target = parsePostfix(true);
  if (takeSymbol("=")) {
    block.statements.push_back(assignment(position, std::move(target), parseExpression()));
    return;
  }
  for (const std::string symbol : {"+", "-", "*", "/"}) {
    if (!takeSymbol(symbol + "=")) continue;
    Expr value = parseExpression();
    const std::size_t end = at_;
    at_ = start;  // the target once more, to be read
    Expr current = parsePostfix(false);
    at_ = end;
    value = arithmetic(symbol, std::move(current), std::move(value), position);
    block.statements.push_back(assignment(position, std::move(target), std::move(value)));
    return;
  }
  if (interactive_ && !(atLineEnd() && target->type.kind == Kind::None)) {
    at_ = start;
    Expr value = parseExpression();
    if (value->type.kind != Kind::None) {
      value = displayed(std::move(value));
      block.statements.push_back(statement(position, [value = std::move(value)](Frame& frame) {
        const Ref<Heap> line = value->reference(frame);
        printLine(utf8Of(static_cast<const Text*>(line.get())));
      }));
      return;
    }
    target = std::move(value);
  }
  if (dynamic_cast<Place*>(target.get()) || target->isLiteral) {
    fail(position, "expected a statement; this is a value that nothing is done with");
  }
  if (!atLineEnd() && !isWord("Else")) fail("expected the end of the statement, found " + describe(peek()));
  block.statements.push_back(statement(position, [target = std::move(target)](Frame& frame) {
    releaseSlot(target->evaluate(frame), target->type);
  }));
}

}  // namespace host
