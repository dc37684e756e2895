// Tokens, names and declarations.
#include "language/compiler.h"

#include <algorithm>
#include <cctype>

#include "runtime/text.h"
#include "runtime/variant.h"

namespace host {

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lower;
}

std::string nearest(std::string_view name, const std::vector<std::string>& candidates) {
  std::string best;
  std::size_t bestDistance = name.size() / 3 + 1;
  const std::string wanted = lowerCase(name);
  for (const std::string& candidate : candidates) {
    // Levenshtein's distance, one row at a time.
    const std::string other = lowerCase(candidate);
    std::vector<std::size_t> row(other.size() + 1);
    for (std::size_t j = 0; j < row.size(); ++j) row[j] = j;
    for (std::size_t i = 1; i <= wanted.size(); ++i) {
      std::size_t diagonal = row[0];
      row[0] = i;
      for (std::size_t j = 1; j < row.size(); ++j) {
        const std::size_t substituted = diagonal + (wanted[i - 1] == other[j - 1] ? 0 : 1);
        diagonal = row[j];
        row[j] = std::min({substituted, row[j] + 1, row[j - 1] + 1});
      }
    }
    if (row.back() < bestDistance) {
      bestDistance = row.back();
      best = candidate;
    }
  }
  return best;
}

Main compile(Program& program, std::string_view text, bool interactive) {
  return Compiler(program, text, interactive).run();
}

// Tokens.

const Token& Compiler::peek(std::size_t ahead) const {
  return tokens_[std::min(at_ + ahead, tokens_.size() - 1)];
}

const Token& Compiler::take() {
  const Token& token = peek();
  if (at_ + 1 < tokens_.size()) ++at_;
  return token;
}

bool Compiler::isWord(std::string_view word, std::size_t ahead) const {
  return peek(ahead).kind == TokenKind::word && sameName(peek(ahead).text, word);
}
bool Compiler::isSymbol(std::string_view symbol, std::size_t ahead) const {
  return peek(ahead).kind == TokenKind::symbol && peek(ahead).text == symbol;
}
bool Compiler::takeWord(std::string_view word) {
  if (!isWord(word)) return false;
  take();
  return true;
}
bool Compiler::takeSymbol(std::string_view symbol) {
  if (!isSymbol(symbol)) return false;
  take();
  return true;
}
void Compiler::expectWord(std::string_view word, const std::string& where) {
  if (!takeWord(word)) fail("expected '" + std::string(word) + "' " + where + ", found " + describe(peek()));
}
void Compiler::expectSymbol(std::string_view symbol, const std::string& where) {
  if (!takeSymbol(symbol))
    fail("expected '" + std::string(symbol) + "' " + where + ", found " + describe(peek()));
}
bool Compiler::atLineEnd() const {
  return peek().kind == TokenKind::endOfLine || peek().kind == TokenKind::endOfText;
}
void Compiler::expectLineEnd(const std::string& after) {
  if (peek().kind == TokenKind::endOfText) return;
  if (peek().kind != TokenKind::endOfLine)
    fail("expected the end of the line " + after + ", found " + describe(peek()));
  take();
}

std::string Compiler::takeName(const std::string& what) {
  static const std::set<std::string> reserved = {
      "and",  "as",       "byref", "byval", "case",   "catch",  "const",  "continue", "dim",
      "do",   "downto",   "each",  "else",  "elseif", "end",    "exit",   "false",    "finally",
      "for",  "function", "if",    "is",    "isa",    "loop",   "mod",    "new",      "next",
      "nil",  "not",      "or",    "print", "raise",  "return", "select", "step",     "sub",
      "then", "to",       "true",  "try",   "until",  "var",    "wend",   "while",    "xor"};
  if (peek().kind != TokenKind::word) fail("expected " + what + ", found " + describe(peek()));
  if (reserved.contains(lowerCase(peek().text))) {
    fail("expected " + what + ", found the reserved word '" + peek().text + "'");
  }
  return take().text;
}

void Compiler::fail(const std::string& message) const {
  if (interactive_ && peek().kind == TokenKind::endOfText) throw UnfinishedProgram(peek().position, message);
  fail(peek().position, message);
}
void Compiler::fail(Position position, const std::string& message) { throw ProgramError(position, message); }

std::string Compiler::describe(const Token& token) const {
  switch (token.kind) {
    case TokenKind::endOfLine:
      return "the end of the line";
    case TokenKind::endOfText:
      return "the end of the program";
    case TokenKind::text:
      return "a text";
    default:
      return "'" + token.text + "'";
  }
}

// Names.

Main Compiler::run() {
  declareSubs();
  Main main;
  locals_ = &main.locals;
  scopes_.emplace_back();
  at_ = 0;
  parseBlock(main.body, {});
  for (const PendingSub& pending : pending_) {
    at_ = pending.body;
    compileSub(*pending.sub);
  }
  return main;
}

// Finds every Sub and Function first, so that they can be called from anywhere.
void Compiler::declareSubs() {
  for (at_ = 0; peek().kind != TokenKind::endOfText;) {
    const bool lineStart = at_ == 0 || tokens_[at_ - 1].kind == TokenKind::endOfLine;
    if (!lineStart || !(isWord("Sub") || isWord("Function"))) {
      take();
      continue;
    }
    const bool isFunction = isWord("Function");
    const std::string kind = take().text;
    auto sub = std::make_unique<Sub>();
    sub->position = peek().position;
    sub->name = takeName("the name of the " + kind);
    const std::string key = lowerCase(sub->name);
    if (!interactive_ && program_.subs.contains(key)) {
      fail(sub->position, "there is another Sub or Function " + sub->name + " already");
    }
    parseSignature(*sub, isFunction);
    pending_.push_back({sub.get(), at_});
    program_.subs[key] = std::move(sub);
    const Position start = pending_.back().sub->position;
    const std::string unfinished =
        "the " + kind + " " + pending_.back().sub->name + " has no 'End " + kind + "'";
    while (!(isWord("End") && isWord(kind, 1))) {
      if (peek().kind == TokenKind::endOfText) {
        if (interactive_) throw UnfinishedProgram(start, unfinished);
        fail(start, unfinished);
      }
      take();
    }
  }
}

void Compiler::parseSignature(Sub& sub, bool isFunction) {
  if (takeSymbol("(") && !takeSymbol(")")) {
    do {
      SubParameter parameter;
      if (takeWord("ByRef")) {
        parameter.byRef = true;
      } else {
        takeWord("ByVal");
      }
      parameter.name = takeName("the name of a parameter");
      const bool array = takeSymbol("(");
      if (array) expectSymbol(")", "after the parameter " + parameter.name);
      expectWord("As", "after the parameter " + parameter.name);
      parameter.type = parseType();
      if (array) parameter.type = parameter.type.arrayOf();
      if (takeSymbol("=")) {
        parameter.defaultValue = parseConstant(parameter.type, "the default of " + parameter.name).first;
      } else if (!sub.parameters.empty() && sub.parameters.back().defaultValue) {
        fail("the parameter " + parameter.name + " follows one with a default and needs one too");
      }
      sub.parameters.push_back(std::move(parameter));
    } while (takeSymbol(","));
    expectSymbol(")", "after the parameters of " + sub.name);
  }
  if (isFunction) {
    expectWord("As", "and a type after the Function " + sub.name);
    sub.result = parseType();
  }
  expectLineEnd("after the declaration of " + sub.name);
}

void Compiler::compileSub(Sub& sub) {
  sub_ = &sub;
  locals_ = &sub.locals;
  scopes_.assign(1, Names());
  depth_ = forDepth_ = whileDepth_ = doDepth_ = 0;
  for (const SubParameter& parameter : sub.parameters) {
    const std::size_t slot = newLocal(parameter.type, !parameter.byRef);
    if (!scopes_.back()
             .emplace(lowerCase(parameter.name), Local{parameter.type, slot, parameter.byRef})
             .second) {
      fail(sub.position, "two parameters of " + sub.name + " are called " + parameter.name);
    }
  }
  const bool isFunction = sub.result.kind != Kind::None;
  parseBlock(sub.body, {isFunction ? "end function" : "end sub"});
  sub_ = nullptr;
}

std::size_t Compiler::newLocal(Type type, bool owns) {
  constexpr std::size_t most = 20000;
  if (locals_->size() >= most) fail("there are more variables than a Sub may have");
  locals_->push_back(owns ? type : Type{});
  return locals_->size() - 1;
}

namespace {

// A variable in the frame.
class LocalPlace final : public Place {
 public:
  LocalPlace(Type ofType, std::size_t slot) : Place(ofType), slot_(slot) {}
  std::int64_t integer(Frame& frame) const override { return frame.locals[slot_].integer; }
  double real(Frame& frame) const override { return frame.locals[slot_].number; }
  float single(Frame& frame) const override { return frame.locals[slot_].single; }
  Ref<Heap> reference(Frame& frame) const override { return Ref<Heap>::share(frame.locals[slot_].heap); }
  void put(Frame& frame, Slot owned) const override {
    const Slot old = std::exchange(frame.locals[slot_], owned);
    releaseSlot(old, type);
  }

 private:
  std::size_t slot_;
};

// A ByRef parameter: its slot points to the caller's.
class ByRefPlace final : public Place {
 public:
  ByRefPlace(Type ofType, std::size_t slot) : Place(ofType), slot_(slot) {}
  std::int64_t integer(Frame& frame) const override { return target(frame).integer; }
  double real(Frame& frame) const override { return target(frame).number; }
  float single(Frame& frame) const override { return target(frame).single; }
  Ref<Heap> reference(Frame& frame) const override { return Ref<Heap>::share(target(frame).heap); }
  void put(Frame& frame, Slot owned) const override {
    const Slot old = std::exchange(target(frame), owned);
    releaseSlot(old, type);
  }

 private:
  Slot& target(Frame& frame) const { return *static_cast<Slot*>(frame.locals[slot_].pointer); }
  std::size_t slot_;
};

class GlobalPlace final : public Place {
 public:
  explicit GlobalPlace(Global& global) : Place(global.type), global_(global) {}
  std::int64_t integer(Frame&) const override { return global_.load().integer; }
  double real(Frame&) const override { return global_.load().number; }
  float single(Frame&) const override { return global_.load().single; }
  Ref<Heap> reference(Frame&) const override { return Ref<Heap>::adopt(global_.load().heap); }
  void put(Frame&, Slot owned) const override { global_.store(owned); }

 private:
  Global& global_;
};

}  // namespace

Expr Compiler::localPlace(const Local& local) {
  if (local.byRef) return std::make_unique<ByRefPlace>(local.type, local.slot);
  return std::make_unique<LocalPlace>(local.type, local.slot);
}

Expr Compiler::findVariable(const std::string& name) {
  const std::string key = lowerCase(name);
  for (auto scope = scopes_.rbegin(); scope != scopes_.rend(); ++scope) {
    if (const auto found = scope->find(key); found != scope->end()) return localPlace(found->second);
  }
  if (const auto found = program_.globals.find(key); found != program_.globals.end()) {
    return std::make_unique<GlobalPlace>(*found->second);
  }
  if (const auto found = program_.constants.find(key); found != program_.constants.end()) {
    const Constant& constant = found->second;
    if (constant.type.kind == Kind::String) {
      return referenceNode(constant.type, [keep = constant.keep](Frame&) { return keep; });
    }
    Expr value = slotNode(constant.type, [slot = constant.slot](Frame&) { return slot; });
    value->isLiteral = true;
    value->literal = registerOf(constant.type) == Register::integer ? constant.slot.integer : -1;
    return value;
  }
  return nullptr;
}

void Compiler::checkFree(const std::string& name, Position position) {
  const std::string key = lowerCase(name);
  const bool moduleLevel = sub_ == nullptr && scopes_.size() == 1;
  if (scopes_.back().contains(key) ||
      (moduleLevel && !interactive_ &&
       (program_.globals.contains(key) || program_.constants.contains(key)))) {
    fail(position, "there is another " + name + " already");
  }
}

// At module level outside every block a variable is global.
std::unique_ptr<Place> Compiler::declare(const std::string& name, Type type, Position position) {
  checkFree(name, position);
  const std::string key = lowerCase(name);
  if (sub_ == nullptr && scopes_.size() == 1) {
    Global& global = program_.globalStorage.emplace_back();
    global.name = name;
    global.type = type;
    program_.constants.erase(key);
    program_.globals[key] = &global;
    return std::make_unique<GlobalPlace>(global);
  }
  const std::size_t slot = newLocal(type);
  scopes_.back()[key] = {type, slot, false};
  return std::make_unique<LocalPlace>(type, slot);
}

void Compiler::unknownName(const std::string& name, Position position) {
  std::vector<std::string> known;
  for (const Names& scope : scopes_) {
    for (const auto& [key, local] : scope) known.push_back(key);
  }
  for (const Global& global : program_.globalStorage) known.push_back(global.name);
  for (const auto& [key, constant] : program_.constants) known.push_back(key);
  for (const auto& [key, sub] : program_.subs) known.push_back(sub->name);
  for (const Class& each : registry().classes) known.push_back(each.name);
  for (const Module& module : registry().modules) {
    for (const Method& method : module.methods) known.push_back(method.declaration.name);
    for (const Property& property : module.properties) known.push_back(property.name);
  }
  for (const Method& function : registry().functions) known.push_back(function.declaration.name);
  const std::string near = nearest(name, known);
  fail(position, "unknown name '" + name + "'" + (near.empty() ? "" : "; did you mean '" + near + "'?"));
}

Type Compiler::parseType() {
  const Position position = peek().position;
  const std::string name = takeName("a type");
  const std::optional<Type> type = typeNamed(name);
  if (!type) {
    std::vector<std::string> known = {"Integer", "Int8",    "Int16",   "Int32",  "Int64",  "UInt8",
                                      "UInt16",  "UInt32",  "UInt64",  "Single", "Double", "Currency",
                                      "String",  "Boolean", "Variant", "Ptr",    "Byte",   "Object"};
    for (const Class& each : registry().classes) known.push_back(each.name);
    const std::string near = nearest(name, known);
    fail(position, "unknown type '" + name + "'" + (near.empty() ? "" : "; did you mean '" + near + "'?"));
  }
  if (isSymbol("(") && isSymbol(")", 1)) {
    take();
    take();
    return type->arrayOf();
  }
  return *type;
}

}  // namespace host
