// Reads answers, counts what is alive, and lets things fail.
#include "validation/exercise.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <exception>

#include "runtime/array.h"
#include "runtime/exception.h"
#include "runtime/name.h"
#include "runtime/text.h"
#include "runtime/variant.h"
#include "runtime/wording.h"
#include "validation/isolation.h"
#include "validation/watch.h"

namespace host {

namespace {

std::string number(double value) {
  if (std::isnan(value)) return "NaN";
  return std::to_string(std::bit_cast<std::uint64_t>(value));
}

[[noreturn]] void wrongResult(const Heap& found, Type declared) {
  throw Failure{"result", "it gives a thing of the class " + found.objectClass->name +
                              ", and its declaration says " + nameOf(declared)};
}

// A reference that was handed over is to something alive, and of the declared type.
void checkResult(const Heap* thing, Type declared) {
  if (!thing) return;
  if (!isAlive(*thing) || (thing->references <= 0 && destroysAnything())) {
    throw Failure{"over-release", "it gives a thing that is gone: " + thing->objectClass->name};
  }
  const Class* found = thing->objectClass;
  const bool isArray = found == hostClasses().array, isText = found == hostClasses().text;
  bool fits = !isText;
  if (declared.array) {
    fits = isArray;
  } else if (declared.kind == Kind::String) {
    fits = isText;
  } else if (declared.kind == Kind::Object) {
    fits = !isText && !isArray && (!declared.objectClass || found->isA(*declared.objectClass));
  }
  if (!fits) wrongResult(*thing, declared);
}

std::string describe(Slot slot, Type type, int depth);

// By its properties that are plain numbers; those that others might fail at are left out.
std::string describeObject(const Heap& thing, int depth) {
  const Class& its = *thing.objectClass;
  std::string text = its.name;
  if (its.isA(*hostClasses().exception)) return text + ": " + messageOf(static_cast<const Object&>(thing));
  if (!its.fromLibrary || depth > 1) return text;
  for (const Property& each : its.properties) {
    if (each.field || each.type.isReference() || each.type.kind == Kind::Pointer) continue;
    notePreparation("while " + its.name + "." + each.name + " is read, to see what it holds");
    const Slot arguments[] = {{.heap = const_cast<Heap*>(&thing)}, {.integer = each.parameter}};
    const Slot value = each.getter.enter(arguments);
    const Ref<Object> raised = takePending();
    text += " " + each.name + "=" + (raised ? raised->objectClass->name : describe(value, each.type, depth));
  }
  return text;
}

std::string describe(Slot slot, Type type, int depth) {
  if (type.array) {
    const auto* array = static_cast<const Array*>(slot.heap);
    if (!array) return "nil";
    std::string text = "(" + std::to_string(array->count());
    for (std::int64_t i = 0; i < array->count() && i < 50; ++i) {
      text += "," + describe(array->elements.load()[i], array->elementType, depth + 1);
    }
    return text + ")";
  }
  switch (type.kind) {
    case Kind::None:
      return "";
    case Kind::Double:
      return number(slot.number);
    case Kind::Single:
      return number(slot.single);
    case Kind::Pointer:
      return slot.pointer ? "somewhere" : "nil";
    case Kind::String: {
      const auto* text = static_cast<const Text*>(slot.heap);
      return text ? "\"" + std::string(bytesOf(text)) + "\"" + std::to_string(text->encoding) : "nil";
    }
    case Kind::Variant: {
      if (!slot.heap) return "nil";
      const Type inside = typeIn(slot.heap);
      if (inside.array) return describe(slot, inside, depth + 1);
      return inside.kind == Kind::Object ? describeObject(*slot.heap, depth) : display(slot, type);
    }
    case Kind::Object:
      return slot.heap ? describeObject(*slot.heap, depth) : "nil";
    default:
      return std::to_string(slot.integer);
  }
}

void refuseViolation() {
  if (const std::string found = watch().violation(); !found.empty()) throw Failure{"over-release", found};
}

// Long ones are the same if their beginnings, lengths and hashes are.
std::string abridged(const std::string& text) {
  constexpr std::size_t mostShown = 120;
  if (text.size() <= 2 * mostShown) return text;
  return text.substr(0, mostShown) + "... (" + counted(text.size(), "byte") + ", hash " +
         std::to_string(NameHash()(text)) + ")";
}

// Taken off on every way out.
class Armed {
 public:
  explicit Armed(Faults& faults) : faults_(faults) { faults_.source->arm(faults_.n, faults_.onwards); }
  ~Armed() { faults_.events += faults_.source->disarm(); }
  Armed(const Armed&) = delete;
  Armed& operator=(const Armed&) = delete;

 private:
  Faults& faults_;
};

// Whatever leaves the function, other than by returning, is one fault.
template <typename Body>
auto catching(Body body) {
  try {
    return body();
  } catch (const std::exception& exception) {
    throw Failure{"throw", std::string("it lets a C++ exception out: ") + exception.what()};
  } catch (const Failure&) {
    throw;
  } catch (const HostException& exception) {
    throw Failure{"throw",
                  "it lets an exception of the host's out: " + exception.exception->objectClass->name};
  } catch (...) {
    throw Failure{"throw", "it lets a C++ exception out"};
  }
}

}  // namespace

Census takeCensus() {
  Census census;
  forEachLive([&](const Heap& thing) {
    auto& [count, references] = census[thing.objectClass->name];
    ++count;
    references += thing.references.load();
  });
  return census;
}

void compareCensuses(const std::vector<Census>& censuses) {
  for (const auto& [name, last] : censuses.back()) {
    bool countGrows = true, referencesGrow = true;
    std::pair<std::int64_t, std::int64_t> before = {-1, -1};
    for (const Census& each : censuses) {
      const auto found = each.find(name);
      const auto now = found == each.end() ? std::pair<std::int64_t, std::int64_t>() : found->second;
      countGrows = countGrows && now.first > before.first;
      referencesGrow = referencesGrow && now.second > before.second;
      before = now;
    }
    if (countGrows) {
      throw Failure{"leak",
                    "what it is called with or gives stays alive: more of " + name + " after each round"};
    }
    if (referencesGrow) {
      throw Failure{"leak", "it keeps references: more to " + name + " after each round"};
    }
  }
}

std::string callWith(const Member& member, const Call& call, Given given, Faults* faults) {
  std::string answer;
  if (!member.isInstance) {
    const Slot result = catching([&] {
      if (!faults) return call.enter(given.slots);
      const Armed armed(*faults);
      return call.enter(given.slots);
    });
    const Ref<Object> raised = takePending();
    if (member.result.isReference()) checkResult(result.heap, member.result);
    answer = raised ? "raises " + describeObject(*raised, 0) : describe(result, member.result, 0);
    answer += describeVariables(given);
    if (member.result.isReference()) release(result.heap);
    if (given.self && !faults) answer += " of " + describeObject(*given.self, 0);
  }
  given.drop();
  refuseViolation();
  return abridged(answer);
}

namespace {

std::string describe(const HostException& exception) {
  return "raises " + describeObject(*exception.exception, 0);
}

// An instance that is made and goes again, with no part of it prepared.
std::string makeInstance(const Class& objectClass, Faults* faults) {
  std::string answer;
  catching([&] {
    try {
      Ref<Object> made;
      if (faults) {
        const Armed armed(*faults);
        made = makeObject(objectClass);
      } else {
        made = makeObject(objectClass);
        answer = describeObject(*made, 0);
      }
    } catch (const HostException& exception) {
      answer = describe(exception);
    }
    return 0;
  });
  refuseViolation();
  return answer;
}

}  // namespace

std::string Exercise::atEdges(const EdgeSet& edges, Faults* faults, bool lastFirst) const {
  if (member_.isInstance) {
    noteStep(member_.name + " while one is made and goes again");
    return makeInstance(*member_.self, faults);
  }
  Given given;
  try {
    given = values_.atEdges(member_, edges, lastFirst);
  } catch (const HostException& exception) {
    return "cannot be called: an initializer " + describe(exception);
  }
  std::string step = member_.name + " with " + given.text;
  if (faults && faults->n != 0) {
    step += std::string(" where ") + faults->source->name() + ", time " + std::to_string(faults->n) +
            (faults->onwards ? " and from then on" : "");
  }
  noteStep(step);
  return callWith(member_, member_.call, std::move(given), faults);
}

std::vector<std::string> Exercise::answers(const std::vector<EdgeSet>& sets, bool lastFirst) const {
  std::vector<std::string> all;
  all.reserve(sets.size());
  for (const EdgeSet& each : sets) all.push_back(atEdges(each, nullptr, lastFirst));
  return all;
}

std::uint64_t Exercise::underFaults(FaultSource& source, const std::vector<EdgeSet>& sets,
                                    const std::vector<std::string>& expected) const {
  std::uint64_t failed = 0;
  const auto round = [&] {
    failed = 0;
    for (std::size_t i = 0; i < sets.size(); ++i) {
      const auto failing = [&](std::uint64_t n, bool onwards) {
        Faults faults{&source, n, onwards};
        atEdges(sets[i], &faults);
        // With what failed it may have taken another way, with fewer events than there were before.
        if (faults.events < n) return false;
        ++failed;
        const std::string answer = atEdges(sets[i]);
        if (!expected.empty() && answer != expected[i]) {
          throw Failure{"changed", "it answers otherwise after a call in which " +
                                       std::string(source.name()) + ": " + answer + " instead of " +
                                       expected[i]};
        }
        return true;
      };
      // A function may take another way the second time, so that the first event is tried before it is known
      // that there is one.
      for (const bool onwards : {false, true}) {
        for (std::uint64_t n = 1; failing(n, onwards); ++n) {
        }
      }
    }
  };
  untilNothingStays(round);
  return failed;
}

}  // namespace host
