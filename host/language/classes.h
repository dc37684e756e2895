// The classes of a program: what an object of one consists of, and which method runs for which.
#pragma once

#include "language/names.h"

namespace host {

OwnClass& newOwnClass(ModuleNames& module, const syntax::Name& name, Declarations& outer);

// Enters the members of a class, the class above which has all of its own. Throws ProgramError.
class ClassMembers {
 public:
  ClassMembers(ModuleNames& module, OwnClass& made, Names& names);

  void addField(const syntax::Property& parsed);
  // The accessors that have bodies, and what they are.
  std::vector<std::pair<Sub*, const syntax::Sub*>> addComputed(const syntax::Property& parsed);
  Sub* addMethod(const syntax::Sub& parsed);
  void finish();  // afterwards objects can be made

 private:
  Method& addAccessor(const syntax::Sub& parsed, const std::string& name);
  void findPlace(Method& method, const std::vector<const Method*>& above);

  ModuleNames& module_;
  OwnClass& made_;
  Names& names_;
  std::size_t size_;
};

// Finds what stands for the methods of the interfaces that the class implements.
void implementAll(OwnClass& made);

}  // namespace host
