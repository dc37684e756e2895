// Classes, modules and global functions as registered: by the host itself and by the libraries it loads.
#pragma once

#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "frame/host_interface.h"
#include "runtime/call.h"
#include "runtime/declaration.h"

namespace host {

// A method, shared method, global function or operator: what was declared and what to call.
struct Method {
  Declaration declaration;
  Call call;    // takes self first where the method is an instance's
  Call setter;  // of an assignable method: the arguments, then the value; empty otherwise
  const REALmethodDefinition* record = nullptr;
  bool fromLibrary = false;
};

// A property, of instances or shared. Its accessors take (self, parameter[, value]) or ([value]).
struct Property {
  std::string name;
  Type type;
  Call getter, setter;  // empty: not readable / read-only
  bool field = false;   // read and written in the instance data at `parameter` instead
  std::intptr_t parameter = 0;
  bool hidden = false;
  const REALproperty* record = nullptr;
};

class Class {
 public:
  std::string name;
  const Class* super = nullptr;
  std::size_t dataSize = 0;      // of this class's own data
  std::size_t dataOffset = 0;    // from the handle
  std::size_t instanceSize = 0;  // the whole object
  Call initializer, destructor;  // empty where there is none
  std::deque<Property> properties, sharedProperties;
  std::deque<Method> methods, sharedMethods;
  bool fromLibrary = false;
  bool defined = false;  // false: only mentioned so far

  bool isA(const Class& other) const;  // this class or a subclass of it
  // Case-insensitive, superclasses included; null where there is none. A method name may stand for several
  // declarations, own ones first.
  const Property* findProperty(std::string_view propertyName) const;
  const Property* findSharedProperty(std::string_view propertyName) const;
  std::vector<const Method*> findMethods(std::string_view methodName) const;
  std::vector<const Method*> findSharedMethods(std::string_view methodName) const;
};

// A module: its functions and shared properties are global names, and reachable as Module.Name too.
struct Module {
  std::string name;
  std::deque<Method> methods;
  std::deque<Property> properties;
  bool fromLibrary = false;
};

// Everything there is by name. Filled by the host's own classes first, then by libraries; only read
// afterwards.
class Registry {
 public:
  std::deque<Class> classes;  // in registration order
  std::deque<Module> modules;
  std::deque<Method> functions;  // global functions registered one by one

  const Class* findClass(std::string_view name) const;                    // case-insensitive
  std::vector<const Method*> findFunctions(std::string_view name) const;  // those of modules included
  const Property* findSharedProperty(std::string_view name) const;        // of modules
  const Module* findModule(std::string_view name) const;

  // The class of that name, which may be mentioned before it is registered.
  Class& expectClass(std::string_view name);
  // Throws std::runtime_error naming a class that was mentioned and never registered.
  void checkComplete() const;

  // Throw std::runtime_error with a message naming the record: unparsable declaration, unknown type or
  // superclass, name taken. addClass writes the record's dataOffset.
  Class& addClass(REALclassDefinition& record, bool fromLibrary);
  void addModule(REALmoduleDefinition& record, bool fromLibrary);
  void addFunction(REALmethodDefinition& record, bool fromLibrary);
};

Registry& registry();

// The classes every program has: RuntimeException and its subclasses, MemoryBlock, Thread, Date, DateTime,
// and the boxes of variants. Made on first use of registry().
struct HostClasses {
  const Class *text, *array, *exception, *memoryBlock, *thread, *date, *dateTime;
};
const HostClasses& hostClasses();

bool sameName(std::string_view left, std::string_view right);  // ASCII, case-insensitive

}  // namespace host
