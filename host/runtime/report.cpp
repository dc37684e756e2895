// Writes the texts for people.
#include "runtime/report.h"

#include "runtime/array.h"
#include "runtime/registry.h"
#include "runtime/text.h"

namespace host {

namespace {

void addMethods(std::string& list, const std::deque<Method>& methods, const char* prefix) {
  for (const Method& method : methods) list += std::string("  ") + prefix + method.declaration.text + "\n";
}

void addProperties(std::string& list, const std::deque<Property>& properties, const char* prefix) {
  for (const Property& property : properties) {
    list += std::string("  ") + prefix + property.name + " as " + nameOf(property.type);
    if (!property.setter && !property.field) list += " (read-only)";
    if (property.hidden) list += " (hidden)";
    list += "\n";
  }
}

}  // namespace

std::string listing() {
  std::string list;
  for (const Class& each : registry().classes) {
    if (!each.fromLibrary) continue;
    list += "Class " + each.name + "\n";
    addProperties(list, each.sharedProperties, "Shared Property ");
    addProperties(list, each.properties, "Property ");
    addMethods(list, each.sharedMethods, "Shared ");
    addMethods(list, each.methods, "");
  }
  for (const Module& module : registry().modules) {
    if (!module.fromLibrary) continue;
    list += "Module " + module.name + "\n";
    addProperties(list, module.properties, "Property ");
    addMethods(list, module.methods, "");
  }
  std::string functions;
  for (const Method& function : registry().functions) {
    if (function.fromLibrary) functions += "  " + function.declaration.text + "\n";
  }
  if (!functions.empty()) list += "Functions\n" + functions;
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
  const Trace& trace = exception.trace;
  const auto place = [](const Trace::Call& call) {
    return std::string(call.file) + ":" + std::to_string(call.line);
  };
  std::string text = trace.calls.empty() ? "" : place(trace.calls.front()) + ": ";
  text += exception.exception->objectClass->name + ": " + messageOf(*exception.exception) + "\n";
  for (std::size_t i = 0; i < trace.calls.size(); ++i) {
    if (trace.skipped != 0 && i == Trace::keptFirst) {
      text += "  ... " + std::to_string(trace.skipped) + " calls more ...\n";
    }
    const Trace::Call& each = trace.calls[i];
    text += "  at " + place(each) + (*each.sub ? std::string(": ") + each.sub : "") + "\n";
  }
  return text;
}

}  // namespace host
