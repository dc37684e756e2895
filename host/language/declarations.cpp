// The passes: types by their names, what they inherit from, their members, and at last the bodies; each may
// use all that the passes before it have entered.
#include "language/declarations.h"

#include <map>
#include <set>

#include "language/classes.h"
#include "language/delegates.h"
#include "language/endings.h"
#include "language/signatures.h"
#include "language/spelling.h"
#include "language/statement_compiler.h"
#include "runtime/registry.h"

namespace host {

class Declarer::Work {
 public:
  Work(ModuleNames& module, bool mayRedeclare, Problems& problems)
      : module_(module), mayRedeclare_(mayRedeclare), problems_(problems) {}

  void declare(const syntax::Members& members) {
    enter(members, module_);
    for (const auto& [parsed, space] : enums_) declareEnum(*parsed, *space);
    for (const auto& [parsed, made] : classes_) resolve(*parsed, *made);
    limitHeights();
    for (const auto& [parsed, space] : delegates_) declareDelegate(*parsed, *space);
    for (const auto& [parsed, space] : members_) declareConstants(*parsed, *space);
    for (const auto& [parsed, made] : classes_) declareClass(*made);
    for (const auto& [parsed, space] : members_) {
      if (!space->ofClass) declareVariables(*parsed, *space);
    }
    for (const auto& [parsed, space] : members_) {
      if (!space->ofClass) declareSubs(*parsed, *space);
    }
    for (const auto& [parsed, made] : classes_) implementAll(*made, problems_);
  }

  void compileStart(std::vector<Type>& locals, Block& block) {
    for (const Start& each : starts_) {
      Names names(module_, locals, false, false, {each.space, false});
      StatementCompiler statements(names, nullptr, false, problems_);
      problems_.attempt([&] {
        statements.startProperty(*each.group, each.global->type, globalPlace(*each.global), block);
      });
    }
  }

  void compileBodies() {
    for (const auto& [parsed, made] : classes_) compileInitial(*parsed, *made);
    for (const Body& each : bodies_) {
      Sub& sub = *each.sub;
      Names names(module_, sub.locals, false, false, {each.space, sub.hasSelf});
      names.setBody(each.parsed->body);
      for (const Parameter& parameter : sub.parameters) names.declareParameter(parameter, sub.position);
      sub.body = StatementCompiler(names, &sub, false, problems_).counted(each.parsed->body);
      if (each.parsed->result && !endsAlways(each.parsed->body)) {
        problems_.addWarning(sub.position, sub.name + " can end without Return");
      }
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
    const syntax::Sub* parsed;
    const Declarations* space;
  };

  // Every declaration of a name that stands for a module or a type.
  void enter(const syntax::Members& members, Declarations& space) {
    members_.emplace_back(&members, &space);
    for (const syntax::Module& each : members.modules) {
      problems_.attempt([&] {
        Declarations& inner = newSpace(each.name, space);
        module_.modules.push_back(&inner);
        enter(each.members, inner);
      });
    }
    for (const syntax::Enum& each : members.enums) {
      problems_.attempt([&] {
        Declarations& inner = newSpace(each.name, space);
        space.types[lowerCase(each.name.text)] = {Kind::Int64};
        enums_.emplace_back(&each, &inner);
      });
    }
    for (const syntax::Sub& each : members.delegates) {
      problems_.attempt([&] {
        OwnClass& made = newClass(each.name, space);
        becomeDelegate(made);
        delegates_.emplace_back(&each, &made);
      });
    }
    for (const syntax::Class& each : members.classes) {
      problems_.attempt([&] {
        OwnClass& made = newClass(each.name, space);
        made.isInterface = each.isInterface;
        classes_.emplace_back(&each, &made);
        parsed_[&made] = &each;
        enter(each.members, made.declared);
      });
    }
  }

  // What is said of a class that is wrong would only follow from that.
  void takeBack(OwnClass& made) {
    made.isWrong = true;
    auto& outer = const_cast<Declarations&>(*made.declared.outer);
    outer.types.erase(lowerCase(made.name));
    outer.spaces.erase(lowerCase(made.name));
    problems_.expectUnknown(made.name);
  }

  void checkFree(const syntax::Name& name, const Declarations& space) {
    if (!entered_.emplace(&space, lowerCase(name.text)).second) {
      fail(name.position, "there is another " + name.text + " already");
    }
  }

  void checkTypeName(const syntax::Name& name, const Declarations& outer) {
    const std::optional<Type> type = typeNamed(name.text);
    if (type && !type->objectClass) {
      fail(name.position, name.text + " is a type of the language; choose another name");
    }
    checkFree(name, outer);
  }

  Declarations& newSpace(const syntax::Name& name, Declarations& outer) {
    checkTypeName(name, outer);
    Declarations& space = module_.allSpaces.emplace_back();
    space.name = name.text;
    space.outer = &outer;
    outer.spaces[lowerCase(name.text)] = &space;
    outer.types.erase(lowerCase(name.text));
    return space;
  }

  OwnClass& newClass(const syntax::Name& name, Declarations& outer) {
    checkTypeName(name, outer);
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
      problems_.attempt([&] {
        if (!parsed.type) return;
        const Type found = names.typeOf(*parsed.type);
        if (!found.isInteger()) {
          fail(parsed.type->position, "the values of an Enum are integers, not " + nameOf(found));
        }
        type = found;
      });
      const_cast<Declarations*>(space.outer)->types[lowerCase(parsed.name.text)] = type;
      Slot next = {};
      for (const syntax::Enum::Member& each : parsed.members) {
        const bool fits = problems_.attempt([&] {
          checkFree(each.name, space);
          if (!each.value) return;
          const std::string what = "the value of " + each.name.text;
          next = ExpressionCompiler(names).constant(*each.value, type, what).first;
        });
        if (!fits) problems_.expectUnknown(each.name.text);
        space.values[lowerCase(each.name.text)] = Constant{type, next, nullptr, each.name.text};
        ++next.word;
      }
    });
  }

  void resolve(const syntax::Class& parsed, OwnClass& made) {
    const bool isKnown = within(*made.declared.outer, [&](Names& names) {
      bool fits = problems_.attempt([&] {
        if (parsed.super) made.super = superOf(*parsed.super, names.typeOf(*parsed.super));
      });
      for (const syntax::TypeName& each : parsed.interfaces) {
        fits &= problems_.attempt([&] {
          const Type type = names.typeOf(each);
          if (!isPlainObject(type) || !type.objectClass || !type.objectClass->isInterface) {
            fail(each.position, "expected an interface, found " + nameOf(type));
          }
          made.interfaces.push_back(type.objectClass);
        });
      }
      return fits;
    });
    const bool ends = problems_.attempt([&] {
      for (const Class* each = made.super; each; each = each->super) {
        if (each == &made) fail(parsed.name.position, made.name + " inherits from itself");
      }
      if (made.isInterface) checkInterfaces(parsed, made, made, 0);
    });
    if (!ends) {
      made.super = nullptr;
      made.interfaces.clear();
    }
    if (!isKnown || !ends) takeBack(made);
  }

  // Each class has what those above it have, so a tower of them takes the square of its height.
  void limitHeights() {
    constexpr std::size_t most = 200;
    std::map<const Class*, std::size_t> heights;
    for (const auto& [parsed, lowest] : classes_) {
      std::vector<OwnClass*> path;
      for (OwnClass* each = lowest; each && each->isOwn && !heights.contains(each);
           each = const_cast<OwnClass*>(static_cast<const OwnClass*>(each->super))) {
        path.push_back(each);
      }
      for (auto each = path.rbegin(); each != path.rend(); ++each) {
        OwnClass& made = **each;
        const auto above = heights.find(made.super);
        const std::size_t height = above == heights.end() ? 1 : above->second + 1;
        heights[&made] = height <= most ? height : 1;
        if (height <= most) continue;
        problems_.attempt([&] {
          fail(made.position, "more than " + std::to_string(most) + " classes inherit from each other");
        });
        made.super = nullptr;
        takeBack(made);
      }
    }
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
      const auto [sub, fits] = newSub(module_, parsed, names, problems_);
      made.signature = &newMethod(module_.allMethods, sub, parsed);
      if (!fits) takeBack(made);
    });
  }

  // Where the declaration is wrong, its name is expected to be unknown.
  template <typename Declare>
  void attempt(const syntax::Name& name, Declare declareIt) {
    if (!problems_.attempt(declareIt)) problems_.expectUnknown(name.text);
  }

  void declareConstants(const syntax::Members& members, Declarations& space) {
    if (members.constants.empty()) return;
    within(space, [&](Names& names) {
      for (const auto& each : members.constants) {
        const syntax::Const& parsed = each.constant;
        attempt(parsed.name, [&] {
          checkFree(parsed.name, space);
          const std::string key = lowerCase(parsed.name.text);
          space.values[key] = StatementCompiler(names, nullptr, false, problems_).constant(parsed);
          if (each.modifiers.access != syntax::Access::everyone) space.access[key] = accessOf(each.modifiers);
        });
      }
    });
  }

  void declareVariable(const syntax::Property& parsed, Declarations& space) {
    checkFree(parsed.name, space);
    within(space, [&](Names& names) {
      const Type type = names.typeOf(parsed.stored, parsed.stored.variables[0]);
      Global& global = module_.allGlobals.emplace_back();
      global.name = parsed.name.text;
      global.type = type;
      const std::string key = lowerCase(parsed.name.text);
      space.values[key] = &global;
      if (parsed.modifiers.access != syntax::Access::everyone) space.access[key] = accessOf(parsed.modifiers);
      starts_.push_back({&parsed.stored, &space, &global});
    });
  }

  void declareVariables(const syntax::Members& members, Declarations& space) {
    for (const syntax::Property& each : members.properties) {
      attempt(each.name, [&] {
        if (each.get || each.set) {
          fail(each.name.position, "a computed property belongs into a class; use a Function here");
        }
        declareVariable(each, space);
      });
    }
  }

  void declareSubs(const syntax::Members& members, Declarations& space) {
    for (const syntax::Sub& each : members.subs) {
      const std::string key = lowerCase(each.name.text);
      if (mayRedeclare_ && &space == &module_ && renewed_.insert(key).second) space.subs.erase(key);
      within(space, [&](Names& names) {
        const auto [sub, fits] = newSub(module_, each, names, problems_);
        bodies_.push_back({&sub, &each, &space});
        if (fits) declareSub(sub, each, space);
      });
    }
  }

  void declareSub(Sub& sub, const syntax::Sub& parsed, Declarations& space) {
    const std::string key = lowerCase(sub.name);
    std::vector<const Method*>& all = space.subs[key];
    Method& method = newMethod(module_.allMethods, sub, parsed);
    problems_.attempt([&] {
      if (!parsed.implements.empty()) {
        fail(parsed.implements[0].position, "only a method of a class implements that of an interface");
      }
      for (const Method* other : all) {
        if (sameParameters(*other, method)) {
          fail(sub.position, "there is another Sub or Function " + sub.name + " already");
        }
      }
    });
    all.push_back(&method);
    if (parsed.modifiers.access != syntax::Access::everyone) space.access[key] = accessOf(parsed.modifiers);
    pairAssigning(all, module_.allMethods);
  }

  // After the class above it, whose fields lie in front of its own.
  void declareClass(OwnClass& made) {
    if (!declared_.insert(&made).second) return;
    if (made.super && made.super->isOwn) {
      const auto above = parsed_.find(static_cast<const OwnClass*>(made.super));
      if (above != parsed_.end()) declareClass(const_cast<OwnClass&>(*above->first));
    }
    const syntax::Class& parsed = *parsed_[&made];
    within(made.declared, [&](Names& names) {
      ClassMembers members(module_, made, names, problems_);
      for (const syntax::Property& each : parsed.members.properties) {
        if (each.get || each.set) {
          members.addComputed(each);
          continue;
        }
        attempt(each.name, [&] {
          if (each.modifiers.shared) return declareVariable(each, made.declared);
          checkFree(each.name, made.declared);
          members.addField(each);
        });
      }
      for (const syntax::Sub& each : parsed.members.subs) members.addMethod(each);
      for (const auto& [sub, declared] : members.finish()) bodies_.push_back({sub, declared, &made.declared});
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
    StatementCompiler statements(names, &sub, false, problems_);
    std::map<std::string, const Property*> fields;
    for (const Property& each : made.properties) {
      if (each.offset != 0) fields.emplace(lowerCase(each.name), &each);
    }
    for (const syntax::Property& each : parsed.members.properties) {
      const auto found = fields.find(lowerCase(each.name.text));
      if (found == fields.end()) continue;
      const Property& property = *found->second;
      problems_.attempt([&] {
        statements.startProperty(each.stored, property.type, field(property, names.self()), block);
      });
    }
    sub.body = std::move(block);
    if (!sub.body.statements.empty()) made.initial = &sub;
  }

  ModuleNames& module_;
  bool mayRedeclare_;
  Problems& problems_;
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

Declarer::Declarer(ModuleNames& module, bool mayRedeclare, Problems& problems)
    : work_(std::make_unique<Work>(module, mayRedeclare, problems)) {}
Declarer::~Declarer() = default;
void Declarer::declare(const syntax::Members& members) { work_->declare(members); }
void Declarer::compileStart(std::vector<Type>& locals, Block& block) { work_->compileStart(locals, block); }
void Declarer::compileBodies() { work_->compileBodies(); }

}  // namespace host
