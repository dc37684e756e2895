// Loops as they run.
#include "language/loops.h"

#include <bit>

#include "runtime/array.h"

namespace host {

namespace {

// Whether a loop goes on after its body has ended so, and how it ends itself where it does not.
bool goesOn(Flow flow, Flow continues) { return flow == Flow::next || flow == continues; }
Flow afterLoop(Flow flow, Flow exits) { return flow == exits ? Flow::next : flow; }

// The counter of a loop, where it is not a plain variable.
struct PlaceCounter {
  std::shared_ptr<Place> place;
  std::int64_t integer(Frame& frame) const { return place->integer(frame); }
  void store(Frame& frame, std::uint64_t word) const { place->put(frame, Slot{.word = word}); }
};

// From the counter's value on, as far as `last`.
template <bool down, typename Word, typename Counter>
Flow count(Frame& frame, const Counter& counter, Word last, std::uint64_t by, const Block& body) {
  const auto isBeyond = [last](Word value) { return down ? value < last : value > last; };
  auto value = static_cast<Word>(counter.integer(frame));
  while (!isBeyond(value)) {
    const Flow flow = body.run(frame);
    if (!goesOn(flow, Flow::continueFor)) return afterLoop(flow, Flow::exitFor);
    value = static_cast<Word>(counter.integer(frame));  // which the body may have changed
    const auto word = static_cast<std::uint64_t>(value), end = static_cast<std::uint64_t>(last);
    if (isBeyond(value) || (down ? word - end : end - word) < by) break;
    value = static_cast<Word>(down ? word - by : word + by);
    counter.store(frame, static_cast<std::uint64_t>(value));
  }
  return Flow::next;
}

template <typename Word, typename Counter>
Stmt integerLoop(Position position, Counter counter, Expr from, Expr end, Expr step, bool down, Block body) {
  return statement(position, [counter = std::move(counter), from = std::move(from), end = std::move(end),
                              step = std::move(step), down, body = std::move(body)](Frame& frame) {
    counter.store(frame, static_cast<std::uint64_t>(from->integer(frame)));
    const auto last = static_cast<Word>(end->integer(frame));
    const auto given = step ? static_cast<Word>(step->integer(frame)) : Word{1};
    // A step from DownTo, or a negative one, counts down.
    const bool isNegative = given < Word{0};
    const auto by = isNegative ? 0 - static_cast<std::uint64_t>(given) : static_cast<std::uint64_t>(given);
    return isNegative != down ? count<true>(frame, counter, last, by, body)
                              : count<false>(frame, counter, last, by, body);
  });
}

template <typename Counter>
Stmt integerLoop(Position position, Type type, Counter counter, Expr from, Expr end, Expr step, bool down,
                 Block body) {
  return type.kind == Kind::UInt64
             ? integerLoop<std::uint64_t>(position, std::move(counter), std::move(from), std::move(end),
                                          std::move(step), down, std::move(body))
             : integerLoop<std::int64_t>(position, std::move(counter), std::move(from), std::move(end),
                                         std::move(step), down, std::move(body));
}

Stmt realLoop(Position position, std::unique_ptr<Place> place, Expr from, Expr end, Expr step, bool down,
              Block body) {
  return statement(position, [place = std::move(place), from = std::move(from), end = std::move(end),
                              step = std::move(step), down, body = std::move(body)](Frame& frame) {
    place->put(frame, Slot{.number = from->real(frame)});
    const double last = end->real(frame);
    double by = step ? step->real(frame) : 1;
    if (down) by = -by;
    while (by < 0 ? place->real(frame) >= last : place->real(frame) <= last) {
      const Flow flow = body.run(frame);
      if (!goesOn(flow, Flow::continueFor)) return afterLoop(flow, Flow::exitFor);
      place->put(frame, Slot{.number = place->real(frame) + by});
    }
    return Flow::next;
  });
}

}  // namespace

Stmt countingLoop(Position position, std::unique_ptr<Place> place, Expr from, Expr end, Expr step, bool down,
                  Block body) {
  const Type type = place->type;
  if (type.kind == Kind::Double) {
    return realLoop(position, std::move(place), std::move(from), std::move(end), std::move(step), down,
                    std::move(body));
  }
  if (place->variable) {
    return integerLoop(position, type, *place->variable, std::move(from), std::move(end), std::move(step),
                       down, std::move(body));
  }
  return integerLoop(position, type, PlaceCounter{std::move(place)}, std::move(from), std::move(end),
                     std::move(step), down, std::move(body));
}

Stmt elementLoop(Position position, Expr array, std::unique_ptr<Place> current, Stmt assign, Block body) {
  return statement(position, [array = std::move(array), current = std::move(current),
                              assign = std::move(assign), body = std::move(body)](Frame& frame) {
    const Ref<Heap> held = array->reference(frame);
    auto* elements = static_cast<Array*>(held.get());
    for (std::int64_t i = 0; elements && i < elements->count(); ++i) {
      current->put(frame, elements->get(i));
      assign->run(frame);
      const Flow flow = body.run(frame);
      if (!goesOn(flow, Flow::continueFor)) return afterLoop(flow, Flow::exitFor);
    }
    return Flow::next;
  });
}

Stmt testedLoop(Position position, TestedLoop kind, LoopTest before, LoopTest after, Block body) {
  const bool isWhile = kind == TestedLoop::whileLoop;
  const auto holds = [](const LoopTest& test, Frame& frame) {
    return !test.value || (test.value->integer(frame) != 0) != test.until;
  };
  return statement(position, [before = std::move(before), after = std::move(after), body = std::move(body),
                              holds, exits = isWhile ? Flow::exitWhile : Flow::exitDo,
                              continues = isWhile ? Flow::continueWhile : Flow::continueDo](Frame& frame) {
    while (holds(before, frame)) {
      const Flow flow = body.run(frame);
      if (!goesOn(flow, continues)) return afterLoop(flow, exits);
      if (!holds(after, frame)) break;
    }
    return Flow::next;
  });
}

}  // namespace host
