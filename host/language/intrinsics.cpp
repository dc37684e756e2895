// Functions whose types no declaration could say.
#include "language/intrinsics.h"

#include "language/arrays.h"
#include "language/conditional.h"
#include "language/conversions.h"
#include "language/formats.h"
#include "runtime/registry.h"
#include "runtime/text.h"
#include "runtime/variant.h"
#include "runtime/wording.h"

namespace host {

namespace {

Expr str(const Callee&, Exprs arguments) { return displayed(std::move(arguments[0])); }

// The digits of a number in a Variant or an object count as those of another do.
bool isFormattedByContent(const Expression& value) {
  return isVariant(value.type) ||
         (isPlainObject(value.type) && value.type.objectClass && isWholeNumber(*value.type.objectClass));
}

Expr formatted(const Callee& callee, Exprs arguments) {
  if (arguments.size() == 2 && isFormattedByContent(*arguments[0]) && isText(arguments[1]->type)) {
    Expr value = convertTo(std::move(arguments[0]), {Kind::Variant}, "the argument value of Format");
    return referenceNode(
        {Kind::String}, [value = std::move(value), pattern = std::move(arguments[1])](Frame& f) -> Ref<Heap> {
          const Ref<Heap> held = value->reference(f);
          const Ref<Heap> spec = pattern->reference(f);
          return makeText(formatted(held.get(), utf8Of(static_cast<const Text*>(spec.get()))));
        });
  }
  return callMethod(registry().findFunctions("Format"), callee, nullptr, std::move(arguments));
}

Expr ubound(const Callee& callee, Exprs arguments) {
  if (!arguments[0]->type.array) {
    fail(callee.position, "Ubound takes an array, found " + nameOf(arguments[0]->type));
  }
  Expr array = std::move(arguments[0]);
  arguments.erase(arguments.begin());
  return callArrayMethod(callee, std::move(array), std::move(arguments));
}

Expr varTypeFunction(const Callee&, Exprs arguments) {
  Expr value = convertTo(std::move(arguments[0]), {Kind::Variant}, "the argument of VarType");
  return integerNode({Kind::Int64},
                     [value = std::move(value)](Frame& f) { return varTypeOf(value->reference(f).get()); });
}

// Array(1, 2, 3): of the elements' type, of Double where they are different numbers, of
// the nearest class of all where they are objects, else of Variant.
Expr arrayOf(const Callee& callee, Exprs arguments) {
  if (arguments.empty()) fail(callee.position, "Array needs an element to know its type from");
  Type type = arguments[0]->type;
  for (const Expr& each : arguments) {
    if (each->type == type) continue;
    if (isPlainObject(each->type) && isPlainObject(type)) {
      type.objectClass = commonClass(type.objectClass, each->type.objectClass);
      continue;
    }
    type = each->type.isNumber() && type.isNumber() ? Type{Kind::Double} : Type{Kind::Variant};
  }
  for (Expr& each : arguments) each = convertTo(std::move(each), type, "an element");
  return std::make_unique<ArrayOfElements>(type, std::move(arguments));
}

constexpr std::size_t anyCount = 1000000;

constexpr struct {
  std::string_view name;
  std::size_t arguments;
  Expr (*make)(const Callee& callee, Exprs arguments);
} intrinsics[] = {{"Str", 2, &formatted},
                  {"Str", 1, &str},
                  {"CStr", 1, &str},
                  {"ToString", 2, &formatted},
                  {"ToString", 1, &str},
                  {"ToText", 1, &str},
                  {"Ubound", 2, &ubound},
                  {"Ubound", 1, &ubound},
                  {"VarType", 1, &varTypeFunction},
                  {"Format", anyCount, &formatted},
                  {"Array", anyCount, &arrayOf}};

}  // namespace

std::vector<std::string> membersOfValue(Type type) {
  std::vector<std::string> names = {"ToString", "ToText"};
  for (const Method& each : registry().functions) {
    const std::vector<Parameter>& parameters = each.declaration.parameters;
    if (parameters.empty() || parameters[0].byRef || parameters[0].type.array) continue;
    const Type taken = parameters[0].type;
    if (taken == type || (taken.isNumber() && type.isNumber())) names.push_back(each.declaration.name);
  }
  return names;
}

Expr callIntrinsic(const Callee& callee, Exprs& arguments) {
  for (const auto& each : intrinsics) {
    if (!sameName(each.name, callee.name)) continue;
    const bool isLast = &each == std::end(intrinsics) - 1 || !sameName(each.name, (&each + 1)->name);
    if (each.arguments != anyCount && arguments.size() != each.arguments) {
      if (!isLast) continue;
      fail(callee.position, callee.name + " takes " + counted(each.arguments, "argument") + ", found " +
                                std::to_string(arguments.size()));
    }
    return each.make(callee, std::move(arguments));
  }
  return nullptr;
}

}  // namespace host
