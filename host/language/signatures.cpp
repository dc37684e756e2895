// Declares Subs.
#include "language/signatures.h"

#include <algorithm>

#include "language/expression_compiler.h"
#include "language/invocation.h"
#include "language/spelling.h"
#include "runtime/text.h"

namespace host {

using Taking = syntax::Sub::Taking;

Access accessOf(const syntax::Modifiers& modifiers) {
  switch (modifiers.access) {
    case syntax::Access::self:
      return Access::self;
    case syntax::Access::family:
      return Access::family;
    default:
      return Access::everyone;
  }
}

namespace {

void declareParameter(Sub& sub, const syntax::Sub::Parameter& each, const Names& names) {
  for (const Parameter& other : sub.parameters) {
    if (lowerCase(other.name) == lowerCase(each.name.text)) {
      fail(sub.position, "two parameters of " + sub.name + " are called " + each.name.text);
    }
  }
  if (sub.parameters.size() == mostParameters) fail(sub.position, sub.name + " has too many parameters");
  Parameter parameter;
  parameter.name = each.name.text;
  parameter.type = names.typeOf(each.type);
  parameter.byRef = each.byRef;
  parameter.rest = each.taking == Taking::rest;
  if (parameter.rest && (parameter.byRef || parameter.type.array > 1)) {
    fail(each.name.position, "a ParamArray is a plain list of values");
  }
  if (each.optional || parameter.rest) parameter.defaultValue = Slot{};
  if (each.defaultValue) {
    const std::string what = "the default of " + parameter.name;
    parameter.defaultValue = ExpressionCompiler(const_cast<Names&>(names))
                                 .constant(*each.defaultValue, parameter.type, what)
                                 .first;
  }
  sub.parameters.push_back(std::move(parameter));
}

void checkAssigned(const Sub& sub, const syntax::Sub& parsed) {
  const std::vector<syntax::Sub::Parameter>& parameters = parsed.parameters;
  for (const syntax::Sub::Parameter& each : parameters) {
    if (each.taking != Taking::assigned) continue;
    if (&each != &parameters.back() || sub.result.kind != Kind::None || each.byRef) {
      fail(each.name.position, "what a Sub Assigns is its last parameter, and goes by value");
    }
  }
}

std::string textOf(const Sub& sub) {
  std::string text = sub.name + "(";
  for (const Parameter& each : sub.parameters) {
    if (text.back() != '(') text += ", ";
    text += std::string(each.byRef ? "ByRef " : "") + (each.rest ? "ParamArray " : "") + each.name + " As " +
            nameOf(each.rest ? each.type.element() : each.type);
    if (each.defaultValue && !each.rest) text += " = …";
  }
  text += ")";
  if (sub.result.kind != Kind::None) text += " As " + nameOf(sub.result);
  return text;
}

}  // namespace

DeclaredSub newSub(ModuleNames& module, const syntax::Sub& parsed, const Names& names, Problems& problems) {
  Sub& sub = module.allSubs.emplace_back();
  sub.name = parsed.name.text;
  sub.file = module.file;
  sub.position = parsed.name.position;
  bool fits = parsed.isRead;
  for (const syntax::Sub::Parameter& each : parsed.parameters) {
    if (problems.attempt([&] { declareParameter(sub, each, names); })) continue;
    problems.expectUnknown(each.name.text);
    fits = false;
  }
  fits &= problems.attempt([&] {
    if (parsed.result) sub.result = names.typeOf(*parsed.result);
  });
  fits &= problems.attempt([&] { checkAssigned(sub, parsed); });
  if (!fits) {
    problems.expectUnknown(sub.name);
    if (sub.result.kind == Kind::None && (parsed.result || !parsed.isRead)) {
      sub.result = {Kind::Variant};  // which takes whatever is returned
    }
  }
  return {sub, fits};
}

Method& newMethod(std::deque<Method>& among, const Sub& sub, const syntax::Sub& parsed) {
  Method& method = among.emplace_back();
  method.declaration.text = textOf(sub);
  method.declaration.name = sub.name;
  method.declaration.parameters = sub.parameters;
  method.declaration.result = sub.result;
  method.isOwn = true;
  method.sub = &sub;
  method.access = accessOf(parsed.modifiers);
  method.call = callOf(method);
  const std::vector<syntax::Sub::Parameter>& parameters = parsed.parameters;
  method.extends = !parameters.empty() && parameters.front().taking == Taking::extended;
  method.assigns = !parameters.empty() && parameters.back().taking == Taking::assigned;
  return method;
}

bool sameParameters(const Method& one, const Method& other) {
  const auto same = [](const Parameter& a, const Parameter& b) { return a.type == b.type; };
  const std::vector<Parameter>&first = one.declaration.parameters, &second = other.declaration.parameters;
  return one.assigns == other.assigns && one.extends == other.extends &&
         std::equal(first.begin(), first.end(), second.begin(), second.end(), same);
}

void assignThrough(Method& method, const Method& assigning) {
  method.assigning = &assigning;
  method.setter = assigning.call;
}

void pairAssigning(std::vector<const Method*>& methods, std::deque<Method>& among) {
  for (std::size_t i = 0; i < methods.size(); ++i) {
    const Method& assigning = *methods[i];
    if (!assigning.assigns) continue;
    methods.erase(methods.begin() + static_cast<std::ptrdiff_t>(i--));
    Declaration wanted = assigning.declaration;
    const Type value = wanted.parameters.back().type;
    wanted.parameters.pop_back();
    const auto paired = std::find_if(methods.begin(), methods.end(), [&](const Method* each) {
      Method bare;
      bare.declaration = wanted;
      bare.extends = each->extends;
      return !each->assigns && each->declaration.result == value && sameParameters(*each, bare);
    });
    if (paired != methods.end()) {
      assignThrough(const_cast<Method&>(**paired), assigning);
      continue;
    }
    Method& method = among.emplace_back(assigning);
    method.declaration = wanted;
    method.declaration.result = value;
    method.sub = nullptr;
    method.place = -1;
    method.assigns = false;
    method.call = unreadable();
    assignThrough(method, assigning);
    methods.insert(methods.begin(), &method);
    ++i;
  }
}

}  // namespace host
