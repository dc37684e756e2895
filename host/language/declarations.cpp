// The passes: types by their names, what they inherit from, their members, and at last the bodies; each may
// use all that the passes before it have entered.
#include "language/declarations.h"

#include <algorithm>
#include <set>

#include "language/classes.h"
#include "language/delegates.h"
#include "language/signatures.h"
#include "language/spelling.h"
#include "language/statement_compiler.h"

namespace host {

class Declarer::Work {
 public:
  Work(ModuleNames& module, bool mayRedeclare) : module_(module), mayRedeclare_(mayRedeclare) {}

  void declare(const syntax::Members& members) {
    enter(members, module_);
    for (const auto& [parsed, space] : enums_) declareEnum(*parsed, *space);
    for (const auto& [parsed, made] : classes_) resolve(*parsed, *made);
    for (const auto& [parsed, space] : delegates_) declareDelegate(*parsed, *space);
    for (const auto& [parsed, space] : members_) declareConstants(*parsed, *space);
    for (const auto& [parsed, made] : classes_) declareClass(*made);
    for (const auto& [parsed, space] : members_) {
      if (!space->ofClass) declareVariables(*parsed, *space);
    }
    for (const auto& [parsed, space] : members_) {
      if (!space->ofClass) declareSubs(*parsed, *space);
    }
    for (const auto& [parsed, made] : classes_) implementAll(*made);
  }

  void compileStart(std::vector<Type>& locals, Block& block) {
    for (const Start& each : starts_) {
      Names names(module_, locals, false, false, {each.space, false});
      StatementCompiler statements(names, nullptr, false);
      statements.startProperty(*each.group, each.global->type, globalPlace(*each.global), block);
    }
  }

  void compileBodies() {
    for (const auto& [parsed, made] : classes_) compileInitial(*parsed, *made);
    for (const Body& each : bodies_) {
      Sub& sub = *each.sub;
      Names names(module_, sub.locals, false, false, {each.space, sub.hasSelf});
      for (const Parameter& parameter : sub.parameters) names.declareParameter(parameter, sub.position);
      sub.body = StatementCompiler(names, &sub, false).counted(*each.statements);
    }
  }

 private:
  struct Start {
    const syntax::Dim::Group* group;
    const Declarations* space;
    Global* global;
  };
  struct Body {
    Sub* sub;
    const syntax::Block* statements;
    const Declarations* space;
  };

  // Every declaration of a name that stands for a module or a type.
  void enter(const syntax::Members& members, Declarations& space) {
    members_.emplace_back(&members, &space);
    for (const syntax::Module& each : members.modules) {
      Declarations& inner = newSpace(each.name, space);
      module_.modules.push_back(&inner);
      enter(each.members, inner);
    }
    for (const syntax::Enum& each : members.enums) {
      Declarations& inner = newSpace(each.name, space);
      space.types[lowerCase(each.name.text)] = {Kind::Int64};
      enums_.emplace_back(&each, &inner);
    }
    for (const syntax::Sub& each : members.delegates) {
      OwnClass& made = newClass(each.name, space);
      becomeDelegate(made);
      delegates_.emplace_back(&each, &made);
    }
    for (const syntax::Class& each : members.classes) {
      OwnClass& made = newClass(each.name, space);
      made.isInterface = each.isInterface;
      classes_.emplace_back(&each, &made);
      parsed_[&made] = &each;
      enter(each.members, made.declared);
    }
  }

  void checkFree(const syntax::Name& name, const Declarations& space) {
    if (!entered_.emplace(&space, lowerCase(name.text)).second) {
      fail(name.position, "there is another " + name.text + " already");
    }
  }

  Declarations& newSpace(const syntax::Name& name, Declarations& outer) {
    checkFree(name, outer);
    Declarations& space = module_.allSpaces.emplace_back();
    space.name = name.text;
    space.outer = &outer;
    outer.spaces[lowerCase(name.text)] = &space;
    outer.types.erase(lowerCase(name.text));
    return space;
  }

  OwnClass& newClass(const syntax::Name& name, Declarations& outer) {
    checkFree(name, outer);
    OwnClass& made = newOwnClass(module_, name, outer);
    outer.types[lowerCase(name.text)] = {Kind::Object, false, &made};
    outer.spaces[lowerCase(name.text)] = &made.declared;
    return made;
  }

  // Names as they are seen in the place, outside of its Subs.
  template <typename Use>
  auto within(const Declarations& space, Use use) {
    std::vector<Type> none;
    const Names names(module_, none, false, false, {&space, false});
    return use(const_cast<Names&>(names));
  }

  void declareEnum(const syntax::Enum& parsed, Declarations& space) {
    within(space, [&](Names& names) {  // a value may be computed from those before it
      Type type{Kind::Int64};
      if (parsed.type) type = names.typeOf(*parsed.type);
      if (!type.isInteger()) {
        fail(parsed.type->position, "the values of an Enum are integers, not " + nameOf(type));
      }
      const_cast<Declarations*>(space.outer)->types[lowerCase(parsed.name.text)] = type;
      Slot next = {};
      for (const syntax::Enum::Member& each : parsed.members) {
        checkFree(each.name, space);
        if (each.value) {
          next =
              ExpressionCompiler(names).constant(*each.value, type, "the value of " + each.name.text).first;
        }
        space.values[lowerCase(each.name.text)] = Constant{type, next, nullptr};
        ++next.word;
      }
    });
  }

  void resolve(const syntax::Class& parsed, OwnClass& made) {
    within(*made.declared.outer, [&](Names& names) {
      if (parsed.super) made.super = superOf(*parsed.super, names.typeOf(*parsed.super));
      for (const syntax::TypeName& each : parsed.interfaces) {
        const Type type = names.typeOf(each);
        if (!isPlainObject(type) || !type.objectClass || !type.objectClass->isInterface) {
          fail(each.position, "expected an interface, found " + nameOf(type));
        }
        made.interfaces.push_back(type.objectClass);
      }
    });
    for (const Class* each = made.super; each; each = each->super) {
      if (each == &made) fail(parsed.name.position, made.name + " inherits from itself");
    }
    if (made.isInterface) checkInterfaces(parsed, made, made, 0);
  }

  // An interface must not be more than itself.
  static void checkInterfaces(const syntax::Class& parsed, const Class& made, const Class& from, int depth) {
    for (const Class* each : from.interfaces) {
      if (each == &made || depth > 100) fail(parsed.name.position, made.name + " inherits from itself");
      checkInterfaces(parsed, made, *each, depth + 1);
    }
  }

  static const Class* superOf(const syntax::TypeName& name, Type type) {
    const bool isClass = isPlainObject(type) && type.objectClass;
    if (!isClass || type.objectClass->isInterface || type.objectClass->signature ||
        type.objectClass->boxed != Kind::None) {
      fail(name.position, "expected a class to inherit from, found " + nameOf(type));
    }
    return type.objectClass;
  }

  void declareDelegate(const syntax::Sub& parsed, OwnClass& made) {
    within(*made.declared.outer, [&](Names& names) {
      Sub& sub = newSub(module_, parsed, names);
      made.signature = &newMethod(module_.allMethods, sub, parsed);
    });
  }

  void declareConstants(const syntax::Members& members, Declarations& space) {
    if (members.constants.empty()) return;
    within(space, [&](Names& names) {
      for (const auto& [modifiers, parsed] : members.constants) {
        checkFree(parsed.name, space);
        const std::string key = lowerCase(parsed.name.text);
        space.values[key] = StatementCompiler(names, nullptr, false).constant(parsed);
        if (modifiers.access != syntax::Access::everyone) space.access[key] = accessOf(modifiers);
      }
    });
  }

  void declareVariable(const syntax::Property& parsed, Declarations& space) {
    checkFree(parsed.name, space);
    within(space, [&](Names& names) {
      Global& global = module_.allGlobals.emplace_back();
      global.name = parsed.name.text;
      global.type = names.typeOf(parsed.stored, parsed.stored.variables[0]);
      const std::string key = lowerCase(parsed.name.text);
      space.values[key] = &global;
      if (parsed.modifiers.access != syntax::Access::everyone) space.access[key] = accessOf(parsed.modifiers);
      starts_.push_back({&parsed.stored, &space, &global});
    });
  }

  void declareVariables(const syntax::Members& members, Declarations& space) {
    for (const syntax::Property& each : members.properties) {
      if (each.get || each.set) {
        fail(each.name.position, "a computed property belongs into a class; use a Function here");
      }
      declareVariable(each, space);
    }
  }

  void declareSubs(const syntax::Members& members, Declarations& space) {
    for (const syntax::Sub& each : members.subs) {
      const std::string key = lowerCase(each.name.text);
      std::vector<const Method*>& all = space.subs[key];
      if (mayRedeclare_ && &space == &module_ && renewed_.insert(key).second) all.clear();
      within(space, [&](Names& names) {
        Sub& sub = newSub(module_, each, names);
        Method& method = newMethod(module_.allMethods, sub, each);
        for (const Method* other : all) {
          if (sameParameters(*other, method)) {
            fail(each.name.position, "there is another Sub or Function " + sub.name + " already");
          }
        }
        all.push_back(&method);
        if (each.modifiers.access != syntax::Access::everyone) space.access[key] = accessOf(each.modifiers);
        bodies_.push_back({&sub, &each.body, &space});
      });
      pairAssigning(all, module_.allMethods);
    }
  }

  // After the class above it, whose fields lie in front of its own.
  void declareClass(OwnClass& made) {
    if (!declared_.insert(&made).second) return;
    if (made.super && made.super->isOwn) {
      const auto above = std::find_if(classes_.begin(), classes_.end(),
                                      [&](const auto& each) { return each.second == made.super; });
      if (above != classes_.end()) declareClass(*above->second);
    }
    const syntax::Class& parsed = *parsed_[&made];
    within(made.declared, [&](Names& names) {
      ClassMembers members(module_, made, names);
      for (const syntax::Property& each : parsed.members.properties) {
        if (each.get || each.set) {
          for (const auto& [sub, accessor] : members.addComputed(each)) {
            bodies_.push_back({sub, &accessor->body, &made.declared});
          }
        } else if (each.modifiers.shared) {
          declareVariable(each, made.declared);
        } else {
          checkFree(each.name, made.declared);
          members.addField(each);
        }
      }
      for (const syntax::Sub& each : parsed.members.subs) {
        Sub* sub = members.addMethod(each);
        if (!made.isInterface) bodies_.push_back({sub, &each.body, &made.declared});
      }
      members.finish();
    });
  }

  // What gives a new object's fields their first values.
  void compileInitial(const syntax::Class& parsed, OwnClass& made) {
    Block block;
    Sub& sub = module_.allSubs.emplace_back();
    sub.name = made.name;
    sub.file = module_.file;
    sub.position = made.position;
    sub.hasSelf = true;
    Names names(module_, sub.locals, false, false, {&made.declared, true});
    StatementCompiler statements(names, &sub, false);
    for (const syntax::Property& each : parsed.members.properties) {
      const Property* property = findNamed(made.properties, each.name.text);
      if (!property || property->offset == 0) continue;
      statements.startProperty(each.stored, property->type, field(*property, names.self()), block);
    }
    sub.body = std::move(block);
    if (!sub.body.statements.empty()) made.initial = &sub;
  }

  ModuleNames& module_;
  bool mayRedeclare_;
  std::vector<std::pair<const syntax::Members*, Declarations*>> members_;
  std::vector<std::pair<const syntax::Enum*, Declarations*>> enums_;
  std::vector<std::pair<const syntax::Sub*, OwnClass*>> delegates_;
  std::vector<std::pair<const syntax::Class*, OwnClass*>> classes_;
  std::map<const OwnClass*, const syntax::Class*> parsed_;
  std::set<const OwnClass*> declared_;
  std::set<std::pair<const Declarations*, std::string>> entered_;
  std::set<std::string> renewed_;
  std::vector<Start> starts_;
  std::vector<Body> bodies_;
};

Declarer::Declarer(ModuleNames& module, bool mayRedeclare)
    : work_(std::make_unique<Work>(module, mayRedeclare)) {}
Declarer::~Declarer() = default;
void Declarer::declare(const syntax::Members& members) { work_->declare(members); }
void Declarer::compileStart(std::vector<Type>& locals, Block& block) { work_->compileStart(locals, block); }
void Declarer::compileBodies() { work_->compileBodies(); }

}  // namespace host
