// Chooses among declarations by the types of the arguments, and converts the arguments.
#include "language/calls.h"

#include <algorithm>

#include "language/absent_words.h"
#include "language/conversions.h"
#include "language/delegates.h"
#include "language/invocation.h"
#include "runtime/wording.h"

namespace host {

namespace {

bool takesRest(const std::vector<Parameter>& parameters) {
  return !parameters.empty() && parameters.back().rest;
}

// Whether the argument is the array of all further ones itself.
bool isWhole(const Exprs& arguments, std::size_t at, const Parameter& parameter) {
  return at + 1 == arguments.size() && arguments[at]->type == parameter.type;
}

int distanceOfOne(const Expression& argument, const Parameter& parameter) {
  const bool fits = !parameter.byRef || (argument.type == parameter.type && argument.place() != nullptr);
  return fits ? distance(argument, parameter.type) : -1;
}

// How far the arguments are from what the method takes, all together; negative: they do not fit.
int distanceOfAll(const Exprs& arguments, const Declaration& declaration) {
  const std::vector<Parameter>& parameters = declaration.parameters;
  const bool rest = takesRest(parameters);
  if ((arguments.size() > parameters.size() && !rest) || arguments.size() < declaration.requiredCount())
    return -1;
  int total = rest ? 1 : 0;  // one that takes just so many is nearer
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const bool further = rest && i + 1 >= parameters.size();
    const Parameter& parameter = further ? parameters.back() : parameters[i];
    const int each = further && !isWhole(arguments, i, parameter)
                         ? distance(*arguments[i], parameter.type.element())
                         : distanceOfOne(*arguments[i], parameter);
    if (each < 0) return -1;
    total += each;
  }
  return total;
}

[[noreturn]] void failForNoneFits(const std::vector<const Method*>& candidates, const Callee& callee,
                                  const Exprs& arguments) {
  if (candidates.size() == 1) {
    const Declaration& only = candidates[0]->declaration;
    if (arguments.size() > only.parameters.size() || arguments.size() < only.requiredCount()) {
      throw WrongUse(callee.position, callee.name,
                     "wrong number of arguments for " + callee.name + ": found " +
                         std::to_string(arguments.size()) + ", expected " + only.text);
    }
  }
  std::string types, list;
  for (const Expr& argument : arguments) types += (types.empty() ? "" : ", ") + nameOf(argument->type);
  for (const Method* method : candidates) list += "\n  " + method->declaration.text;
  throw WrongUse(callee.position, callee.name,
                 callee.name + " does not take (" + types + "); expected" +
                     (candidates.size() > 1 ? " one of" : "") + list);
}

const Method& nearestOf(const std::vector<const Method*>& candidates, const Callee& callee,
                        const Exprs& arguments, bool resultUnused) {
  constexpr int unwanted = 1 << 20;  // further than any conversion
  const Method* best = nullptr;
  int bestDistance = 0;
  for (const Method* method : candidates) {
    int each = distanceOfAll(arguments, method->declaration);
    if (each < 0) continue;
    const bool hasResult = method->declaration.result.kind != Kind::None;
    if (hasResult == resultUnused) each += unwanted;
    if (!best || each < bestDistance) {
      best = method;
      bestDistance = each;
    }
  }
  if (!best) failForNoneFits(candidates, callee, arguments);
  return *best;
}

// The array of the arguments from there on.
Expr restOf(Exprs& arguments, std::size_t at, const Parameter& parameter, const std::string& what) {
  if (isWhole(arguments, at, parameter)) return std::move(arguments[at]);
  Exprs values;
  for (; at < arguments.size(); ++at) {
    values.push_back(convertTo(std::move(arguments[at]), parameter.type.element(), what));
  }
  return std::make_unique<ArrayOfElements>(parameter.type.element(), std::move(values));
}

// What the parameters of the callee are handed. There are no more arguments than it takes.
std::vector<Passed> passedTo(const std::vector<Parameter>& parameters, const Callee& callee,
                             Exprs arguments) {
  std::vector<Passed> passed;
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    const Parameter& parameter = parameters[i];
    const std::string what = "the argument " + parameter.name + " of " + callee.name;
    if (parameter.rest) {
      passed.push_back({restOf(arguments, i, parameter, what)});
    } else if (i >= arguments.size()) {
      if (!parameter.defaultValue) fail(callee.position, what + " is missing");
      passed.push_back(
          {slotNode(parameter.type, [slot = *parameter.defaultValue, type = parameter.type](Frame&) {
            if (type.isReference()) retain(slot.heap);
            return slot;
          })});
    } else if (parameter.byRef) {
      if (!arguments[i]->place() || arguments[i]->type != parameter.type) {
        fail(arguments[i]->position,
             what + " goes by reference; expected a variable As " + nameOf(parameter.type));
      }
      passed.push_back({std::move(arguments[i]), true});
    } else {
      passed.push_back({convertTo(std::move(arguments[i]), parameter.type, what)});
    }
  }
  return passed;
}

std::vector<Passed> passedTo(const Method& method, Exprs arguments) {
  return passedTo(method.declaration.parameters, {method.declaration.name, {}}, std::move(arguments));
}

void checkCount(const std::vector<Parameter>& parameters, const Callee& callee, const Exprs& arguments) {
  if (arguments.size() > parameters.size() && !takesRest(parameters)) {
    throw WrongUse(callee.position, callee.name,
                   callee.name + " takes " + counted(parameters.size(), "argument") + ", found " +
                       std::to_string(arguments.size()));
  }
}

void checkParameters(const Method& method, Position position) {
  if (method.declaration.parameters.size() > mostParameters) {
    fail(position, method.declaration.name + " has too many parameters");
  }
}

}  // namespace

bool anyTakes(const std::vector<const Method*>& candidates, const Exprs& arguments) {
  return std::any_of(candidates.begin(), candidates.end(),
                     [&](const Method* each) { return distanceOfAll(arguments, each->declaration) >= 0; });
}

Expr callMethod(const std::vector<const Method*>& candidates, const Callee& callee, Expr self,
                Exprs arguments, bool resultUnused) {
  if (candidates.size() == 1 && candidates[0]->isOwn) {  // what does not fit is said of each argument
    const Method& only = *candidates[0];
    checkCount(only.declaration.parameters, {only.declaration.name, callee.position}, arguments);
    std::vector<Passed> passed;
    try {
      passed = passedTo(only.declaration.parameters, {only.declaration.name, callee.position},
                        std::move(arguments));
    } catch (const ProgramError& error) {  // another one of that name may be meant, which is wrong itself
      throw WrongUse(error.position, callee.name, error.what());
    }
    return invoke(only, std::move(self), std::move(passed), callee.member);
  }
  const Method& method = nearestOf(candidates, callee, arguments, resultUnused);
  checkParameters(method, callee.position);
  return callExactly(method, std::move(self), std::move(arguments), callee.member);
}

Expr callDelegate(const Class& made, const Callee& callee, Expr delegate, Exprs arguments) {
  const std::vector<Parameter>& parameters = made.signature->declaration.parameters;
  checkCount(parameters, callee, arguments);
  return invokeDelegate(made, std::move(delegate), passedTo(parameters, callee, std::move(arguments)),
                        callee.member);
}

Expr callExactly(const Method& method, Expr self, Exprs arguments, const std::string& member) {
  return invoke(method, std::move(self), passedTo(method, std::move(arguments)), member);
}

namespace {

// Those of the class, or of the nearest one above it that has some.
std::vector<const Method*> constructorsOf(const Class& made) {
  for (const Class* each = &made; each && each->isOwn; each = each->super) {
    std::vector<const Method*> own;
    collectNamed(each->methods, "Constructor", own);
    if (!own.empty()) return own;
  }
  return made.findMethods("Constructor");
}

}  // namespace

Expr newObject(const Class& made, Position position, Exprs arguments) {
  const std::vector<const Method*> constructors = constructorsOf(made);
  if (constructors.empty() && !arguments.empty()) {
    fail(position, made.name + " has no Constructor; it is made without arguments" + absent(made.name));
  }
  bool needsOne = false;
  for (const Method* constructor : constructors) {
    needsOne = needsOne || constructor->isOwn || constructor->declaration.requiredCount() == 0;
  }
  if (arguments.empty() && !needsOne) {
    return referenceNode({Kind::Object, false, &made},
                         [&made](Frame&) -> Ref<Heap> { return makeObject(made); });
  }
  const Method& constructor = nearestOf(constructors, {made.name, position}, arguments, true);
  checkParameters(constructor, position);
  return construct(made, constructor, passedTo(constructor, std::move(arguments)));
}

}  // namespace host
