// The passes: every Sub is declared before any body is compiled, so that each may use all of them.
#include "language/compiler.h"

#include "language/invocation.h"
#include "language/parser.h"
#include "language/spelling.h"
#include "language/statement_compiler.h"

namespace host {

namespace {

void declareParameters(Sub& sub, const syntax::Sub& parsed, ModuleNames& module) {
  std::vector<Type> none;
  Names names(module, none, false, false);
  for (const syntax::Sub::Parameter& each : parsed.parameters) {
    for (const SubParameter& other : sub.parameters) {
      if (lowerCase(other.name) == lowerCase(each.name.text)) {
        fail(sub.position, "two parameters of " + sub.name + " are called " + each.name.text);
      }
    }
    SubParameter parameter{each.name.text, typeOf(each.type), each.byRef, std::nullopt};
    if (each.defaultValue) {
      const std::string what = "the default of " + parameter.name;
      parameter.defaultValue =
          ExpressionCompiler(names).constant(*each.defaultValue, parameter.type, what).first;
    }
    sub.parameters.push_back(std::move(parameter));
  }
  if (sub.parameters.size() > mostParameters) fail(sub.position, sub.name + " has too many parameters");
}

Sub& declareSub(const syntax::Sub& parsed, ModuleNames& module, bool mayRedeclare) {
  const std::string& name = parsed.name.text;
  if (!mayRedeclare && module.subs.contains(lowerCase(name))) {
    fail(parsed.name.position, "there is another Sub or Function " + name + " already");
  }
  Sub& sub = module.allSubs.emplace_back();
  sub.name = name;
  sub.file = module.file;
  sub.position = parsed.name.position;
  declareParameters(sub, parsed, module);
  if (parsed.result) sub.result = typeOf(*parsed.result);
  module.subs[lowerCase(name)] = &sub;
  return sub;
}

void compileBody(Sub& sub, const syntax::Block& body, ModuleNames& module) {
  Names names(module, sub.locals, false, false);
  for (const SubParameter& parameter : sub.parameters) names.declareParameter(parameter, sub.position);
  sub.body = StatementCompiler(names, &sub, false).counted(body);
}

Main compileParsed(const syntax::Program& parsed, ModuleNames& module, bool interactive) {
  std::vector<Sub*> subs;
  for (const syntax::Sub& each : parsed.subs) subs.push_back(&declareSub(each, module, interactive));
  Main main;
  main.file = module.file;
  Names names(module, main.locals, true, interactive);
  main.body = StatementCompiler(names, nullptr, interactive).block(parsed.main);
  for (std::size_t i = 0; i < subs.size(); ++i) compileBody(*subs[i], parsed.subs[i].body, module);
  return main;
}

}  // namespace

Main compile(ModuleNames& module, std::string_view text, bool interactive) {
  const syntax::Program parsed = parse(text, interactive);
  const auto subs = module.subs;
  const auto values = module.values;
  try {
    return compileParsed(parsed, module, interactive);
  } catch (...) {  // what is wrong declares nothing
    module.subs = subs;
    module.values = values;
    throw;
  }
}

}  // namespace host
