// Lays out objects, makes and destroys them, and fills the tables of methods.
#include "language/classes.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "language/fields.h"
#include "language/invocation.h"
#include "language/signatures.h"
#include "language/spelling.h"
#include "runtime/registry.h"
#include "runtime/thread.h"

namespace host {

namespace {

Slot selfIn(const Slot* arguments) { return {.heap = arguments[0].heap}; }

// A Destructor may make objects that have one, which may make others, and so on. So many may run for objects
// that were made by Destructors of such objects, before the thread goes on; then none does any more.
constexpr int mostOfLater = 10000;
struct Destructors {
  int running = 0;
  int later = 0;    // how many Destructors were needed to make the object whose one runs
  int ofLater = 0;  // how many have run where these were two and more
  std::unordered_map<const Heap*, int>* laterOf = nullptr;  // of objects that Destructors have made
};
constinit thread_local Destructors destructors;

void countAsLater(const Heap* object) {
  if (!destructors.laterOf) destructors.laterOf = new std::unordered_map<const Heap*, int>;
  (*destructors.laterOf)[object] = destructors.later + 1;
}

Slot initialize(const void* own, const Slot* arguments) {
  const auto& made = *static_cast<const OwnClass*>(own);
  const Slot self = selfIn(arguments);
  if (destructors.running > 0 && made.destruction) countAsLater(self.heap);
  if (made.initial) callSub(*made.initial, &self);
  return {};
}

class RunningDestructor {
 public:
  explicit RunningDestructor(const Heap& object) : before_(destructors.later) {
    ++destructors.running;
    destructors.later = 0;
    if (!destructors.laterOf) return;
    const auto found = destructors.laterOf->find(&object);
    if (found != destructors.laterOf->end()) destructors.later = found->second;
  }
  ~RunningDestructor() {
    destructors.later = before_;
    if (--destructors.running > 0 || anyDestructionIsPutOff()) return;
    delete std::exchange(destructors.laterOf, nullptr);
    destructors.ofLater = 0;
  }
  RunningDestructor(const RunningDestructor&) = delete;
  RunningDestructor& operator=(const RunningDestructor&) = delete;

 private:
  const int before_;
};

// The Destructor runs with a reference to the object, as any method does; one that is left over afterwards
// keeps it alive.
bool runDestructor(const OwnClass& made, Heap& object) {
  if (!made.destruction) return true;
  const RunningDestructor running(object);
  if (destructors.later > 1 && destructors.ofLater > mostOfLater) return true;
  object.references.store(1, std::memory_order_relaxed);
  const Slot self = {.heap = &object};
  try {
    if (destructors.later > 1 && ++destructors.ofLater > mostOfLater) {
      throw HostException("StackOverflowException",
                          "Destructors make objects whose Destructors make others, without end.");
    }
    callSub(*made.destruction->sub, &self);
  } catch (const HostException& exception) {  // whoever let go of the object has nothing to do with it
    reportUncaught(exception);
  } catch (const ProgramEnd&) {  // the others notice themselves
  }
  return object.references.fetch_sub(1, std::memory_order_acq_rel) == 1;
}

Slot destroyOwn(const void* own, const Slot* arguments) {
  const auto& made = *static_cast<const OwnClass*>(own);
  Heap& object = *arguments[0].heap;
  if (!runDestructor(made, object)) return {};
  for (const Property& each : made.properties) {
    if (each.offset != 0 && each.type.isReference()) storeField(slotIn(object, each), each.type, {});
  }
  return {};
}

// Fields by name, as a library asks for them: the object, a number of no meaning here, the value.
Slot readField(const void* own, const Slot* arguments) {
  const auto& property = *static_cast<const Property*>(own);
  return loadField(slotIn(*arguments[0].heap, property), property.type);
}
Slot writeField(const void* own, const Slot* arguments) {
  const auto& property = *static_cast<const Property*>(own);
  if (property.type.isReference()) retain(arguments[2].heap);
  storeField(slotIn(*arguments[0].heap, property), property.type, arguments[2]);
  return {};
}
Slot readComputed(const void* own, const Slot* arguments) {
  return static_cast<const Property*>(own)->get->call({arguments, 1});
}
Slot writeComputed(const void* own, const Slot* arguments) {
  const Slot given[] = {arguments[0], arguments[2]};
  return static_cast<const Property*>(own)->get->setter(given);
}

// A method that looks like an operator and would never run as one.
void checkOperator(const Sub& declared) {
  static constexpr std::string_view operators[] = {"Add",           "Subtract", "Multiply", "Divide",
                                                   "IntegerDivide", "Modulo",   "Power",    "Negate",
                                                   "Compare",       "Convert",  "Subscript"};
  constexpr std::string_view prefix = "Operator_", right = "Right";
  const std::string_view name = declared.name;
  if (name.size() <= prefix.size() || !sameName(name.substr(0, prefix.size()), prefix)) return;
  std::string_view rest = name.substr(prefix.size());
  if (rest.size() > right.size() && sameName(rest.substr(rest.size() - right.size()), right)) {
    rest.remove_suffix(right.size());
  }
  for (const std::string_view each : operators) {
    if (sameName(each, rest)) return;
  }
  fail(declared.position, "this host has no " + declared.name + "; write a method with a name of its own");
}

const OwnClass* ownAbove(const Class& made) {
  return made.super && made.super->isOwn ? static_cast<const OwnClass*>(made.super) : nullptr;
}

}  // namespace

OwnClass& newOwnClass(ModuleNames& module, const syntax::Name& name, Declarations& outer) {
  OwnClass& made = module.allClasses.emplace_back();
  made.name = name.text;
  made.position = name.position;
  made.defined = made.isOwn = true;
  made.declared.name = name.text;
  made.declared.outer = &outer;
  made.declared.ofClass = &made;
  return made;
}

ClassMembers::ClassMembers(ModuleNames& module, OwnClass& made, Names& names, Problems& problems)
    : module_(module), made_(made), names_(names), problems_(problems) {
  made.dataOffset = made.super ? (made.super->instanceSize + 15) / 16 * 16 : sizeof(Heap);
  size_ = made.dataOffset;
  if (made.super) {
    made.table = made.super->table;
    made.implementations = made.super->implementations;
  }
}

void ClassMembers::addField(const syntax::Property& parsed) {
  const Type type = names_.typeOf(parsed.stored, parsed.stored.variables[0]);
  Property& property = made_.properties.emplace_back();
  property.name = parsed.name.text;
  property.type = type;
  property.access = accessOf(parsed.modifiers);
  property.owner = &made_;
  property.offset = size_;
  size_ += sizeof(Slot);
  property.getter = Call(&readField, &property);
  property.setter = Call(&writeField, &property);
}

namespace {
// What a method is called that runs where another one is assigned to.
std::string nameOfAssigning(const std::string& name) { return "Set " + name; }
}  // namespace

// A place in the table: that of the method of the name above that takes the same, or a new one.
void ClassMembers::findPlace(Method& method, const std::string& name,
                             const std::vector<const Method*>& above) {
  for (const Method* each : above) {
    if (each->place < 0 || !sameName(each->declaration.name, name) || !sameParameters(*each, method)) {
      continue;
    }
    if (each->declaration.result != method.declaration.result) {
      fail(method.sub->position, method.declaration.name + " gives " + nameOf(method.declaration.result) +
                                     ", but in the class above it gives " + nameOf(each->declaration.result));
    }
    method.place = each->place;
    made_.table[static_cast<std::size_t>(method.place)] = &method;
    return;
  }
  method.place = static_cast<std::ptrdiff_t>(made_.table.size());
  made_.table.push_back(&method);
}

// Null where it is wrong.
const Method* ClassMembers::addAccessor(const syntax::Sub& parsed, const std::string& name) {
  const auto [sub, fits] = newSub(module_, parsed, names_, problems_);
  sub.hasSelf = !parsed.modifiers.shared;
  subs_.push_back({&sub, &parsed});
  if (!fits) return nullptr;
  Method& method = newMethod(made_.accessors, sub, parsed);
  method.declaration.name = name;
  method.owner = &made_;
  if (!sub.hasSelf) return &method;
  std::vector<const Method*> above;
  for (const OwnClass* each = ownAbove(made_); each; each = ownAbove(*each)) {
    for (const Method& other : each->accessors) above.push_back(&other);
  }
  problems_.attempt([&] { findPlace(method, name, above); });
  return &method;
}

void ClassMembers::addComputed(const syntax::Property& parsed) {
  const std::string& name = parsed.name.text;
  Type type;
  bool fits = problems_.attempt([&] {
    if (findNamed(made_.properties, name) || findNamed(made_.sharedProperties, name)) {
      fail(parsed.name.position, "there is another " + name + " already");
    }
    type = names_.typeOf(parsed.type);
  });
  const Method* get = parsed.get ? addAccessor(*parsed.get, "Get " + name) : nullptr;
  const Method* set = parsed.set ? addAccessor(*parsed.set, nameOfAssigning(name)) : nullptr;
  fits &= (get || !parsed.get) && (set || !parsed.set);
  fits = fits && problems_.attempt([&] {
    if (set && set->declaration.parameters[0].type != type) {
      fail(parsed.name.position, "Set takes another type than the property " + name + " has");
    }
  });
  if (!fits) return void(problems_.expectUnknown(name));
  Property& property = (parsed.modifiers.shared ? made_.sharedProperties : made_.properties).emplace_back();
  property.name = name;
  property.type = type;
  property.access = accessOf(parsed.modifiers);
  property.owner = &made_;
  if (!get) {
    Method& setOnly = made_.accessors.emplace_back();
    setOnly.declaration.name = name;
    setOnly.declaration.result = type;
    setOnly.owner = &made_;
    setOnly.isOwn = true;
    setOnly.call = unreadable();
    get = &setOnly;
  }
  if (set) assignThrough(const_cast<Method&>(*get), *set);
  property.get = get;
  property.getter = Call(&readComputed, &property);
  if (set) property.setter = Call(&writeComputed, &property);
}

void ClassMembers::addMethod(const syntax::Sub& parsed) {
  const auto [sub, fits] = newSub(module_, parsed, names_, problems_);
  Sub& declared = sub;
  declared.hasSelf = !parsed.modifiers.shared;
  if (!made_.isInterface) subs_.push_back({&declared, &parsed});
  if (!fits) {
    if (sameName(declared.name, "Constructor")) made_.hasWrongConstructor = true;
    return;
  }
  for (const syntax::TypeName& each : parsed.implements) {
    problems_.attempt([&] { checkImplemented(each); });
  }
  problems_.attempt([&] {
    checkOperator(declared);
    if (sameName(declared.name, "Destructor")) {
      addDestructor(declared, parsed);
    } else {
      addOwn(declared, parsed);
    }
  });
}

// That the class has the interface for which a method says that it is there.
void ClassMembers::checkImplemented(const syntax::TypeName& name) const {
  const Type type = names_.typeOf(name);
  if (!isPlainObject(type) || !type.objectClass || !type.objectClass->isInterface) {
    fail(name.position, "expected an interface, found " + nameOf(type));
  }
  for (const Class* each = &made_; each; each = each->super) {
    for (const Class* has : each->interfaces) {
      if (has->isA(*type.objectClass)) return;
    }
  }
  fail(name.position, made_.name + " does not implement " + name.text + "; write Implements " + name.text +
                          " in a line below that of the Class");
}

void ClassMembers::addDestructor(Sub& sub, const syntax::Sub& parsed) {
  if (!sub.hasSelf || !sub.parameters.empty() || parsed.result || made_.destruction) {
    fail(sub.position, "a class has one Destructor, a Sub without parameters");
  }
  made_.destruction.emplace();
  made_.destruction->sub = &sub;
}

void ClassMembers::addOwn(Sub& sub, const syntax::Sub& parsed) {
  const bool shared = parsed.modifiers.shared;
  const std::string& name = sub.name;
  const bool isConstructor = sameName(name, "Constructor");
  if (isConstructor && (shared || parsed.result)) fail(sub.position, "a Constructor is a Sub of an object");
  std::deque<Method>& own = shared ? made_.sharedMethods : made_.methods;
  Method& method = newMethod(own, sub, parsed);
  method.owner = &made_;
  for (const Method& other : own) {
    if (&other != &method && sameName(other.declaration.name, name) && sameParameters(other, method)) {
      fail(sub.position, "there is another Sub or Function " + name + " already");
    }
  }
  if (findNamed(made_.properties, name)) fail(sub.position, "there is another " + name + " already");
  if (method.extends) fail(sub.position, "a Sub that Extends a type stands in a module");
  if (shared || isConstructor) return;
  if (made_.isInterface) {
    method.place = static_cast<std::ptrdiff_t>(made_.methods.size()) - 1;
    method.sub = nullptr;
    return;
  }
  const std::string nameAbove = method.assigns ? nameOfAssigning(name) : name;
  findPlace(method, nameAbove, methodsAbove(nameAbove));
}

std::vector<const Method*> ClassMembers::methodsAbove(const std::string& name) const {
  return made_.super ? made_.super->findMethods(name) : std::vector<const Method*>();
}

// Where one of the two that belong together is the class's own and the other one of a class above.
void ClassMembers::pairWithAbove(Method& method) {
  if (method.assigning || method.assigns || method.place < 0) return;
  for (const Method* each : methodsAbove(method.declaration.name)) {
    if (each->place == method.place && each->assigning) return assignThrough(method, *each->assigning);
  }
}

// `unreadable`: what stands for the one that is read, if there is none.
void ClassMembers::addUnread(const Method& unreadable) {
  const Method& assigning = *unreadable.assigning;
  for (const Method* each : methodsAbove(unreadable.declaration.name)) {
    if (each->assigns || !each->sub || !sameParameters(*each, unreadable)) continue;
    if (each->declaration.result != unreadable.declaration.result) continue;
    if (each->assigning && each->assigning->place == assigning.place) return;  // it takes that one's place
    return assignThrough(made_.methods.emplace_back(*each), assigning);
  }
  made_.methods.push_back(unreadable);
}

std::vector<ParsedSub> ClassMembers::finish() {
  for (std::deque<Method>* methods : {&made_.methods, &made_.sharedMethods}) {
    // By number: what is added moves what leads from one to the next.
    for (std::size_t i = 0, count = methods->size(); i < count; ++i) {
      Method& assigning = (*methods)[i];
      if (!assigning.assigns) continue;
      std::vector<const Method*> together = {&assigning};
      for (Method& each : *methods) {
        if (!each.assigns && sameName(each.declaration.name, assigning.declaration.name))
          together.push_back(&each);
      }
      pairAssigning(together, made_.accessors);
      if (together.empty() || together[0]->sub) continue;
      if (methods == &made_.methods) {
        addUnread(*together[0]);
      } else {
        methods->push_back(*together[0]);
      }
    }
    // They are called through the others.
    for (Method& each : *methods) {
      if (each.assigns) each.declaration.name = nameOfAssigning(each.declaration.name);
    }
  }
  for (Method& each : made_.methods) pairWithAbove(each);
  made_.instanceSize = (size_ + 15) / 16 * 16;
  if (made_.isInterface) return {};
  const bool holds = std::any_of(made_.properties.begin(), made_.properties.end(), [](const Property& each) {
    return each.offset != 0 && each.type.isReference();
  });
  made_.initializer = Call(&initialize, &made_);
  if (holds || made_.destruction) made_.destructor = Call(&destroyOwn, &made_);
  if (made_.destructor || (made_.super && made_.super->finalize)) made_.finalize = &finalizeObject;
  return std::move(subs_);
}

namespace {

const Method* standingFor(const Class& made, const Method& wanted) {
  for (const Method* each : made.findMethods(wanted.declaration.name)) {
    if (each->declaration.result == wanted.declaration.result && sameParameters(*each, wanted) &&
        each->access == Access::everyone) {
      return each->place < 0 ? each : made.table[static_cast<std::size_t>(each->place)];
    }
  }
  return nullptr;
}

void implement(OwnClass& made, const Class& interface, Problems& problems) {
  Implementation implementation{&interface, {}};
  for (const Method& wanted : interface.methods) {
    const Method* found = standingFor(made, wanted);
    problems.attempt([&] {
      if (found) return;
      throw WrongUse(
          made.position, wanted.declaration.name,
          made.name + " implements " + interface.name + ", but has no public " + wanted.declaration.text);
    });
    implementation.methods.push_back(found);
  }
  std::erase_if(made.implementations,
                [&](const Implementation& each) { return each.interface == &interface; });
  made.implementations.push_back(std::move(implementation));
  for (const Class* each : interface.interfaces) implement(made, *each, problems);
}

}  // namespace

void implementAll(OwnClass& made, Problems& problems) {
  if (made.isInterface || isWrong(&made)) return;
  std::vector<const Class*> all;
  for (const OwnClass* each = &made; each; each = ownAbove(*each)) {
    all.insert(all.end(), each->interfaces.begin(), each->interfaces.end());
  }
  for (const Class* each : all) implement(made, *each, problems);
}

}  // namespace host
