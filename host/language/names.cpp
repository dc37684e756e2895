// Looks names up, enters them, and finds what a wrong one may have meant.
#include "language/names.h"

#include "language/absent_words.h"
#include "language/fields.h"
#include "language/local_names.h"
#include "language/shared_reference.h"
#include "language/spelling.h"
#include "runtime/registry.h"

namespace host {

namespace {

Expr valueOf(const Constant& constant) {
  if (constant.type.kind == Kind::String) {
    return referenceNode(constant.type, [keep = constant.keep](Frame&) { return keep; });
  }
  if (constant.type.isInteger()) return integerLiteral(constant.slot.word, constant.type);
  Expr value = slotNode(constant.type, [slot = constant.slot](Frame&) { return slot; });
  value->isLiteral = true;
  return value;
}

}  // namespace

namespace {

Type typeAs(const syntax::TypeName& name, Type type) {
  return name.array ? type.arrayOf(name.dimensions) : type;
}

[[noreturn]] void failForType(const syntax::TypeName& name, std::vector<std::string> known) {
  if (const std::string advice = absentType(name.text); !advice.empty()) {
    throw UnknownName(name.position, name.text, "unknown type '" + name.text + "'" + advice);
  }
  for (const char* each :
       {"Integer", "Int8", "Int16", "Int32", "Int64", "UInt8", "UInt16", "UInt32", "UInt64", "Single",
        "Double", "Currency", "String", "Boolean", "Variant", "Ptr", "Byte", "Object"}) {
    known.push_back(each);
  }
  for (const Class& each : registry().classes) known.push_back(each.name);
  throw UnknownName(name.position, name.text,
                    "unknown type '" + name.text + "'" + suggestion(name.text, known));
}

// Of the innermost place that has it, and of those around it.
template <typename Value>
const Value* findIn(const std::unordered_map<std::string, Value>& all, const std::string& key) {
  const auto found = all.find(key);
  return found == all.end() ? nullptr : &found->second;
}

}  // namespace

Type typeOf(const syntax::TypeName& name) {
  const std::optional<Type> type = typeNamed(name.text);
  if (!type) failForType(name, {});
  return typeAs(name, *type);
}

Access Declarations::accessOf(const std::string& key) const {
  const Access* found = findIn(access, key);
  return found ? *found : Access::everyone;
}

Expr Declarations::value(const std::string& key) const {
  const auto* found = findIn(values, key);
  if (!found) return nullptr;
  if (const auto* constant = std::get_if<Constant>(found)) return valueOf(*constant);
  return globalPlace(*std::get<Global*>(*found));
}

namespace {

bool anyIsAlive() {
  bool alive = false;
  forEachLive([&](const Heap& thing) { alive = alive || thing.objectClass->isOwn; });
  return alive;
}

// The classes of objects that hold each other, or that a library keeps: until the process ends.
std::deque<std::deque<OwnClass>>& outlived() {
  static auto* const all = new std::deque<std::deque<OwnClass>>;
  return *all;
}

}  // namespace

ModuleNames::~ModuleNames() {
  for (Global& global : allGlobals) {
    if (global.type.isReference()) storeShared(global.slot, nullptr);
  }
  if (allClasses.empty() || !anyIsAlive()) return;
  // Such objects stay what they are, but there is nothing any more that could run.
  for (OwnClass& each : allClasses) {
    each.destruction.reset();
    each.declared = {};
  }
  outlived().push_back(std::move(allClasses));
}

const OwnClass* ownOf(const Class* objectClass) {
  return objectClass && objectClass->isOwn ? static_cast<const OwnClass*>(objectClass) : nullptr;
}

std::vector<std::string> membersOf(const Class& type) {
  std::vector<std::string> names;
  for (const Class* each = &type; each; each = each->super) {
    for (const Method& method : each->methods) {
      if (!method.assigns) names.push_back(method.declaration.name);
    }
    for (const Property& property : each->properties) names.push_back(property.name);
  }
  return names;
}

std::string nameOf(const std::variant<Global*, Constant>& value) {
  const auto* global = std::get_if<Global*>(&value);
  return global ? (*global)->name : std::get<Constant>(value).name;
}

bool isWrong(const Class* objectClass) {
  for (const OwnClass* each = ownOf(objectClass); each; each = ownOf(each->super)) {
    if (each->isWrong) return true;
  }
  return false;
}

void Names::checkFree(const syntax::Name& name) const {
  const std::string key = lowerCase(name.text);
  if (blocks_.back().contains(key) || (isModuleScope() && !mayRedeclare_ && module_.values.contains(key))) {
    fail(name.position, "there is another " + name.text + " already");
  }
}

std::size_t Names::newSlot(Type type, bool owns, Position position) {
  constexpr std::size_t most = 20000;
  if (locals_.size() >= most) fail(position, "there are more variables than a Sub may have");
  locals_.push_back(owns ? type : Type{});
  return locals_.size() - 1;
}

std::unique_ptr<Place> Names::declare(const syntax::Name& name, Type type) {
  checkFree(name);
  const std::string key = lowerCase(name.text);
  if (isModuleScope()) {
    Global& global = module_.allGlobals.emplace_back();
    global.name = name.text;
    global.type = type;
    module_.values[key] = &global;
    return globalPlace(global);
  }
  const std::size_t slot = newSlot(type, true, name.position);
  blocks_.back()[key] = Local{type, slot};
  return localPlace(type, slot);
}

std::unique_ptr<Place> Names::declareStatic(const syntax::Name& name, Type type) {
  checkFree(name);
  Global& global = module_.allGlobals.emplace_back();
  global.name = name.text;
  global.type = type;
  blocks_.back()[lowerCase(name.text)] = Local{type, 0, false, &global};
  return globalPlace(global);
}

void Names::declareParameter(const Parameter& parameter, Position position) {
  const std::size_t slot = newSlot(parameter.type, !parameter.byRef, position);
  blocks_.back()[lowerCase(parameter.name)] = Local{parameter.type, slot, parameter.byRef};
}

void Names::declareConstant(const syntax::Name& name, Constant constant) {
  checkFree(name);
  const std::string key = lowerCase(name.text);
  constant.name = name.text;
  if (isModuleScope()) {
    module_.values[key] = std::move(constant);
  } else {
    blocks_.back()[key] = std::move(constant);
  }
}

std::unique_ptr<Place> Names::hidden(Type type, Position position) {
  return localPlace(type, newSlot(type, true, position));
}

Expr Names::findLocal(const std::string& name) const {
  const std::string key = lowerCase(name);
  for (auto block = blocks_.rbegin(); block != blocks_.rend(); ++block) {
    const auto found = block->find(key);
    if (found == block->end()) continue;
    if (const auto* constant = std::get_if<Constant>(&found->second)) return valueOf(*constant);
    const Local& local = std::get<Local>(found->second);
    if (local.lasting) return globalPlace(*local.lasting);
    return local.byRef ? byRefPlace(local.type, local.slot) : localPlace(local.type, local.slot);
  }
  return nullptr;
}

template <typename Visit>
void Names::eachSpace(Visit visit) const {
  for (const Declarations* each = surroundings_.space; each; each = each->outer) {
    if (visit(*each)) return;
    for (const Class* above = each->ofClass ? each->ofClass->super : nullptr; above && above->isOwn;
         above = above->super) {
      if (visit(static_cast<const OwnClass*>(above)->declared)) return;
    }
  }
  if (visit(module_)) return;
  for (const Declarations* each : module_.modules) {
    if (visit(*each)) return;
  }
}

// What a module keeps to itself is seen in it alone.
bool Names::seesIn(const Declarations& space, const std::string& key) const {
  const Access access = space.accessOf(key);
  if (access == Access::everyone || &space == &module_) return true;
  for (const Declarations* each = surroundings_.space; each; each = each->outer) {
    if (each == &space) return true;
  }
  return space.ofClass && mayUse(access, space.ofClass);
}

bool Names::sees(const Declarations& space, const std::string& name) const {
  const std::string key = lowerCase(name);
  return space.accessOf(key) != Access::self || seesIn(space, key);
}

Expr Names::find(const std::string& name) const {
  if (Expr local = findLocal(name)) return local;
  const std::string key = lowerCase(name);
  Expr found;
  eachSpace([&](const Declarations& space) {
    if (seesIn(space, key)) found = space.value(key);
    return found != nullptr;
  });
  return found;
}

Expr Names::expect(const syntax::Name& name) const {
  Expr found = find(name.text);
  if (!found) failUnknown(name);
  found->position = name.position;
  return found;
}

std::vector<const Method*> Names::findSubs(const std::string& name) const {
  const std::string key = lowerCase(name);
  std::vector<const Method*> subs;
  eachSpace([&](const Declarations& space) {
    const auto* found = findIn(space.subs, key);
    if (found && seesIn(space, key)) subs.insert(subs.end(), found->begin(), found->end());
    // What several modules declare for everyone is overloaded.
    return !subs.empty() && (!space.outer || inside(space));
  });
  return subs;
}

bool Names::inside(const Declarations& space) const {
  for (const Declarations* each = surroundings_.space; each; each = each->outer) {
    if (each == &space) return true;
  }
  return false;
}

const Declarations* Names::findSpace(const std::string& name) const {
  const std::string key = lowerCase(name);
  const Declarations* found = nullptr;
  eachSpace([&](const Declarations& space) {
    const auto* each = findIn(space.spaces, key);
    if (each && seesIn(space, key)) found = *each;
    return found != nullptr;
  });
  return found;
}

std::optional<Type> Names::findType(const std::string& name) const {
  const std::size_t dot = name.find('.');
  if (dot != std::string::npos) {
    const Declarations* space = findSpace(name.substr(0, dot));
    std::size_t start = dot + 1;
    for (std::size_t end; space && (end = name.find('.', start)) != std::string::npos; start = end + 1) {
      const auto* next = findIn(space->spaces, lowerCase(name.substr(start, end - start)));
      space = next ? *next : nullptr;
    }
    const std::string key = lowerCase(name.substr(start));
    const Type* type = space ? findIn(space->types, key) : nullptr;
    return type && sees(*space, key) ? std::optional(*type) : std::nullopt;
  }
  const std::string key = lowerCase(name);
  std::optional<Type> found;
  eachSpace([&](const Declarations& space) {
    const Type* type = findIn(space.types, key);
    if (type && seesIn(space, key)) found = *type;
    return found.has_value();
  });
  return found;
}

Type Names::typeOf(const syntax::TypeName& name) const {
  std::optional<Type> type = findType(name.text);
  if (!type) type = typeNamed(name.text);
  if (!type) {
    std::vector<std::string> known;
    eachSpace([&](const Declarations& space) {
      for (const auto& [key, each] : space.types) {
        known.push_back(each.objectClass && lowerCase(each.objectClass->name) == key ? each.objectClass->name
                                                                                     : key);
      }
      return false;
    });
    failForType(name, std::move(known));
  }
  return typeAs(name, *type);
}

Type Names::typeOf(const syntax::Dim::Group& group, const syntax::Dim::Variable& variable) const {
  const Type type = typeOf(group.type);
  if (variable.array && type.array) {
    fail(group.type.position, "the elements of an array are no arrays; it may have several dimensions");
  }
  return variable.array ? type.arrayOf(variable.dimensions) : type;
}

const Class* Names::ownClass() const {
  for (const Declarations* each = surroundings_.space; each; each = each->outer) {
    if (each->ofClass) return each->ofClass;
  }
  return nullptr;
}

Expr Names::self() const {
  return surroundings_.hasSelf ? selfObject({Kind::Object, false, ownClass()}) : nullptr;
}

bool Names::mayUse(Access access, const Class* owner) const {
  if (access == Access::everyone) return true;
  for (const Declarations* each = surroundings_.space; each; each = each->outer) {
    if (!each->ofClass) continue;
    if (each->ofClass == owner || (access == Access::family && each->ofClass->isA(*owner))) return true;
  }
  return false;
}

void Names::checkAccess(Access access, const Class* owner, const syntax::Name& name) const {
  if (mayUse(access, owner)) return;
  fail(name.position,
       name.text + " is " + (access == Access::self ? "Private" : "Protected") + " in " + owner->name);
}

std::vector<const Method*> Names::unchanging(const std::vector<const Method*>& methods) const {
  std::vector<const Method*> copies;
  for (const Method* each : methods) {
    Method& copy = module_.allMethods.emplace_back(*each);
    copy.place = -1;
    if (copy.assigning) {
      Method& assigning = module_.allMethods.emplace_back(*copy.assigning);
      assigning.place = -1;
      copy.setter = callOf(assigning);
    }
    copies.push_back(&copy);
  }
  return copies;
}

void Names::failUnknown(const syntax::Name& name) const {
  if (const std::string advice = absent(name.text); !advice.empty()) {
    throw UnknownName(name.position, name.text, "unknown name '" + name.text + "'" + advice);
  }
  if (ownClass() && isWrong(ownClass())) throw FollowsFromAnother(name.position);
  const std::string message = "unknown name '" + name.text + "'";
  if (!hasSuggestionsLeft()) throw UnknownName(name.position, name.text, message);
  const auto declared = body_ ? declarationOf(name.text, *body_) : std::nullopt;
  if (declared && declared->line != name.position.line) {
    const std::string line = "line " + std::to_string(declared->line);
    const bool isBelow = declared->line > name.position.line;
    throw UnknownName(
        name.position, name.text,
        isBelow ? name.text + " is declared further down, in " + line + "; declare it above its first use"
                : name.text + " is declared in " + line +
                      ", in a block that ends before this; declare it above that block");
  }
  std::vector<std::string> known;
  for (const Block& block : blocks_) {
    for (const auto& [key, local] : block) known.push_back(key);
  }
  if (const Class* own = ownClass()) {
    for (std::string& each : membersOf(*own)) known.push_back(std::move(each));
  }
  eachSpace([&](const Declarations& space) {
    for (const auto& [key, value] : space.values) {
      if (seesIn(space, key)) known.push_back(nameOf(value));
    }
    for (const auto& [key, subs] : space.subs) {
      if (seesIn(space, key)) known.push_back(subs[0]->declaration.name);
    }
    for (const auto& [key, each] : space.spaces) known.push_back(each->name);
    return false;
  });
  for (const Class& each : registry().classes) {
    if (!each.name.starts_with("_")) known.push_back(each.name);
  }
  for (const Module& module : registry().modules) {
    for (const Method& method : module.methods) known.push_back(method.declaration.name);
    for (const Property& property : module.properties) known.push_back(property.name);
  }
  for (const Method& function : registry().functions) known.push_back(function.declaration.name);
  for (const char* intrinsic : {"Str", "CStr", "ToString", "Ubound", "VarType", "Array"}) {
    known.push_back(intrinsic);
  }
  throw UnknownName(name.position, name.text, message + suggestion(name.text, known));
}

}  // namespace host
