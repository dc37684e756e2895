// Compiles expressions, members and calls.
#include <array>
#include <cstring>

#include "language/compiler.h"
#include "runtime/array.h"
#include "runtime/text.h"
#include "runtime/variant.h"

namespace host {

namespace {

// A variable of exactly the type, as a function called by reference sees it, back to a slot.
Slot widened(Slot slot, Type type) {
  Slot wide = {};
  const auto read = [&](auto value) {
    std::memcpy(&value, &slot, sizeof value);
    wide.integer = static_cast<std::int64_t>(value);
  };
  switch (type.isReference() ? Kind::None : type.kind) {
    case Kind::Boolean:
      read(std::uint8_t{});
      wide.integer = wide.integer != 0;
      break;
    case Kind::Int8:
      read(std::int8_t{});
      break;
    case Kind::Int16:
      read(std::int16_t{});
      break;
    case Kind::Int32:
      read(std::int32_t{});
      break;
    case Kind::UInt8:
      read(std::uint8_t{});
      break;
    case Kind::UInt16:
      read(std::uint16_t{});
      break;
    case Kind::UInt32:
      read(std::uint32_t{});
      break;
    default:
      wide = slot;
      break;
  }
  return wide;
}

constexpr std::size_t mostArguments = 16;

// The arguments of one call while it runs: evaluated from left to right, written back where they go by
// reference, given back at the end.
class CallArguments {
 public:
  explicit CallArguments(Frame& frame) : frame_(frame) {}
  ~CallArguments() {
    for (std::size_t i = 0; i < count_; ++i) releaseSlot(held_[i], types_[i]);
  }
  CallArguments(const CallArguments&) = delete;
  CallArguments& operator=(const CallArguments&) = delete;

  void add(const Expression& expression, bool byRef) {
    held_[count_] = expression.evaluate(frame_);
    types_[count_] = expression.type;
    slots_[count_] = byRef ? Slot{.pointer = &held_[count_]} : held_[count_];
    ++count_;
  }
  void addSelf(Slot self) {
    held_[count_] = {};
    types_[count_] = {};
    slots_[count_++] = self;
  }
  // What a call by reference has left in the variable goes back to where it came from.
  void writeBack(std::size_t index, const Place& place) {
    place.put(frame_, widened(held_[index], types_[index]));
    types_[index] = {};
  }
  std::span<const Slot> slots() const { return {slots_.data(), count_}; }
  // For a Sub of the program, which takes over what it is handed by value.
  void handOver(std::size_t index) { types_[index] = {}; }

 private:
  Frame& frame_;
  std::size_t count_ = 0;
  std::array<Slot, mostArguments + 1> held_, slots_;
  std::array<Type, mostArguments + 1> types_;
};

Ref<Heap> notNil(const Expression& object, Frame& frame) {
  Ref<Heap> held = object.reference(frame);
  if (!held) throw HostException("NilObjectException", "A member of Nil is used.");
  return held;
}

// A property, or a method that can be assigned to; read-only ones are no places.
class AccessorPlace final : public Place {
 public:
  AccessorPlace(Type ofType, std::function<Slot(Frame&)> get, std::function<void(Frame&, Slot)> set)
      : Place(ofType), get_(std::move(get)), set_(std::move(set)) {}
  std::int64_t integer(Frame& frame) const override { return get_(frame).integer; }
  double real(Frame& frame) const override { return get_(frame).number; }
  float single(Frame& frame) const override { return get_(frame).single; }
  Ref<Heap> reference(Frame& frame) const override { return Ref<Heap>::adopt(get_(frame).heap); }
  void put(Frame& frame, Slot owned) const override {
    const Held held(owned, type);
    set_(frame, owned);
  }

 private:
  std::function<Slot(Frame&)> get_;
  std::function<void(Frame&, Slot)> set_;
};

// Memory that a Ptr points to, or a field of an object's instance data.
Slot readMemory(const void* from, Type type) {
  Slot slot = {};
  std::memcpy(&slot, from, sizeOf(type));
  return widened(slot, type);
}
void writeMemory(void* to, Slot value, Type type) { std::memcpy(to, &value, sizeOf(type)); }

std::string listOf(const std::vector<const Method*>& candidates) {
  std::string list;
  for (const Method* method : candidates) list += "\n  " + method->declaration.text;
  return list;
}

}  // namespace

Expr Compiler::parseExpression() {
  const DepthGuard guard(*this);
  return parseBinary(0);
}

// Or and Xor; And; Not; comparisons; + and -; * / \ Mod. Each level's operands are of the next.
Expr Compiler::parseBinary(int level) {
  static const std::vector<std::vector<std::string>> levels = {
      {"or", "xor"},          {"and"}, {}, {"=", "<>", "<", "<=", ">", ">=", "is", "isa"}, {"+", "-"},
      {"*", "/", "\\", "mod"}};
  if (level == static_cast<int>(levels.size())) return parseUnary();
  if (level == 2 && isWord("Not")) return parseNot();
  Expr left = parseBinary(level + 1);
  while (true) {
    const Token& token = peek();
    if (token.kind != TokenKind::word && token.kind != TokenKind::symbol) return left;
    const std::string symbol = lowerCase(token.text);
    const auto& here = levels[static_cast<std::size_t>(level)];
    if (std::find(here.begin(), here.end(), symbol) == here.end()) return left;
    const Position position = take().position;
    if (symbol == "isa") {
      left = parseIsA(std::move(left));
      continue;
    }
    Expr right = parseBinary(level + 1);
    if (symbol == "is") {
      for (const Expr* each : {&left, &right}) {
        if (!(*each)->type.isReference() || ((*each)->type.kind == Kind::String && !(*each)->type.array)) {
          fail(position, "Is compares objects; found " + nameOf((*each)->type));
        }
      }
      left = integerNode({Kind::Boolean}, [left = std::move(left), right = std::move(right)](Frame& f) {
        const Ref<Heap> first = left->reference(f);
        return first.get() == right->reference(f).get();
      });
    } else if (level <= 1) {
      left = logical(symbol, std::move(left), std::move(right), position);
    } else if (level == 3) {
      left = comparison(symbol, std::move(left), std::move(right), position);
    } else {
      left = arithmetic(symbol, std::move(left), std::move(right), position);
    }
    left->position = position;
  }
}

Expr Compiler::parseIsA(Expr object) {
  const Position position = peek().position;
  const Type type = parseType();
  if (type.kind != Kind::Object || !type.objectClass)
    fail(position, "expected a class after IsA, found " + nameOf(type));
  if (!object->type.isReference()) fail(position, "IsA tests objects; found " + nameOf(object->type));
  return integerNode({Kind::Boolean}, [object = std::move(object), type](Frame& f) {
    return isInstance(object->reference(f).get(), *type.objectClass);
  });
}

Expr Compiler::parseNot() {
  const DepthGuard guard(*this);
  const Position position = take().position;
  Expr operand = isWord("Not") ? parseNot() : parseBinary(3);
  operand = plainValue(std::move(operand));
  if (operand->type.kind == Kind::Variant)
    operand = convertTo(std::move(operand), {Kind::Boolean}, "an operand");
  const Type type = operand->type;
  if (type.kind == Kind::Boolean && !type.array) {
    return integerNode(type, [operand = std::move(operand)](Frame& f) { return operand->integer(f) == 0; });
  }
  if (!type.isInteger()) fail(position, "there is no operator 'Not' for a " + nameOf(type));
  const Type result{type.kind == Kind::UInt64 ? Kind::UInt64 : Kind::Int64};
  return integerNode(result, [operand = std::move(operand)](Frame& f) { return ~operand->integer(f); });
}

Expr Compiler::parseUnary() {
  const Position position = peek().position;
  if (isSymbol("-") || isSymbol("+")) {
    const DepthGuard guard(*this);
    const bool negative = take().text == "-";
    Expr operand = parseUnary();
    return negative ? negation(std::move(operand), position) : std::move(operand);
  }
  return parsePower();
}

Expr Compiler::parsePower() {
  Expr left = parsePostfix();
  while (isSymbol("^")) {
    const Position position = take().position;
    Expr right = isSymbol("-") ? parseUnary() : parsePostfix();
    left = arithmetic("^", std::move(left), std::move(right), position);
  }
  return left;
}

Expr Compiler::parsePostfix(bool asStatement) {
  Expr value = parsePrimary(asStatement);
  while (true) {
    if (takeSymbol(".")) {
      value = parseMember(std::move(value), asStatement);
    } else if (isSymbol("(") && value->type.array) {
      const Token& token = peek();
      value = arrayMember(std::move(value), token, parseArguments(false));
    } else {
      return value;
    }
  }
}

Expr Compiler::parsePrimary(bool asStatement) {
  const Token& token = peek();
  Expr value;
  switch (token.kind) {
    case TokenKind::integer:
      take();
      // A number beyond the signed range is unsigned.
      value = literalInteger(token.integer, {token.integer > INT64_MAX ? Kind::UInt64 : Kind::Int64});
      break;
    case TokenKind::real:
      take();
      value = realNode([number = token.real](Frame&) { return number; });
      value->isLiteral = true;
      value->literal = -1;
      break;
    case TokenKind::text:
      take();
      value = text(token.text);
      break;
    case TokenKind::word:
      value = parseWord(asStatement);
      break;
    default:
      if (takeSymbol("(")) {
        Expr inner = parseExpression();
        expectSymbol(")", "after the expression");
        // No place any more: a parenthesised variable goes by value.
        const Type type = inner->type;
        if (dynamic_cast<Place*>(inner.get())) {
          inner = slotNode(type, [inner = std::move(inner)](Frame& f) { return inner->evaluate(f); });
        }
        return inner;
      }
      fail("expected an expression, found " + describe(token));
  }
  value->position = token.position;
  return value;
}

// Arguments in parentheses; those of a statement may go without.
Compiler::Arguments Compiler::parseArguments(bool asStatement, bool* had) {
  Arguments arguments;
  const bool parentheses = isSymbol("(");
  if (had) *had = parentheses;
  if (parentheses) {
    take();
    if (takeSymbol(")")) return arguments;
  } else {
    const Token& token = peek();
    const bool starts = token.kind == TokenKind::integer || token.kind == TokenKind::real ||
                        token.kind == TokenKind::text || (token.kind == TokenKind::word && !isWord("Else")) ||
                        (token.kind == TokenKind::symbol && token.text == "-");
    if (!asStatement || !starts) return arguments;
  }
  do {
    const Position position = peek().position;
    Expr argument = parseExpression();
    argument->position = position;
    arguments.push_back(std::move(argument));
    if (arguments.size() > mostArguments && !parentheses) fail("there are too many arguments");
  } while (takeSymbol(","));
  if (parentheses) expectSymbol(")", "after the arguments");
  return arguments;
}

Expr Compiler::parseWord(bool asStatement) {
  const Token name = peek();
  if (takeWord("True") || takeWord("False")) {
    return integerNode({Kind::Boolean}, [value = sameName(name.text, "True")](Frame&) { return value; });
  }
  if (takeWord("Nil")) return referenceNode({Kind::Nil}, [](Frame&) { return Ref<Heap>(); });
  if (takeWord("New")) return parseNew();
  if (isWord("Not")) return parseNot();
  takeName("an expression");

  if (Expr variable = findVariable(name.text)) return variable;
  if (const auto found = program_.subs.find(lowerCase(name.text)); found != program_.subs.end()) {
    return callSub(*found->second, name, parseArguments(asStatement));
  }
  if (const Class* type = registry().findClass(name.text)) {
    if (takeSymbol(".")) {
      const Token member = take();
      return memberOfClass(*type, member, asStatement);
    }
    if (isSymbol("(")) {  // a checked view of an object as this class
      Arguments arguments = parseArguments(false);
      const Type target{Kind::Object, false, type};
      if (arguments.size() != 1) fail(name.position, "expected one value in " + type->name + "(…)");
      if (arguments[0]->type.kind == Kind::Object && !arguments[0]->type.array) {
        arguments[0]->type = {Kind::Object, false, nullptr};  // any object may turn out to be one
        arguments[0] = referenceNode(
            {Kind::Object}, [inner = std::move(arguments[0])](Frame& f) { return inner->reference(f); });
      }
      return convertTo(std::move(arguments[0]), target, "the object");
    }
    fail(name.position,
         "the class " + type->name + " is no value; expected a member of it, or New " + type->name);
  }
  if (const Module* module = registry().findModule(name.text)) {
    expectSymbol(".", "after the module " + module->name);
    const Token member = take();
    return memberOfModule(*module, member, asStatement);
  }
  if (const std::vector<const Method*> functions = registry().findFunctions(name.text); !functions.empty()) {
    return callMethod(functions, name, nullptr, parseArguments(asStatement), asStatement);
  }
  if (const Property* shared = registry().findSharedProperty(name.text))
    return property(*shared, nullptr, name.position);
  const std::size_t before = at_;
  bool had = false;
  Arguments arguments = parseArguments(false, &had);
  if (Expr value = intrinsic(name, arguments)) return value;
  at_ = before;
  unknownName(name.text, name.position);
}

Expr Compiler::parseNew() {
  const Position position = peek().position;
  const Type type = parseType();
  if (type.kind != Kind::Object || !type.objectClass)
    fail(position, "expected a class after New, found " + nameOf(type));
  const Class& made = *type.objectClass;
  const Token name{TokenKind::word, made.name, position};
  bool had = false;
  Arguments arguments = parseArguments(false, &had);
  const std::vector<const Method*> constructors = made.findMethods("Constructor");
  if (constructors.empty() && !arguments.empty()) {
    fail(position, made.name + " has no Constructor; it is made without arguments");
  }
  // The object waits in a hidden variable while its constructor runs.
  if (constructors.empty())
    return referenceNode(type, [&made](Frame&) -> Ref<Heap> { return makeObject(made); });
  bool takesNone = false;
  for (const Method* constructor : constructors)
    takesNone = takesNone || constructor->declaration.requiredCount() == 0;
  if (arguments.empty() && !takesNone) {
    return referenceNode(type, [&made](Frame&) -> Ref<Heap> { return makeObject(made); });
  }
  if (locals_ == nullptr) fail(position, "an object cannot be made here");
  const Local hidden{type, newLocal(type), false};
  Expr call = callMethod(constructors, name, localPlace(hidden), std::move(arguments), true);
  std::shared_ptr<Place> place(static_cast<Place*>(localPlace(hidden).release()));
  return referenceNode(type, [&made, place, call = std::move(call)](Frame& f) {
    place->put(f, Slot{.heap = makeObject(made).detach()});
    call->integer(f);
    Ref<Heap> object = place->reference(f);
    place->put(f, Slot{});
    return object;
  });
}

Expr Compiler::memberOfClass(const Class& type, const Token& name, bool asStatement) {
  if (const std::vector<const Method*> methods = type.findSharedMethods(name.text); !methods.empty()) {
    return callMethod(methods, name, nullptr, parseArguments(asStatement), asStatement);
  }
  if (const Property* shared = type.findSharedProperty(name.text))
    return property(*shared, nullptr, name.position);
  std::vector<std::string> known;
  for (const Method& method : type.sharedMethods) known.push_back(method.declaration.name);
  const std::string near = nearest(name.text, known);
  fail(name.position, "the class " + type.name + " has no shared member '" + name.text + "'" +
                          (near.empty() ? "" : "; did you mean '" + near + "'?"));
}

Expr Compiler::memberOfModule(const Module& module, const Token& name, bool asStatement) {
  std::vector<const Method*> functions;
  std::vector<std::string> known;
  for (const Method& method : module.methods) {
    if (sameName(method.declaration.name, name.text)) functions.push_back(&method);
    known.push_back(method.declaration.name);
  }
  if (!functions.empty())
    return callMethod(functions, name, nullptr, parseArguments(asStatement), asStatement);
  for (const Property& shared : module.properties) {
    if (sameName(shared.name, name.text)) return property(shared, nullptr, name.position);
    known.push_back(shared.name);
  }
  const std::string near = nearest(name.text, known);
  fail(name.position, "the module " + module.name + " has no member '" + name.text + "'" +
                          (near.empty() ? "" : "; did you mean '" + near + "'?"));
}

Expr Compiler::property(const Property& property, Expr self, Position position) {
  const Type type = property.type;
  if (property.field) {
    const std::shared_ptr<Expression> object = std::move(self);
    const auto locate = [object, offset = property.parameter](Frame& f, Ref<Heap>& held) {
      held = notNil(*object, f);
      auto* instance = static_cast<Object*>(held.get());
      return reinterpret_cast<std::byte*>(instance) + instance->objectClass->dataOffset + offset;
    };
    return std::make_unique<AccessorPlace>(
        type,
        [locate, type](Frame& f) {
          Ref<Heap> held;
          return readMemory(locate(f, held), type);
        },
        [locate, type](Frame& f, Slot value) {
          Ref<Heap> held;
          writeMemory(locate(f, held), value, type);
        });
  }
  const bool shared = self == nullptr;
  const std::shared_ptr<Expression> object = std::move(self);
  const Property* record = &property;
  const auto get = [object, record, shared](Frame& f) {
    if (shared) return record->getter({});
    const Ref<Heap> held = notNil(*object, f);
    const Slot arguments[] = {{.heap = held.get()}, {.integer = record->parameter}};
    return record->getter(arguments);
  };
  if (!property.getter) fail(position, "the property " + property.name + " cannot be read");
  if (!property.setter) return slotNode(type, get);
  return std::make_unique<AccessorPlace>(type, get, [object, record, shared](Frame& f, Slot value) {
    if (shared) {
      const Slot arguments[] = {value};
      record->setter(arguments);
      return;
    }
    const Ref<Heap> held = notNil(*object, f);
    const Slot arguments[] = {{.heap = held.get()}, {.integer = record->parameter}, value};
    record->setter(arguments);
  });
}

Expr Compiler::parseMember(Expr object, bool asStatement) {
  const Token name = peek();
  if (name.kind != TokenKind::word) fail("expected the name of a member, found " + describe(name));
  take();
  const Type type = object->type;
  if (type.array) {
    Arguments arguments = parseArguments(asStatement);
    return arrayMember(std::move(object), name, std::move(arguments));
  }
  if (type.kind == Kind::Pointer) return pointerAccess(std::move(object), name);
  if (type.kind == Kind::Object && type.objectClass) {
    const Class& objectClass = *type.objectClass;
    if (const Property* found = objectClass.findProperty(name.text))
      return property(*found, std::move(object), name.position);
    std::vector<const Method*> methods = objectClass.findMethods(name.text);
    if (methods.empty()) {
      if (const std::vector<const Method*> shared = objectClass.findSharedMethods(name.text);
          !shared.empty()) {
        return callMethod(shared, name, nullptr, parseArguments(asStatement), asStatement);
      }
      std::vector<std::string> known;
      for (const Class* each = &objectClass; each; each = each->super) {
        for (const Method& method : each->methods) known.push_back(method.declaration.name);
        for (const Property& other : each->properties) known.push_back(other.name);
      }
      const std::string near = nearest(name.text, known);
      fail(name.position, objectClass.name + " has no member '" + name.text + "'" +
                              (near.empty() ? "" : "; did you mean '" + near + "'?"));
    }
    // An array that a method without parameters gives may be indexed at once.
    bool noneTakesArguments = true;
    for (const Method* method : methods)
      noneTakesArguments = noneTakesArguments && method->declaration.parameters.empty();
    const bool indexed = noneTakesArguments && isSymbol("(") && !isSymbol(")", 1);
    Arguments arguments = indexed ? Arguments() : parseArguments(asStatement);
    return callMethod(methods, name, std::move(object), std::move(arguments), asStatement);
  }
  if (type.kind == Kind::Object || type.kind == Kind::Variant || type.kind == Kind::None ||
      type.kind == Kind::Nil) {
    fail(name.position, "a " + nameOf(type) + " has no member '" + name.text + "'");
  }
  // s.Left(2) is Left(s, 2).
  Arguments arguments = parseArguments(asStatement);
  arguments.insert(arguments.begin(), std::move(object));
  if (const std::vector<const Method*> functions = registry().findFunctions(name.text); !functions.empty()) {
    return callMethod(functions, name, nullptr, std::move(arguments), asStatement);
  }
  if (Expr value = intrinsic(name, arguments)) return value;
  fail(name.position, "a " + nameOf(type) + " has no member '" + name.text + "'");
}

// p.UInt64(8): what a Ptr points to, so many bytes on.
Expr Compiler::pointerAccess(Expr pointer, const Token& name) {
  const std::optional<Type> type = typeNamed(name.text);
  if (!type || !(type->isNumber() || type->kind == Kind::Boolean || type->kind == Kind::Pointer)) {
    fail(name.position, "a Ptr has no member '" + name.text +
                            "'; its members are named after types, such as UInt64(offset)");
  }
  Arguments arguments = parseArguments(false);
  if (arguments.size() != 1) fail(name.position, "expected one offset in bytes after ." + name.text);
  const std::shared_ptr<Expression> base = std::move(pointer);
  const std::shared_ptr<Expression> offset = convertTo(std::move(arguments[0]), {Kind::Int64}, "the offset");
  const auto locate = [base, offset](Frame& f) {
    auto* memory = reinterpret_cast<std::byte*>(base->integer(f));
    if (!memory) throw HostException("NilObjectException", "The Ptr is Nil.");
    return memory + offset->integer(f);
  };
  return std::make_unique<AccessorPlace>(
      *type, [locate, type = *type](Frame& f) { return readMemory(locate(f), type); },
      [locate, type = *type](Frame& f, Slot value) { writeMemory(locate(f), value, type); });
}

namespace {
Ref<Array> notNilArray(const Expression& array, Frame& frame) {
  Ref<Heap> held = array.reference(frame);
  if (!held) throw HostException("NilObjectException", "The array is Nil.");
  return Ref<Array>::adopt(static_cast<Array*>(held.detach()));
}
}  // namespace

// a(i), and the methods of arrays.
Expr Compiler::arrayMember(Expr array, const Token& name, Arguments arguments) {
  const Type type = array->type;
  const Type element = type.element();
  const Type integer{Kind::Int64};
  const auto expectCount = [&](std::size_t count) {
    if (arguments.size() != count) {
      fail(name.position, "expected " + std::to_string(count) + " argument" + (count == 1 ? "" : "s") +
                              ", found " + std::to_string(arguments.size()));
    }
  };
  const std::shared_ptr<Expression> held = std::move(array);
  if (name.kind == TokenKind::symbol) {
    if (arguments.size() != 1) fail(name.position, "expected one index");
    const std::shared_ptr<Expression> index = convertTo(std::move(arguments[0]), integer, "the index");
    return std::make_unique<AccessorPlace>(
        element,
        [held, index, element](Frame& f) {
          const Ref<Array> elements = notNilArray(*held, f);
          const Slot value = elements->at(index->integer(f));
          if (element.isReference()) retain(value.heap);
          return value;
        },
        [held, index](Frame& f, Slot value) { notNilArray(*held, f)->set(index->integer(f), value); });
  }
  const std::string member = lowerCase(name.text);
  if (member == "ubound" || member == "lastindex") {
    expectCount(0);
    return integerNode(integer, [held](Frame& f) { return notNilArray(*held, f)->count() - 1; });
  }
  if (member == "count") {
    expectCount(0);
    return integerNode(integer, [held](Frame& f) { return notNilArray(*held, f)->count(); });
  }
  const auto statementNode = [](auto function) {
    return integerNode(Type{}, [function = std::move(function)](Frame& f) {
      function(f);
      return 0;
    });
  };
  if (member == "append" || member == "add") {
    expectCount(1);
    return statementNode([held, value = std::shared_ptr<Expression>(
                                    convertTo(std::move(arguments[0]), element, "the element"))](Frame& f) {
      const Held owned(*value, f);
      const Ref<Array> elements = notNilArray(*held, f);
      elements->insert(elements->count(), owned.slot);
    });
  }
  if (member == "insert" || member == "addat") {
    expectCount(2);
    return statementNode(
        [held, index = std::shared_ptr<Expression>(convertTo(std::move(arguments[0]), integer, "the index")),
         value = std::shared_ptr<Expression>(convertTo(std::move(arguments[1]), element, "the element"))](
            Frame& f) {
          const std::int64_t at = index->integer(f);
          const Held owned(*value, f);
          notNilArray(*held, f)->insert(at, owned.slot);
        });
  }
  if (member == "remove" || member == "removeat") {
    expectCount(1);
    return statementNode(
        [held, index = std::shared_ptr<Expression>(convertTo(std::move(arguments[0]), integer, "the index"))](
            Frame& f) { notNilArray(*held, f)->remove(index->integer(f)); });
  }
  if (member == "removeall") {
    expectCount(0);
    return statementNode([held](Frame& f) { notNilArray(*held, f)->resize(0); });
  }
  if (member == "pop") {
    expectCount(0);
    return slotNode(element, [held, element](Frame& f) {
      const Ref<Array> elements = notNilArray(*held, f);
      const Slot value = elements->at(elements->count() - 1);
      if (element.isReference()) retain(value.heap);
      elements->remove(elements->count() - 1);
      return value;
    });
  }
  fail(name.position, "an array has no member '" + name.text + "'");
}

// Calls.

Expr Compiler::callSub(const Sub& sub, const Token& name, Arguments arguments) {
  struct Passed {
    Expr value;
    std::unique_ptr<Place> place;  // of a ByRef argument
  };
  if (arguments.size() > sub.parameters.size()) {
    fail(name.position, sub.name + " takes " + std::to_string(sub.parameters.size()) + " argument" +
                            (sub.parameters.size() == 1 ? "" : "s") + ", found " +
                            std::to_string(arguments.size()));
  }
  auto passed = std::make_shared<std::vector<Passed>>();
  for (std::size_t i = 0; i < sub.parameters.size(); ++i) {
    const SubParameter& parameter = sub.parameters[i];
    Passed each;
    if (i >= arguments.size()) {
      if (!parameter.defaultValue)
        fail(name.position, "the argument " + parameter.name + " of " + sub.name + " is missing");
      each.value = slotNode(parameter.type, [slot = *parameter.defaultValue, type = parameter.type](Frame&) {
        if (type.isReference()) retain(slot.heap);
        return slot;
      });
    } else if (parameter.byRef) {
      if (!dynamic_cast<Place*>(arguments[i].get()) || arguments[i]->type != parameter.type) {
        fail(arguments[i]->position, "the argument " + parameter.name + " of " + sub.name +
                                         " goes by reference; expected a variable As " +
                                         nameOf(parameter.type));
      }
      each.place.reset(static_cast<Place*>(arguments[i].release()));
    } else {
      each.value = convertTo(std::move(arguments[i]), parameter.type,
                             "the argument " + parameter.name + " of " + sub.name);
    }
    passed->push_back(std::move(each));
  }
  return slotNode(sub.result, [passed, &sub, program = &program_](Frame& f) {
    CallArguments call(f);
    for (const Passed& each : *passed) {
      call.add(each.place ? *each.place : *each.value, each.place != nullptr);
    }
    for (std::size_t i = 0; i < passed->size(); ++i) {
      if (!(*passed)[i].place) call.handOver(i);
    }
    Slot result = host::callSub(*program, sub, call.slots().data());
    Held kept(result, sub.result);
    for (std::size_t i = 0; i < passed->size(); ++i) {
      if ((*passed)[i].place) call.writeBack(i, *(*passed)[i].place);
    }
    return kept.detach();
  });
}

Expr Compiler::callMethod(const std::vector<const Method*>& candidates, const Token& name, Expr self,
                          Arguments arguments, bool asStatement, bool) {
  // A statement prefers what gives no result, and an expression needs one.
  const bool endsStatement = asStatement && !isSymbol(".") && !isSymbol("(");
  const Method* best = nullptr;
  int bestCost = -1;
  for (const Method* method : candidates) {
    const Declaration& declaration = method->declaration;
    if (arguments.size() > declaration.parameters.size() || arguments.size() < declaration.requiredCount())
      continue;
    int total = 0;
    for (std::size_t i = 0; i < arguments.size() && total >= 0; ++i) {
      const Parameter& parameter = declaration.parameters[i];
      if (parameter.byRef && !dynamic_cast<Place*>(arguments[i].get())) total = -1;
      const int each = total < 0 ? -1 : cost(*arguments[i], parameter.type, parameter.byRef);
      total = each < 0 ? -1 : total + each;
    }
    if (total < 0) continue;
    const bool hasResult = declaration.result.kind != Kind::None;
    if (hasResult == endsStatement) total += 1 << 20;
    if (!best || total < bestCost) {
      best = method;
      bestCost = total;
    }
  }
  if (!best) {
    std::string types;
    for (const Expr& argument : arguments) types += (types.empty() ? "" : ", ") + nameOf(argument->type);
    if (candidates.size() == 1) {
      const Declaration& only = candidates[0]->declaration;
      if (arguments.size() > only.parameters.size() || arguments.size() < only.requiredCount()) {
        fail(name.position, "wrong number of arguments for " + name.text + ": found " +
                                std::to_string(arguments.size()) + ", expected " + only.text);
      }
    }
    fail(name.position, name.text + " does not take (" + types + "); expected" +
                            (candidates.size() > 1 ? " one of" : "") + listOf(candidates));
  }
  return callMethodExactly(*best, std::move(self), std::move(arguments), name.position);
}

Expr Compiler::callMethodExactly(const Method& method, Expr self, Arguments arguments, Position position) {
  struct Passed {
    Expr value;
    std::unique_ptr<Place> place;
  };
  struct Plan {
    const Method* method;
    Expr self;
    std::vector<Passed> passed;

    Slot run(Frame& f, const Call& call, const Slot* assigned) const {
      CallArguments values(f);
      Ref<Heap> object;
      if (self) {
        object = notNil(*self, f);
        values.addSelf(Slot{.heap = object.get()});
      }
      for (const Passed& each : passed)
        values.add(each.place ? *each.place : *each.value, each.place != nullptr);
      if (assigned) values.addSelf(*assigned);
      Held result(call(values.slots()), assigned ? Type{} : method->declaration.result);
      for (std::size_t i = 0; i < passed.size(); ++i) {
        if (passed[i].place) values.writeBack(i + (self ? 1 : 0), *passed[i].place);
      }
      return result.detach();
    }
  };
  auto plan = std::make_shared<Plan>();
  plan->method = &method;
  plan->self = std::move(self);
  const std::vector<Parameter>& parameters = method.declaration.parameters;
  if (parameters.size() + 2 > mostArguments)
    fail(position, method.declaration.name + " has too many parameters");
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    Passed each;
    if (i >= arguments.size()) {
      each.value = slotNode(parameters[i].type,
                            [slot = parameters[i].defaultValue.value_or(Slot{})](Frame&) { return slot; });
    } else if (parameters[i].byRef) {
      each.place.reset(static_cast<Place*>(arguments[i].release()));
    } else {
      each.value = convertTo(std::move(arguments[i]), parameters[i].type,
                             "the argument " + parameters[i].name + " of " + method.declaration.name);
    }
    plan->passed.push_back(std::move(each));
  }
  const Type result = method.declaration.result;
  const auto call = [plan](Frame& f) { return plan->run(f, plan->method->call, nullptr); };
  if (!method.setter) return slotNode(result, call);
  return std::make_unique<AccessorPlace>(
      result, call, [plan](Frame& f, Slot value) { plan->run(f, plan->method->setter, &value); });
}

// Functions that take or give any type; null for another name.
Expr Compiler::intrinsic(const Token& name, Arguments& arguments) {
  const std::string word = lowerCase(name.text);
  const auto expectCount = [&](std::size_t count) {
    if (arguments.size() != count) {
      fail(name.position, name.text + " takes " + std::to_string(count) + " argument" +
                              (count == 1 ? "" : "s") + ", found " + std::to_string(arguments.size()));
    }
  };
  if (word == "str" || word == "cstr" || word == "tostring" || word == "totext") {
    expectCount(1);
    return displayed(std::move(arguments[0]));
  }
  if (word == "ubound") {
    expectCount(1);
    if (!arguments[0]->type.array)
      fail(name.position, "Ubound takes an array, found " + nameOf(arguments[0]->type));
    return arrayMember(std::move(arguments[0]), name, {});
  }
  if (word == "vartype") {
    expectCount(1);
    Expr value = convertTo(std::move(arguments[0]), {Kind::Variant}, "the argument of VarType");
    return integerNode({Kind::Int64},
                       [value = std::move(value)](Frame& f) { return varTypeOf(value->reference(f).get()); });
  }
  if (word == "array") {
    if (arguments.empty()) fail(name.position, "Array needs an element to know its type from");
    Type element = arguments[0]->type;
    for (const Expr& argument : arguments) {
      if (argument->type == element) continue;
      element = argument->type.isNumber() && element.isNumber() ? Type{Kind::Double} : Type{Kind::Variant};
    }
    auto values = std::make_shared<std::vector<Expr>>();
    for (Expr& argument : arguments) values->push_back(convertTo(std::move(argument), element, "an element"));
    return referenceNode(element.arrayOf(), [values, element](Frame& f) -> Ref<Heap> {
      Ref<Array> array = makeArray(element, 0);
      for (const Expr& value : *values) {
        const Held held(*value, f);
        array->insert(array->count(), held.slot);
      }
      return array;
    });
  }
  return nullptr;
}

}  // namespace host
