// Compiles the text of a host program: every name and type is settled before anything runs.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "language/program.h"
#include "runtime/registry.h"

namespace host {

// Adds the text to the program and gives what is to be run at module level. Throws ProgramError.
// `interactive`: a last expression that is not assigned is printed, and text that only lacks its end throws
// UnfinishedProgram.
Main compile(Program& program, std::string_view text, bool interactive = false);

class Compiler {
 public:
  Compiler(Program& program, std::string_view text, bool interactive)
      : program_(program), tokens_(tokenize(text)), interactive_(interactive) {}
  Main run();

 private:
  struct Local {
    Type type;
    std::size_t slot;
    bool byRef = false;
  };
  using Names = std::map<std::string, Local>;
  using Arguments = std::vector<Expr>;

  // Tokens.
  const Token& peek(std::size_t ahead = 0) const;
  const Token& take();
  bool isWord(std::string_view word, std::size_t ahead = 0) const;
  bool isSymbol(std::string_view symbol, std::size_t ahead = 0) const;
  bool takeWord(std::string_view word);
  bool takeSymbol(std::string_view symbol);
  void expectWord(std::string_view word, const std::string& where);
  void expectSymbol(std::string_view symbol, const std::string& where);
  void expectLineEnd(const std::string& after);
  bool atLineEnd() const;
  std::string takeName(const std::string& what);
  [[noreturn]] void fail(const std::string& message) const;
  [[noreturn]] static void fail(Position position, const std::string& message);
  std::string describe(const Token& token) const;

  // Names.
  void declareSubs();
  void parseSignature(Sub& sub, bool isFunction);
  void compileSub(Sub& sub);
  Expr findVariable(const std::string& name);
  std::size_t newLocal(Type type, bool owns = true);
  Expr localPlace(const Local& local);
  std::unique_ptr<Place> declare(const std::string& name, Type type, Position position);
  void checkFree(const std::string& name, Position position);
  [[noreturn]] void unknownName(const std::string& name, Position position);
  Type parseType();

  // Statements.
  void parseBlock(Block& block, const std::set<std::string>& ends);
  void parseScope(Block& block, const std::set<std::string>& ends);  // the same, with names of its own
  // The body of a loop, in which Exit and Continue of its kind may stand.
  std::shared_ptr<Block> parseLoopBody(int& depth, const std::set<std::string>& ends);
  void parseStatement(Block& block);
  void parseDim(Block& block);
  void parseConst();
  // An expression of literals and constants: its value, which the caller owns, and its type.
  std::pair<Slot, Type> parseConstant(std::optional<Type> type, const std::string& what);
  void parseIf(Block& block);
  void parseSelect(Block& block);
  void parseFor(Block& block);
  void parseForEach(Block& block, Position position);
  void parseWhile(Block& block);
  void parseDo(Block& block);
  void parseTry(Block& block);
  void parseJump(Block& block);
  void parseReturn(Block& block);
  void parsePrint(Block& block);
  void parseAddHandler(Block& block);
  void parseReDim(Block& block);
  void parseSimple(Block& block);
  Stmt assignment(Position position, Expr target, Expr value);

  // Expressions.
  Expr parseExpression();
  Expr parseBinary(int level);
  Expr parseNot();
  Expr parseUnary();
  Expr parsePower();
  Expr parsePostfix(bool asStatement = false);
  Expr parsePrimary(bool asStatement);
  Expr parseNew();
  Expr parseMember(Expr object, bool asStatement);
  Expr parseWord(bool asStatement);
  Expr parseIsA(Expr object);
  Arguments parseArguments(bool asStatement, bool* had = nullptr);
  Expr memberOfClass(const Class& type, const Token& name, bool asStatement);
  Expr memberOfModule(const Module& module, const Token& name, bool asStatement);
  Expr pointerAccess(Expr pointer, const Token& name);
  Expr arrayMember(Expr array, const Token& name, Arguments arguments);
  Expr intrinsic(const Token& name, Arguments& arguments);
  Expr condition(const std::string& what);
  int constantIndex_ = 0;

  // Calls.
  Expr callSub(const Sub& sub, const Token& name, Arguments arguments);
  Expr callMethod(const std::vector<const Method*>& candidates, const Token& name, Expr self,
                  Arguments arguments, bool asStatement, bool mayFail = false);
  Expr callMethodExactly(const Method& method, Expr self, Arguments arguments, Position position);
  Expr property(const Property& property, Expr self, Position position);

  // Operators.
  Expr arithmetic(const std::string& symbol, Expr left, Expr right, Position position);
  Expr comparison(const std::string& symbol, Expr left, Expr right, Position position);
  Expr logical(const std::string& symbol, Expr left, Expr right, Position position);
  Expr negation(Expr operand, Position position);
  Expr plainValue(Expr operand);
  Expr overloaded(const char* name, Expr& left, Expr& right, Position position);

  // Conversions; cost < 0: there is none.
  static int cost(const Expression& from, Type to, bool byRef);
  // The Operator_Convert through which objects of a class take on a value of another type, if there is one.
  struct Conversion {
    const Method* method = nullptr;
    int cost = 1000;
  };
  static Conversion conversionInto(const Class& objectClass, const Expression& from);
  static int costOfObject(const Expression& from, Type to);
  Expr convertTo(Expr value, Type type, const std::string& what);
  Expr literalInteger(std::uint64_t value, Type type);
  Expr text(const std::string& value);
  Expr displayed(Expr value);

  Program& program_;
  std::vector<Token> tokens_;
  std::size_t at_ = 0;
  bool interactive_;
  std::vector<Names> scopes_;
  std::vector<Type>* locals_ = nullptr;  // of the Sub or main program being compiled
  const Sub* sub_ = nullptr;
  int depth_ = 0;  // of nested blocks and expressions
  int forDepth_ = 0, whileDepth_ = 0, doDepth_ = 0;
  struct PendingSub {
    Sub* sub;
    std::size_t body;
  };
  std::vector<PendingSub> pending_;

  friend class DepthGuard;
};

// Bounds how deeply blocks and parentheses may be nested, so that no program exhausts the compiler's stack.
class DepthGuard {
 public:
  explicit DepthGuard(Compiler& compiler) : depth_(compiler.depth_) {
    if (++depth_ > 200) {
      --depth_;
      compiler.fail("blocks or parentheses are nested too deeply");
    }
  }
  ~DepthGuard() { --depth_; }
  DepthGuard(const DepthGuard&) = delete;
  DepthGuard& operator=(const DepthGuard&) = delete;

 private:
  int& depth_;
};

// Names closest to a wrong one, for "did you mean"; empty if none is close.
std::string nearest(std::string_view name, const std::vector<std::string>& candidates);

// The language's own global functions, registered like a library's.
void registerBuiltins();

std::string lowerCase(std::string_view text);

}  // namespace host
