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

struct TypeName : Name {
  bool array = false;
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
  std::variant<Unread, Literal, Name, New, Parenthesised, Negation, Not, Chain, Sequence> node;
};

struct Statement;
using Block = std::vector<Statement>;

struct Dim {
  struct Variable {
    Name name;
    bool array = false;
    std::optional<Expression> bound;
  };
  struct Group {  // of one type
    std::vector<Variable> variables;
    TypeName type;
    std::optional<Expression> initial;  // after "As New" an expression New
  };
  std::vector<Group> groups;
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
  Name event, handler;
};
struct ReDim {
  Name array;
  Expression bound;
};

struct Statement {
  Position position;
  std::variant<Dim, Const, Assign, Evaluate, If, Select, For, ForEach, Loop, Try, Jump, Return, Print, Raise,
               AddHandler, ReDim>
      node;
};

// A Sub or Function.
struct Sub {
  struct Parameter {
    Name name;
    TypeName type;
    bool byRef = false;
    std::optional<Expression> defaultValue;
  };
  Name name;
  std::vector<Parameter> parameters;
  std::optional<TypeName> result;
  bool isRead = true;  // all of the declaration
  Block body;
};

struct Program {
  std::vector<Sub> subs;
  Block main;
};

}  // namespace host::syntax
