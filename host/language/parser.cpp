// The grammar of what stands at module level.
#include "language/parser.h"

#include "language/declaration_parser.h"

namespace host {

namespace {

using namespace syntax;

class Parser {
 public:
  Parser(std::string_view text, bool interactive)
      : tokens_(text), statements_(tokens_, depth_, expressions_, interactive) {}

  Program program() {
    Program program;
    const Nesting nesting(depth_, tokens_);
    while (tokens_.skipLineEnds(), tokens_.peek().kind != TokenKind::endOfText) {
      if (!declarations_.declared(program.declared)) program.main.push_back(statements_.line());
    }
    return program;
  }

 private:
  TokenReader tokens_;
  int depth_ = 0;
  ExpressionParser expressions_{tokens_, depth_};
  StatementParser statements_;
  DeclarationParser declarations_{tokens_, depth_, expressions_, statements_};
};

}  // namespace

Program parse(std::string_view text, bool interactive) { return Parser(text, interactive).program(); }

}  // namespace host
