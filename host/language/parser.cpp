// The grammar of what stands at module level.
#include "language/parser.h"

#include "language/declaration_parser.h"

namespace host {

namespace {

using namespace syntax;

class Parser {
 public:
  Parser(std::string_view text, bool interactive, Problems& problems)
      : tokens_(text, !interactive, problems), statements_(tokens_, depth_, expressions_, interactive) {}

  Program program() {
    Program program;
    const Nesting nesting(depth_, tokens_);
    while (tokens_.skipLineEnds(), tokens_.peek().kind != TokenKind::endOfText) {
      if (!declarations_.declared(program.declared, program.main)) statements_.lineInto(program.main);
    }
    return program;
  }

 private:
  TokenReader tokens_;
  int depth_ = 0;
  ExpressionParser expressions_{tokens_, depth_};
  StatementParser statements_;
  DeclarationParser declarations_{tokens_, expressions_, statements_};
};

}  // namespace

Program parse(std::string_view text, bool interactive, Problems& problems) {
  return Parser(text, interactive, problems).program();
}

}  // namespace host
