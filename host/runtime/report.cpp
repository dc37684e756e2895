// Writes the texts for people.
#include "runtime/report.h"

#include <cstring>
#include <map>
#include <vector>

#include "runtime/array.h"
#include "runtime/dictionary.h"
#include "runtime/registry.h"
#include "runtime/text.h"
#include "runtime/thread.h"
#include "runtime/wording.h"

namespace host {

namespace {

std::string lineOf(const Property& property, const char* kind) {
  return std::string(kind) + property.name + " as " + property.declaredType +
         (!property.setter && !property.field ? " (read-only)" : "") + (property.hidden ? " (hidden)" : "") +
         "\n";
}

// Hands each line about a member to use(line, name, rest of the line from the name on).
template <typename Use>
void eachMember(const std::deque<Property>& properties, const char* kind, Use use) {
  for (const Property& each : properties) use(lineOf(each, kind), each.name, lineOf(each, ""));
}
template <typename Use>
void eachMember(const std::deque<Method>& methods, const char* kind, Use use) {
  for (const Method& each : methods) {
    const std::string line = each.declaration.text + "\n";
    use(kind + line, each.declaration.name, line);
  }
}
template <typename Use>
void eachMember(const Class& type, Use use) {
  eachMember(type.sharedProperties, "Shared Property ", use);
  eachMember(type.properties, "Property ", use);
  eachMember(type.sharedMethods, "Shared ", use);
  eachMember(type.methods, "", use);
}
template <typename Use>
void eachMember(const Module& module, Use use) {
  eachMember(module.properties, "Property ", use);
  eachMember(module.methods, "", use);
}

template <typename Owner>
std::string listingOf(const std::string& kind, const Owner& owner) {
  std::string list = kind + " " + owner.name + "\n";
  eachMember(owner,
             [&](const std::string& line, const std::string&, const std::string&) { list += "  " + line; });
  return list;
}

}  // namespace

std::string listing() {
  std::string list;
  for (const Class& each : registry().classes) {
    if (each.fromLibrary) list += listingOf("Class", each);
  }
  for (const Module& module : registry().modules) {
    if (module.fromLibrary) list += listingOf("Module", module);
  }
  std::string functions;
  for (const Method& function : registry().functions) {
    if (function.fromLibrary) functions += "  " + function.declaration.text + "\n";
  }
  if (!functions.empty()) list += "Functions\n" + functions;
  return list;
}

std::string listing(std::string_view name) {
  const std::size_t dot = name.find('.');
  const std::string_view owner = dot == std::string_view::npos ? "" : name.substr(0, dot);
  const std::string_view member = dot == std::string_view::npos ? name : name.substr(dot + 1);
  std::string list;
  if (owner.empty()) {
    if (const Class* type = registry().findClass(name)) list += listingOf("Class", *type);
    if (const Module* module = registry().findModule(name)) list += listingOf("Module", *module);
  }
  const auto addMembersOf = [&](const auto& each, bool isGlobal) {
    if (!owner.empty() && !sameName(owner, each.name)) return;
    eachMember(each, [&](const std::string&, const std::string& called, const std::string& line) {
      if (sameName(called, member)) list += (isGlobal ? "" : each.name + ".") + line;
    });
  };
  for (const Class& each : registry().classes) addMembersOf(each, false);
  for (const Module& each : registry().modules) addMembersOf(each, owner.empty());
  for (const Method& function : registry().functions) {
    if (owner.empty() && sameName(function.declaration.name, member))
      list += function.declaration.text + "\n";
  }
  return list;
}

namespace {

// Calls with each thing that this one is known to hold: a program's object, an array, a delegate, a box.
template <typename Visit>
void eachHeld(const Heap& thing, Visit visit) {
  const Class& type = *thing.objectClass;
  const auto at = [&](std::size_t offset) {
    const Heap* held = nullptr;
    std::memcpy(&held, reinterpret_cast<const std::byte*>(&thing) + offset, sizeof held);
    if (held) visit(*held);
  };
  if (&type == hostClasses().array) {
    const auto& array = static_cast<const Array&>(thing);
    for (std::int64_t i = 0; array.elementType.isReference() && i < array.count(); ++i) {
      if (const Heap* held = array.elements.load()[i].heap) visit(*held);
    }
    return;
  }
  forEachInDictionary(thing, visit);
  if (const Heap* owner = ownerOfHandler(thing)) visit(*owner);
  for (const Class* each = &type; each; each = each->super) {
    for (const Property& property : each->properties) {
      if (property.offset != 0 && property.type.isReference()) at(property.offset);
    }
    if (each->signature) at(each->dataOffset + sizeof(void*));
    if (each->boxed == Kind::String || each == hostClasses().exception) at(each->dataOffset);
  }
}

// Things all of whose references are held by such things: no one else can reach them.
std::set<const Heap*> closedCycles(const std::vector<const Heap*>& all) {
  std::set<const Heap*> closed(all.begin(), all.end());
  for (bool changed = true; changed;) {
    std::map<const Heap*, std::int64_t> counts;
    for (const Heap* each : closed) {
      eachHeld(*each, [&](const Heap& held) { ++counts[&held]; });
    }
    changed =
        std::erase_if(closed, [&](const Heap* each) { return each->references.load() != counts[each]; }) != 0;
  }
  return closed;
}

std::string described(const Heap& thing) {
  std::string what = thing.objectClass->name;
  if (thing.objectClass == hostClasses().text) {
    // Of a long text no more is converted than is shown.
    what = "String \"" + utf8Of(static_cast<const Text*>(&thing), 160).substr(0, 40) + "\"";
  } else if (thing.objectClass == hostClasses().array) {
    const auto& array = static_cast<const Array&>(thing);
    what = nameOf(typeOf(array)) + " of " + counted(array.count(), "element");
  }
  const std::int64_t references = thing.references.load();
  return what + ", " + counted(references, "reference") + "\n";
}

}  // namespace

LeakReport leakReport(const std::set<std::string>& kept) {
  std::vector<const Heap*> alive;
  forEachLive([&](const Heap& thing) {
    if (thing.references.load() != 1 || !kept.contains(thing.objectClass->name)) alive.push_back(&thing);
  });
  const std::set<const Heap*> cycles = closedCycles(alive);
  LeakReport report;
  for (const Heap* each : alive) {
    if (cycles.contains(each)) {
      report.cycles += "in a cycle: " + described(*each);
    } else {
      report.leaks += "leaked: " + described(*each);
    }
  }
  return report;
}

std::string describe(const HostException& exception) {
  const Trace& trace = exception.trace;
  const auto place = [](const Trace::Call& call) {
    return std::string(call.file) + ":" + std::to_string(call.line);
  };
  std::string text = trace.calls.empty() ? "" : place(trace.calls.front()) + ": ";
  text += exception.exception->objectClass->name + ": " + messageOf(*exception.exception) + "\n";
  for (std::size_t i = 0; i < trace.calls.size(); ++i) {
    if (trace.skipped != 0 && i == Trace::keptFirst) {
      text += "  ... " + counted(trace.skipped, "call") + " more ...\n";
    }
    const Trace::Call& each = trace.calls[i];
    text += "  at " + place(each) + (*each.sub ? std::string(": ") + each.sub : "") + "\n";
  }
  return text;
}

}  // namespace host
