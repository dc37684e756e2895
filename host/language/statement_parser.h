// Reads statements, and blocks of them.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <set>
#include <vector>

#include "language/expression_parser.h"

namespace host {

// The words before which a block ends.
struct BlockEnd {
  Keyword first, second = Keyword::none;  // such as End If
};
using BlockEnds = std::initializer_list<BlockEnd>;

// The word that a block begins with.
struct Opener {
  Keyword word;
  Position position;
  std::string variable = {};  // of For, where its end may name it
  bool hasElse = false;       // it has come to its Else
};

class StatementParser {
 public:
  StatementParser(TokenReader& tokens, int& depth, ExpressionParser& expressions, bool interactive)
      : tokens_(tokens), depth_(depth), expressions_(expressions), interactive_(interactive) {}

  // One more statement; others may follow on its line after a colon. What cannot be read is passed over.
  void lineInto(syntax::Block& block);
  // What stands before the end, and the end.
  syntax::Block body(const Opener& opener, BlockEnd end);
  syntax::Dim dim();              // after the word Dim
  syntax::Dim::Group dimGroup();  // variables of one type
  syntax::Const constant();       // after the word Const

  // What may stand in a block: statements alone, or declarations as well.
  enum class Holds : std::uint8_t { statements, declarations };
  // Calls `read` at each line before one of the ends, the first of which is the one that closes the block. It
  // reads the line, and throws no ProgramError; or it gives false where the line is no part of the block.
  // Where there is no end, that is reported.
  template <typename Read>
  void linesUntil(const Opener& opener, BlockEnds ends, Holds holds, Read read) {
    const Nesting nesting(depth_, tokens_);
    open_.push_back({opener, ends});
    while (tokens_.skipLineEnds(), !atOneOf(open_.back().ends)) {
      if (acceptBareEnd(*ends.begin())) break;
      if (atOuterEnd(holds) || !read()) {
        reportMissing(opener, *ends.begin());
        break;
      }
    }
    open_.pop_back();
  }
  bool accept(BlockEnd end);

 private:
  syntax::Statement line();
  bool at(BlockEnd end) const;
  bool acceptBareEnd(BlockEnd end);
  bool atOneOf(const std::vector<BlockEnd>& ends) const;
  syntax::Block block(const Opener& opener, BlockEnds ends);
  bool atOuterEnd(Holds holds) const;
  void reportMissing(const Opener& opener, BlockEnd end);
  bool opensBlock(const Opener& opener) const;
  bool isOpenWithoutElse(Keyword word) const;
  [[noreturn]] void failForStray(const Token& token);
  syntax::Block alone();  // one statement
  syntax::Statement statement();
  syntax::Statement simple();
  void failForForeignBlock();
  static bool isNamed(const syntax::Expression& expression);
  bool atBareArgument() const;
  std::optional<syntax::Expression> valueIfAny();
  syntax::Print print();
  std::optional<syntax::TypeName> typeIfAny();

  // What follows the word that opens the statement.
  syntax::Dim staticDim();
  void bounds(syntax::Dim::Variable& variable);
  syntax::If ifElse(const Opener& opener);
  syntax::Select select(const Opener& opener);
  syntax::Select::Test test();
  syntax::For counting(Opener opener);
  syntax::ForEach forEach(const Opener& opener);
  void next(const Opener& opener);
  syntax::Loop whileLoop(const Opener& opener);
  syntax::Loop doLoop(const Opener& opener);
  syntax::Try tryCatch(const Opener& opener);
  syntax::Jump jump();  // the word included
  syntax::AddHandler addHandler();
  syntax::ReDim reDim();

  TokenReader& tokens_;
  int& depth_;
  ExpressionParser& expressions_;
  bool interactive_;
  struct Open {
    const Opener& opener;
    std::vector<BlockEnd> ends;
  };
  std::vector<Open> open_;    // the blocks around what is being read
  std::set<Keyword> strays_;  // of which parts stood alone, and no end yet
};

}  // namespace host
