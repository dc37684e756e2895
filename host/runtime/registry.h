// Classes, modules and global functions as registered: by the host itself and by the libraries it loads.
#pragma once

#include <deque>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "frame/host_interface.h"
#include "runtime/class.h"
#include "runtime/declaration.h"
#include "runtime/name.h"

namespace host {

// Everything there is by name. Filled by the host's own classes first, then by libraries; only read
// afterwards.
class Registry final : public ClassNames {
 public:
  std::deque<Class> classes;  // in registration order
  std::deque<Module> modules;
  std::deque<Method> functions;  // global functions registered one by one

  const Class* findClass(std::string_view name) const override;           // case-insensitive
  std::vector<const Method*> findFunctions(std::string_view name) const;  // those of modules included
  const Property* findSharedProperty(std::string_view name) const;        // of modules
  const Module* findModule(std::string_view name) const;

  Class& expectClass(std::string_view name) override;
  // Throws std::runtime_error naming a class that was mentioned and never registered.
  void checkComplete() const;

  // Throw std::runtime_error with a message naming the record: unparsable declaration, unknown type or
  // superclass, name taken. addClass writes the record's dataOffset.
  Class& addClass(REALclassDefinition& record, bool fromLibrary);
  void addModule(REALmoduleDefinition& record, bool fromLibrary);
  void addFunction(REALmethodDefinition& record, bool fromLibrary);

 private:
  std::unordered_map<std::string_view, Class*, NameHash, NameEqual> classesByName_;
};

Registry& registry();

// Of the registered classes.
inline std::optional<Type> typeNamed(std::string_view name) { return typeNamed(name, registry()); }

}  // namespace host
