// What a program's text says: a plain tree, in which no name means anything yet.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "language/operator.h"
#include "language/problem.h"

namespace host::syntax {

struct Name {
  std::string text;
  Position position;
};

struct TypeName : Name {  // of a module's or class's: with its name and a dot in front
  bool array = false;
  std::uint8_t dimensions = 1;  // of an array
};

struct Expression;
using Box = std::unique_ptr<Expression>;
using Expressions = std::vector<Expression>;

struct Unread {};  // what was refused by the parser
struct NilLiteral {};
struct Literal {
  std::variant<std::uint64_t, double, bool, std::string, NilLiteral> value;
};
// In parentheses or, at the end of a statement, without.
struct Arguments {
  Position position;
  Expressions values;
  bool parenthesised = true;
};
struct New {
  TypeName type;
  Arguments arguments;
};
struct Parenthesised {
  Box inner;
};
struct Negation {
  Position position;
  Box operand;
};
struct Not {
  Position position;
  Box operand;
};
struct Conditional {  // If(condition, first, second)
  Box condition, first, second;
};
struct AddressOf {
  Box method;  // a name, or a chain that ends with one
};

// What follows a value: a member's name or arguments.
using Link = std::variant<Name, Arguments>;
struct Chain {
  Box first;
  std::vector<Link> links;
};

// Operands with operators of one precedence between them, to be grouped from the left. The flat list keeps a
// tree as shallow as its parentheses, however long a sum may be.
struct Sequence {
  struct Operation {
    Position position;
    std::variant<Operator, TypeName> what;  // a type: IsA
    Box operand;                            // null after IsA
  };
  Box first;
  std::vector<Operation> rest;
};

struct Expression {
  Position position;
  std::variant<Unread, Literal, Name, New, Parenthesised, Negation, Not, Conditional, AddressOf, Chain,
               Sequence>
      node;
};

struct Statement;
using Block = std::vector<Statement>;

struct Dim {
  struct Variable {
    Name name;
    bool array = false;
    Expressions bounds;  // one of each dimension, or none
    std::uint8_t dimensions = 1;
  };
  struct Group {  // of one type
    std::vector<Variable> variables;
    TypeName type;
    std::optional<Expression> initial;  // after "As New" an expression New
  };
  std::vector<Group> groups;
  bool isStatic = false;  // lives as long as the program
};
struct Const {
  Name name;
  std::optional<TypeName> type;
  Expression value;
};
struct Assign {
  Expression target;
  std::optional<Operator> compound;  // of += and the like
  Expression value;
};
struct Evaluate {  // a call; in the interactive mode any expression, to be shown
  Expression value;
};
struct If {
  struct Branch {
    std::optional<Expression> condition;  // none: Else
    Block body;
  };
  std::vector<Branch> branches;
};
struct Select {
  struct Test {
    Position position;
    Operator comparison = Operator::equal;
    Expression value;
    std::optional<Expression> upTo;
  };
  struct Case {
    std::vector<Test> tests;  // none: Case Else
    Block body;
  };
  Expression value;
  std::vector<Case> cases;
};
struct For {
  Name variable;
  std::optional<TypeName> type;
  Expression from, to;
  std::optional<Expression> step;
  bool down = false;
  Block body;
};
struct ForEach {
  Name variable;
  std::optional<TypeName> type;
  Expression array;
  Block body;
};
enum class LoopKind : std::uint8_t { forLoop, whileLoop, doLoop };
struct Loop {  // While … Wend, Do … Loop
  struct Test {
    Expression condition;
    bool until = false;
  };
  LoopKind kind;
  std::optional<Test> before, after;
  Block body;
};
struct Try {
  struct Catch {
    std::optional<Name> variable;
    std::optional<TypeName> type;
    Block body;
  };
  Block body;
  std::vector<Catch> catches;
  Block finally;
};
struct Jump {  // Exit, Continue
  enum class Target : std::uint8_t { innermost, forLoop, whileLoop, doLoop, sub, function };
  Name word;  // as written
  bool exits;
  Target target;
  Name variable = {};  // Exit For i; empty where none is named
};
struct Return {
  std::optional<Expression> value;
};
struct Print {
  std::optional<Expression> value;
};
struct Raise {
  Expression exception;
};
struct AddHandler {
  Expression object;
  Name event;
  Expression handler;  // an AddressOf
};
struct ReDim {
  Expression array;
  Position position;
  Expressions bounds;
};

struct Statement {
  Position position;
  std::variant<Dim, Const, Assign, Evaluate, If, Select, For, ForEach, Loop, Try, Jump, Return, Print, Raise,
               AddHandler, ReDim>
      node;
};

// What stands outside of every Sub.

enum class Access : std::uint8_t { everyone, family, self };  // Public, Protected, Private
struct Modifiers {
  Access access = Access::everyone;
  bool shared = false;   // a class's, not an object's
  std::string computed;  // ReadOnly or Computed, as written
};

// A Sub or Function; without a body where it stands in an interface or declares a delegate.
struct Sub {
  enum class Taking : std::uint8_t {
    one,
    rest,      // ParamArray: an array of all further arguments
    extended,  // Extends: the value that the method is called on
    assigned,  // Assigns: the value on the right of an assignment
  };
  struct Parameter {
    Name name;
    TypeName type;
    bool byRef = false;
    std::optional<Expression> defaultValue;
    bool optional = false;  // without a default of its own: zero, Nil or ""
    Taking taking = Taking::one;
  };
  Name name;
  std::vector<Parameter> parameters;
  std::optional<TypeName> result;
  std::vector<TypeName> implements;  // interfaces of which it says so itself
  bool isRead = true;                // all of the declaration
  Block body;
  Modifiers modifiers;
};

struct Enum {
  struct Member {
    Name name;
    std::optional<Expression> value;
  };
  Name name;
  std::optional<TypeName> type;
  std::vector<Member> members;
};

struct OwnConst {
  Modifiers modifiers;
  Const constant;
};

// A variable of a module or class, a field of an object, or what is computed in its place.
struct Property {
  Modifiers modifiers;
  Name name;
  TypeName type;
  Dim::Group stored;            // where it is stored: one variable
  std::optional<Sub> get, set;  // where it is computed
};

struct Class;
struct Module;
// What may be declared in a program, a module or a class, if in different measure.
struct Members {
  std::vector<Sub> subs;
  std::vector<Enum> enums;
  std::vector<Sub> delegates;
  std::vector<Class> classes;
  std::vector<Module> modules;
  std::vector<OwnConst> constants;
  std::vector<Property> properties;
};

struct Class {  // or interface, whose Subs have no bodies
  Name name;
  bool isInterface = false;
  std::optional<TypeName> super;
  std::vector<TypeName> interfaces;  // that it implements; of an interface, that it is more than
  Members members;
};

struct Module {
  Name name;
  Members members;
};

struct Program {
  Members declared;
  Block main;
};

}  // namespace host::syntax
