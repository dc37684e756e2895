// Names that the program itself declares: variables, members of the class around, Subs, modules, classes.
#include <algorithm>

#include "language/calls.h"
#include "language/conversions.h"
#include "language/delegates.h"
#include "language/expression_compiler.h"
#include "language/intrinsics.h"
#include "language/spelling.h"
#include "runtime/name.h"
#include "runtime/registry.h"

namespace host {

using syntax::Name;

namespace {

bool isSelfWord(const std::string& word) { return sameName(word, "Self") || sameName(word, "Me"); }

}  // namespace

Expr ExpressionCompiler::ownName(const Name& name, Links& links) {
  if (Expr local = names_.findLocal(name.text)) return local;
  if (Expr member = memberOfSelf(name, links)) return member;
  if (Expr variable = names_.find(name.text)) return variable;
  if (const std::vector<const Method*> subs = names_.findSubs(name.text); !subs.empty()) {
    return callOwn(subs, name, nullptr, links);
  }
  if (const Declarations* space = names_.findSpace(name.text)) return nameOfSpace(*space, name, links);
  return nullptr;
}

Expr ExpressionCompiler::callOwn(const std::vector<const Method*>& methods, const Name& name, Expr self,
                                 Links& links) {
  Exprs given = argumentsOf(methods, links);
  if (!anyTakes(methods, given)) {
    if (Expr value = callOther(name, given, links)) return value;
  }
  return callMethod(methods, {name.text, name.position, links.taken()}, std::move(self), std::move(given),
                    links.resultUnused());
}

// Where what the program declares does not take the arguments, a function of that name that the host or a
// library has may be meant: Join(parts, separator) in a class that inherits from Thread. Null, and the
// arguments stay, where that does not take them either.
Expr ExpressionCompiler::callOther(const Name& name, Exprs& given, Links& links) {
  const std::vector<const Method*> others = registry().findFunctions(name.text);
  if (anyTakes(others, given)) return function(others, name, std::move(given), links);
  return others.empty() && given.size() == 1 ? callIntrinsic({name.text, name.position}, given) : nullptr;
}

// The object whose method this is, and its members; shared ones of its class as well.
Expr ExpressionCompiler::memberOfSelf(const Name& name, Links& links) {
  const Class* own = names_.ownClass();
  Expr self = names_.self();
  const bool namesSelf = isSelfWord(name.text), namesSuper = sameName(name.text, "Super");
  if (!own) {
    if (namesSelf || namesSuper)
      fail(name.position, name.text + " stands for an object only in a method of a class");
    return nullptr;
  }
  const bool belongsToObject =
      namesSelf || namesSuper || own->findProperty(name.text) || !own->findMethods(name.text).empty();
  if (!belongsToObject) {
    if (own->findSharedMethods(name.text).empty() && !own->findSharedProperty(name.text)) return nullptr;
    return memberOfClass(*own, name, links);
  }
  if (!self) {
    if (!own->findSharedMethods(name.text).empty()) return memberOfClass(*own, name, links);
    fail(name.position, name.text + " belongs to an object, which a Shared method does not have");
  }
  if (namesSuper) return memberOfSuper(name, links);
  if (namesSelf) return self;
  if (own->findProperty(name.text)) return memberOfObject(*own, std::move(self), name, links);
  return callOwn(allowed(own->findMethods(name.text), name), name, std::move(self), links);
}

// Super.Name(…): what the class above makes of it.
Expr ExpressionCompiler::memberOfSuper(const Name& name, Links& links) {
  const Class* above = names_.ownClass()->super;
  const Name* member = links.takeName();
  if (isWrong(names_.ownClass())) throw FollowsFromAnother(name.position);
  if (!above) fail(name.position, "there is no class above " + names_.ownClass()->name);
  if (!member) fail(name.position, "expected a member after Super, such as Super.Constructor");
  if (const Property* found = above->findProperty(member->text)) {
    names_.checkAccess(found->access, found->owner, *member);
    if (!found->get) return property(*found, names_.self());
    Property unchanging = *found;
    unchanging.get = names_.unchanging({found->get})[0];
    return property(unchanging, names_.self());
  }
  std::vector<const Method*> methods = allowed(above->findMethods(member->text), *member);
  Exprs given = arguments(links.takeArguments());
  if (methods.empty()) {
    // Every class can be constructed without arguments, if only by what it starts with.
    if (sameName(member->text, "Constructor") && given.empty()) {
      return integerNode(Type{}, [](Frame&) { return 0; });
    }
    failForMember(above, *member, above->name + " has no member", membersOf(*above));
  }
  return callMethod(names_.unchanging(methods), {member->text, member->position}, names_.self(),
                    std::move(given), links.resultUnused());
}

// A module, an enumeration or a class, by its name.
Expr ExpressionCompiler::nameOfSpace(const Declarations& space, const Name& name, Links& links) {
  if (const Name* member = links.takeName()) return memberOfSpace(space, *member, links);
  if (space.ofClass) {
    const syntax::Arguments* given = links.peekArguments();
    if (given && given->parenthesised) {
      Exprs values = arguments(links.takeArguments());
      const bool isObject = values.size() == 1 && isPlainObject(values[0]->type);
      if (Expr value = isObject ? nullptr : callOther(name, values, links)) return value;
      return viewAs(*space.ofClass, name, std::move(values));
    }
    fail(name.position,
         "the class " + space.name + " is no value; expected a member of it, or New " + space.name);
  }
  const syntax::Arguments* given = links.peekArguments();
  const Declarations* around = space.outer;
  const auto type = around ? around->types.find(lowerCase(space.name)) : decltype(around->types.end())();
  if (given && given->values.size() == 1 && around && type != around->types.end()) {  // of an enumeration
    return plainView(std::move(arguments(links.takeArguments())[0]), type->second);
  }
  fail(name.position, space.name + " is no value; expected a member of it");
}

Expr ExpressionCompiler::memberOfSpace(const Declarations& space, const Name& name, Links& links) {
  if (space.ofClass) return memberOfClass(*space.ofClass, name, links);
  const std::string key = lowerCase(name.text);
  std::vector<std::string> known;
  if (!names_.sees(space, name.text)) fail(name.position, name.text + " is Private in " + space.name);
  if (Expr value = space.value(key)) return value;
  if (const auto subs = space.subs.find(key); subs != space.subs.end()) {
    Exprs given = argumentsOf(subs->second, links);
    return callMethod(subs->second, {name.text, name.position}, nullptr, std::move(given),
                      links.resultUnused());
  }
  if (const auto inner = space.spaces.find(key); inner != space.spaces.end()) {
    return nameOfSpace(*inner->second, name, links);
  }
  for (const auto& [each, value] : space.values) known.push_back(nameOf(value));
  for (const auto& [each, subs] : space.subs) known.push_back(subs[0]->declaration.name);
  for (const auto& [each, inner] : space.spaces) known.push_back(inner->name);
  failForMember(nullptr, name, space.name + " has no member", known);
}

// A shared variable or a constant of a class, or of one above it.
Expr ExpressionCompiler::sharedValue(const Class& type, const Name& name) {
  const std::string key = lowerCase(name.text);
  for (const OwnClass* each = ownOf(&type); each; each = ownOf(each->super)) {
    if (Expr value = each->declared.value(key)) {
      names_.checkAccess(each->declared.accessOf(key), each, name);
      return value;
    }
  }
  return nullptr;
}

// An enumeration or class in a class.
Expr ExpressionCompiler::sharedSpace(const Class& type, const Name& name, Links& links) {
  const std::string key = lowerCase(name.text);
  for (const OwnClass* each = ownOf(&type); each; each = ownOf(each->super)) {
    const auto found = each->declared.spaces.find(key);
    if (found == each->declared.spaces.end()) continue;
    names_.checkAccess(each->declared.accessOf(key), each, name);
    return nameOfSpace(*found->second, name, links);
  }
  return nullptr;
}

// value.Name(…), where a Sub Name extends the value's type: it is handed the value first.
Expr ExpressionCompiler::extension(Expr& object, const Name& name, Links& links) {
  const Class* objectClass = isPlainObject(object->type) ? object->type.objectClass : nullptr;
  if (objectClass && (objectClass->findProperty(name.text) || !objectClass->findMethods(name.text).empty())) {
    return nullptr;  // its own members go first
  }
  std::vector<const Method*> fitting;
  for (const Method* each : names_.findSubs(name.text)) {
    if (each->extends && distance(*object, each->declaration.parameters[0].type) >= 0)
      fitting.push_back(each);
  }
  if (fitting.empty()) return nullptr;
  Exprs given = arguments(links.takeArguments());
  given.insert(given.begin(), std::move(object));
  return callMethod(fitting, {name.text, name.position}, nullptr, std::move(given), links.resultUnused());
}

std::vector<const Method*> ExpressionCompiler::allowed(std::vector<const Method*> methods,
                                                       const Name& name) const {
  if (methods.empty()) return methods;
  const Method& first = *methods[0];
  std::erase_if(methods, [&](const Method* each) { return !names_.mayUse(each->access, each->owner); });
  if (methods.empty()) names_.checkAccess(first.access, first.owner, name);
  return methods;
}

// A class may keep its objects' making to itself.
void ExpressionCompiler::checkConstructor(const Class& made, const Name& name) const {
  for (const Class* each = &made; each && each->isOwn; each = each->super) {
    std::vector<const Method*> own;
    collectNamed(each->methods, "Constructor", own);
    if (!own.empty()) return void(allowed(std::move(own), {"Constructor", name.position}));
  }
}

// AddressOf name, AddressOf object.name, AddressOf module.name.
Expr ExpressionCompiler::compileNode(const syntax::AddressOf& taken) {
  const auto* chain = std::get_if<syntax::Chain>(&taken.method->node);
  const auto* name = chain ? std::get_if<Name>(&chain->links.back()) : std::get_if<Name>(&taken.method->node);
  if (!name) fail(taken.method->position, "expected the name of a Sub or method after AddressOf");
  std::vector<const Method*> methods;
  Expr self;
  if (!chain) {
    const Class* own = names_.ownClass();
    self = names_.self();
    if (self) methods = own->findMethods(name->text);
    if (methods.empty()) self = nullptr;
    if (methods.empty() && own) methods = own->findSharedMethods(name->text);
    if (methods.empty()) methods = names_.findSubs(name->text);
  } else if (const Declarations* space = spaceOf(*chain)) {
    const auto found = space->subs.find(lowerCase(name->text));
    if (found != space->subs.end() && names_.sees(*space, name->text)) methods = found->second;
    if (space->ofClass) methods = space->ofClass->findSharedMethods(name->text);
  } else {
    self = allButLast(*chain);
    if (isPlainObject(self->type) && self->type.objectClass) {
      methods = self->type.objectClass->findMethods(name->text);
    }
  }
  methods = allowed(std::move(methods), *name);
  if (methods.empty()) throw WrongUse(name->position, name->text, "there is no Sub " + name->text);
  return std::make_unique<MethodReference>(std::move(methods), std::move(self));
}

// The module or class whose name stands before the last one; null where a value does.
const Declarations* ExpressionCompiler::spaceOf(const syntax::Chain& chain) const {
  const auto* first = std::get_if<Name>(&chain.first->node);
  if (!first || names_.findLocal(first->text) || names_.find(first->text)) return nullptr;
  const Declarations* space = names_.findSpace(first->text);
  for (std::size_t i = 0; space && i + 1 < chain.links.size(); ++i) {
    const auto* next = std::get_if<Name>(&chain.links[i]);
    const auto found = next ? space->spaces.find(lowerCase(next->text)) : space->spaces.end();
    if (found == space->spaces.end()) return nullptr;
    space = found->second;
  }
  return space;
}

// M.Five, Color.Red
bool ExpressionCompiler::isConstantOfSpace(const syntax::Chain& chain) const {
  const auto* name = std::get_if<Name>(&chain.links.back());
  const Declarations* space = name ? spaceOf(chain) : nullptr;
  const Expr value = space ? space->value(lowerCase(name->text)) : nullptr;
  return value && !value->place();
}

}  // namespace host
