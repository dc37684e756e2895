// Lays out objects, makes and destroys them, and fills the tables of methods.
#include "language/classes.h"

#include <algorithm>

#include "language/fields.h"
#include "language/invocation.h"
#include "language/signatures.h"
#include "language/spelling.h"
#include "runtime/registry.h"
#include "runtime/thread.h"

namespace host {

namespace {

Slot selfIn(const Slot* arguments) { return {.heap = arguments[0].heap}; }

Slot initialize(const void* own, const Slot* arguments) {
  const auto& made = *static_cast<const OwnClass*>(own);
  const Slot self = selfIn(arguments);
  if (made.initial) callSub(*made.initial, &self);
  return {};
}

// The Destructor runs with a reference to the object, as any method does; one that is left over afterwards
// keeps it alive.
bool runDestructor(const OwnClass& made, Heap& object) {
  if (!made.destruction) return true;
  object.references.store(1, std::memory_order_relaxed);
  const Slot self = {.heap = &object};
  try {
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

ClassMembers::ClassMembers(ModuleNames& module, OwnClass& made, Names& names)
    : module_(module), made_(made), names_(names) {
  made.dataOffset = made.super ? (made.super->instanceSize + 15) / 16 * 16 : sizeof(Heap);
  size_ = made.dataOffset;
  if (made.super) {
    made.table = made.super->table;
    made.implementations = made.super->implementations;
  }
}

void ClassMembers::addField(const syntax::Property& parsed) {
  Property& property = made_.properties.emplace_back();
  property.name = parsed.name.text;
  property.type = names_.typeOf(parsed.stored, parsed.stored.variables[0]);
  property.access = accessOf(parsed.modifiers);
  property.owner = &made_;
  property.offset = size_;
  size_ += sizeof(Slot);
  property.getter = Call(&readField, &property);
  property.setter = Call(&writeField, &property);
}

// A place in the table: that of the method above that takes the same, or a new one.
void ClassMembers::findPlace(Method& method, const std::vector<const Method*>& above) {
  for (const Method* each : above) {
    if (each->place < 0 || !sameName(each->declaration.name, method.declaration.name) ||
        !sameParameters(*each, method)) {
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

Method& ClassMembers::addAccessor(const syntax::Sub& parsed, const std::string& name) {
  Sub& sub = newSub(module_, parsed, names_);
  sub.hasSelf = !parsed.modifiers.shared;
  Method& method = newMethod(made_.accessors, sub, parsed);
  method.declaration.name = name;
  method.owner = &made_;
  if (!sub.hasSelf) return method;
  std::vector<const Method*> above;
  for (const OwnClass* each = ownAbove(made_); each; each = ownAbove(*each)) {
    for (const Method& other : each->accessors) above.push_back(&other);
  }
  findPlace(method, above);
  return method;
}

std::vector<std::pair<Sub*, const syntax::Sub*>> ClassMembers::addComputed(const syntax::Property& parsed) {
  if (findNamed(made_.properties, parsed.name.text) || findNamed(made_.sharedProperties, parsed.name.text)) {
    fail(parsed.name.position, "there is another " + parsed.name.text + " already");
  }
  std::vector<std::pair<Sub*, const syntax::Sub*>> bodies;
  const bool shared = parsed.modifiers.shared;
  Property& property = (shared ? made_.sharedProperties : made_.properties).emplace_back();
  property.name = parsed.name.text;
  property.type = names_.typeOf(parsed.type);
  property.access = accessOf(parsed.modifiers);
  property.owner = &made_;
  const auto add = [&](const syntax::Sub& accessor, const std::string& kind) -> Method& {
    Method& method = addAccessor(accessor, kind + " " + property.name);
    bodies.emplace_back(const_cast<Sub*>(method.sub), &accessor);
    return method;
  };
  Method* get = parsed.get ? &add(*parsed.get, "Get") : nullptr;
  const Method* set = parsed.set ? &add(*parsed.set, "Set") : nullptr;
  if (set && set->declaration.parameters[0].type != property.type) {
    fail(parsed.name.position, "Set takes another type than the property " + property.name + " has");
  }
  if (!get) {
    get = &made_.accessors.emplace_back();
    get->declaration.name = property.name;
    get->declaration.result = property.type;
    get->owner = &made_;
    get->isOwn = true;
    get->call = unreadable();
  }
  if (set) assignThrough(*get, *set);
  property.get = get;
  property.getter = Call(&readComputed, &property);
  if (set) property.setter = Call(&writeComputed, &property);
  return bodies;
}

Sub* ClassMembers::addMethod(const syntax::Sub& parsed) {
  const bool shared = parsed.modifiers.shared;
  const std::string& name = parsed.name.text;
  const bool isDestructor = sameName(name, "Destructor");
  Sub& sub = newSub(module_, parsed, names_);
  sub.hasSelf = !shared;
  if (isDestructor) {
    if (shared || !sub.parameters.empty() || parsed.result || made_.destruction) {
      fail(sub.position, "a class has one Destructor, a Sub without parameters");
    }
    made_.destruction.emplace();
    made_.destruction->sub = &sub;
    return &sub;
  }
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
  const bool isConstructor = sameName(name, "Constructor");
  if (isConstructor && (shared || parsed.result)) fail(sub.position, "a Constructor is a Sub of an object");
  if (shared || isConstructor) return &sub;
  if (made_.isInterface) {
    method.place = static_cast<std::ptrdiff_t>(made_.methods.size()) - 1;
    method.sub = nullptr;
    return &sub;
  }
  findPlace(method, made_.super ? made_.super->findMethods(name) : std::vector<const Method*>());
  return &sub;
}

void ClassMembers::finish() {
  for (std::deque<Method>* methods : {&made_.methods, &made_.sharedMethods}) {
    for (Method& assigning : *methods) {
      if (!assigning.assigns) continue;
      std::vector<const Method*> together = {&assigning};
      for (Method& each : *methods) {
        if (!each.assigns && sameName(each.declaration.name, assigning.declaration.name))
          together.push_back(&each);
      }
      pairAssigning(together, made_.accessors);
      if (!together.empty() && !together[0]->sub) methods->push_back(*together[0]);
    }
    // They are called through the others.
    for (Method& each : *methods) {
      if (each.assigns) each.declaration.name = "Set " + each.declaration.name;
    }
  }
  made_.instanceSize = (size_ + 15) / 16 * 16;
  if (made_.isInterface) return;
  const bool holds = std::any_of(made_.properties.begin(), made_.properties.end(), [](const Property& each) {
    return each.offset != 0 && each.type.isReference();
  });
  made_.initializer = Call(&initialize, &made_);
  if (holds || made_.destruction) made_.destructor = Call(&destroyOwn, &made_);
  if (made_.destructor || (made_.super && made_.super->finalize)) made_.finalize = &finalizeObject;
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

void implement(OwnClass& made, const Class& interface) {
  Implementation implementation{&interface, {}};
  for (const Method& wanted : interface.methods) {
    const Method* found = standingFor(made, wanted);
    if (!found) {
      fail(made.position,
           made.name + " implements " + interface.name + ", but has no public " + wanted.declaration.text);
    }
    implementation.methods.push_back(found);
  }
  std::erase_if(made.implementations,
                [&](const Implementation& each) { return each.interface == &interface; });
  made.implementations.push_back(std::move(implementation));
  for (const Class* each : interface.interfaces) implement(made, *each);
}

}  // namespace

void implementAll(OwnClass& made) {
  if (made.isInterface) return;
  std::vector<const Class*> all;
  for (const OwnClass* each = &made; each; each = ownAbove(*each)) {
    all.insert(all.end(), each->interfaces.begin(), each->interfaces.end());
  }
  for (const Class* each : all) implement(made, *each);
}

}  // namespace host
