// The grammar of what stands at module level.
#include "language/parser.h"

#include "language/statement_parser.h"

namespace host {

namespace {

using namespace syntax;

class Parser {
 public:
  Parser(std::string_view text, bool interactive, Problems& problems)
      : tokens_(text, problems), statements_(tokens_, depth_, expressions_, interactive) {}

  Program program() {
    Program program;
    const Nesting nesting(depth_, tokens_);
    while (tokens_.skipLineEnds(), tokens_.peek().kind != TokenKind::endOfText) {
      if (tokens_.is(Keyword::subWord) || tokens_.is(Keyword::functionWord)) {
        program.subs.push_back(sub());
      } else {
        statements_.lineInto(program.main);
      }
    }
    return program;
  }

 private:
  Sub sub() {
    const bool isFunction = tokens_.is(Keyword::functionWord);
    Sub sub;
    const Position start = tokens_.peek().position;
    const std::size_t place = tokens_.place();
    sub.isRead = tokens_.problems.attempt([&] { declaration(sub, isFunction); });
    if (!sub.isRead) tokens_.skipStatement(place);
    const BlockEnd end{Keyword::endWord, isFunction ? Keyword::functionWord : Keyword::subWord};
    const Nesting nesting(depth_, tokens_);
    sub.body = statements_.body({isFunction ? Keyword::functionWord : Keyword::subWord, start}, end);
    return sub;
  }

  void declaration(Sub& sub, bool isFunction) {
    const std::string kind = tokens_.take().text;
    sub.name = tokens_.takeName("the name of the " + kind);
    if (tokens_.accept(Symbol::open) && !tokens_.accept(Symbol::close)) {
      do {
        sub.parameters.push_back(parameter(sub.parameters));
      } while (tokens_.accept(Symbol::comma));
      tokens_.expect(Symbol::close, "after the parameters of " + sub.name.text);
    }
    if (isFunction) {
      tokens_.expect(Keyword::asWord, "and a type after the Function " + sub.name.text);
      sub.result = tokens_.takeType();
    }
    tokens_.expectLineEnd("after the declaration of " + sub.name.text);
  }

  Sub::Parameter parameter(const std::vector<Sub::Parameter>& before) {
    Sub::Parameter parameter;
    parameter.byRef = tokens_.accept(Keyword::byRefWord);
    if (!parameter.byRef) tokens_.accept(Keyword::byValWord);
    parameter.name = tokens_.takeName("the name of a parameter");
    const std::string& name = parameter.name.text;
    const bool array = tokens_.accept(Symbol::open);
    if (array) tokens_.expect(Symbol::close, "after the parameter " + name);
    tokens_.expect(Keyword::asWord, "after the parameter " + name);
    parameter.type = tokens_.takeType();
    parameter.type.array = parameter.type.array || array;
    if (tokens_.accept(Symbol::equal)) {
      parameter.defaultValue = expressions_.expression();
    } else if (!before.empty() && before.back().defaultValue) {
      tokens_.failHere("the parameter " + name + " follows one with a default and needs one too");
    }
    return parameter;
  }

  TokenReader tokens_;
  int depth_ = 0;
  ExpressionParser expressions_{tokens_, depth_};
  StatementParser statements_;
};

}  // namespace

Program parse(std::string_view text, bool interactive, Problems& problems) {
  return Parser(text, interactive, problems).program();
}

}  // namespace host
