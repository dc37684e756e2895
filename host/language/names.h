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

struct Constant {
  Type type;
  Slot slot = {};
  Ref<Heap> keep;  // of a text
  std::string name = {};
};

// What is declared in one place: the program, a module, a class (but for what its objects have), an
// enumeration. Keys are in lower case.
struct Declarations {
  std::string name;
  const Declarations* outer = nullptr;  // the place that it stands in; null: it is the program
  const Class* ofClass = nullptr;       // the class whose declarations these are
  std::unordered_map<std::string, std::vector<const Method*>> subs;  // that need no object
  std::unordered_map<std::string, std::variant<Global*, Constant>> values;
  std::unordered_map<std::string, Type> types;
  std::unordered_map<std::string, const Declarations*> spaces;  // of modules, classes and enumerations
  std::unordered_map<std::string, Access> access;               // but for what everyone may use

  Access accessOf(const std::string& key) const;
  // A value by its name; null where there is none.
  Expr value(const std::string& key) const;
};

// A class, an interface or a delegate of a program.
struct OwnClass : Class {
  Declarations declared;
  Position position;
  std::deque<Method> accessors;  // of its computed properties
  Sub* initial = nullptr;        // gives the fields of a new object their values
  std::optional<Method> destruction;
  bool isWrong = false;              // what it inherits or implements is unknown
  bool hasWrongConstructor = false;  // one at least
};

// Null for a class that a library or the host has registered.
const OwnClass* ownOf(const Class* objectClass);
std::vector<std::string> membersOf(const Class& type);  // their names, those of the classes above as well
std::string nameOf(const std::variant<Global*, Constant>& value);
// What a class lacks is not worth saying where it, or one above it, is wrong.
bool isWrong(const Class* objectClass);

// What a program has at module level. Grows in the interactive mode, where every input is one more piece of
// the same program and may declare a name anew; what earlier pieces use stays.
struct ModuleNames : Declarations {
  std::string file;
  std::vector<const Declarations*> modules;  // whose members are seen everywhere
  std::deque<Sub> allSubs;
  std::deque<Method> allMethods;
  std::deque<Global> allGlobals;
  std::deque<Declarations> allSpaces;
  std::deque<OwnClass> allClasses;
  std::unique_ptr<StepsLeft> stepsLeft;  // null: no limit
  std::vector<Problem> warnings;         // of what was compiled last

  ModuleNames() = default;
  ~ModuleNames();
  ModuleNames(const ModuleNames&) = delete;
  ModuleNames& operator=(const ModuleNames&) = delete;
};

// Where in a program a Sub stands.
struct Surroundings {
  const Declarations* space = nullptr;  // null: outside of every module and class
  bool hasSelf = false;                 // its first slot is the object whose method it is
};

// Throws ProgramError where there is no such type. Of the types that are registered.
Type typeOf(const syntax::TypeName& name);

// The names that are seen inside one Sub, or at module level; the innermost block's hide the others.
class Names {
 public:
  // `locals` grows by a slot for each variable. At module level what is declared outside of every block is
  // the module's.
  Names(ModuleNames& module, std::vector<Type>& locals, bool atModuleLevel, bool mayRedeclare,
        Surroundings surroundings = {})
      : module_(module),
        locals_(locals),
        surroundings_(surroundings),
        atModuleLevel_(atModuleLevel),
        mayRedeclare_(mayRedeclare),
        blocks_(1) {
    if (surroundings.hasSelf && locals.empty()) locals.push_back(Type{});
  }

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
  std::unique_ptr<Place> declareStatic(const syntax::Name& name, Type type);
  void declareParameter(const Parameter& parameter, Position position);
  void declareConstant(const syntax::Name& name, Constant constant);
  std::unique_ptr<Place> hidden(Type type, Position position);  // a variable without a name

  Expr findLocal(const std::string& name) const;  // of the Sub's own
  Expr find(const std::string& name) const;       // a variable or constant; null: there is none
  Expr expect(const syntax::Name& name) const;
  std::vector<const Method*> findSubs(const std::string& name) const;  // none: empty
  const Declarations* findSpace(const std::string& name) const;        // null: there is none
  std::optional<Type> findType(const std::string& name) const;         // of the program's own
  Type typeOf(const syntax::TypeName& name) const;
  Type typeOf(const syntax::Dim::Group& group, const syntax::Dim::Variable& variable) const;

  const Class* ownClass() const;  // the class whose Sub this is; null: it is none's
  Expr self() const;              // null: there is no object
  // Whether what the place keeps to itself is seen from here.
  bool sees(const Declarations& space, const std::string& name) const;
  bool mayUse(Access access, const Class* owner) const;
  // Throws ProgramError where it may not be used from here.
  void checkAccess(Access access, const Class* owner, const syntax::Name& name) const;
  const Declarations& program() const { return module_; }
  // The methods without regard to what a subclass makes of them.
  std::vector<const Method*> unchanging(const std::vector<const Method*>& methods) const;
  StepsLeft* stepsLeft() const { return module_.stepsLeft.get(); }
  // The Sub's statements, in which a name may be declared where it is not seen.
  void setBody(const syntax::Block& body) { body_ = &body; }
  [[noreturn]] void failUnknown(const syntax::Name& name) const;

 private:
  struct Local {
    Type type;
    std::size_t slot;
    bool byRef = false;
    Global* lasting = nullptr;  // of a Static variable
  };
  using Block = std::map<std::string, std::variant<Local, Constant>>;
  // Calls with each place whose declarations are seen from here, from the inside out, until it gives true.
  template <typename Visit>
  void eachSpace(Visit visit) const;
  bool inside(const Declarations& space) const;
  bool seesIn(const Declarations& space, const std::string& key) const;

  bool isModuleScope() const { return atModuleLevel_ && blocks_.size() == 1; }
  std::size_t newSlot(Type type, bool owns, Position position);

  ModuleNames& module_;
  std::vector<Type>& locals_;
  Surroundings surroundings_;
  bool atModuleLevel_, mayRedeclare_;
  std::vector<Block> blocks_;
  const syntax::Block* body_ = nullptr;
};

}  // namespace host
