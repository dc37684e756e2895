// Looks names up, enters them, and finds what a wrong one may have meant.
#include "language/names.h"

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

Type typeOf(const syntax::TypeName& name) {
  const std::optional<Type> type = typeNamed(name.text);
  if (!type) {
    std::vector<std::string> known = {"Integer", "Int8",    "Int16",   "Int32",  "Int64",  "UInt8",
                                      "UInt16",  "UInt32",  "UInt64",  "Single", "Double", "Currency",
                                      "String",  "Boolean", "Variant", "Ptr",    "Byte",   "Object"};
    for (const Class& each : registry().classes) known.push_back(each.name);
    throw UnknownName(name.position, name.text,
                      "unknown type '" + name.text + "'" + suggestion(name.text, known));
  }
  return name.array ? type->arrayOf() : *type;
}

ModuleNames::~ModuleNames() {
  for (Global& global : allGlobals) {
    if (global.type.isReference()) storeShared(global.slot, nullptr);
  }
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

void Names::declareParameter(const SubParameter& parameter, Position position) {
  const std::size_t slot = newSlot(parameter.type, !parameter.byRef, position);
  blocks_.back()[lowerCase(parameter.name)] = Local{parameter.type, slot, parameter.byRef};
}

void Names::declareConstant(const syntax::Name& name, Constant constant) {
  checkFree(name);
  const std::string key = lowerCase(name.text);
  if (isModuleScope()) {
    module_.values[key] = std::move(constant);
  } else {
    blocks_.back()[key] = std::move(constant);
  }
}

std::unique_ptr<Place> Names::hidden(Type type, Position position) {
  return localPlace(type, newSlot(type, true, position));
}

Expr Names::find(const std::string& name) const {
  const std::string key = lowerCase(name);
  for (auto block = blocks_.rbegin(); block != blocks_.rend(); ++block) {
    const auto found = block->find(key);
    if (found == block->end()) continue;
    if (const auto* constant = std::get_if<Constant>(&found->second)) return valueOf(*constant);
    const Local& local = std::get<Local>(found->second);
    return local.byRef ? byRefPlace(local.type, local.slot) : localPlace(local.type, local.slot);
  }
  const auto found = module_.values.find(key);
  if (found == module_.values.end()) return nullptr;
  if (const auto* constant = std::get_if<Constant>(&found->second)) return valueOf(*constant);
  return globalPlace(*std::get<Global*>(found->second));
}

Expr Names::expect(const syntax::Name& name) const {
  Expr found = find(name.text);
  if (!found) failUnknown(name);
  found->position = name.position;
  return found;
}

const Sub* Names::findSub(const std::string& name) const {
  const auto found = module_.subs.find(lowerCase(name));
  return found == module_.subs.end() ? nullptr : found->second;
}

void Names::failUnknown(const syntax::Name& name) const {
  std::vector<std::string> known;
  for (const Block& block : blocks_) {
    for (const auto& [key, local] : block) known.push_back(key);
  }
  for (const auto& [key, value] : module_.values) {
    const auto* global = std::get_if<Global*>(&value);
    known.push_back(global ? (*global)->name : key);
  }
  for (const auto& [key, sub] : module_.subs) known.push_back(sub->name);
  for (const Class& each : registry().classes) known.push_back(each.name);
  for (const Module& module : registry().modules) {
    for (const Method& method : module.methods) known.push_back(method.declaration.name);
    for (const Property& property : module.properties) known.push_back(property.name);
  }
  for (const Method& function : registry().functions) known.push_back(function.declaration.name);
  throw UnknownName(name.position, name.text,
                    "unknown name '" + name.text + "'" + suggestion(name.text, known));
}

}  // namespace host
