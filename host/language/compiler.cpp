// The passes: every Sub is declared before any body is compiled, so that each may use all of them.
#include "language/compiler.h"

#include "language/endings.h"
#include "language/invocation.h"
#include "language/parser.h"
#include "language/spelling.h"
#include "language/statement_compiler.h"

namespace host {

namespace {

void declareParameter(Sub& sub, const syntax::Sub::Parameter& parsed, ModuleNames& module) {
  for (const SubParameter& other : sub.parameters) {
    if (lowerCase(other.name) == lowerCase(parsed.name.text)) {
      fail(sub.position, "two parameters of " + sub.name + " are called " + parsed.name.text);
    }
  }
  std::vector<Type> none;
  Names names(module, none, false, false);
  SubParameter parameter{parsed.name.text, typeOf(parsed.type), parsed.byRef, std::nullopt};
  if (parsed.defaultValue) {
    const std::string what = "the default of " + parameter.name;
    parameter.defaultValue =
        ExpressionCompiler(names).constant(*parsed.defaultValue, parameter.type, what).first;
  }
  if (sub.parameters.size() == mostParameters) fail(sub.position, sub.name + " has too many parameters");
  sub.parameters.push_back(std::move(parameter));
}

// What is wrong with the declaration keeps it from being called, and its body is compiled all the same.
Sub& declareSub(const syntax::Sub& parsed, ModuleNames& module, bool mayRedeclare, Problems& problems) {
  const std::string& name = parsed.name.text;
  Sub& sub = module.allSubs.emplace_back();
  sub.name = name;
  sub.file = module.file;
  sub.position = parsed.name.position;
  bool fits = parsed.isRead;
  fits &= problems.attempt([&] {
    if (!mayRedeclare && module.subs.contains(lowerCase(name))) {
      fail(parsed.name.position, "there is another Sub or Function " + name + " already");
    }
  });
  for (const syntax::Sub::Parameter& each : parsed.parameters) {
    if (problems.attempt([&] { declareParameter(sub, each, module); })) continue;
    problems.expectUnknown(each.name.text);
    fits = false;
  }
  const bool hasResult = problems.attempt([&] {
    if (parsed.result) sub.result = typeOf(*parsed.result);
  });
  fits &= hasResult;
  if (!parsed.isRead || !hasResult) sub.result = {Kind::Variant};  // which takes whatever is returned
  if (fits) {
    module.subs[lowerCase(name)] = &sub;
  } else {
    problems.expectUnknown(name);
  }
  return sub;
}

void compileBody(Sub& sub, const syntax::Sub& parsed, ModuleNames& module, Problems& problems) {
  Names names(module, sub.locals, false, false);
  for (const SubParameter& parameter : sub.parameters) names.declareParameter(parameter, sub.position);
  sub.body = StatementCompiler(names, &sub, false, problems).counted(parsed.body);
  if (parsed.result && !endsAlways(parsed.body)) {
    problems.addWarning(sub.position, sub.name + " can end without Return");
  }
}

Main compileParsed(const syntax::Program& parsed, ModuleNames& module, bool interactive, Problems& problems) {
  std::vector<Sub*> subs;
  for (const syntax::Sub& each : parsed.subs)
    subs.push_back(&declareSub(each, module, interactive, problems));
  Main main;
  main.file = module.file;
  Names names(module, main.locals, true, interactive);
  main.body = StatementCompiler(names, nullptr, interactive, problems).block(parsed.main);
  for (std::size_t i = 0; i < subs.size(); ++i) compileBody(*subs[i], parsed.subs[i], module, problems);
  return main;
}

}  // namespace

Main compile(ModuleNames& module, std::string_view text, bool interactive) {
  Problems problems;
  const syntax::Program parsed = parse(text, interactive, problems);
  problems.startPass();
  const auto subs = module.subs;
  const auto values = module.values;
  try {
    Main main = compileParsed(parsed, module, interactive, problems);
    problems.throwIfAny();
    module.warnings = problems.found();
    return main;
  } catch (...) {  // what is wrong declares nothing
    module.subs = subs;
    module.values = values;
    throw;
  }
}

}  // namespace host
