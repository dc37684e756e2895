// Names and what they stand for: those of a program, and those that are seen from one place in it.
#pragma once

#include <deque>
#include <map>
#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

#include "language/places.h"
#include "language/program.h"
#include "language/syntax.h"

namespace host {

// Throws ProgramError where there is no such type.
Type typeOf(const syntax::TypeName& name);

struct Constant {
  Type type;
  Slot slot = {};
  Ref<Heap> keep;  // of a text
};

// What a program has at module level. Grows in the interactive mode, where every input is one more piece of
// the same program and may declare a name anew; what earlier pieces use stays.
struct ModuleNames {
  std::string file;
  std::unordered_map<std::string, Sub*> subs;  // keys in lower case
  std::unordered_map<std::string, std::variant<Global*, Constant>> values;
  std::deque<Sub> allSubs;
  std::deque<Global> allGlobals;
  std::unique_ptr<StepsLeft> stepsLeft;  // null: no limit
  std::vector<Problem> warnings;         // of what was compiled last

  ModuleNames() = default;
  ~ModuleNames();
  ModuleNames(const ModuleNames&) = delete;
  ModuleNames& operator=(const ModuleNames&) = delete;
};

// The names that are seen inside one Sub, or at module level; the innermost block's hide the others.
class Names {
 public:
  // `locals` grows by a slot for each variable. At module level what is declared outside of every block is
  // the module's.
  Names(ModuleNames& module, std::vector<Type>& locals, bool atModuleLevel, bool mayRedeclare)
      : module_(module),
        locals_(locals),
        atModuleLevel_(atModuleLevel),
        mayRedeclare_(mayRedeclare),
        blocks_(1) {}

  // A block whose names end with it.
  class Inner {
   public:
    explicit Inner(Names& names) : names_(names) { names_.blocks_.emplace_back(); }
    ~Inner() { names_.blocks_.pop_back(); }
    Inner(const Inner&) = delete;
    Inner& operator=(const Inner&) = delete;

   private:
    Names& names_;
  };

  // All throw ProgramError: where the block has another of that name, or there is none.
  void checkFree(const syntax::Name& name) const;
  std::unique_ptr<Place> declare(const syntax::Name& name, Type type);
  void declareParameter(const SubParameter& parameter, Position position);
  void declareConstant(const syntax::Name& name, Constant constant);
  std::unique_ptr<Place> hidden(Type type, Position position);  // a variable without a name

  Expr find(const std::string& name) const;  // a variable or constant; null: there is none
  Expr expect(const syntax::Name& name) const;
  const Sub* findSub(const std::string& name) const;
  StepsLeft* stepsLeft() const { return module_.stepsLeft.get(); }
  [[noreturn]] void failUnknown(const syntax::Name& name) const;

 private:
  struct Local {
    Type type;
    std::size_t slot;
    bool byRef = false;
  };
  using Block = std::map<std::string, std::variant<Local, Constant>>;

  bool isModuleScope() const { return atModuleLevel_ && blocks_.size() == 1; }
  std::size_t newSlot(Type type, bool owns, Position position);

  ModuleNames& module_;
  std::vector<Type>& locals_;
  bool atModuleLevel_, mayRedeclare_;
  std::vector<Block> blocks_;
};

}  // namespace host
