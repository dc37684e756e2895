// A program from its text to its run.
#include "language/language.h"

#include <algorithm>
#include <cctype>
#include <vector>

#include "language/arrays.h"
#include "language/compiler.h"
#include "language/lexer.h"
#include "runtime/registry.h"
#include "runtime/waiting.h"

namespace host {

struct Program::Parts {
  ModuleNames names;
  Main main;
};

Program::Program(const std::string& file, std::string_view text, std::optional<std::int64_t> steps)
    : parts_(std::make_unique<Parts>()) {
  parts_->names.file = file;
  if (steps) parts_->names.stepsLeft = std::make_unique<StepsLeft>(*steps);
  parts_->main = compile(parts_->names, text);
}

Program::~Program() = default;

void Program::run() const { runMain(parts_->main); }

const std::vector<Problem>& Program::warnings() const { return parts_->names.warnings; }

struct Session::Parts {
  ModuleNames names;
  std::vector<Main> pieces;  // Subs and handlers refer to what they were compiled with
};

namespace {

constexpr std::int64_t endless = INT64_MAX;

using Collected = std::vector<std::string>;

template <typename Members>
void collect(Collected& names, const Members& members) {
  for (const auto& each : members) {
    if constexpr (requires { each.declaration; }) {
      const std::string& name = each.declaration.name;
      const bool isHidden = name.starts_with("Operator_") || name.find(' ') != std::string::npos;
      if (!isHidden && !sameName(name, "Constructor")) names.push_back(name);
    } else if (!each.hidden) {
      names.push_back(each.name);
    }
  }
}

Collected membersOf(Type type) {
  if (type.array) return arrayMembers(type);
  Collected names;
  if (type.kind == Kind::Object) {
    for (const Class* each = type.objectClass; each; each = each->super) {
      collect(names, each->methods);
      collect(names, each->properties);
      collect(names, each->sharedMethods);
    }
  } else if (type.kind != Kind::Variant) {
    collect(names, registry().functions);  // of which it may be the first argument
  }
  return names;
}

// What is declared in a module, a class or an enumeration of the session.
void collectDeclared(Collected& names, const Declarations& space) {
  for (const auto& [key, value] : space.values) names.push_back(nameOf(value));
  for (const auto& [key, subs] : space.subs) names.push_back(subs[0]->declaration.name);
  for (const auto& [key, inner] : space.spaces) names.push_back(inner->name);
}

bool isNamePart(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || (c & 0x80); }

// The name at the end of a text.
std::string_view lastName(std::string_view text) {
  std::size_t start = text.size();
  while (start > 0 && isNamePart(text[start - 1])) --start;
  return text.substr(start);
}

}  // namespace

// What runs can be ended, so every round of a loop counts.
Session::Session(const std::string& file) : parts_(std::make_unique<Parts>()) {
  parts_->names.file = file;
  parts_->names.stepsLeft = std::make_unique<StepsLeft>(endless);
}

Session::~Session() = default;

const std::vector<Problem>& Session::warnings() const { return parts_->names.warnings; }

void Session::stop() noexcept {
  parts_->names.stepsLeft->store(0);
  stopWaiting(true);
}

bool Session::knows(std::string_view name) const {
  const std::string key = lowerCase(name);
  const ModuleNames& module = parts_->names;
  return module.values.contains(key) || module.subs.contains(key) || module.spaces.contains(key);
}

std::string Session::asDocumented(std::string_view name) const {
  const std::size_t end = std::min(name.find('.'), name.size());
  const auto value = parts_->names.values.find(lowerCase(name.substr(0, end)));
  const auto* global = value == parts_->names.values.end() ? nullptr : std::get_if<Global*>(&value->second);
  if (!global) return std::string(name);
  const Type type = (*global)->type;
  if (isPlainObject(type) && type.objectClass) return type.objectClass->name + std::string(name.substr(end));
  return std::string(name.substr(std::min(end + 1, name.size())));
}

Completions Session::completions(std::string_view line) const {
  const ModuleNames& module = parts_->names;
  const std::string_view typed = lastName(line);
  line.remove_suffix(typed.size());
  Completions found{typed.size(), {}};
  Collected names;
  if (line.ends_with('.')) {
    line.remove_suffix(1);
    const std::string owner(lastName(line));
    const auto value = module.values.find(lowerCase(owner));
    if (value != module.values.end()) {
      const auto* global = std::get_if<Global*>(&value->second);
      names = membersOf(global ? (*global)->type : std::get<Constant>(value->second).type);
    } else if (const auto space = module.spaces.find(lowerCase(owner)); space != module.spaces.end()) {
      collectDeclared(names, *space->second);
      if (const Class* type = space->second->ofClass) {
        collect(names, type->sharedMethods);
        collect(names, type->sharedProperties);
      }
    } else if (const Class* type = registry().findClass(owner)) {
      collect(names, type->sharedMethods);
      collect(names, type->sharedProperties);
    } else if (const Module* owning = registry().findModule(owner)) {
      collect(names, owning->methods);
    }
  } else if (!typed.empty()) {
    for (auto word = static_cast<int>(Keyword::none) + 1; word <= static_cast<int>(Keyword::xorWord);
         ++word) {
      names.emplace_back(spellingOf(static_cast<Keyword>(word)));
    }
    collectDeclared(names, module);
    for (const Declarations* each : module.modules) collectDeclared(names, *each);
    for (const Class& each : registry().classes) {
      if (!each.name.starts_with("_")) names.push_back(each.name);
    }
    for (const Module& each : registry().modules) {
      names.push_back(each.name);
      if (each.fromLibrary) collect(names, each.methods);
    }
    collect(names, registry().functions);
  }
  for (std::string& each : names) {
    if (each.size() >= typed.size() && sameName(std::string_view(each).substr(0, typed.size()), typed)) {
      found.names.push_back(std::move(each));
    }
  }
  std::sort(found.names.begin(), found.names.end());
  found.names.erase(std::unique(found.names.begin(), found.names.end()), found.names.end());
  return found;
}

void Session::run(std::string_view piece) {
  parts_->pieces.push_back(compile(parts_->names, piece, true));
  parts_->names.stepsLeft->store(endless);
  stopWaiting(false);
  runMain(parts_->pieces.back());
}

}  // namespace host
