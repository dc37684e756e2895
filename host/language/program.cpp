// Runs compiled programs: frames, their stack, and where an exception has passed.
#include "language/program.h"

#include <alloca.h>

#include <cstring>
#include <utility>

#include "runtime/system_threads.h"

namespace host {

Sub::~Sub() {
  for (const Parameter& parameter : parameters) {
    if (parameter.defaultValue) releaseSlot(*parameter.defaultValue, parameter.type);
  }
}

namespace {

class LocalsScope {
 public:
  LocalsScope(Slot* locals, const std::vector<Type>& types) : locals_(locals), types_(types) {}
  ~LocalsScope() {
    for (std::size_t i = 0; i < types_.size(); ++i) releaseSlot(locals_[i], types_[i]);
  }
  LocalsScope(const LocalsScope&) = delete;
  LocalsScope& operator=(const LocalsScope&) = delete;

 private:
  Slot* locals_;
  const std::vector<Type>& types_;
};

constexpr std::size_t stackReserve = std::size_t{1} << 20;  // for what runs between two checks: an expression

// The lowest address that this thread's frames may reach.
const char* stackLimit() {
  static thread_local const char* limit = lowestOfStack() + stackReserve;
  return limit;
}

// While it lives, the frame is this thread's innermost call.
class CallScope {
 public:
  explicit CallScope(Frame& frame) : caller_(runningCall) {
    frame.caller = caller_;
    runningCall = &frame;
  }
  ~CallScope() { runningCall = caller_; }
  CallScope(const CallScope&) = delete;
  CallScope& operator=(const CallScope&) = delete;

 private:
  const RunningCall* const caller_;
};

void runFrame(const std::string& file, Frame& frame, const Block& body, const char* name) {
  frame.file = file.c_str();
  frame.sub = name;
  const CallScope scope(frame);
  try {
    body.run(frame);
  } catch (const std::bad_alloc&) {
    throw HostException("OutOfMemoryException", "There is not enough memory.");
  }
}

}  // namespace

void checkStack() {
  if (static_cast<const char*>(__builtin_frame_address(0)) < stackLimit()) {
    throw HostException("StackOverflowException",
                        "The stack is used up: Subs or Functions call each other too deeply.");
  }
}

Slot callSub(const Sub& sub, const Slot* arguments) {
  const std::size_t count = sub.locals.size();
  auto* locals = static_cast<Slot*>(alloca((count + 1) * sizeof(Slot)));
  std::memset(locals, 0, count * sizeof(Slot));
  const std::size_t given = sub.parameters.size() + (sub.hasSelf ? 1 : 0);
  for (std::size_t i = 0; i < given; ++i) locals[i] = arguments[i];
  const LocalsScope scope(locals, sub.locals);
  checkStack();
  struct CallFrame : Frame {
    explicit CallFrame(Type ofResult) : type(ofResult) {}
    ~CallFrame() { releaseSlot(result, type); }  // where an exception leaves it
    const Type type;
  } frame(sub.result);
  frame.locals = locals;
  frame.line = sub.position.line;
  runFrame(sub.file, frame, sub.body, sub.name.c_str());
  return std::exchange(frame.result, Slot{});
}

Call callOf(const Method& method) {
  return Call(
      [](const void* own, const Slot* arguments) {
        const auto& declared = *static_cast<const Method*>(own);
        const Method& target = declared.place < 0 ? declared : targetOf(declared, *arguments[0].heap);
        const std::vector<Parameter>& parameters = target.declaration.parameters;
        const std::size_t first = !target.sub || target.sub->hasSelf ? 1 : 0;
        const std::span<const Slot> given(arguments, first + parameters.size());
        if (!target.sub) return target.call(given);
        std::vector<Slot> handed(given.begin(), given.end());
        for (std::size_t i = 0; i < parameters.size(); ++i) {
          if (!parameters[i].byRef && parameters[i].type.isReference()) retain(handed[first + i].heap);
        }
        return callSub(*target.sub, handed.data());
      },
      &method);
}

Stmt countStep(StepsLeft& left) {
  // Leaves the frame's line as it is: a program does not see it.
  struct Count final : Statement {
    explicit Count(StepsLeft& ofProgram) : stepsLeft(ofProgram) {}
    Flow run(Frame&) const override {
      if (stepsLeft.fetch_sub(1, std::memory_order_relaxed) <= 0) throw OutOfSteps();
      return Flow::next;
    }
    StepsLeft& stepsLeft;
  };
  return std::make_unique<Count>(left);
}

void runHere(const Main& main) {
  std::vector<Slot> locals(main.locals.size());
  const LocalsScope scope(locals.data(), main.locals);
  Frame frame;
  frame.locals = locals.data();
  runFrame(main.file, frame, main.body, "");
}

void runMain(const Main& main) {
  std::exception_ptr failure;
  runOnDeepStack([&] {
    try {
      runHere(main);
    } catch (...) {
      failure = std::current_exception();
    }
  });
  if (failure) std::rethrow_exception(failure);
}

}  // namespace host
