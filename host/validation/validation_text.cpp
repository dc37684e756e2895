// Lays findings out.
#include "validation/validation_text.h"

#include <fmt/format.h>

#include <algorithm>

#include "runtime/wording.h"

namespace host {

namespace {

// A JSON text; bytes that are no ASCII stand as the library gave them, which registers its names in UTF-8.
std::string json(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      quoted += std::string("\\") + c;
    } else if (static_cast<unsigned char>(c) < ' ') {
      quoted += fmt::format("\\u{:04x}", static_cast<unsigned>(c));
    } else {
      quoted += c;
    }
  }
  return quoted + "\"";
}

bool wasMade(const CheckDescription& check, const Validation& validation) {
  const auto found = validation.cases.find(check.name);
  return found != validation.cases.end() && found->second > 0;
}

}  // namespace

std::string textOf(const Validation& validation, const ValidationOptions& options) {
  const std::string file = options.library.string();
  std::string text;
  std::string last;
  for (const Finding& each : validation.findings) {
    if (each.where != last) text += each.where + "\n";
    last = each.where;
    text += "  " + each.check + ": " + each.fault + ": " + each.message + "\n";
    if (!each.again.empty()) text += "    qtxhost validate " + file + " " + each.again + "\n";
  }
  if (!text.empty()) text += "\n";
  for (const CheckDescription& check : checkDescriptions()) {
    if (!wasMade(check, validation)) continue;
    const auto faults = std::count_if(validation.findings.begin(), validation.findings.end(),
                                      [&](const Finding& each) { return each.check == check.name; });
    const std::string found = faults == 0 ? "no fault" : counted(static_cast<std::size_t>(faults), "fault");
    text += fmt::format("{:<10} {:>6}  {:<10}  {}\n", check.name, validation.cases.at(check.name), found,
                        check.says);
  }
  text += "\n" + options.library.filename().string() + ": " + counted(validation.records, "record") + ", " +
          counted(validation.members, "member") + ": ";
  return text +
         (validation.findings.empty() ? "no fault was found" : counted(validation.findings.size(), "fault")) +
         "\n";
}

std::string jsonOf(const Validation& validation, const ValidationOptions& options) {
  std::string text = "{\n  \"library\": " + json(options.library.string()) +
                     ",\n  \"records\": " + std::to_string(validation.records) +
                     ",\n  \"members\": " + std::to_string(validation.members) +
                     ",\n  \"seed\": " + std::to_string(options.seed) + ",\n  \"cases\": {";
  const char* separator = "";
  for (const CheckDescription& check : checkDescriptions()) {
    if (!wasMade(check, validation)) continue;
    text += separator + json(check.name) + ": " + std::to_string(validation.cases.at(check.name));
    separator = ", ";
  }
  text += "},\n  \"findings\": [";
  separator = "\n    ";
  for (const Finding& each : validation.findings) {
    text +=
        separator + fmt::format(R"({{"where": {}, "check": {}, "fault": {}, "message": {}, "again": {}}})",
                                json(each.where), json(each.check), json(each.fault), json(each.message),
                                json(each.again));
    separator = ",\n    ";
  }
  return text + (validation.findings.empty() ? "]\n}\n" : "\n  ]\n}\n");
}

}  // namespace host
