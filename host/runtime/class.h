// Classes and modules, and what their members are called through.
#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/call.h"
#include "runtime/declaration.h"

namespace host {

struct Sub;  // of a program; the language says what it is

// Who may use a member: everyone, the class and those that inherit from it, or the class alone.
enum class Access : std::uint8_t { everyone, family, self };

// A method, shared method, global function or operator: what was declared and what to call.
struct Method {
  Declaration declaration;
  Call call;    // takes self first where the method is an instance's
  Call setter;  // of an assignable method: the arguments, then the value; empty otherwise
  bool fromLibrary = false;

  bool isOwn = false;                 // of a program
  bool assigns = false;               // runs where another method is assigned to
  bool extends = false;               // called on the first argument as if it were a member
  const Sub* sub = nullptr;           // what `call` runs; null: of an interface, or it is only assigned to
  const Method* assigning = nullptr;  // what `setter` calls
  const Class* owner = nullptr;       // the class that declares it
  std::ptrdiff_t place = -1;          // in the table of the object's class; none: it is what runs
  Access access = Access::everyone;
};

// A property, of instances or shared. Its accessors take (self, parameter[, value]) or ([value]).
struct Property {
  std::string name;
  std::string declaredType;  // as registered
  Type type;
  Call getter, setter;  // no getter: a field; no setter: read-only
  bool field = false;   // read and written in the instance data at `parameter` instead
  std::intptr_t parameter = 0;
  bool hidden = false;
  const Class* owner = nullptr;  // the class that declares it

  // Of a program's own.
  std::size_t offset = 0;       // of its slot, from the handle; 0: it is computed
  const Method* get = nullptr;  // assigned to where it can be
  Access access = Access::everyone;
};

// What stands for the methods of an interface in a class that implements it, in their order.
struct Implementation {
  const Class* interface;
  std::vector<const Method*> methods;
};

class Class {
 public:
  std::string name;
  const Class* super = nullptr;
  std::size_t dataOffset = 0;    // from the handle
  std::size_t instanceSize = 0;  // the whole object
  Call initializer, destructor;  // empty where there is none
  // Gives back what a thing of this class holds, before its memory goes; null where that is nothing.
  void (*finalize)(Heap&) = nullptr;
  // Of the hidden class of a variant's boxes around plain values: the values' kind; Kind::None of all others.
  Kind boxed = Kind::None;
  std::deque<Property> properties, sharedProperties;
  std::deque<Method> methods, sharedMethods;
  bool fromLibrary = false;
  bool defined = false;  // false: only mentioned so far

  // Of a program's own.
  bool isOwn = false, isInterface = false;
  std::vector<const Method*> table;             // of the methods that a subclass may override, its own ones
  std::vector<Implementation> implementations;  // those of the superclasses included
  std::vector<const Class*> interfaces;         // of an interface: those that it is more than
  const Method* signature = nullptr;            // of a delegate: what its methods take and give

  bool isA(const Class& other) const;  // this class or a subclass of it, or one that implements it
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

// Those of a name, in any case: null where there is none, and added to what has been found.
const Property* findNamed(const std::deque<Property>& properties, std::string_view name);
void collectNamed(const std::deque<Method>& methods, std::string_view name,
                  std::vector<const Method*>& found);

// The classes that the host itself knows. Null until the runtime is started.
struct HostClasses {
  const Class *text, *array, *exception, *memoryBlock, *thread, *date, *dateTime;
};
namespace detail {
inline constinit HostClasses hostClasses = {};
}
inline const HostClasses& hostClasses() { return detail::hostClasses; }

// As a program would write it: "Integer", "UInt64", "Variant()", "Dictionary".
std::string nameOf(Type type);

}  // namespace host
