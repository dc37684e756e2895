// Parses declarations, from left to right.
#include "runtime/declaration.h"

#include <cctype>
#include <cstdlib>
#include <stdexcept>

namespace host {

std::size_t Declaration::requiredCount() const {
  std::size_t count = 0;
  while (count < parameters.size() && !parameters[count].defaultValue) ++count;
  return count;
}

std::optional<Type> typeNamed(std::string_view name, const ClassNames& classes) {
  if (name.ends_with("()")) {
    const std::optional<Type> element = typeNamed(name.substr(0, name.size() - 2), classes);
    return element ? std::optional<Type>(element->arrayOf()) : std::nullopt;
  }
  if (const Kind kind = kindNamed(name); kind != Kind::None) return Type{kind};
  if (const Class* found = classes.findClass(name)) return Type{Kind::Object, false, found};
  return std::nullopt;
}

namespace {

class Parser {
 public:
  Parser(std::string_view text, ClassNames& classes) : text_(text), classes_(classes) {}

  Declaration parse() {
    Declaration declaration;
    declaration.text = text_;
    declaration.name = word("a name");
    if (accept('(')) {
      if (!accept(')')) {
        do {
          declaration.parameters.push_back(parameter());
        } while (accept(','));
        if (!accept(')')) fail("expected ')'");
      }
    }
    skipBlanks();
    if (at_ < text_.size()) {
      if (!acceptWord("as")) fail("expected 'as'");
      declaration.result = type();
    }
    skipBlanks();
    if (at_ < text_.size()) fail("expected the end");
    bool optional = false;
    for (const Parameter& each : declaration.parameters) {
      if (optional && !each.defaultValue) fail("a parameter without a default follows one with a default");
      optional = each.defaultValue.has_value();
    }
    return declaration;
  }

 private:
  [[noreturn]] void fail(const std::string& message) const {
    throw std::runtime_error("the declaration \"" + std::string(text_) + "\": " + message + " at column " +
                             std::to_string(at_ + 1));
  }
  void skipBlanks() {
    while (at_ < text_.size() && text_[at_] == ' ') ++at_;
  }
  bool accept(char c) {
    skipBlanks();
    if (at_ >= text_.size() || text_[at_] != c) return false;
    ++at_;
    return true;
  }
  std::string_view peekWord() {
    skipBlanks();
    std::size_t end = at_;
    while (end < text_.size() && (std::isalnum(static_cast<unsigned char>(text_[end])) || text_[end] == '_'))
      ++end;
    return text_.substr(at_, end - at_);
  }
  bool acceptWord(std::string_view wanted) {
    const std::string_view found = peekWord();
    if (!sameName(found, wanted)) return false;
    at_ += found.size();
    return true;
  }
  std::string word(const std::string& what) {
    const std::string_view found = peekWord();
    if (found.empty()) fail("expected " + what);
    at_ += found.size();
    return std::string(found);
  }
  Type type() {
    const std::size_t start = at_;
    const std::string name = word("a type");
    std::optional<Type> found = typeNamed(name, classes_);
    if (!found) {
      // A class that is registered later.
      if (!std::isupper(static_cast<unsigned char>(name[0]))) {
        at_ = start;
        fail("expected a type");
      }
      found = Type{Kind::Object, false, &classes_.expectClass(name)};
    }
    if (accept('(')) {
      if (!accept(')')) fail("expected ')'");
      return found->arrayOf();
    }
    return *found;
  }

  Parameter parameter() {
    Parameter parsed;
    if (acceptWord("byref")) {
      parsed.byRef = true;
    } else {
      acceptWord("byval");
    }
    parsed.name = word("the name of a parameter");
    bool array = false;
    if (accept('(')) {
      if (!accept(')')) fail("expected ')'");
      array = true;
    }
    if (!acceptWord("as")) fail("expected 'as'");
    parsed.type = type();
    if (array) parsed.type = parsed.type.arrayOf();
    if (accept('=')) parsed.defaultValue = defaultValue(parsed.type);
    return parsed;
  }

  Slot defaultValue(Type type) {
    skipBlanks();
    Slot slot = {};
    if (type.isReference()) {
      if (acceptWord("nil")) return slot;
      if (text_.substr(at_, 2) == "\"\"") {
        at_ += 2;
        return slot;
      }
      fail("expected nil or \"\" as the default");
    }
    if (type.kind == Kind::Boolean) {
      if (acceptWord("true")) {
        slot.integer = 1;
      } else if (!acceptWord("false")) {
        fail("expected true or false as the default");
      }
      return slot;
    }
    const std::string rest(text_.substr(at_));
    char* end = nullptr;
    const double number = std::strtod(rest.c_str(), &end);
    if (end == rest.c_str()) fail("expected a number as the default");
    at_ += static_cast<std::size_t>(end - rest.c_str());
    if (type.kind == Kind::Double) {
      slot.number = number;
    } else if (type.kind == Kind::Single) {
      slot.single = static_cast<float>(number);
    } else {
      slot.integer = std::strtoll(rest.c_str(), nullptr, 10);
    }
    return slot;
  }

  std::string_view text_;
  ClassNames& classes_;
  std::size_t at_ = 0;
};

}  // namespace

Declaration parseDeclaration(std::string_view text, ClassNames& classes) {
  return Parser(text, classes).parse();
}

}  // namespace host
