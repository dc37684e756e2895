// The passes: everything is declared before any body is compiled, so that each may use all of it.
#include "language/compiler.h"

#include "language/declarations.h"
#include "language/parser.h"
#include "language/statement_compiler.h"

namespace host {

namespace {

// Where other languages begin.
void warnOfMain(const syntax::Members& declared, Problems& problems) {
  for (const syntax::Sub& each : declared.subs) {
    if (!sameName(each.name.text, "Main") || !each.parameters.empty()) continue;
    problems.addWarning(
        each.name.position,
        "nothing calls Main: a program runs what stands outside of Subs, such as a line Main");
  }
}

Main compileParsed(const syntax::Program& parsed, ModuleNames& module, bool interactive, Problems& problems) {
  Declarer declarer(module, interactive, problems);
  declarer.declare(parsed.declared);
  Main main;
  main.file = module.file;
  declarer.compileStart(main.locals, main.body);
  Names names(module, main.locals, true, interactive);
  names.setBody(parsed.main);
  Block body = StatementCompiler(names, nullptr, interactive, problems).block(parsed.main);
  for (Stmt& each : body.statements) main.body.statements.push_back(std::move(each));
  declarer.compileBodies();
  if (!interactive && parsed.main.empty()) warnOfMain(parsed.declared, problems);
  return main;
}

}  // namespace

Main compile(ModuleNames& module, std::string_view text, bool interactive) {
  Problems problems;
  const syntax::Program parsed = parse(text, interactive, problems);
  problems.startPass();
  const Declarations before = module;
  const auto modules = module.modules;
  try {
    Main main = compileParsed(parsed, module, interactive, problems);
    problems.throwIfAny();
    module.warnings = problems.found();
    return main;
  } catch (...) {  // what is wrong declares nothing
    static_cast<Declarations&>(module) = before;
    module.modules = modules;
    throw;
  }
}

}  // namespace host
