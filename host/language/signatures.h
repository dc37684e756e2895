// What the Subs of a program take and give.
#pragma once

#include "language/names.h"

namespace host {

Access accessOf(const syntax::Modifiers& modifiers);

struct DeclaredSub {
  Sub& sub;
  bool fits;  // nothing is wrong with the declaration, and it may be called
};
// What is wrong goes to the problems: a type that is none, a default that does not fit, parameters of the
// same name. The body is empty.
DeclaredSub newSub(ModuleNames& module, const syntax::Sub& parsed, const Names& names, Problems& problems);

// What calls the Sub, and is handed its arguments.
Method& newMethod(std::deque<Method>& among, const Sub& sub, const syntax::Sub& parsed);

bool sameParameters(const Method& one, const Method& other);

// A Sub with a parameter that Assigns is no method of its own: it is what runs where the Function with the
// other parameters is assigned to. Where there is none, the method can be nothing but assigned to.
void pairAssigning(std::vector<const Method*>& methods, std::deque<Method>& among);
// The second runs where the first is assigned to.
void assignThrough(Method& method, const Method& assigning);

}  // namespace host
