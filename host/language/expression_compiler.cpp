// Expressions: which variable, Sub, class, module or function a name stands for, and which member follows.
#include "language/expression_compiler.h"

#include <algorithm>
#include <iterator>

#include "language/absent_words.h"
#include "language/arrays.h"
#include "language/calls.h"
#include "language/conditional.h"
#include "language/conversions.h"
#include "language/intrinsics.h"
#include "language/operators.h"
#include "language/spelling.h"
#include "runtime/registry.h"
#include "runtime/wording.h"

namespace host {

using syntax::Arguments;
using syntax::Name;

namespace {

const std::vector<syntax::Link> nothingFollows;

Callee calleeOf(const Name& name) { return {name.text, name.position}; }

std::vector<const Method*> functionsOf(const Module& module, const std::string& name) {
  std::vector<const Method*> functions;
  for (const Method& method : module.methods) {
    if (sameName(method.declaration.name, name)) functions.push_back(&method);
  }
  return functions;
}

// Bounds how deep the expressions that run may lie inside each other, in which a sum of n parts is n deep, so
// that none exhausts the stack.
class Depth {
 public:
  Depth(std::size_t& depth, std::size_t more, Position position) : depth_(depth), more_(more) {
    constexpr std::size_t greatest = 1000;
    if (more > greatest || depth > greatest - more) {
      fail(position, "the expression is too long: more than 1000 operators and members belong together");
    }
    depth_ += more_;
  }
  ~Depth() { depth_ -= more_; }
  Depth(const Depth&) = delete;
  Depth& operator=(const Depth&) = delete;

 private:
  std::size_t& depth_;
  std::size_t more_;
};

}  // namespace

Expr ExpressionCompiler::compile(const syntax::Expression& expression) {
  Expr compiled = std::visit([&](const auto& node) { return compileNode(node); }, expression.node);
  if (compiled->position.line == 0) compiled->position = expression.position;
  return compiled;
}

Expr ExpressionCompiler::compileStatement(const syntax::Expression& expression) {
  Expr compiled;
  if (const auto* name = std::get_if<Name>(&expression.node)) {
    Links none(nothingFollows, true);
    compiled = this->name(*name, none);
  } else if (const auto* chain = std::get_if<syntax::Chain>(&expression.node)) {
    compiled = this->chain(*chain, true);
  } else {
    return compile(expression);
  }
  compiled->position = expression.position;
  return compiled;
}

Expr ExpressionCompiler::condition(const syntax::Expression& expression, const std::string& what) {
  return host::condition(compile(expression), expression.position, what);
}

std::pair<Slot, Type> ExpressionCompiler::constant(const syntax::Expression& expression,
                                                   std::optional<Type> type, const std::string& what) {
  Expr value = compile(expression);
  // It is computed now, when no variable has a value yet.
  if (const std::optional<Position> position = notConstant(expression)) {
    fail(*position, what + " is not constant");
  }
  if (type) value = convertTo(std::move(value), *type, what);
  Frame none;
  try {
    return {value->evaluate(none), value->type};
  } catch (const HostException& exception) {
    fail(expression.position, what + " cannot be computed: " + messageOf(*exception.exception));
  }
}

std::optional<Position> ExpressionCompiler::notConstant(const syntax::Expression& expression) const {
  if (const auto* name = std::get_if<Name>(&expression.node)) {
    const Expr value = names_.find(name->text);
    return value && !value->place() ? std::nullopt : std::optional(expression.position);
  }
  if (const auto* parentheses = std::get_if<syntax::Parenthesised>(&expression.node)) {
    return notConstant(*parentheses->inner);
  }
  if (const auto* negation = std::get_if<syntax::Negation>(&expression.node)) {
    return notConstant(*negation->operand);
  }
  if (const auto* inversion = std::get_if<syntax::Not>(&expression.node)) {
    return notConstant(*inversion->operand);
  }
  if (const auto* chain = std::get_if<syntax::Chain>(&expression.node)) {
    if (isConstantOfSpace(*chain)) return std::nullopt;
    if (const auto position = notConstant(*chain->first)) return position;
    return std::visit([](const auto& link) { return link.position; }, chain->links[0]);
  }
  if (const auto* sequence = std::get_if<syntax::Sequence>(&expression.node)) {
    if (const auto position = notConstant(*sequence->first)) return position;
    for (const auto& [position, what, operand] : sequence->rest) {
      const auto* op = std::get_if<Operator>(&what);
      if (!op || *op == Operator::is) return position;
      if (const auto inside = notConstant(*operand)) return inside;
    }
    return std::nullopt;
  }
  return std::holds_alternative<syntax::Literal>(expression.node) ? std::nullopt
                                                                  : std::optional(expression.position);
}

Exprs ExpressionCompiler::arguments(const Arguments* given) {
  Exprs compiled;
  if (!given) return compiled;
  for (const syntax::Expression& each : given->values) {
    compiled.push_back(compile(each));
    compiled.back()->position = each.position;
  }
  return compiled;
}

// Operands and operators.

Expr ExpressionCompiler::compileNode(const syntax::Unread&) { throw FollowsFromAnother({}); }

Expr ExpressionCompiler::compileNode(const syntax::Literal& literal) {
  struct Maker {
    // A number beyond the signed range is unsigned.
    Expr operator()(std::uint64_t value) const {
      return integerLiteral(value, {value > INT64_MAX ? Kind::UInt64 : Kind::Int64});
    }
    Expr operator()(double value) const { return realLiteral(value); }
    Expr operator()(bool value) const {
      return booleanNode([value](Frame&) { return value; });
    }
    Expr operator()(const std::string& value) const { return textLiteral(value); }
    Expr operator()(syntax::NilLiteral) const {
      return referenceNode({Kind::Nil}, [](Frame&) { return Ref<Heap>(); });
    }
  };
  return std::visit(Maker(), literal.value);
}

Expr ExpressionCompiler::compileNode(const Name& name) {
  Links none(nothingFollows, false);
  Expr value = this->name(name, none);
  value->written = name.text;
  return value;
}

Expr ExpressionCompiler::compileNode(const syntax::New& made) {
  const Type type = typeOf(made.type);
  if (type.kind != Kind::Object || !type.objectClass) {
    fail(made.type.position, "expected a class after New, found " + nameOf(type));
  }
  const Class& objectClass = *type.objectClass;
  if (objectClass.isInterface) fail(made.type.position, "an interface has no objects of its own");
  Exprs given = arguments(&made.arguments);
  if (objectClass.signature && given.size() == 1) return convertTo(std::move(given[0]), type, "the method");
  for (const OwnClass* each = ownOf(&objectClass); each; each = ownOf(each->super)) {
    if (each->isWrong || each->hasWrongConstructor) throw FollowsFromAnother(made.type.position);
  }
  checkConstructor(objectClass, made.type);
  return newObject(objectClass, made.type.position, std::move(given));
}

Expr ExpressionCompiler::compileNode(const syntax::Parenthesised& parentheses) {
  Expr inner = compile(*parentheses.inner);
  if (!inner->place()) return inner;
  // No place any more: a variable in parentheses goes by value.
  const Type type = inner->type;
  return slotNode(type, [inner = std::move(inner)](Frame& f) { return inner->evaluate(f); });
}

Expr ExpressionCompiler::compileNode(const syntax::Conditional& chosen) {
  Expr asked = condition(*chosen.condition, "the condition of If");
  Expr first = compile(*chosen.first);
  return conditional(std::move(asked), std::move(first), compile(*chosen.second), chosen.condition->position);
}

Expr ExpressionCompiler::compileNode(const syntax::Negation& negated) {
  return negation(compile(*negated.operand), negated.position);
}

Expr ExpressionCompiler::compileNode(const syntax::Not& inverted) {
  return inversion(compile(*inverted.operand), inverted.position);
}

Expr ExpressionCompiler::compileNode(const syntax::Sequence& sequence) {
  const Depth depth(depth_, sequence.rest.size(), sequence.first->position);
  Expr left = compile(*sequence.first);
  for (const auto& [position, what, operand] : sequence.rest) {
    if (const auto* op = std::get_if<Operator>(&what)) {
      left = binary(*op, std::move(left), compile(*operand), position);
      continue;
    }
    const auto& name = std::get<syntax::TypeName>(what);
    const Type type = typeOf(name);
    if (type.kind != Kind::Object || !type.objectClass) {
      fail(name.position, "expected a class after IsA, found " + nameOf(type));
    }
    left = instanceTest(std::move(left), *type.objectClass, name.position);
    left->position = position;
  }
  return left;
}

// Names and members.

Expr ExpressionCompiler::chain(const syntax::Chain& chain, bool asStatement) {
  Links links(chain.links, asStatement, chain.first.get());
  return linked(chain, links);
}

// The object whose method is named last.
Expr ExpressionCompiler::allButLast(const syntax::Chain& chain) {
  Links links(chain.links, false, chain.first.get(), 1);
  return linked(chain, links);
}

Expr ExpressionCompiler::linked(const syntax::Chain& chain, Links& links) {
  const Position start = chain.first->position;
  const Depth depth(depth_, chain.links.size(), start);
  const auto* name = std::get_if<Name>(&chain.first->node);
  Expr value = name ? this->name(*name, links) : compile(*chain.first);
  while (!links.atEnd()) {
    value->position = start;
    if (const Name* next = links.takeName()) {
      value = member(std::move(value), *next, links);
      continue;
    }
    const std::string written = links.taken();
    value = elements(std::move(value), start, *links.takeArguments(), written);
  }
  value->written = links.taken();
  return value;
}

Expr ExpressionCompiler::elements(Expr value, Position start, const Arguments& indices,
                                  const std::string& written) {
  const Class* objectClass = isPlainObject(value->type) ? value->type.objectClass : nullptr;
  if (objectClass && objectClass->signature) {
    return callDelegate(*objectClass, {objectClass->name, start, written}, std::move(value),
                        arguments(&indices));
  }
  if (!indices.parenthesised) {
    fail(start, "expected a statement; this is a value that nothing is done with");
  }
  if (objectClass) {
    const auto methods = objectClass->findMethods("Operator_Subscript");
    if (!methods.empty()) {
      const Callee callee{"Operator_Subscript", indices.position, written};
      return callMethod(methods, callee, std::move(value), arguments(&indices));
    }
  }
  if (!value->type.array) {
    fail(indices.position,
         value->type.kind == Kind::None
             ? "this has no value to take an element of"
             : withArticle(nameOf(value->type)) + " has no elements" +
                   (isText(value->type) ? "; its characters are Middle(s, i, 1), from 0" : ""));
  }
  return element(std::move(value), indices.position, arguments(&indices));
}

Expr ExpressionCompiler::name(const Name& name, Links& links) {
  if (Expr own = ownName(name, links)) return own;
  if (const Class* type = registry().findClass(name.text)) {
    if (const Name* member = links.takeName()) return memberOfClass(*type, *member, links);
    const Arguments* given = links.peekArguments();
    if (given && given->parenthesised) return viewAs(*type, name, arguments(links.takeArguments()));
    fail(name.position,
         "the class " + type->name + " is no value; expected a member of it, or New " + type->name);
  }
  if (const Module* module = registry().findModule(name.text)) {
    const Name* member = links.takeName();
    if (!member) fail(name.position, "the module " + module->name + " is no value; expected a member of it");
    return memberOfModule(*module, *member, links);
  }
  if (const std::vector<const Method*> functions = registry().findFunctions(name.text); !functions.empty()) {
    return function(functions, name, arguments(links.takeArguments()), links);
  }
  if (const Property* shared = registry().findSharedProperty(name.text)) {
    return property(*shared, nullptr);
  }
  if (sameName(name.text, "CType")) return viewAsNamed(name, links);
  if (const std::optional<Type> type = typeNamed(name.text)) return plainType(*type, name, links);
  if (!absent(name.text).empty()) names_.failUnknown(name);  // before what follows it is looked at
  Exprs given = arguments(links.takeArguments());
  if (Expr value = callIntrinsic(calleeOf(name), given)) return value;
  names_.failUnknown(name);
}

// A function of the host's or a library's. Those that join two values of a kind join any number of them.
Expr ExpressionCompiler::function(const std::vector<const Method*>& functions, const Name& name, Exprs given,
                                  Links& links) {
  if (sameName(name.text, "Format")) return callIntrinsic(calleeOf(name), given);
  static constexpr std::string_view joining[] = {"BitAnd", "BitOr", "BitXor", "Min", "Max"};
  const bool joins = std::any_of(std::begin(joining), std::end(joining),
                                 [&](std::string_view each) { return sameName(each, name.text); });
  const Depth depth(depth_, joins ? given.size() : 0, name.position);
  while (joins && given.size() > 2) {
    Exprs two;
    for (std::size_t i : {0, 1}) two.push_back(std::move(given[i]));
    given.erase(given.begin());
    const Position position = two[0]->position;
    given[0] = callMethod(functions, calleeOf(name), nullptr, std::move(two), links.resultUnused());
    given[0]->position = position;
  }
  return callMethod(functions, calleeOf(name), nullptr, std::move(given), links.resultUnused());
}

// A checked view of an object as another class.
Expr ExpressionCompiler::viewAs(const Class& type, const Name& name, Exprs given) {
  if (given.size() != 1) {
    fail(name.position,
         "expected one value in " + type.name + "(…)" +
             (type.isInterface || type.signature ? "" : "; New " + type.name + " makes an object"));
  }
  Expr object = std::move(given[0]);
  if (isPlainObject(object->type) && !type.signature) {  // any object may turn out to be one
    const Position position = object->position;
    object = referenceNode({Kind::Object},
                           [object = std::move(object)](Frame& f) { return object->reference(f); });
    object->position = position;
  }
  return convertTo(std::move(object), {Kind::Object, false, &type}, "the object");
}

// CType(value, Type)
Expr ExpressionCompiler::viewAsNamed(const Name& name, Links& links) {
  const Arguments* given = links.takeArguments();
  const bool isWhole = given && given->values.size() == 2;
  const auto* named = isWhole ? std::get_if<Name>(&given->values[1].node) : nullptr;
  if (!named) fail(name.position, "expected a value and the name of a type in CType(…)");
  return plainView(compile(given->values[0]), typeOf({{named->text, named->position}}));
}

// A value as one of a type without a class, or of one with one.
Expr ExpressionCompiler::plainView(Expr value, Type type) {
  const Position position = value->position;
  if (distance(*value, type) < 0) {
    const bool reads = isText(value->type) && type.isNumber();
    fail(position, withArticle(nameOf(value->type)) + " is not taken for " + withArticle(nameOf(type)) +
                       (reads          ? "; Val(…) reads the number in a text"
                        : isText(type) ? "; Str(…) makes a text of it"
                                       : ""));
  }
  value->isLiteral = false;  // no loss is to be warned of: it is asked for
  Expr viewed = convertTo(std::move(value), type, "the value");
  if (viewed->place()) {  // a value of its own
    return slotNode(type, [viewed = std::move(viewed)](Frame& f) { return viewed->evaluate(f); });
  }
  viewed->position = position;
  return viewed;
}

// Integer(value), or what a type has besides: String.FromArray(parts, separator) is Join(parts, separator).
Expr ExpressionCompiler::plainType(Type type, const Name& name, Links& links) {
  static constexpr struct {
    const char* type;
    const char* member;
    const char* function;
  } members[] = {{"String", "FromArray", "Join"},        {"String", "Chr", "Chr"},
                 {"Integer", "FromString", "ToInteger"}, {"Integer", "FromText", "ToInteger"},
                 {"Integer", "Parse", "ToInteger"},      {"Double", "FromString", "ToDouble"},
                 {"Double", "FromText", "ToDouble"},     {"Double", "Parse", "ToDouble"}};
  if (const Name* member = links.takeName()) {
    for (const auto& each : members) {
      if (!sameName(each.type, name.text) || !sameName(each.member, member->text)) continue;
      return this->name({each.function, member->position}, links);
    }
    fail(member->position, "the type " + name.text + " has no member '" + member->text + "'" +
                               absentMember(name.text, member->text));
  }
  const Arguments* given = links.peekArguments();
  if (!given || !given->parenthesised) {
    fail(name.position, "the type " + name.text + " is no value; " + name.text + "(…) makes one of another");
  }
  Exprs values = arguments(links.takeArguments());
  if (values.size() != 1) fail(name.position, "expected one value in " + name.text + "(…)");
  return plainView(std::move(values[0]), type);
}

Expr ExpressionCompiler::memberOfClass(const Class& type, const Name& name, Links& links) {
  if (Expr value = sharedValue(type, name)) return value;
  if (Expr value = sharedSpace(type, name, links)) return value;
  if (const std::vector<const Method*> methods = allowed(type.findSharedMethods(name.text), name);
      !methods.empty()) {
    Exprs given = argumentsOf(methods, links);
    return callMethod(methods, calleeOf(name), nullptr, std::move(given), links.resultUnused());
  }
  if (const Property* shared = type.findSharedProperty(name.text)) {
    return property(*shared, nullptr);
  }
  std::vector<std::string> known;
  for (const Method& method : type.sharedMethods) known.push_back(method.declaration.name);
  for (const OwnClass* each = ownOf(&type); each; each = ownOf(each->super)) {
    for (const auto& [key, value] : each->declared.values) known.push_back(nameOf(value));
    for (const auto& [key, space] : each->declared.spaces) known.push_back(space->name);
  }
  for (const Property& shared : type.sharedProperties) known.push_back(shared.name);
  if (type.findProperty(name.text) || !type.findMethods(name.text).empty()) {
    throw WrongUse(
        name.position, name.text,
        name.text + " belongs to an object, such as New " + type.name + " makes, not to the class");
  }
  failForMember(&type, name, "the class " + type.name + " has no shared member", known);
}

Expr ExpressionCompiler::memberOfModule(const Module& module, const Name& name, Links& links) {
  if (const std::vector<const Method*> functions = functionsOf(module, name.text); !functions.empty()) {
    return function(functions, name, arguments(links.takeArguments()), links);
  }
  std::vector<std::string> known;
  for (const Method& method : module.methods) known.push_back(method.declaration.name);
  for (const Property& shared : module.properties) {
    if (sameName(shared.name, name.text)) return property(shared, nullptr);
    known.push_back(shared.name);
  }
  failForMember(nullptr, name, "the module " + module.name + " has no member", known);
}

void ExpressionCompiler::failForMember(const Class* type, const Name& name, const std::string& message,
                                       const std::vector<std::string>& known) {
  if (isWrong(type)) throw FollowsFromAnother(name.position);
  std::string advice;
  for (const Class* each = type; each && advice.empty(); each = each->super) {
    advice = absentMember(each->name, name.text);
  }
  if (advice.empty()) advice = suggestion(name.text, known) + (type ? absent(type->name) : "");
  throw WrongUse(name.position, name.text, message + " '" + name.text + "'" + advice);
}

Expr ExpressionCompiler::member(Expr object, const Name& name, Links& links) {
  if (Expr extended = extension(object, name, links)) return extended;
  const Type type = object->type;
  if (type.array) {
    return callArrayMethod(calleeOf(name), std::move(object), arguments(links.takeArguments()));
  }
  if (type.kind == Kind::Pointer) return pointerAccess(std::move(object), name, links);
  if (type.kind == Kind::Object && type.objectClass) {
    return memberOfObject(*type.objectClass, std::move(object), name, links);
  }
  if (isVariant(type)) return memberOfVariant(std::move(object), name, links);
  const std::string advice = absentMember(nameOf(type), name.text);
  const std::string unknown = withArticle(nameOf(type)) + " has no member '" + name.text + "'" + advice;
  if (type.kind == Kind::Object || type.kind == Kind::None || type.kind == Kind::Nil) {
    throw WrongUse(name.position, name.text, unknown);
  }
  // s.Left(2) is Left(s, 2).
  Exprs given = arguments(links.takeArguments());
  given.insert(given.begin(), std::move(object));
  if (const std::vector<const Method*> functions = registry().findFunctions(name.text); !functions.empty()) {
    return callMethod(functions, calleeOf(name), nullptr, std::move(given), links.resultUnused());
  }
  if (Expr value = callIntrinsic(calleeOf(name), given)) return value;
  throw WrongUse(name.position, name.text,
                 unknown + (advice.empty() ? suggestion(name.text, membersOfValue(type)) : ""));
}

// v.IntegerValue is Variant.IntegerValue(v).
Expr ExpressionCompiler::memberOfVariant(Expr value, const Name& name, Links& links) {
  const Class& words = *registry().findClass("Variant");
  const std::vector<const Method*> methods = words.findSharedMethods(name.text);
  if (methods.empty()) {
    std::vector<std::string> known;
    for (const Method& method : words.sharedMethods) known.push_back(method.declaration.name);
    const Class& dictionary = *registry().findClass("Dictionary");
    const bool isDictionarys =
        dictionary.findProperty(name.text) || !dictionary.findMethods(name.text).empty();
    if (isDictionarys) {
      fail(name.position, "a Variant has no member '" + name.text +
                              "'; that of a Dictionary in it is Dictionary(v)." + name.text);
    }
    const std::string near = suggestion(name.text, known);
    fail(name.position, "a Variant has no member '" + name.text + "'" +
                            (near.empty() ? "; a member of what is in it follows a view of it, such as "
                                            "ClassName(v)." +
                                                name.text
                                          : near));
  }
  Exprs given = arguments(links.takeArguments());
  given.insert(given.begin(), std::move(value));
  return callMethod(methods, calleeOf(name), nullptr, std::move(given), links.resultUnused());
}

Expr ExpressionCompiler::memberOfObject(const Class& type, Expr object, const Name& name, Links& links) {
  if (type.signature && sameName(name.text, "Invoke")) {
    const Callee callee{type.name, name.position, links.taken()};
    return callDelegate(type, callee, std::move(object), arguments(links.takeArguments()));
  }
  if (const Property* found = type.findProperty(name.text)) {
    names_.checkAccess(found->access, found->owner, name);
    return property(*found, std::move(object), links.taken());
  }
  const Callee callee{name.text, name.position, links.taken()};
  std::vector<const Method*> methods = allowed(type.findMethods(name.text), name);
  if (methods.empty()) {
    methods = allowed(type.findSharedMethods(name.text), name);
    object = nullptr;
  }
  if (methods.empty()) {
    if (Expr value = sharedValue(type, name)) return value;
    failForMember(&type, name, type.name + " has no member", membersOf(type));
  }
  Exprs compiled = argumentsOf(methods, links);
  return callMethod(methods, callee, std::move(object), std::move(compiled), links.resultUnused());
}

// An array that a method without parameters gives may be indexed at once.
Exprs ExpressionCompiler::argumentsOf(const std::vector<const Method*>& methods, Links& links) {
  const bool takesArguments = std::any_of(methods.begin(), methods.end(), [](const Method* each) {
    return !each->declaration.parameters.empty();
  });
  const Arguments* given = links.peekArguments();
  const Type result = methods[0]->declaration.result;
  const Class* made = isPlainObject(result) ? result.objectClass : nullptr;
  const bool hasElements =
      result.array || (made && (made->signature || !made->findMethods("Operator_Subscript").empty()));
  const bool indexed =
      !takesArguments && hasElements && given && given->parenthesised && !given->values.empty();
  return indexed ? Exprs() : arguments(links.takeArguments());
}

// p.UInt64(8): what a Ptr points to, so many bytes on.
Expr ExpressionCompiler::pointerAccess(Expr pointer, const Name& name, Links& links) {
  const std::optional<Type> type = typeNamed(name.text);
  if (!type || !(type->isNumber() || type->kind == Kind::Boolean || type->kind == Kind::Pointer)) {
    fail(name.position, "a Ptr has no member '" + name.text +
                            "'; its members are named after types, such as UInt64(offset)");
  }
  Exprs given = arguments(links.takeArguments());
  if (given.size() != 1) fail(name.position, "expected one offset in bytes after ." + name.text);
  return pointedTo(*type, std::move(pointer), convertTo(std::move(given[0]), {Kind::Int64}, "the offset"));
}

}  // namespace host
