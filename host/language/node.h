// What a compiled program consists of: typed expressions, places that can be assigned to, and statements.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "language/problem.h"
#include "runtime/heap.h"
#include "runtime/running_call.h"
#include "runtime/value.h"

namespace host {

// One call of a Sub or Function, or the main program.
struct Frame : RunningCall {
  Slot* locals = nullptr;
  Slot result = {};  // owned, where it is a reference
};

// A variable that holds a plain value: a slot of the frame, or one that threads share, at module level or in
// the object whose method runs.
class Variable {
 public:
  static Variable local(std::size_t slot) { return {nullptr, slot}; }
  static Variable global(Slot& slot) { return {&slot, 0}; }
  static Variable ofSelf(std::size_t offset) { return {&inSelf, offset / sizeof(Slot)}; }

  std::int64_t integer(const Frame& frame) const { return static_cast<std::int64_t>(load(frame)); }
  double real(const Frame& frame) const { return std::bit_cast<double>(load(frame)); }
  // Relaxed: threads that use a variable at once see some value of it, and order nothing else by it.
  std::uint64_t load(const Frame& frame) const { return __atomic_load_n(&in(frame)->word, __ATOMIC_RELAXED); }
  void store(const Frame& frame, std::uint64_t word) const {
    __atomic_store_n(&in(frame)->word, word, __ATOMIC_RELAXED);
  }

 private:
  Variable(Slot* shared, std::size_t slot) : shared_(shared), slot_(slot) {}
  Slot* in(const Frame& frame) const {  // a local one has to pass one test alone
    if (!shared_) [[likely]]
      return frame.locals + slot_;
    return shared_ == &inSelf ? reinterpret_cast<Slot*>(frame.locals[0].heap) + slot_ : shared_;
  }

  static inline Slot inSelf = {};  // stands for that object

  Slot* shared_;
  std::size_t slot_;  // in the frame, or in that object
};

// Which of the four evaluations an expression of the type has.
enum class Register { integer, real, single, reference };
inline Register registerOf(Type type) {
  if (type.isReference()) return Register::reference;
  if (type.kind == Kind::Double) return Register::real;
  return type.kind == Kind::Single ? Register::single
                                   : Register::integer;  // Boolean, Currency and Ptr are integers
}

inline bool isPlainObject(Type type) { return type.kind == Kind::Object && !type.array; }
inline bool isVariant(Type type) { return type.kind == Kind::Variant && !type.array; }
inline bool isText(Type type) { return type.kind == Kind::String && !type.array; }
inline bool isBoolean(Type type) { return type.kind == Kind::Boolean && !type.array; }

// Drops the reference that a slot owns, if its type is one.
inline void releaseSlot(Slot slot, Type type) {
  if (type.isReference()) release(slot.heap);
}

// How a statement ends: by going on, or on the way out of something.
enum class Flow : std::uint16_t {
  next,
  exitFor,
  exitWhile,
  exitDo,
  continueFor,
  continueWhile,
  continueDo,
  leave,  // the Sub, Function or program
  named,  // and above: out of a For that is not the innermost one; for each two values, Exit and Continue
};

class Statement {
 public:
  virtual ~Statement() = default;
  virtual Flow run(Frame&) const = 0;
};
using Stmt = std::unique_ptr<Statement>;

struct Block {
  std::vector<Stmt> statements;
  Flow run(Frame& frame) const {
    for (const Stmt& each : statements) {
      if (const Flow flow = each->run(frame); flow != Flow::next) [[unlikely]]
        return flow;
    }
    return Flow::next;
  }
};

class Place;
class MethodReference;
struct Growth;

class Expression {
 public:
  explicit Expression(Type ofType) : type(ofType) {}
  virtual ~Expression() = default;

  // Only the one that belongs to the type's register may be called.
  virtual std::int64_t integer(Frame&) const { std::abort(); }
  virtual double real(Frame&) const { std::abort(); }
  virtual float single(Frame&) const { std::abort(); }
  virtual Ref<Heap> reference(Frame&) const { std::abort(); }

  // Whichever it is; the caller owns a reference.
  Slot evaluate(Frame& frame) const {
    Slot slot = {};
    switch (registerOf(type)) {
      case Register::integer:
        slot.integer = integer(frame);
        break;
      case Register::real:
        slot.number = real(frame);
        break;
      case Register::single:
        slot.single = single(frame);
        break;
      case Register::reference:
        slot.heap = reference(frame).detach();
        break;
    }
    return slot;
  }

  // Itself, where it can be assigned to.
  virtual const Place* place() const { return nullptr; }
  virtual const MethodReference* methodReference() const { return nullptr; }
  // The statement that stores the value in a variable, with the computation inside it: one step instead of
  // two. Takes the expression's function with it; null, and nothing taken, where there is none.
  virtual Stmt storing(const Variable&, Position) { return nullptr; }

  Type type;
  Position position;
  bool isLiteral = false;               // a text, or a number that fits whatever holds it
  std::optional<std::int64_t> literal;  // of an integer literal
  std::optional<Variable> variable;     // that it reads, where it is no more than that
  // The slot of the frame that it reads, where it is no more than an object in it: nobody but the frame's own
  // statements can put another one there, and none of them where it is the object whose method runs.
  std::optional<std::size_t> heldIn;
  bool isSelf = false;
  std::string written;  // how the program writes it, for messages, where it is a name or begins with one
};
using Expr = std::unique_ptr<Expression>;
using Exprs = std::vector<Expr>;

// An expression that can be assigned to.
class Place : public Expression {
 public:
  using Expression::Expression;
  const Place* place() const final { return this; }
  virtual void put(Frame& frame, Slot owned) const = 0;

  // From the value that is there (borrowed) the one to be put (owned), or nothing where it may stay.
  using Change = std::function<std::optional<Slot>(Slot current)>;
  // Reads and puts, but finds the place only once: what stands in an index is computed once.
  virtual void update(Frame& frame, const Change& change) const;
  // The same place once more, where finding it twice is no more than finding it once; else null.
  virtual std::unique_ptr<Place> again() const { return nullptr; }

  // For texts that grow. Whether the other is found in the same way, and so is the same, unless something
  // between the two has made a difference.
  virtual bool isSame(const Place&) const { return false; }
  // False, and nothing done, where the place's text cannot grow where it is.
  virtual bool grow(Frame&, const Growth&) const { return false; }
  // Finds the place only once for all that is done with it; false, and nothing done, where that cannot be.
  virtual bool withFound(Frame&, const std::function<void(const Place&)>&) const { return false; }
};

// Throws ProgramError where it cannot be assigned to.
inline std::unique_ptr<Place> placeOf(Expr expression, Position position, const std::string& message) {
  if (!expression->place()) fail(position, message);
  return std::unique_ptr<Place>(static_cast<Place*>(expression.release()));
}

// Evaluated, and given back at the end of the scope.
class Held {
 public:
  Held(const Expression& expression, Frame& frame)
      : slot(expression.evaluate(frame)), type_(expression.type) {}
  Held(Slot owned, Type type) : slot(owned), type_(type) {}
  ~Held() { releaseSlot(slot, type_); }
  Held(const Held&) = delete;
  Held& operator=(const Held&) = delete;
  Slot detach() {
    type_ = {};
    return slot;
  }
  Slot slot;

 private:
  Type type_;
};

inline void Place::update(Frame& frame, const Change& change) const {
  const Held current(*this, frame);
  if (const std::optional<Slot> changed = change(current.slot)) put(frame, *changed);
}

namespace detail {
template <typename Function>
struct StatementNode final : Statement {
  StatementNode(int atLine, Function f) : line(atLine), function(std::move(f)) {}
  Flow run(Frame& frame) const override {
    frame.line = line;
    if constexpr (std::is_void_v<decltype(function(frame))>) {
      function(frame);
      return Flow::next;
    } else {
      return function(frame);
    }
  }
  int line;
  Function function;
};
}  // namespace detail

template <typename Function>
Stmt statement(Position position, Function function) {
  return std::make_unique<detail::StatementNode<Function>>(position.line, std::move(function));
}

namespace detail {
template <typename Function>
struct IntegerNode final : Expression {
  IntegerNode(Type ofType, Function f) : Expression(ofType), function(std::move(f)) {}
  std::int64_t integer(Frame& frame) const override { return static_cast<std::int64_t>(function(frame)); }
  Stmt storing(const Variable& target, Position at) override {
    return statement(at, [target, f = std::move(function)](Frame& frame) {
      target.store(frame, static_cast<std::uint64_t>(f(frame)));
    });
  }
  Function function;
};
template <typename Function>
struct BooleanNode final : Expression {
  explicit BooleanNode(Function f) : Expression(Type{Kind::Boolean}), function(std::move(f)) {}
  std::int64_t integer(Frame& frame) const override { return function(frame); }
  Function function;
};
template <typename Function>
struct RealNode final : Expression {
  RealNode(Type ofType, Function f) : Expression(ofType), function(std::move(f)) {}
  double real(Frame& frame) const override { return function(frame); }
  Stmt storing(const Variable& target, Position at) override {
    return statement(at, [target, f = std::move(function)](Frame& frame) {
      target.store(frame, std::bit_cast<std::uint64_t>(f(frame)));
    });
  }
  Function function;
};
template <typename Function>
struct SingleNode final : Expression {
  SingleNode(Type ofType, Function f) : Expression(ofType), function(std::move(f)) {}
  float single(Frame& frame) const override { return function(frame); }
  Function function;
};
template <typename Function>
struct ReferenceNode final : Expression {
  ReferenceNode(Type ofType, Function f) : Expression(ofType), function(std::move(f)) {}
  Ref<Heap> reference(Frame& frame) const override { return function(frame); }
  Function function;
};
template <typename Function>
struct SlotNode final : Expression {
  SlotNode(Type ofType, Function f) : Expression(ofType), function(std::move(f)) {}
  std::int64_t integer(Frame& frame) const override { return function(frame).integer; }
  double real(Frame& frame) const override { return function(frame).number; }
  float single(Frame& frame) const override { return function(frame).single; }
  Ref<Heap> reference(Frame& frame) const override { return Ref<Heap>::adopt(function(frame).heap); }
  Function function;
};
}  // namespace detail

// Expressions made of a function of the frame; the last gives any type's slot, owned.
template <typename Function>
Expr integerNode(Type type, Function function) {
  return std::make_unique<detail::IntegerNode<Function>>(type, std::move(function));
}
template <typename Function>
Expr booleanNode(Function function) {
  return std::make_unique<detail::BooleanNode<Function>>(std::move(function));
}
template <typename Function>
Expr realNode(Function function) {
  return std::make_unique<detail::RealNode<Function>>(Type{Kind::Double}, std::move(function));
}
template <typename Function>
Expr singleNode(Function function) {
  return std::make_unique<detail::SingleNode<Function>>(Type{Kind::Single}, std::move(function));
}
template <typename Function>
Expr referenceNode(Type type, Function function) {
  return std::make_unique<detail::ReferenceNode<Function>>(type, std::move(function));
}
template <typename Function>
Expr slotNode(Type type, Function function) {
  return std::make_unique<detail::SlotNode<Function>>(type, std::move(function));
}

// Literals.
Expr integerLiteral(std::uint64_t value, Type type);
Expr realLiteral(double value);
Expr textLiteral(const std::string& value);

}  // namespace host
