// Statements: the scopes of their names, and the order in which their parts are compiled.
#include "language/statement_compiler.h"

#include <algorithm>
#include <tuple>

#include "language/arrays.h"
#include "language/assignments.h"
#include "language/conversions.h"
#include "language/delegates.h"
#include "language/loops.h"
#include "language/operators.h"
#include "language/shown.h"
#include "language/spelling.h"
#include "language/statements.h"
#include "runtime/wording.h"

namespace host {

using syntax::LoopKind;

Block StatementCompiler::block(const syntax::Block& statements) {
  Block compiled;
  for (const syntax::Statement& each : statements) {
    problems_.attempt(
        [&] { std::visit([&](const auto& node) { compile(node, each.position, compiled); }, each.node); });
  }
  return compiled;
}

Block StatementCompiler::counted(const syntax::Block& statements) {
  Block compiled;
  if (StepsLeft* const left = names_.stepsLeft()) compiled.statements.push_back(countStep(*left));
  for (Stmt& each : block(statements).statements) compiled.statements.push_back(std::move(each));
  return compiled;
}

Block StatementCompiler::innerBlock(const syntax::Block& statements) {
  const Names::Inner inner(names_);
  return block(statements);
}

Block StatementCompiler::loopBody(Position position, LoopKind kind, const std::string& variable,
                                  const syntax::Block& statements) {
  loops_.push_back({kind, variable});
  const Names::Inner inner(names_);
  Block body = counted(statements);
  const bool isNamed = loops_.back().isNamed;
  loops_.pop_back();
  return isNamed ? namedBody(position, loops_.size(), std::move(body)) : std::move(body);
}

// Declarations and assignments.

void StatementCompiler::compile(const syntax::Dim& dim, Position, Block& block) {
  for (const syntax::Dim::Group& group : dim.groups) {
    const syntax::Expression* initial = group.initial ? &*group.initial : nullptr;
    for (const syntax::Dim::Variable& variable : group.variables) {
      problems_.attempt([&] {
        const Type type =
            typeFor(variable.name, group.type.position, [&] { return names_.typeOf(group, variable); });
        declare(variable, type, initial, dim.isStatic, block);
      });
    }
  }
}

template <typename Find>
Type StatementCompiler::typeFor(const syntax::Name& name, Position position, Find find) {
  std::optional<Type> found;
  problems_.attempt([&] { found = find(); });
  if (found) return *found;
  problems_.expectUnknown(name.text);
  throw FollowsFromAnother(position);
}

Type StatementCompiler::typeFor(const syntax::Name& name, const syntax::TypeName& type) {
  return typeFor(name, type.position, [&] { return names_.typeOf(type); });
}

// The value is compiled before the name is known, so that it cannot use itself.
void StatementCompiler::declare(const syntax::Dim::Variable& variable, Type type,
                                const syntax::Expression* initial, bool isStatic, Block& block) {
  const auto place = [&] {
    return isStatic ? names_.declareStatic(variable.name, type) : names_.declare(variable.name, type);
  };
  Expr value;
  const bool fits = problems_.attempt([&] {
    value = initial ? expressions_.compile(*initial) : boundsOf(variable, type);
    if (value && !isPlainObject(type)) {
      value = convertTo(std::move(value), type, "the value of " + variable.name.text);
    }
  });
  if (!fits) return void(place());  // which does not change what the name stands for
  if (!isStatic) return start(variable.name, type, std::move(value), place, block);
  Block first;  // when the declaration is come by for the first time
  start(variable.name, type, std::move(value), place, first);
  block.statements.push_back(once(variable.name.position, std::move(first)));
}

// The new array that the bounds ask for; null where the variable is none.
Expr StatementCompiler::boundsOf(const syntax::Dim::Variable& variable, Type type) {
  if (!type.array) return nullptr;
  Exprs bounds;
  for (const syntax::Expression& each : variable.bounds) {
    bounds.push_back(convertTo(expressions_.compile(each), {Kind::Int64}, "the upper bound"));
  }
  return newArray(type, std::move(bounds));
}

void StatementCompiler::start(const syntax::Name& name, Type type, Expr value,
                              const std::function<std::unique_ptr<Place>()>& place, Block& block) {
  const Position position = name.position;
  if (value && isPlainObject(type)) {
    // Starts as Nil and is then assigned to, which is where a class converts from other types.
    std::unique_ptr<Place> made = place();
    block.statements.push_back(declaration(position, std::move(made), nullptr));
    block.statements.push_back(assignment(position, names_.expect(name), std::move(value)));
    return;
  }
  block.statements.push_back(declaration(position, place(), std::move(value)));
}

void StatementCompiler::startProperty(const syntax::Dim::Group& group, Type type, Expr place, Block& block) {
  const syntax::Dim::Variable& variable = group.variables[0];
  Expr value = boundsOf(variable, type);
  if (group.initial) value = expressions_.compile(*group.initial);
  if (!value) return;
  if (!isPlainObject(type)) {
    value = convertTo(std::move(value), type, "the value of " + variable.name.text);
  }
  block.statements.push_back(assignment(variable.name.position, std::move(place), std::move(value)));
}

void StatementCompiler::compile(const syntax::Const& declared, Position, Block&) {
  names_.checkFree(declared.name);
  const bool fits = problems_.attempt([&] { names_.declareConstant(declared.name, constant(declared)); });
  if (!fits) problems_.expectUnknown(declared.name.text);
}

Constant StatementCompiler::constant(const syntax::Const& declared) {
  const std::string& name = declared.name.text;
  std::optional<Type> type;
  if (declared.type) type = names_.typeOf(*declared.type);
  Constant constant;
  constant.name = name;
  std::tie(constant.slot, constant.type) =
      expressions_.constant(declared.value, type, "the value of " + name);
  if (constant.type.isReference()) constant.keep = Ref<Heap>::adopt(constant.slot.heap);
  if (!constant.type.isNumber() && !isBoolean(constant.type) && !isText(constant.type)) {
    fail(declared.value.position, name + " is " + withArticle(nameOf(constant.type)) +
                                      "; a constant is a number, a Boolean or a String");
  }
  return constant;
}

void StatementCompiler::compile(const syntax::Assign& assign, Position position, Block& block) {
  const auto* name = std::get_if<syntax::Name>(&assign.target.node);
  if (name && sub_ && sub_->result.kind != Kind::None && sameName(name->text, sub_->name) &&
      !mayBeAssignedTo(name->text)) {
    fail(position, "the result of " + sub_->name + " is given by Return: Return …");
  }
  Expr target;
  try {
    target = expressions_.compile(assign.target);
  } catch (const UnknownName& unknown) {
    if (name && !assign.compound) failToAssignUnknown(unknown);
    throw;
  }
  if (!target->place()) failToAssign(assign.target, position);
  Expr value = expressions_.compile(assign.value);
  warnOfOverwriting(assign, target->type, value->type);
  const auto hidden = [&](Type type) { return names_.hidden(type, position); };
  block.statements.push_back(assign.compound ? compoundAssignment(position, *assign.compound,
                                                                  std::move(target), std::move(value), hidden)
                                             : assignment(position, std::move(target), std::move(value)));
}

// A name that is assigned to is meant for a variable, and no function is suggested for it.
void StatementCompiler::failToAssignUnknown(const UnknownName& unknown) const {
  std::string message = unknown.what();
  const std::string_view suggests = "; did you mean '";
  if (const std::size_t at = message.find(suggests); at != std::string::npos) {
    const std::size_t start = at + suggests.size();
    if (mayBeAssignedTo(message.substr(start, message.find('\'', start) - start))) return;
    message.erase(at);
  }
  if (!message.ends_with('\'')) return;  // it says what is meant
  message += "; declare it first: Dim " + unknown.name + " As …";
  throw UnknownName(unknown.position, unknown.name, message);
}

bool StatementCompiler::mayBeAssignedTo(const std::string& name) const {
  if (names_.find(name)) return true;
  const Class* own = names_.ownClass();
  if (own && (own->findProperty(name) || own->findSharedProperty(name))) return true;
  std::vector<const Method*> all = names_.findSubs(name);
  if (own) {
    for (const Method* each : own->findMethods(name)) all.push_back(each);
    for (const Method* each : own->findSharedMethods(name)) all.push_back(each);
  }
  return std::any_of(all.begin(), all.end(), [](const Method* each) { return each->assigning != nullptr; });
}

void StatementCompiler::failToAssign(const syntax::Expression& target, Position position) {
  if (const auto* name = std::get_if<syntax::Name>(&target.node)) {
    fail(position, names_.find(name->text) ? name->text + " is constant"
                                           : "this cannot be assigned to: it is the result of " + name->text);
  }
  if (const auto* chain = std::get_if<syntax::Chain>(&target.node)) {
    if (const auto* member = std::get_if<syntax::Name>(&chain->links.back())) {
      fail(member->position, member->text + " can only be read");
    }
  }
  fail(position, "this cannot be assigned to");
}

// c = c + …, where the sum is no object of its own.
void StatementCompiler::warnOfOverwriting(const syntax::Assign& assign, Type target, Type value) {
  const auto* name = std::get_if<syntax::Name>(&assign.target.node);
  const auto* computed = std::get_if<syntax::Sequence>(&assign.value.node);
  if (!name || !computed || assign.compound) return;
  const auto isTarget = [&](const syntax::Expression& operand) {
    const auto* read = std::get_if<syntax::Name>(&operand.node);
    return read && sameName(name->text, read->text);
  };
  bool isLeft = isTarget(*computed->first);
  for (const auto& [position, what, operand] : computed->rest) {
    const auto* op = std::get_if<Operator>(&what);
    if (op && (isLeft || isTarget(*operand))) {
      return host::warnOfOverwriting(position, *op, target, value);
    }
    isLeft = false;
  }
}

void StatementCompiler::compile(const syntax::ReDim& changed, Position position, Block& block) {
  Expr array = expressions_.compile(changed.array);
  if (!array->type.array) {
    const auto* name = std::get_if<syntax::Name>(&changed.array.node);
    fail(position, (name ? name->text : "this") + " is no array");
  }
  Exprs bounds;
  for (const syntax::Expression& each : changed.bounds) {
    bounds.push_back(convertTo(expressions_.compile(each), {Kind::Int64}, "the upper bound"));
  }
  block.statements.push_back(reDim(position, std::move(array), std::move(bounds)));
}

// Simple statements.

void StatementCompiler::compile(const syntax::Evaluate& evaluated, Position position, Block& block) {
  Expr value = expressions_.compileStatement(evaluated.value);
  if (interactive_ && value->type.kind != Kind::None) {
    block.statements.push_back(print(position, shown(std::move(value))));
    return;
  }
  const bool isComputed = std::holds_alternative<syntax::Sequence>(evaluated.value.node);
  if (value->place() || value->isLiteral || isComputed) {
    fail(position, "expected a statement; this is a value that nothing is done with");
  }
  block.statements.push_back(evaluate(position, std::move(value)));
}

void StatementCompiler::compile(const syntax::Print& printed, Position position, Block& block) {
  Expr value = printed.value ? expressions_.compile(*printed.value) : textLiteral("");
  block.statements.push_back(print(position, std::move(value)));
}

void StatementCompiler::compile(const syntax::Raise& raised, Position position, Block& block) {
  block.statements.push_back(raise(position, expressions_.compile(raised.exception)));
}

void StatementCompiler::compile(const syntax::Return& returned, Position position, Block& block) {
  const bool isFunction = sub_ && sub_->result.kind != Kind::None;
  if (!returned.value) {
    if (isFunction && problems_.isExpected(sub_->name)) throw FollowsFromAnother(position);
    if (isFunction) fail(position, "Return needs " + withArticle(nameOf(sub_->result)));
    block.statements.push_back(jump(position, Flow::leave));
    return;
  }
  if (!isFunction) fail(position, "only a Function can return a value");
  Expr value = convertTo(expressions_.compile(*returned.value), sub_->result, "the result of " + sub_->name);
  block.statements.push_back(returnValue(position, std::move(value)));
}

void StatementCompiler::compile(const syntax::Jump& jumped, Position position, Block& block) {
  const std::optional<Flow> flow = flowOf(jumped);
  if (!flow && !jumped.variable.text.empty()) {
    fail(jumped.variable.position, "no For around this has the variable " + jumped.variable.text);
  }
  if (!flow) fail(jumped.word.position, "'" + jumped.word.text + "' is outside of what it names");
  block.statements.push_back(jump(position, *flow));
}

std::optional<Flow> StatementCompiler::flowOf(const syntax::Jump& jump) {
  using Target = syntax::Jump::Target;
  static constexpr struct {
    Target target;
    LoopKind kind;
    Flow exit, next;
  } kinds[] = {{Target::forLoop, LoopKind::forLoop, Flow::exitFor, Flow::continueFor},
               {Target::whileLoop, LoopKind::whileLoop, Flow::exitWhile, Flow::continueWhile},
               {Target::doLoop, LoopKind::doLoop, Flow::exitDo, Flow::continueDo}};
  if (jump.target == Target::sub || jump.target == Target::function) {
    const bool isFunction = sub_ && sub_->result.kind != Kind::None;
    const bool isThis = sub_ && isFunction == (jump.target == Target::function);
    return isThis ? std::optional(Flow::leave) : std::nullopt;
  }
  // Alone it means the innermost loop, of whatever kind.
  const std::string& variable = jump.variable.text;
  bool isInnermost = true;
  for (std::size_t i = loops_.size(); i-- > 0;) {
    OpenLoop& open = loops_[i];
    const auto& loop = *std::find_if(std::begin(kinds), std::end(kinds),
                                     [&](const auto& each) { return each.kind == open.kind; });
    if (jump.target != Target::innermost && jump.target != loop.target) continue;
    if (variable.empty() || sameName(variable, open.variable)) {
      if (isInnermost) return jump.exits ? loop.exit : loop.next;
      open.isNamed = true;
      return namedJump(i, jump.exits);
    }
    isInnermost = false;
  }
  return std::nullopt;
}

void StatementCompiler::compile(const syntax::AddHandler& added, Position position, Block& block) {
  Expr object = expressions_.compile(added.object);
  expectEvent(*object, added.event.text, position);
  Expr handler = expressions_.compile(added.handler);
  auto& reference = static_cast<MethodReference&>(*handler);
  const Position named = std::get<syntax::AddressOf>(added.handler.node).method->position;
  block.statements.push_back(
      addHandler(position, std::move(object), *reference.candidates()[0], reference.takeSelf(), named));
}

// Blocks.

void StatementCompiler::compile(const syntax::If& chosen, Position position, Block& block) {
  std::vector<Branch> branches;
  for (const syntax::If::Branch& each : chosen.branches) {
    Branch branch;
    if (each.condition) {
      const std::string word = branches.empty() ? "If" : "ElseIf";
      problems_.attempt([&] {
        branch.tests.push_back(expressions_.condition(*each.condition, "the condition of " + word));
      });
    }
    branch.body = innerBlock(each.body);
    branches.push_back(std::move(branch));
  }
  block.statements.push_back(choice(position, std::move(branches)));
}

void StatementCompiler::compile(const syntax::Select& select, Position position, Block& block) {
  const Names::Inner inner(names_);
  // The value is kept in a variable of its own, which every case compares.
  Expr value;
  std::unique_ptr<Place> kept;
  problems_.attempt([&] {
    value = expressions_.compile(select.value);
    kept = names_.hidden(value->type, position);
  });
  std::vector<Branch> branches;
  for (const syntax::Select::Case& each : select.cases) {
    Branch branch;
    for (const syntax::Select::Test& test : each.tests) {
      problems_.attempt([&] {
        if (kept) branch.tests.push_back(caseTest(test, *kept));
      });
    }
    branch.body = innerBlock(each.body);
    branches.push_back(std::move(branch));
  }
  if (!kept) return;
  block.statements.push_back(declaration(position, std::move(kept), std::move(value)));
  block.statements.push_back(choice(position, std::move(branches)));
}

Expr StatementCompiler::caseTest(const syntax::Select::Test& test, const Place& value) {
  Expr compared = expressions_.compile(test.value);
  if (!test.upTo) return comparison(test.comparison, value.again(), std::move(compared), test.position);
  Expr above = comparison(Operator::greaterOrEqual, value.again(), std::move(compared), test.position);
  Expr below =
      comparison(Operator::lessOrEqual, value.again(), expressions_.compile(*test.upTo), test.position);
  return logical(Operator::both, std::move(above), std::move(below), test.position);
}

void StatementCompiler::compile(const syntax::For& loop, Position position, Block& block) {
  const Names::Inner inner(names_);
  const syntax::Name& name = loop.variable;
  std::unique_ptr<Place> place;
  Expr from, to, step;
  const bool fits = problems_.attempt([&] {
    if (loop.type) names_.declare(name, typeFor(name, *loop.type));
    Expr variable = names_.find(name.text);
    if (!variable && names_.findSubs(name.text).empty()) {
      throw UnknownName(name.position, name.text,
                        "unknown name '" + name.text + "'; write For " + name.text + " As Integer = …");
    }
    variable = names_.expect(name);
    const Type type = variable->type;
    if (!type.isInteger() && type.kind != Kind::Double) {
      fail(name.position,
           "the variable of For is " + withArticle(nameOf(type)) + "; it must be an integer or a Double");
    }
    place = placeOf(std::move(variable), name.position, name.text + " is constant");
    from = convertTo(expressions_.compile(loop.from), type, "the start of For");
    to = convertTo(expressions_.compile(loop.to), type, "the end of For");
    if (loop.step) step = convertTo(expressions_.compile(*loop.step), type, "the step of For");
  });
  Block body = loopBody(position, LoopKind::forLoop, name.text, loop.body);
  if (!fits) return;
  block.statements.push_back(countingLoop(position, std::move(place), std::move(from), std::move(to),
                                          std::move(step), loop.down, std::move(body)));
}

namespace {

// Where an array is near: a text's characters, a Dictionary's keys.
void failForEach(const Expression& value) {
  if (isText(value.type)) {
    fail(value.position,
         "For Each goes through arrays, not through a String; its characters are Split(…, \"\")");
  }
  if (!isPlainObject(value.type) || !value.type.objectClass) return;
  for (const Method* each : value.type.objectClass->findMethods("Keys")) {
    if (each->declaration.result.array && each->declaration.parameters.empty()) {
      fail(value.position, "For Each goes through arrays, not through " +
                               withArticle(value.type.objectClass->name) + "; its keys are ….Keys");
    }
  }
}

}  // namespace

void StatementCompiler::compile(const syntax::ForEach& loop, Position position, Block& block) {
  const Names::Inner inner(names_);
  const syntax::Name& name = loop.variable;
  std::optional<Type> declared;
  Expr array;
  bool fits = problems_.attempt([&] {
    if (loop.type) declared = typeFor(name, *loop.type);
  });
  fits &= problems_.attempt([&] {
    array = expressions_.compile(loop.array);
    if (!array->type.array && !fits) throw FollowsFromAnother(loop.array.position);
    if (!array->type.array) {
      failForEach(*array);
      array = convertTo(std::move(array), Type{Kind::Variant}.arrayOf(), "what For Each goes through");
    }
  });
  std::unique_ptr<Place> current;
  Stmt assign;
  fits &= problems_.attempt([&] {
    if (loop.type && !declared) throw FollowsFromAnother(name.position);
    if (declared) names_.declare(name, *declared);
    if (!loop.type && !names_.find(name.text) && names_.findSubs(name.text).empty()) {
      const std::string element = fits ? nameOf(array->type.element()) : "Variant";
      throw UnknownName(
          name.position, name.text,
          "unknown name '" + name.text + "'; write For Each " + name.text + " As " + element + " In …");
    }
    Expr variable = names_.expect(name);
    if (!fits) return;
    const Type element = array->type.element();
    // The element passes through a hidden variable, from which it is assigned like any other value.
    current = names_.hidden(element, position);
    Expr value = current->again();
    value->position = loop.array.position;
    assign = assignment(position, std::move(variable),
                        convertTo(std::move(value), declared.value_or(element), name.text));
  });
  Block body = loopBody(position, LoopKind::forLoop, name.text, loop.body);
  if (!fits) return;
  block.statements.push_back(
      elementLoop(position, std::move(array), std::move(current), std::move(assign), std::move(body)));
}

void StatementCompiler::compile(const syntax::Loop& loop, Position position, Block& block) {
  const bool isWhile = loop.kind == LoopKind::whileLoop;
  const auto test = [&](const std::optional<syntax::Loop::Test>& given, const std::string& where) {
    LoopTest made;
    problems_.attempt([&] {
      if (given) made = {expressions_.condition(given->condition, "the condition of " + where), given->until};
    });
    return made;
  };
  LoopTest before = test(loop.before, isWhile ? "While" : "Do");
  Block body = loopBody(position, loop.kind, "", loop.body);
  LoopTest after = test(loop.after, "Loop");
  block.statements.push_back(testedLoop(position, isWhile ? TestedLoop::whileLoop : TestedLoop::doLoop,
                                        std::move(before), std::move(after), std::move(body)));
}

void StatementCompiler::compile(const syntax::Try& attempt, Position position, Block& block) {
  Block body = innerBlock(attempt.body);
  std::vector<CatchClause> clauses;
  for (const syntax::Try::Catch& each : attempt.catches) {
    const Names::Inner inner(names_);
    CatchClause clause{hostClasses().exception, nullptr, {}};
    problems_.attempt([&] {
      if (each.type) {
        const Type type = each.variable ? typeFor(*each.variable, *each.type) : names_.typeOf(*each.type);
        if (!isPlainObject(type) || !type.objectClass || !type.objectClass->isA(*clause.type)) {
          if (each.variable) problems_.expectUnknown(each.variable->text);
          fail(each.type->position, "expected a class of exceptions, found " + nameOf(type));
        }
        clause.type = type.objectClass;
      }
      if (each.variable) clause.variable = names_.declare(*each.variable, {Kind::Object, false, clause.type});
    });
    clause.body = this->block(each.body);
    clauses.push_back(std::move(clause));
  }
  Block finally = innerBlock(attempt.finally);
  block.statements.push_back(tryCatch(position, std::move(body), std::move(clauses), std::move(finally)));
}

}  // namespace host
