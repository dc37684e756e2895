// Compiles the statements of one Sub, or of the module level.
#pragma once

#include "language/expression_compiler.h"

namespace host {

class StatementCompiler {
 public:
  // `sub` is null at module level. `interactive`: expressions are printed.
  StatementCompiler(Names& names, const Sub* sub, bool interactive, Problems& problems)
      : names_(names), expressions_(names), sub_(sub), interactive_(interactive), problems_(problems) {}

  // What is wrong goes to the problems, and the statements after it are compiled.
  Block block(const syntax::Block& statements);
  Constant constant(const syntax::Const& declared);  // its value
  // The first value of a property, if it has one.
  void startProperty(const syntax::Dim::Group& group, Type type, Expr place, Block& block);
  // What may run again and again, and is counted where the program's steps are.
  Block counted(const syntax::Block& statements);

 private:
  Block innerBlock(const syntax::Block& statements);  // with names of its own
  // The body of a loop, in which Exit and Continue of its kind may stand.
  Block loopBody(Position position, syntax::LoopKind kind, const std::string& variable,
                 const syntax::Block& statements);
  std::optional<Flow> flowOf(const syntax::Jump& jump);  // none: it is outside of what it names

  void compile(const syntax::Dim& dim, Position position, Block& block);
  void declare(const syntax::Dim::Variable& variable, Type type, const syntax::Expression* initial,
               bool isStatic, Block& block);
  void start(const syntax::Name& name, Type type, Expr value,
             const std::function<std::unique_ptr<Place>()>& place, Block& block);
  Expr boundsOf(const syntax::Dim::Variable& variable, Type type);
  // The type that `find` gives; where there is none, the name is expected to be unknown.
  template <typename Find>
  Type typeFor(const syntax::Name& name, Position position, Find find);
  Type typeFor(const syntax::Name& name, const syntax::TypeName& type);
  bool mayBeAssignedTo(const std::string& name) const;
  void failToAssignUnknown(const UnknownName& unknown) const;
  [[noreturn]] void failToAssign(const syntax::Expression& target, Position position);
  static void warnOfOverwriting(const syntax::Assign& assign, Type target, Type value);
  void compile(const syntax::Const& constant, Position position, Block& block);
  void compile(const syntax::Assign& assign, Position position, Block& block);
  void compile(const syntax::Evaluate& evaluated, Position position, Block& block);
  void compile(const syntax::If& choice, Position position, Block& block);
  void compile(const syntax::Select& select, Position position, Block& block);
  Expr caseTest(const syntax::Select::Test& test, const Place& value);
  void compile(const syntax::For& loop, Position position, Block& block);
  void compile(const syntax::ForEach& loop, Position position, Block& block);
  void compile(const syntax::Loop& loop, Position position, Block& block);
  void compile(const syntax::Try& attempt, Position position, Block& block);
  void compile(const syntax::Jump& jump, Position position, Block& block);
  void compile(const syntax::Return& returned, Position position, Block& block);
  void compile(const syntax::Print& printed, Position position, Block& block);
  void compile(const syntax::Raise& raised, Position position, Block& block);
  void compile(const syntax::AddHandler& added, Position position, Block& block);
  void compile(const syntax::ReDim& changed, Position position, Block& block);

  Names& names_;
  ExpressionCompiler expressions_;
  const Sub* sub_;
  bool interactive_;
  Problems& problems_;
  struct OpenLoop {
    syntax::LoopKind kind;
    std::string variable;  // of a For
    bool isNamed = false;  // by a jump out of another For within it
  };
  std::vector<OpenLoop> loops_;  // around the statement being compiled, from the outermost on
};

}  // namespace host
