// The classes of a program: what an object of one consists of, and which method runs for which.
#pragma once

#include "language/names.h"

namespace host {

OwnClass& newOwnClass(ModuleNames& module, const syntax::Name& name, Declarations& outer);

// A Sub to compile and what it consists of.
struct ParsedSub {
  Sub* sub;
  const syntax::Sub* parsed;
};

// Enters the members of a class, the class above which has all of its own. What is wrong with one goes to the
// problems, and it is left out; its body is compiled all the same.
class ClassMembers {
 public:
  ClassMembers(ModuleNames& module, OwnClass& made, Names& names, Problems& problems);

  void addField(const syntax::Property& parsed);  // throws ProgramError
  void addComputed(const syntax::Property& parsed);
  void addMethod(const syntax::Sub& parsed);
  std::vector<ParsedSub> finish();  // afterwards objects can be made

 private:
  const Method* addAccessor(const syntax::Sub& parsed, const std::string& name);
  void checkImplemented(const syntax::TypeName& name) const;
  void addDestructor(Sub& sub, const syntax::Sub& parsed);
  void addOwn(Sub& sub, const syntax::Sub& parsed);
  void findPlace(Method& method, const std::string& name, const std::vector<const Method*>& above);
  std::vector<const Method*> methodsAbove(const std::string& name) const;
  void pairWithAbove(Method& method);
  void addUnread(const Method& unreadable);

  ModuleNames& module_;
  OwnClass& made_;
  Names& names_;
  Problems& problems_;
  std::size_t size_;
  std::vector<ParsedSub> subs_;
};

// Finds what stands for the methods of the interfaces that the class implements.
void implementAll(OwnClass& made, Problems& problems);

}  // namespace host
