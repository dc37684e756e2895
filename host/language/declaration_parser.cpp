// The grammar of declarations.
#include "language/declaration_parser.h"

#include <utility>

#include "runtime/name.h"

namespace host {

using syntax::Access;
using syntax::Members;
using syntax::Modifiers;
using Taking = syntax::Sub::Taking;

bool DeclarationParser::opens(Keyword keyword) const {
  return tokens_.is(keyword) && tokens_.peek(1).kind == TokenKind::word;
}

bool DeclarationParser::declared(Members& into) {
  const Position position = tokens_.peek().position;
  const Modifiers given = modifiers();
  if (declaredAfter(given, into)) return true;
  if (tokens_.peek().position.column == position.column && tokens_.peek().position.line == position.line) {
    return false;
  }
  tokens_.failExpecting(
      "a Sub, Function, Class, Module or Enum; variables outside of modules are declared with Dim");
}

// What may stand in the program, a module and a class alike.
bool DeclarationParser::declaredAfter(const Modifiers& given, Members& into) {
  if (tokens_.is(Keyword::subWord) || tokens_.is(Keyword::functionWord)) {
    into.subs.push_back(sub(given));
  } else if (opens(Keyword::enumWord)) {
    into.enums.push_back(enumeration());
  } else if (opens(Keyword::delegateWord)) {
    into.delegates.push_back(delegate());
  } else if (opens(Keyword::classWord)) {
    into.classes.push_back(ofClass());
  } else if (opens(Keyword::interfaceWord)) {
    into.classes.push_back(interface());
  } else if (opens(Keyword::moduleWord)) {
    into.modules.push_back(module());
  } else {
    failForForeign();
    return false;
  }
  return true;
}

// What the language of the host has, and this one has not.
void DeclarationParser::failForForeign() const {
  static constexpr struct {
    const char* word;
    const char* instead;
  } foreign[] = {
      {"Event", "this host has no events of one's own; a property of a Delegate's type does what one does"},
      {"RaiseEvent", "this host has no events of one's own; call a property of a Delegate's type"},
      {"Structure", "this host has no structures; use a Class"},
      {"Declare", "this host calls no system libraries"},
      {"Soft", "this host calls no system libraries"},
      {"Namespace", "this host has no namespaces; use a Module"},
  };
  if (tokens_.peek(1).kind != TokenKind::word) return;
  for (const auto& each : foreign) {
    if (sameName(tokens_.peek().text, each.word)) tokens_.failHere(each.instead);
  }
}

Modifiers DeclarationParser::modifiers() {
  Modifiers given;
  while (tokens_.peek(1).kind == TokenKind::word && !tokens_.is(Keyword::asWord, 1)) {
    if (tokens_.accept(Keyword::privateWord)) {
      given.access = Access::self;
    } else if (tokens_.accept(Keyword::protectedWord)) {
      given.access = Access::family;
    } else if (tokens_.is(Keyword::sharedWord) || (tokens_.is(Keyword::staticWord) && inType_)) {
      tokens_.take();
      given.shared = true;
    } else if (!tokens_.accept(Keyword::publicWord) && !tokens_.accept(Keyword::globalWord)) {
      break;
    }
  }
  return given;
}

// Up to the end of what was opened.
void DeclarationParser::members(const syntax::Name& owner, Keyword kind, Members& into) {
  const Nesting nesting(depth_, tokens_);
  const std::string word = spellingOf(kind);
  const bool outer = std::exchange(inType_, true);
  while (tokens_.skipLineEnds(), !statements_.accept({Keyword::endWord, kind})) {
    if (tokens_.peek().kind == TokenKind::endOfText) {
      throw ProgramError(owner.position, "the " + word + " " + owner.text + " has no 'End " + word + "'",
                         true);
    }
    member(word, into);
  }
  inType_ = outer;
}

void DeclarationParser::member(const std::string& where, Members& into) {
  const Modifiers given = modifiers();
  if (declaredAfter(given, into)) return;
  if (tokens_.accept(Keyword::constWord)) {
    into.constants.push_back({given, statements_.constant()});
  } else if (tokens_.accept(Keyword::dimWord) || tokens_.accept(Keyword::varWord) ||
             (opens(Keyword::propertyWord) && !tokens_.is(Keyword::asWord, 1) &&
              tokens_.accept(Keyword::propertyWord)) ||
             (tokens_.peek().kind == TokenKind::word && !isReserved(tokens_.peek().keyword))) {
    properties(given, into);
  } else {
    tokens_.failExpecting("a declaration or 'End " + where + "'");
  }
  if (!tokens_.atLineEnd()) tokens_.expectLineEnd("after the declaration");
}

// Subs.

syntax::Sub DeclarationParser::sub(const Modifiers& given) {
  const bool isFunction = tokens_.is(Keyword::functionWord);
  tokens_.take();
  syntax::Sub sub = head(isFunction);
  sub.modifiers = given;
  sub.body = body(sub.name, {Keyword::endWord, isFunction ? Keyword::functionWord : Keyword::subWord});
  return sub;
}

syntax::Sub DeclarationParser::head(bool isFunction) {
  syntax::Sub sub;
  sub.name = tokens_.takeName(std::string("the name of the ") + (isFunction ? "Function" : "Sub"));
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
  return sub;
}

syntax::Block DeclarationParser::body(const syntax::Name& name, BlockEnd end) {
  const Nesting nesting(depth_, tokens_);
  const std::string kind = spellingOf(end.second);
  syntax::Block statements;
  while (tokens_.skipLineEnds(), !statements_.accept(end)) {
    if (tokens_.peek().kind == TokenKind::endOfText) {
      throw ProgramError(name.position, "the " + kind + " " + name.text + " has no 'End " + kind + "'", true);
    }
    statements.push_back(statements_.line());
  }
  return statements;
}

syntax::Sub::Parameter DeclarationParser::parameter(const std::vector<syntax::Sub::Parameter>& before) {
  syntax::Sub::Parameter parameter;
  if (!before.empty() && before.back().taking == Taking::rest) {
    tokens_.failHere("no parameter may follow the ParamArray " + before.back().name.text);
  }
  for (bool more = true;
       more && tokens_.peek(1).kind == TokenKind::word && !tokens_.is(Keyword::asWord, 1);) {
    if (tokens_.accept(Keyword::byRefWord)) {
      parameter.byRef = true;
    } else if (tokens_.accept(Keyword::optionalWord)) {
      parameter.optional = true;
    } else if (tokens_.accept(Keyword::paramArrayWord)) {
      parameter.taking = Taking::rest;
    } else if (tokens_.accept(Keyword::extendsWord)) {
      parameter.taking = Taking::extended;
      if (!before.empty()) tokens_.failHere("only the first parameter can be one that is extended");
    } else if (tokens_.accept(Keyword::assignsWord)) {
      parameter.taking = Taking::assigned;
    } else {
      more = tokens_.accept(Keyword::byValWord);
    }
  }
  parameter.name = tokens_.takeName("the name of a parameter");
  const std::string& name = parameter.name.text;
  syntax::TypeName dimensions;
  if (tokens_.is(Symbol::open)) {
    if (!tokens_.is(Symbol::comma, 1)) {
      tokens_.take();
      tokens_.expect(Symbol::close, "after the parameter " + name);
      dimensions.array = true;
    } else {
      tokens_.takeDimensions(dimensions);
    }
  }
  tokens_.expect(Keyword::asWord, "after the parameter " + name);
  parameter.type = tokens_.takeType();
  if (dimensions.array) {
    parameter.type.array = true;
    parameter.type.dimensions = dimensions.dimensions;
  }
  if (parameter.taking == Taking::rest) parameter.type.array = true;
  if (tokens_.accept(Symbol::equal)) {
    parameter.defaultValue = expressions_.expression();
  } else if (parameter.taking == Taking::one && !parameter.optional && !before.empty() &&
             (before.back().defaultValue || before.back().optional)) {
    tokens_.failHere("the parameter " + name + " follows one with a default and needs one too");
  }
  return parameter;
}

// Types.

syntax::Enum DeclarationParser::enumeration() {
  tokens_.take();
  syntax::Enum made;
  made.name = tokens_.takeName("the name of the Enum");
  if (tokens_.accept(Keyword::asWord)) made.type = tokens_.takeType();
  tokens_.expectLineEnd("after the Enum " + made.name.text);
  while (tokens_.skipLineEnds(), !statements_.accept({Keyword::endWord, Keyword::enumWord})) {
    if (tokens_.peek().kind == TokenKind::endOfText) {
      throw ProgramError(made.name.position, "the Enum " + made.name.text + " has no 'End Enum'", true);
    }
    syntax::Enum::Member member{tokens_.takeName("a name of the Enum " + made.name.text), {}};
    if (tokens_.accept(Symbol::equal)) member.value = expressions_.expression();
    tokens_.expectLineEnd("after " + member.name.text);
    made.members.push_back(std::move(member));
  }
  return made;
}

syntax::Sub DeclarationParser::delegate() {
  tokens_.take();
  const bool isFunction = tokens_.is(Keyword::functionWord);
  if (!isFunction && !tokens_.is(Keyword::subWord)) tokens_.failExpecting("Sub or Function after Delegate");
  tokens_.take();
  return head(isFunction);
}

syntax::Module DeclarationParser::module() {
  tokens_.take();
  syntax::Module made;
  made.name = tokens_.takeName("the name of the Module");
  tokens_.expectLineEnd("after the Module " + made.name.text);
  members(made.name, Keyword::moduleWord, made.members);
  return made;
}

// Inherits and Implements stand in the line of the class or in lines of their own.
void DeclarationParser::inherits(syntax::Class& made) {
  while (true) {
    const std::size_t ahead = tokens_.atLineEnd() ? 1 : 0;
    const bool named =
        tokens_.peek(ahead + 1).kind == TokenKind::word && !tokens_.is(Keyword::asWord, ahead + 1);
    if (named && tokens_.is(Keyword::inheritsWord, ahead)) {
      tokens_.skipLineEnds();
      tokens_.take();
      if (made.super) tokens_.failHere(made.name.text + " inherits from a class already");
      made.super = tokens_.takeType();
    } else if (named && tokens_.is(Keyword::implementsWord, ahead)) {
      tokens_.skipLineEnds();
      tokens_.take();
      do {
        made.interfaces.push_back(tokens_.takeType());
      } while (tokens_.accept(Symbol::comma));
    } else {
      break;
    }
  }
}

syntax::Class DeclarationParser::ofClass() {
  tokens_.take();
  syntax::Class made;
  made.name = tokens_.takeName("the name of the Class");
  inherits(made);
  tokens_.expectLineEnd("after the Class " + made.name.text);
  members(made.name, Keyword::classWord, made.members);
  return made;
}

syntax::Class DeclarationParser::interface() {
  tokens_.take();
  syntax::Class made;
  made.isInterface = true;
  made.name = tokens_.takeName("the name of the Interface");
  inherits(made);
  if (made.super) {
    made.interfaces.push_back(std::move(*made.super));
    made.super.reset();
  }
  tokens_.expectLineEnd("after the Interface " + made.name.text);
  while (tokens_.skipLineEnds(), !statements_.accept({Keyword::endWord, Keyword::interfaceWord})) {
    if (tokens_.peek().kind == TokenKind::endOfText) {
      throw ProgramError(made.name.position, "the Interface " + made.name.text + " has no 'End Interface'",
                         true);
    }
    const bool isFunction = tokens_.is(Keyword::functionWord);
    if (!isFunction && !tokens_.is(Keyword::subWord)) {
      tokens_.failExpecting("a Sub or Function without a body, or 'End Interface'");
    }
    tokens_.take();
    made.members.subs.push_back(head(isFunction));
  }
  return made;
}

// Properties.

void DeclarationParser::properties(const Modifiers& given, Members& into) {
  syntax::Dim::Group group = statements_.dimGroup();
  for (syntax::Dim::Variable& variable : group.variables) {
    syntax::Property& made = into.properties.emplace_back();
    made.modifiers = given;
    made.name = variable.name;
    made.type = group.type;
    made.stored.type = group.type;
    made.stored.variables.push_back(std::move(variable));
  }
  syntax::Property& last = into.properties.back();
  last.stored.initial = std::move(group.initial);  // of several there is none
  if (atAccessor()) accessors(last);
}

// Get or Set alone in the next line, which makes it a computed property.
bool DeclarationParser::atAccessor() const {
  if (!tokens_.atLineEnd()) return false;
  const bool opened = tokens_.is(Symbol::open, 2) && tokens_.is(Keyword::setWord, 1);
  return (tokens_.is(Keyword::getWord, 1) || tokens_.is(Keyword::setWord, 1)) &&
         (opened || tokens_.peek(2).kind == TokenKind::endOfLine);
}

void DeclarationParser::accessors(syntax::Property& made) {
  if (made.stored.initial || made.stored.variables[0].array) {
    tokens_.failHere("what is computed has neither a value nor elements of its own: " + made.name.text);
  }
  while (tokens_.skipLineEnds(), !statements_.accept({Keyword::endWord, Keyword::propertyWord})) {
    const bool isGet = tokens_.is(Keyword::getWord);
    if (!isGet && !tokens_.is(Keyword::setWord)) tokens_.failExpecting("Get, Set or 'End Property'");
    std::optional<syntax::Sub>& accessor = isGet ? made.get : made.set;
    const Position position = tokens_.take().position;
    if (accessor) fail(position, made.name.text + " has this already");
    accessor.emplace();
    accessor->name = {made.name.text, position};
    accessor->modifiers = made.modifiers;
    if (isGet) {
      accessor->result = made.type;
    } else {
      syntax::Sub::Parameter value;
      value.name = {"value", position};
      value.type = made.type;
      if (tokens_.accept(Symbol::open)) {
        value = parameter({});
        tokens_.expect(Symbol::close, "after the parameter of Set");
      }
      accessor->parameters.push_back(std::move(value));
    }
    tokens_.expectLineEnd(isGet ? "after Get" : "after Set");
    accessor->body = body(made.name, {Keyword::endWord, isGet ? Keyword::getWord : Keyword::setWord});
  }
}

}  // namespace host
