// Statements as they run.
#include "language/statements.h"

#include <atomic>
#include <mutex>

#include "language/conversions.h"
#include "language/fields.h"
#include "language/spelling.h"
#include "runtime/exception.h"
#include "runtime/output.h"
#include "runtime/text.h"
#include "runtime/thread.h"
#include "runtime/wording.h"

namespace host {

Stmt choice(Position position, std::vector<Branch> branches) {
  return statement(position, [branches = std::move(branches)](Frame& frame) {
    for (const Branch& branch : branches) {
      bool chosen = branch.tests.empty();
      for (const Expr& test : branch.tests) chosen = chosen || test->integer(frame) != 0;
      if (chosen) return branch.body.run(frame);
    }
    return Flow::next;
  });
}

Stmt tryCatch(Position position, Block body, std::vector<CatchClause> clauses, Block finally) {
  return statement(position, [body = std::move(body), clauses = std::move(clauses),
                              finally = std::move(finally)](Frame& frame) {
    const auto guarded = [&]() -> Flow {
      try {
        return body.run(frame);
      } catch (HostException& exception) {
        for (const CatchClause& clause : clauses) {
          if (!isInstance(exception.exception.get(), *clause.type)) continue;
          if (clause.variable) {
            clause.variable->put(frame, Slot{.heap = Ref<Object>(exception.exception).detach()});
          }
          return clause.body.run(frame);
        }
        throw;
      }
    };
    Flow flow;
    try {
      flow = guarded();
    } catch (const HostException&) {
      const Flow last = finally.run(frame);
      if (last != Flow::next) return last;
      throw;
    }
    const Flow last = finally.run(frame);
    return last != Flow::next ? last : flow;
  });
}

Stmt raise(Position position, Expr exception) {
  const Type type = exception->type;
  if (!isPlainObject(type) || !type.objectClass || !type.objectClass->isA(*hostClasses().exception)) {
    fail(position, "expected an exception after Raise, found " + nameOf(type));
  }
  return statement(position, [exception = std::move(exception)](Frame& frame) {
    Ref<Heap> object = exception->reference(frame);
    if (!object) throw HostException("NilObjectException", "The exception to raise is Nil.");
    throw HostException(Ref<Object>::adopt(static_cast<Object*>(object.detach())));
  });
}

Stmt returnValue(Position position, Expr value) {
  return statement(position, [value = std::move(value)](Frame& frame) {
    const Slot result = value->evaluate(frame);
    releaseSlot(frame.result, value->type);
    frame.result = result;
    return Flow::leave;
  });
}

Stmt print(Position position, Expr value) {
  return statement(position, [value = displayed(std::move(value))](Frame& frame) {
    const Ref<Heap> text = value->reference(frame);
    print(utf8Of(static_cast<const Text*>(text.get())) + '\n');
  });
}

Stmt evaluate(Position position, Expr value) {
  return statement(position, [value = std::move(value)](Frame& frame) {
    releaseSlot(value->evaluate(frame), value->type);
  });
}

Stmt declaration(Position position, std::unique_ptr<Place> place, Expr value) {
  if (value && place->variable) {
    if (Stmt stored = value->storing(*place->variable, position)) return stored;
  }
  return statement(position, [place = std::move(place), value = std::move(value)](Frame& frame) {
    place->put(frame, value ? value->evaluate(frame) : Slot{});
  });
}

Block namedBody(Position position, std::size_t number, Block body) {
  Block named;
  named.statements.push_back(statement(position, [number, body = std::move(body)](Frame& frame) {
    const Flow flow = body.run(frame);
    if (flow == namedJump(number, true)) return Flow::exitFor;
    return flow == namedJump(number, false) ? Flow::continueFor : flow;
  }));
  return named;
}

Stmt jump(Position position, Flow flow) {
  return statement(position, [flow](Frame&) { return flow; });
}

void expectEvent(const Expression& object, const std::string& event, Position position) {
  const Type type = object.type;
  const bool isThread =
      isPlainObject(type) && type.objectClass && type.objectClass->isA(*hostClasses().thread);
  if (!isThread || !sameName(event, "Run"))
    fail(position, withArticle(nameOf(type)) + " has no event " + event);
}

Stmt addHandler(Position position, Expr object, const Method& handler, Expr self, Position handlerPosition) {
  const Type threadType{Kind::Object, false, hostClasses().thread};
  const std::vector<Parameter>& parameters = handler.declaration.parameters;
  if (handler.declaration.result.kind != Kind::None || parameters.size() > 1 ||
      (parameters.size() == 1 && (parameters[0].type != threadType || parameters[0].byRef))) {
    fail(handlerPosition, "a thread runs a Sub without parameters, or with one parameter As Thread; " +
                              handler.declaration.name + " is not");
  }
  return statement(position, [object = std::move(object), &handler, self = std::move(self)](Frame& frame) {
    const Ref<Heap> held = object->reference(frame);
    if (!held) throw HostException("NilObjectException", "The thread is Nil.");
    Ref<Heap> owner = self ? self->reference(frame) : nullptr;
    if (self) notNil({.heap = owner.get()}, self->written);
    setRunHandler(static_cast<Object&>(*held), std::move(owner), [&handler](Object& started, Heap* of) {
      const Slot arguments[] = {{.heap = of ? of : &started}, {.heap = &started}};
      handler.call(arguments);
    });
  });
}

Stmt once(Position position, Block block) {
  struct State {
    std::recursive_mutex lock;  // the value may be computed by what comes by here itself
    std::atomic<bool> done = false;
  };
  return statement(position, [state = std::make_shared<State>(), block = std::move(block)](Frame& frame) {
    if (state->done.load(std::memory_order_acquire)) return;
    const std::lock_guard lock(state->lock);
    if (state->done.load(std::memory_order_relaxed)) return;
    block.run(frame);
    state->done.store(true, std::memory_order_release);
  });
}

}  // namespace host
