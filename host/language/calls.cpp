// Chooses among declarations by the types of the arguments, and converts the arguments.
#include "language/calls.h"

#include "language/conversions.h"
#include "language/invocation.h"

namespace host {

namespace {

// How far the arguments are from what the method takes, all together; negative: they do not fit.
int distanceOfAll(const Exprs& arguments, const Declaration& declaration) {
  if (arguments.size() > declaration.parameters.size() || arguments.size() < declaration.requiredCount())
    return -1;
  int total = 0;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const Parameter& parameter = declaration.parameters[i];
    const bool fits = !parameter.byRef || (arguments[i]->place() && arguments[i]->type == parameter.type);
    const int each = fits ? distance(*arguments[i], parameter.type) : -1;
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
      fail(callee.position, "wrong number of arguments for " + callee.name + ": found " +
                                std::to_string(arguments.size()) + ", expected " + only.text);
    }
  }
  std::string types, list;
  for (const Expr& argument : arguments) types += (types.empty() ? "" : ", ") + nameOf(argument->type);
  for (const Method* method : candidates) list += "\n  " + method->declaration.text;
  fail(callee.position, callee.name + " does not take (" + types + "); expected" +
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

std::vector<Passed> passedTo(const Method& method, Exprs arguments) {
  std::vector<Passed> passed;
  const std::vector<Parameter>& parameters = method.declaration.parameters;
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    const Parameter& parameter = parameters[i];
    if (i >= arguments.size()) {
      const Slot given = parameter.defaultValue.value_or(Slot{});
      passed.push_back({slotNode(parameter.type, [given](Frame&) { return given; })});
    } else if (parameter.byRef) {
      passed.push_back({std::move(arguments[i]), true});
    } else {
      passed.push_back({convertTo(std::move(arguments[i]), parameter.type,
                                  "the argument " + parameter.name + " of " + method.declaration.name)});
    }
  }
  return passed;
}

void checkParameters(const Method& method, Position position) {
  if (method.declaration.parameters.size() > mostParameters) {
    fail(position, method.declaration.name + " has too many parameters");
  }
}

}  // namespace

std::string counted(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " argument" : " arguments");
}

Expr callSub(const Sub& sub, Position position, Exprs arguments) {
  if (arguments.size() > sub.parameters.size()) {
    fail(position, sub.name + " takes " + counted(sub.parameters.size()) + ", found " +
                       std::to_string(arguments.size()));
  }
  std::vector<Passed> passed;
  for (std::size_t i = 0; i < sub.parameters.size(); ++i) {
    const SubParameter& parameter = sub.parameters[i];
    const std::string what = "the argument " + parameter.name + " of " + sub.name;
    if (i >= arguments.size()) {
      if (!parameter.defaultValue) fail(position, what + " is missing");
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
  return invoke(sub, std::move(passed));
}

Expr callMethod(const std::vector<const Method*>& candidates, const Callee& callee, Expr self,
                Exprs arguments, bool resultUnused) {
  const Method& method = nearestOf(candidates, callee, arguments, resultUnused);
  checkParameters(method, callee.position);
  return callExactly(method, std::move(self), std::move(arguments), callee.member);
}

Expr callExactly(const Method& method, Expr self, Exprs arguments, const std::string& member) {
  return invoke(method, std::move(self), passedTo(method, std::move(arguments)), member);
}

Expr newObject(const Class& made, Position position, Exprs arguments) {
  const std::vector<const Method*> constructors = made.findMethods("Constructor");
  if (constructors.empty() && !arguments.empty()) {
    fail(position, made.name + " has no Constructor; it is made without arguments");
  }
  bool takesNone = false;
  for (const Method* constructor : constructors) {
    takesNone = takesNone || constructor->declaration.requiredCount() == 0;
  }
  if (arguments.empty() && !takesNone) {
    return referenceNode({Kind::Object, false, &made},
                         [&made](Frame&) -> Ref<Heap> { return makeObject(made); });
  }
  const Method& constructor = nearestOf(constructors, {made.name, position}, arguments, true);
  checkParameters(constructor, position);
  return construct(made, constructor, passedTo(constructor, std::move(arguments)));
}

}  // namespace host
