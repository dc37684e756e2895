// Writes the texts for people.
#include "runtime/report.h"

#include "runtime/array.h"
#include "runtime/registry.h"
#include "runtime/text.h"

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

std::string leakReport(const std::set<std::string>& kept) {
  std::string report;
  forEachLive([&](const Heap& thing) {
    const std::string& name = thing.objectClass->name;
    const std::int64_t references = thing.references.load();
    if (references == 1 && kept.contains(name)) return;
    std::string what = name;
    if (thing.objectClass == hostClasses().text) {
      // Of a long text no more is converted than is shown.
      what = "String \"" + utf8Of(static_cast<const Text*>(&thing), 160).substr(0, 40) + "\"";
    } else if (thing.objectClass == hostClasses().array) {
      const auto& array = static_cast<const Array&>(thing);
      what = nameOf(array.elementType.arrayOf()) + " of " + std::to_string(array.count()) + " elements";
    }
    report += "leaked: " + what + ", " + std::to_string(references) +
              (references == 1 ? " reference\n" : " references\n");
  });
  return report;
}

std::string describe(const HostException& exception) {
  std::string place = exception.trace.empty() ? "" : exception.trace.front();
  // "file:line: Sub": the first line names the place alone.
  if (const std::size_t sub = place.find(": "); sub != std::string::npos) place.erase(sub);
  std::string text = place.empty() ? "" : place + ": ";
  text += exception.exception->objectClass->name + ": " + messageOf(*exception.exception) + "\n";
  for (const std::string& each : exception.trace) text += "  at " + each + "\n";
  return text;
}

}  // namespace host
