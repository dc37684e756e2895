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

bool DeclarationParser::atWord(const char* word) const {
  return tokens_.peek().kind == TokenKind::word && sameName(tokens_.peek().text, word);
}

bool DeclarationParser::declared(Members& into, syntax::Block& variables) {
  bool found = true;
  tokens_.part([&] {
    const std::size_t start = tokens_.place();
    const Modifiers given = modifiers();
    if (declaredAfter(given, into)) return;
    if (tokens_.place() == start) {
      found = false;
      return;
    }
    // Whatever stands in front of it, all of the program sees it.
    const Position position = tokens_.peek().position;
    if (tokens_.is(Keyword::constWord) || tokens_.is(Keyword::dimWord) || tokens_.is(Keyword::varWord)) {
      found = false;
    } else if (tokens_.peek().kind == TokenKind::word && !isReserved(tokens_.peek().keyword)) {
      if (opens(Keyword::propertyWord) && !tokens_.is(Keyword::asWord, 1)) tokens_.take();
      variables.push_back({position, statements_.dim()});
      tokens_.expectLineEnd("after the declaration");
    } else {
      tokens_.failExpecting("a Sub, Function, Class, Module, Enum, Const or variable");
    }
  });
  return found;
}

// What may stand in the program, a module and a class alike.
bool DeclarationParser::declaredAfter(const Modifiers& given, Members& into) {
  if (tokens_.is(Keyword::subWord) || tokens_.is(Keyword::functionWord)) {
    sub(given, into);
  } else if (opens(Keyword::enumWord)) {
    enumeration(into);
  } else if (opens(Keyword::delegateWord)) {
    delegate(into);
  } else if (opens(Keyword::classWord)) {
    ofClass(into);
  } else if (opens(Keyword::interfaceWord)) {
    interface(into);
  } else if (opens(Keyword::moduleWord)) {
    module(into);
  } else {
    failForForeign();
    return false;
  }
  return true;
}

// What the language of the host has, and this one has not.
void DeclarationParser::failForForeign() {
  static constexpr struct {
    const char* word;
    const char* instead;
  } foreign[] = {
      {"Event",
       "this host has no events of one's own; a property of a Delegate's type does what one does, and what a "
       "class that inherits from Thread runs is its Sub Run"},
      {"RaiseEvent", "this host has no events of one's own; call a property of a Delegate's type"},
      {"Structure", "this host has no structures; use a Class"},
      {"Declare", "this host calls no system libraries"},
      {"Soft", "this host calls no system libraries"},
      {"Namespace", "this host has no namespaces; use a Module"},
  };
  if (tokens_.peek(1).kind != TokenKind::word) return;
  for (const auto& each : foreign) {
    if (!sameName(tokens_.peek().text, each.word)) continue;
    const Position position = tokens_.peek().position;
    for (std::size_t ahead : {1, 2}) tokens_.problems.expectUnknown(tokens_.peek(ahead).text);
    skipTo(each.word);
    fail(position, each.instead);
  }
}

// To the end of a block that this host has not, if it has one.
void DeclarationParser::skipTo(const std::string& end) {
  std::size_t ahead = 0;
  while (!tokens_.is(Keyword::endWord, ahead) || !sameName(tokens_.peek(ahead + 1).text, end)) {
    if (tokens_.peek(++ahead).kind == TokenKind::endOfText) return;
  }
  for (; ahead > 0; --ahead) tokens_.take();
}

// Attributes(…), which only tell others what to think of what follows.
void DeclarationParser::skipAttributes() {
  while (atWord("Attributes") && tokens_.is(Symbol::open, 1)) {
    std::size_t ahead = 1;
    for (int open = 0; tokens_.peek(ahead).kind != TokenKind::endOfLine; ++ahead) {
      if (tokens_.is(Symbol::open, ahead)) ++open;
      if (tokens_.is(Symbol::close, ahead) && --open == 0) break;
    }
    if (tokens_.peek(ahead + 1).kind != TokenKind::word) return;
    for (++ahead; ahead > 0; --ahead) tokens_.take();
  }
}

Modifiers DeclarationParser::modifiers() {
  Modifiers given;
  skipAttributes();
  while (tokens_.peek(1).kind == TokenKind::word && !tokens_.is(Keyword::asWord, 1)) {
    if (tokens_.accept(Keyword::privateWord)) {
      given.access = Access::self;
    } else if (tokens_.accept(Keyword::protectedWord)) {
      given.access = Access::family;
    } else if (tokens_.is(Keyword::sharedWord) || (tokens_.is(Keyword::staticWord) && inType_)) {
      tokens_.take();
      given.shared = true;
    } else if (tokens_.is(Keyword::propertyWord, 1) && (atWord("ReadOnly") || atWord("Computed"))) {
      given.computed = tokens_.take().text;
    } else if (!tokens_.accept(Keyword::publicWord) && !tokens_.accept(Keyword::globalWord)) {
      break;
    }
    skipAttributes();
  }
  return given;
}

// Up to the end of what was opened.
void DeclarationParser::members(const Opener& opener, Members& into) {
  struct InType {
    bool& flag;
    const bool outer;
    ~InType() { flag = outer; }
  } const inType{inType_, std::exchange(inType_, true)};
  const BlockEnd end{Keyword::endWord, opener.word};
  statements_.linesUntil(opener, {end}, StatementParser::Holds::declarations,
                         [&] { return memberLine(opener.word, into); });
  if (statements_.accept(end)) return;
  // What stands behind the place where it should end may have been taken for its members.
  for (const syntax::Property& each : into.properties) tokens_.problems.expectUnknown(each.name.text);
  for (const syntax::Sub& each : into.subs) tokens_.problems.expectUnknown(each.name.text);
  for (const syntax::Class& each : into.classes) tokens_.problems.expectUnknown(each.name.text);
  for (const syntax::Module& each : into.modules) tokens_.problems.expectUnknown(each.name.text);
  for (const syntax::Enum& each : into.enums) tokens_.problems.expectUnknown(each.name.text);
}

// One line with what it opens; false where it is no member, and none will follow.
bool DeclarationParser::memberLine(Keyword owner, Members& into) {
  if (!mayBeMember() && !tokens_.isEndedFurtherDown(owner)) return false;
  const bool isRead = tokens_.part([&] { member(owner, into); }, true);
  if (!isRead && atAccessor()) {  // belongs to what could not be read
    syntax::Property ignored;
    ignored.stored.variables.emplace_back();
    accessors(ignored);
  }
  return true;
}

// As far as the line's first words show: a word of a declaration, or a name with a type.
bool DeclarationParser::mayBeMember() const {
  static constexpr Keyword declaring[] = {Keyword::constWord, Keyword::dimWord, Keyword::varWord,
                                          Keyword::staticWord};
  if (tokens_.atDeclaration()) return true;
  for (const Keyword each : declaring) {
    if (tokens_.is(each)) return true;
  }
  if (tokens_.peek().kind != TokenKind::word || isReserved(tokens_.peek().keyword)) return false;
  for (std::size_t ahead = 1; tokens_.peek(ahead).kind != TokenKind::endOfLine; ++ahead) {
    if (tokens_.is(Keyword::asWord, ahead)) return true;
  }
  return false;
}

void DeclarationParser::member(Keyword owner, Members& into) {
  const Modifiers given = modifiers();
  if (declaredAfter(given, into)) return;
  const std::string expected = std::string("a declaration or 'End ") + spellingOf(owner) + "'";
  switch (tokens_.peek().keyword) {
    case Keyword::ifWord:
    case Keyword::selectWord:
    case Keyword::forWord:
    case Keyword::whileWord:
    case Keyword::doWord:
    case Keyword::tryWord: {  // all of it stands in the wrong place
      tokens_.problems.attempt([&] { tokens_.failExpecting(expected); });
      syntax::Block ignored;
      return statements_.lineInto(ignored);
    }
    default:
      break;
  }
  if (tokens_.accept(Keyword::constWord)) {
    into.constants.push_back({given, statements_.constant()});
  } else if (tokens_.accept(Keyword::dimWord) || tokens_.accept(Keyword::varWord) ||
             (opens(Keyword::propertyWord) && !tokens_.is(Keyword::asWord, 1) &&
              tokens_.accept(Keyword::propertyWord)) ||
             (tokens_.peek().kind == TokenKind::word && !isReserved(tokens_.peek().keyword))) {
    properties(given, into);
  } else {
    tokens_.failExpecting(expected);
  }
  if (!tokens_.atLineEnd() && !tokens_.atLineStart()) tokens_.expectLineEnd("after the declaration");
}

// Subs.

void DeclarationParser::sub(const Modifiers& given, Members& into) {
  const Opener opener{tokens_.peek().keyword, tokens_.peek().position};
  syntax::Sub sub;
  sub.modifiers = given;
  sub.isRead = tokens_.part([&] {
    tokens_.take();
    head(sub, opener.word == Keyword::functionWord);
  });
  sub.body = statements_.body(opener, {Keyword::endWord, opener.word});
  into.subs.push_back(std::move(sub));
}

void DeclarationParser::head(syntax::Sub& sub, bool isFunction) {
  if (tokens_.is(Keyword::newWord)) tokens_.failHere("what makes an object is the Sub Constructor");
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
  } else if (tokens_.is(Keyword::asWord)) {
    tokens_.failHere("a Sub gives no value; write Function " + sub.name.text + "(…) As …");
  }
  if (inType_ && tokens_.accept(Keyword::implementsWord)) {
    do {
      sub.implements.push_back(implemented(sub.name.text));
    } while (tokens_.accept(Symbol::comma));
  }
  tokens_.expectLineEnd("after the declaration of " + sub.name.text);
}

// Interface.Method behind the head of a method: the interface, as the method is found by its name anyway.
syntax::TypeName DeclarationParser::implemented(const std::string& method) {
  syntax::TypeName named = tokens_.takeType();
  const std::size_t dot = named.text.rfind('.');
  if (dot == std::string::npos) {
    fail(named.position,
         "expected the method of an interface after Implements, such as " + named.text + "." + method);
  }
  if (const std::string wanted = named.text.substr(dot + 1); !sameName(wanted, method)) {
    fail(named.position, "a method implements the one of its own name; call it " + wanted);
  }
  named.text.resize(dot);
  return named;
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
    if (parameter.type.array) {
      fail(parameter.type.position, "the elements of an array are no arrays; it may have several dimensions");
    }
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

void DeclarationParser::enumeration(Members& into) {
  const Opener opener{Keyword::enumWord, tokens_.peek().position};
  syntax::Enum made;
  const bool isRead = tokens_.part([&] {
    tokens_.take();
    made.name = tokens_.takeName("the name of the Enum");
    if (tokens_.accept(Keyword::asWord)) made.type = tokens_.takeType();
    tokens_.expectLineEnd("after the Enum " + made.name.text);
  });
  const BlockEnd end{Keyword::endWord, Keyword::enumWord};
  statements_.linesUntil(opener, {end}, StatementParser::Holds::statements, [&] {
    if (isReserved(tokens_.peek().keyword) && !tokens_.isEndedFurtherDown(Keyword::enumWord)) return false;
    tokens_.part(
        [&] {
          syntax::Enum::Member member{tokens_.takeName("a name of the Enum " + made.name.text), {}};
          if (tokens_.accept(Symbol::equal)) member.value = expressions_.expression();
          tokens_.expectLineEnd("after " + member.name.text);
          made.members.push_back(std::move(member));
        },
        true);
    return true;
  });
  statements_.accept(end);
  if (isRead) into.enums.push_back(std::move(made));
}

void DeclarationParser::delegate(Members& into) {
  tokens_.part([&] {
    tokens_.take();
    const bool isFunction = tokens_.is(Keyword::functionWord);
    if (!isFunction && !tokens_.is(Keyword::subWord)) tokens_.failExpecting("Sub or Function after Delegate");
    tokens_.take();
    syntax::Sub made;
    head(made, isFunction);
    into.delegates.push_back(std::move(made));
  });
}

void DeclarationParser::module(Members& into) {
  const Opener opener{Keyword::moduleWord, tokens_.peek().position};
  syntax::Module made;
  const bool isRead = tokens_.part([&] {
    tokens_.take();
    made.name = tokens_.takeName("the name of the Module");
    tokens_.expectLineEnd("after the Module " + made.name.text);
  });
  members(opener, made.members);
  becomeSubs(made.members);
  if (isRead) into.modules.push_back(std::move(made));
}

// What a module computes in the place of a variable is a Function, and a Sub that is assigned to.
void DeclarationParser::becomeSubs(Members& members) {
  for (syntax::Property& each : members.properties) {
    for (std::optional<syntax::Sub>* accessor : {&each.get, &each.set}) {
      if (!*accessor) continue;
      (*accessor)->name.position = each.name.position;
      if (accessor == &each.set) (*accessor)->parameters.front().taking = Taking::assigned;
      members.subs.push_back(std::move(**accessor));
    }
  }
  std::erase_if(members.properties, [](const syntax::Property& each) { return each.get || each.set; });
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

void DeclarationParser::ofClass(Members& into) {
  const Opener opener{Keyword::classWord, tokens_.peek().position};
  syntax::Class made;
  const bool isRead = tokens_.part([&] {
    tokens_.take();
    made.name = tokens_.takeName("the name of the Class");
    inherits(made);
    if (tokens_.is(Keyword::extendsWord)) tokens_.failHere("write Inherits and the class above");
    tokens_.expectLineEnd("after the Class " + made.name.text);
  });
  members(opener, made.members);
  if (isRead) into.classes.push_back(std::move(made));
}

void DeclarationParser::interface(Members& into) {
  const Opener opener{Keyword::interfaceWord, tokens_.peek().position};
  syntax::Class made;
  made.isInterface = true;
  const bool isRead = tokens_.part([&] {
    tokens_.take();
    made.name = tokens_.takeName("the name of the Interface");
    inherits(made);
    tokens_.expectLineEnd("after the Interface " + made.name.text);
  });
  if (made.super) {
    made.interfaces.push_back(std::move(*made.super));
    made.super.reset();
  }
  const BlockEnd end{Keyword::endWord, Keyword::interfaceWord};
  statements_.linesUntil(opener, {end}, StatementParser::Holds::declarations, [&] {
    const bool isFunction = tokens_.is(Keyword::functionWord);
    const bool isSub = isFunction || tokens_.is(Keyword::subWord);
    if (!isSub && !tokens_.isEndedFurtherDown(Keyword::interfaceWord)) return false;
    tokens_.part([&] {
      if (!isSub) tokens_.failExpecting("a Sub or Function without a body, or 'End Interface'");
      tokens_.take();
      syntax::Sub sub;
      head(sub, isFunction);
      made.members.subs.push_back(std::move(sub));
    });
    return true;
  });
  statements_.accept(end);
  if (isRead) into.classes.push_back(std::move(made));
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
  if (atAccessor()) {
    accessors(last);
  } else if (!given.computed.empty()) {
    fail(last.name.position, "a " + given.computed + " Property has a Get, which computes it");
  }
}

// Get or Set alone in the next line, which makes it a computed property.
bool DeclarationParser::atAccessor() const {
  if (!tokens_.atLineEnd()) return false;
  const std::size_t word = atAccess(1) ? 2 : 1;
  const bool opened = tokens_.is(Symbol::open, word + 1) && tokens_.is(Keyword::setWord, word);
  return (tokens_.is(Keyword::getWord, word) || tokens_.is(Keyword::setWord, word)) &&
         (opened || tokens_.peek(word + 1).kind == TokenKind::endOfLine);
}

bool DeclarationParser::atAccess(std::size_t ahead) const {
  return tokens_.is(Keyword::privateWord, ahead) || tokens_.is(Keyword::protectedWord, ahead) ||
         tokens_.is(Keyword::publicWord, ahead);
}

void DeclarationParser::accessors(syntax::Property& made) {
  tokens_.problems.attempt([&] {
    if (!made.stored.initial && !made.stored.variables[0].array) return;
    tokens_.failHere("what is computed has neither a value nor elements of its own: " + made.name.text);
  });
  const BlockEnd end{Keyword::endWord, Keyword::propertyWord};
  const Opener opener{Keyword::propertyWord, made.name.position};
  statements_.linesUntil(opener, {end}, StatementParser::Holds::declarations, [&] { return accessor(made); });
  statements_.accept(end);
}

// One of them; false where something else is declared.
bool DeclarationParser::accessor(syntax::Property& made) {
  if (atAccess(0) && (tokens_.is(Keyword::getWord, 1) || tokens_.is(Keyword::setWord, 1))) {
    const Token& access = tokens_.take();
    tokens_.problems.add(ProgramError(
        access.position, "Get and Set are for all who see the Property; leave out " + access.text +
                             (tokens_.is(Keyword::setWord)
                                  ? ", and write a Sub of its own, such as " + access.text + " Sub Set" +
                                        made.name.text + "(value As " + made.type.text + ")"
                                  : ", and write a Function of its own")));
  }
  const Opener opener{tokens_.peek().keyword, tokens_.peek().position};
  const bool isGet = opener.word == Keyword::getWord;
  if (!isGet && opener.word != Keyword::setWord) {
    if (tokens_.atDeclaration()) return false;
    tokens_.part([&] { tokens_.failExpecting("Get, Set or 'End Property'"); });
    return true;
  }
  syntax::Sub read;
  read.name = {made.name.text, opener.position};
  read.modifiers = made.modifiers;
  std::optional<syntax::Sub>& accessor = isGet ? made.get : made.set;
  read.isRead = tokens_.part([&] {
    tokens_.take();
    if (accessor) fail(opener.position, made.name.text + " has this already");
    if (isGet) {
      read.result = made.type;
    } else {
      syntax::Sub::Parameter value;
      value.name = {"value", opener.position};
      value.type = made.type;
      if (tokens_.accept(Symbol::open)) {
        value = parameter({});
        tokens_.expect(Symbol::close, "after the parameter of Set");
      }
      read.parameters.push_back(std::move(value));
    }
    tokens_.expectLineEnd(isGet ? "after Get" : "after Set");
  });
  read.body = statements_.body(opener, {Keyword::endWord, opener.word});
  if (read.isRead || !accessor) accessor = std::move(read);
  return true;
}

}  // namespace host
