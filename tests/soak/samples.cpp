#include "samples.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <optional>

#include "runtime/array.h"
#include "runtime/exception.h"
#include "runtime/object.h"
#include "runtime/registry.h"
#include "runtime/text.h"
#include "runtime/variant.h"

namespace soak {

using namespace host;

namespace {

std::int64_t randomInteger(Random& random) {
  const std::uint64_t word = random();
  switch (random() % 4) {
    case 0:
      return static_cast<std::int64_t>(word % 40) - 8;
    case 1:  // beside a power of two
      return static_cast<std::int64_t>((std::uint64_t{1} << (word & 63)) + (word >> 8) % 3 - 1);
    case 2:
      return static_cast<std::int64_t>(word >> (word & 63));
    default:
      return static_cast<std::int64_t>(word);
  }
}

double randomDouble(Random& random) {
  constexpr double edges[] = {0.0, -0.0, 1.0, -1.0, 0.5, 1e308, 5e-324};
  switch (random() % 4) {
    case 0:
      return edges[random() % std::size(edges)];
    case 1:
      return std::bit_cast<double>(random());
    default:
      return static_cast<double>(static_cast<std::int64_t>(random()) >> (random() % 60)) / 256;
  }
}

std::string randomText(Random& random) {
  switch (random() % 4) {
    case 0:
      return std::to_string(randomInteger(random));
    case 1:
      return std::to_string(randomInteger(random)) + std::to_string(random());
    case 2:
      return std::to_string(randomDouble(random));
    default: {
      std::string text(random() % 20, ' ');
      for (char& each : text) each = static_cast<char>(' ' + random() % 95);
      return text;
    }
  }
}

// A type's values as integers of its width.
std::int64_t narrowed(std::int64_t value, Type type) {
  const std::size_t unread = 64 - 8 * sizeOf(type);
  const std::uint64_t shifted = static_cast<std::uint64_t>(value) << unread;
  return type.isUnsigned() ? static_cast<std::int64_t>(shifted >> unread)
                           : static_cast<std::int64_t>(shifted) >> unread;
}

// What a call is given, but for the object that it is called on. Many threads may use it at once: nothing in
// it is changed by those that take it.
struct Arguments {
  std::vector<Slot> slots;
  std::vector<Ref<Heap>> things;
  std::vector<Passing> passing;

  Arguments(const Member& member, Random& random, int depth) : passing(member.parameters) {
    for (const Passing& each : passing)
      slots.push_back(member.isHidden ? slotOf(std::int64_t{0}) : value(each.type, random, depth));
  }

  Slot own(Ref<Heap> thing) {
    things.push_back(std::move(thing));
    return slotOf(things.back().get());
  }

  Slot value(Type type, Random& random, int depth) {
    if (type.array) {
      const auto count = static_cast<std::int64_t>(random() % 8);
      Ref<Array> array = makeArray(type.element(), count);
      for (std::int64_t i = 0; i < count; ++i) array->set(i, value(type.element(), random, depth));
      return own(std::move(array));
    }
    switch (type.kind) {
      case Kind::Boolean:
        return slotOf(static_cast<std::int64_t>(random() % 2));
      case Kind::Double:
        return {.number = randomDouble(random)};
      case Kind::Single: {
        Slot slot = slotOf(std::int64_t{0});
        slot.single = static_cast<float>(randomDouble(random));
        return slot;
      }
      case Kind::Pointer: {  // as much as may be read
        static constinit std::array<std::uint64_t, 8> memory = {~std::uint64_t{0}, 1, 2, 3, 4, 5, 6, 7};
        return {.pointer = memory.data()};
      }
      case Kind::String:
        return own(makeText(randomText(random)));
      case Kind::Variant:
        return variant(random, depth);
      case Kind::Object:
        return random() % 8 == 0 ? slotOf(nullptr) : own(object(*type.objectClass, random, depth));
      default:
        return slotOf(narrowed(randomInteger(random), type));
    }
  }

  Slot variant(Random& random, int depth) {
    constexpr Kind kinds[] = {Kind::Boolean, Kind::Int64, Kind::UInt64, Kind::Double, Kind::String};
    const std::size_t choice = random() % (std::size(kinds) + 2);
    if (choice == std::size(kinds)) return slotOf(nullptr);
    if (choice > std::size(kinds)) {
      const Class* of = members()[random() % members().size()].of;
      return of && depth < 2 ? own(object(*of, random, depth + 1)) : slotOf(nullptr);
    }
    const Type type{kinds[choice]};
    return own(box(value(type, random, depth), type));
  }

  static Ref<Heap> object(const Class& of, Random& random, int depth);
};

// An object is what some calls have made of a new one.
struct History {
  const Class* of;
  std::vector<std::pair<const Member*, Arguments>> steps;

  History(const Class& made, Random& random, int depth) : of(&made) {
    std::vector<const Member*> changing;
    for (const Member& each : members()) {
      if (each.of == of && each.takesSelf && each.result.kind == Kind::None) changing.push_back(&each);
    }
    for (std::size_t i = depth < 2 && !changing.empty() ? 1 + random() % 3 : 0; i > 0; --i) {
      const Member& step = *changing[random() % changing.size()];
      steps.emplace_back(&step, Arguments(step, random, depth + 1));
    }
  }

  template <typename Calls>
  Ref<Heap> make(Calls call) const {
    Ref<Object> made = makeObject(*of);
    for (const auto& [step, arguments] : steps) {
      std::vector<Slot> slots = {slotOf(made.get())};
      slots.insert(slots.end(), arguments.slots.begin(), arguments.slots.end());
      try {
        call(*step, slots);
      } catch (const HostException&) {
      }
    }
    return made;
  }
};

Ref<Heap> Arguments::object(const Class& of, Random& random, int depth) {
  return History(of, random, depth).make([](const Member& step, std::span<const Slot> given) {
    (*step.call)(given);
  });
}

template <typename Value>
void append(std::string& text, const Value& value) {
  text.append(reinterpret_cast<const char*>(&value), sizeof value);
}

// An answer as bytes. Things of classes without values of their own stand for themselves: they are the same
// in every call.
void describe(std::string& answer, Slot value, Type type, Worker& worker);

void describeObject(std::string& answer, Heap& object, Worker& worker) {
  for (const Member& each : members()) {
    if (each.of != object.objectClass || !each.takesSelf || !each.isGetter) continue;
    if (each.result.isReference() || each.result.kind == Kind::Pointer) continue;
    append(answer, worker.call(each, {slotOf(&object), slotOf(std::int64_t{0})}).word);
  }
}

void describe(std::string& answer, Slot value, Type type, Worker& worker) {
  if (type.kind == Kind::Pointer) {
    answer += value.pointer ? "some" : "none";
  } else if (type.kind == Kind::Single) {
    append(answer, value.single);
  } else if (!type.isReference()) {
    append(answer, value.word);
  } else if (!value.heap) {
    answer += "nil";
  } else if (type.array) {
    const auto& array = static_cast<const Array&>(*value.heap);
    for (std::int64_t i = 0; i < array.count(); ++i) append(answer, array.elements.load()[i].word);
  } else if (type.kind == Kind::String) {
    answer += bytesOf(static_cast<const Text*>(value.heap));
  } else if (type.kind == Kind::Object) {
    describeObject(answer, *value.heap, worker);
  } else {
    append(answer, value.word);
  }
}

// Draws differ each time.
bool isDraw(const Member& member) { return member.name.starts_with("Random"); }

// Only read by its members that have a result: several threads may call those on one object.
bool isValue(const Class& of) { return of.name.ends_with("128QTX") || of.name == "SplineQTX"; }

}  // namespace

struct Samples::Sample {
  const Member& member;
  Arguments arguments;
  std::optional<History> history;
  Ref<Heap> shared;  // the object, where all threads may call on the same
  std::string expected;

  Sample(const Member& called, Random& random) : member(called), arguments(called, random, 0) {
    if (!member.takesSelf) return;
    history.emplace(*member.of, random, 0);
    if (isValue(*member.of) && member.result.kind != Kind::None && random() % 2 == 0) {
      shared = history->make([](const Member& step, std::span<const Slot> slots) { (*step.call)(slots); });
    }
  }

  std::string answer(Worker& worker) const {
    std::string answer;
    std::vector<Slot> slots;
    Ref<Heap> self = shared;
    if (history && !self) {
      self = history->make(
          [&](const Member& step, std::span<const Slot> arguments_) { worker.call(step, arguments_); });
    }
    if (self) slots.push_back(slotOf(self.get()));
    std::vector<std::uint64_t> variables(arguments.slots.size());
    for (std::size_t i = 0; i < arguments.slots.size(); ++i) {
      slots.push_back(arguments.slots[i]);
      if (!arguments.passing[i].byRef) continue;
      variables[i] = arguments.slots[i].word;
      slots.back().pointer = &variables[i];
    }
    try {
      const Slot result = worker.call(member, slots);
      const Ref<Heap> owned = Ref<>::adopt(member.result.isReference() ? result.heap : nullptr);
      if (member.result.kind != Kind::None && owned.get() != self.get())
        describe(answer, result, member.result, worker);
    } catch (const HostException& exception) {
      answer = exception.exception->objectClass->name + ": " + messageOf(*exception.exception);
    }
    for (std::size_t i = 0; i < variables.size(); ++i) {
      if (arguments.passing[i].byRef) append(answer, variables[i]);
    }
    if (self) describeObject(answer, *self, worker);
    return answer;
  }
};

Samples::Samples(Worker& alone) {
  for (const Member& each : members()) {
    for (int i = 0; i < 3; ++i) {
      auto& sample = *all_.emplace_back(std::make_unique<Sample>(each, alone.random));
      sample.expected = sample.answer(alone);
    }
  }
  for (std::size_t part = 0; part < parts; ++part) callPart(part, alone);
}
Samples::~Samples() = default;

void Samples::callPart(std::size_t part, Worker& worker) const {
  std::vector<std::size_t> order;
  for (std::size_t i = part % parts; i < all_.size(); i += parts) order.push_back(i);
  std::shuffle(order.begin(), order.end(), worker.random);
  for (const std::size_t each : order) {
    const Sample& sample = *all_[each];
    if (sample.answer(worker) != sample.expected && !isDraw(sample.member))
      throw Loss(sample.member.name + " gives another answer than alone");
  }
}

}  // namespace soak
