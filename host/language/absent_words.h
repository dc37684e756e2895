// Names that programs for larger hosts use and this one does not have.
#pragma once

#include <string>
#include <string_view>

namespace host {

// What this host has instead: "; this host has no files, …". Empty where there is nothing to say of the name.
std::string absent(std::string_view name);
std::string absentType(std::string_view name);  // and for types, as other languages call them

// The same of a member, by what it is a member of: a class, "Array", "String", "Integer" or "Double".
std::string absentMember(std::string_view owner, std::string_view name);

}  // namespace host
