// The edges of each type, and how objects come to their values.
#include "validation/arguments.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>
#include <utility>

#include "runtime/array.h"
#include "runtime/exception.h"
#include "runtime/text.h"
#include "runtime/variant.h"
#include "validation/isolation.h"

namespace host {

namespace {

constexpr std::size_t blockSize = 8192;  // behind a Ptr
constexpr int deepest = 2;

constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t integers[] = {2,          0,
                                     1,          -1,
                                     3,          7,
                                     10,         63,
                                     64,         65,
                                     127,        128,
                                     255,        256,
                                     32767,      -32768,
                                     10000,      -10001,
                                     2147483647, -2147483648,
                                     4294967295, std::int64_t{1} << 53,
                                     most,       least,
                                     least + 1};
// A number beside a Ptr may say how much lies there.
constexpr std::int64_t sizes[] = {8, 0, 1, 2, 3, 4, 7, 16, 17, 32, 4096, -1, least};

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double numbers[] = {0.75,
                              0.0,
                              -0.0,
                              1,
                              -1,
                              2,
                              0.5,
                              -2.5,
                              170,
                              5e-324,
                              1e-310,
                              std::numeric_limits<double>::min(),
                              1e300,
                              -1e300,
                              std::numeric_limits<double>::max(),
                              9007199254740992.0,
                              9223372036854775808.0,
                              18446744073709551616.0,
                              infinity,
                              -infinity,
                              std::numeric_limits<double>::quiet_NaN()};

struct Bytes {
  std::string bytes;
  std::uint32_t encoding;
};
const std::vector<Bytes>& texts() {
  static const std::vector<Bytes> all = {
      {"12", encoding::utf8},
      {"", encoding::utf8},  // nil
      {"", encoding::ascii},
      {"0", encoding::utf8},
      {"-1", encoding::ascii},
      {"-170141183460469231731687303715884105728", encoding::utf8},
      {"340282366920938463463374607431768211456", encoding::utf8},
      {"12.3456", encoding::utf8},
      {"-922337203685477.5808", encoding::utf8},
      {"4111 1111 1111 1111", encoding::utf8},
      {"no number", encoding::utf8},
      {"\xC3\xA4\xE2\x82\xAC\xF0\x9D\x84\x9E", encoding::utf8},
      {"\xFF\xFE\x80", encoding::utf8},
      {"7\xE4", encoding::isoLatin1},
      {"7\xE4", encoding::windowsLatin1},
      {"7\xE4", encoding::macRoman},
      {"7\xE4", encoding::none},
      {"7", encoding::none},
      {"7\xE4", encoding::ascii},
      {std::string("7\0\0008\0", 4), encoding::utf16},
      {std::string("\0007\0008", 4), encoding::utf16BigEndian},
      {std::string("7\0\0\0", 4), encoding::utf32},
      {"7", encoding::utf16LittleEndian},  // half a character
      {"7", 0x12345678},
      {std::string("1\0002", 3), encoding::utf8},
      {std::string("\x40\x0E\xAC\x44\0\0\0\0\0\0", 10), encoding::none},
      {std::string(300, '9'), encoding::utf8},
      {std::string(5000, ' '), encoding::utf8},
  };
  return all;
}

Slot narrowed(std::int64_t value, Kind kind) {
  Slot slot = {};
  switch (kind) {
    case Kind::Boolean:
      slot.integer = value & 1;
      break;
    case Kind::Int8:
      slot.integer = static_cast<std::int8_t>(value);
      break;
    case Kind::Int16:
      slot.integer = static_cast<std::int16_t>(value);
      break;
    case Kind::Int32:
      slot.integer = static_cast<std::int32_t>(value);
      break;
    case Kind::UInt8:
      slot.integer = static_cast<std::uint8_t>(value);
      break;
    case Kind::UInt16:
      slot.integer = static_cast<std::uint16_t>(value);
      break;
    case Kind::UInt32:
      slot.integer = static_cast<std::uint32_t>(value);
      break;
    default:
      slot.integer = value;
      break;
  }
  return slot;
}

// Of numbers and Booleans.
std::size_t plainEdgeCount(Type type, bool besidePointer) {
  if (type.isFloating()) return std::size(numbers);
  if (type.kind == Kind::Boolean) return 2;
  return besidePointer ? std::size(sizes) : std::size(integers);
}
Slot plainEdge(Type type, std::size_t edge, bool besidePointer) {
  Slot slot = {};
  if (type.kind == Kind::Double) {
    slot.number = numbers[edge];
  } else if (type.kind == Kind::Single) {
    const double number = numbers[edge];
    const bool isTooLarge = std::isfinite(number) && std::abs(number) > std::numeric_limits<float>::max();
    slot.single = isTooLarge ? std::numeric_limits<float>::max() : static_cast<float>(number);
  } else if (type.kind == Kind::Boolean) {
    slot.integer = edge == 0;
  } else {
    slot = narrowed(besidePointer ? sizes[edge] : integers[edge], type.kind);
  }
  return slot;
}
Slot plainRandom(Type type, bool besidePointer, Random& random) {
  if (random.below(3) == 0)
    return plainEdge(type, random.below(plainEdgeCount(type, besidePointer)), besidePointer);
  Slot slot = {};
  if (type.isFloating()) {
    const double small = (static_cast<double>(random.below(2'000'001)) - 1'000'000) / 1000;
    const double number = random.below(2) == 0 ? small : std::bit_cast<double>(random.next());
    if (type.kind == Kind::Double) {
      slot.number = number;
    } else {
      slot.single = std::bit_cast<float>(static_cast<std::uint32_t>(random.next()));
      if (random.below(2) == 0) slot.single = static_cast<float>(small);
    }
    return slot;
  }
  if (besidePointer) return narrowed(static_cast<std::int64_t>(random.below(blockSize / 2)), type.kind);
  return narrowed(static_cast<std::int64_t>(random.next() >> random.below(64)), type.kind);
}

bool isPlain(Type type) {
  return !type.isReference() && type.kind != Kind::None && type.kind != Kind::Pointer;
}

std::string shown(Slot slot, const Passing& passing) {
  if (passing.byRef) return "byref";
  const Type type = passing.type;
  if (type.kind == Kind::Pointer && !type.array) return slot.pointer ? "Ptr" : "nil";
  if (!type.isReference()) return display(slot, type);
  if (!slot.heap) return "nil";
  if (type.array) return display(slot, type);
  if (type.kind != Kind::String) return slot.heap->objectClass->name;
  const auto* text = static_cast<const Text*>(slot.heap);
  std::string all = "\"";
  for (const char c : bytesOf(text).substr(0, 24)) all += c >= ' ' && c < '\x7F' ? c : '?';
  return all + (text->length > 24 ? "...\"" : "\"");
}

bool hasPointer(const Member& member) {
  return std::any_of(member.parameters.begin(), member.parameters.end(),
                     [](const Passing& each) { return !each.type.array && each.type.kind == Kind::Pointer; });
}

bool isSimple(const Member& member) {
  return std::all_of(member.parameters.begin(), member.parameters.end(),
                     [](const Passing& each) { return !each.byRef && isPlain(each.type); });
}

}  // namespace

std::uint64_t Random::next() {
  std::uint64_t z = state_ += 0x9E3779B97F4A7C15;
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
  return z ^ (z >> 31);
}

Slot Given::own(Ref<Heap> thing) {
  things_.push_back(thing.get());
  return Slot{.heap = thing.detach()};
}

void Given::drop() {
  for (const auto& variable : variables_) {
    if (variable->type.isReference()) things_.push_back(variable->slot.heap);
  }
  variables_.clear();
  while (!things_.empty()) {
    Heap* const each = things_.back();
    things_.pop_back();
    if (!each) continue;
    if (!isAlive(*each) || (each->references <= 0 && destroysAnything())) {
      throw Failure{"over-release", "it drops a reference that is not its own: to " +
                                        each->objectClass->name + " among its arguments"};
    }
    release(each);
  }
  blocks_.clear();
}

Given& Given::operator=(Given&& other) noexcept {
  std::swap(slots, other.slots);
  std::swap(text, other.text);
  std::swap(self, other.self);
  std::swap(things_, other.things_);
  std::swap(blocks_, other.blocks_);
  std::swap(variables_, other.variables_);
  return *this;
}

Given::~Given() {
  for (Heap* each : things_) release(each);
}

std::string describeVariables(const Given& given) {
  std::string text;
  for (const auto& variable : given.variables_) {
    if (variable->type.isReference() || variable->type.kind == Kind::Pointer) continue;
    std::uint64_t word = 0;
    std::memcpy(&word, &variable->slot, sizeOf(variable->type));
    if (variable->type.isFloating() &&
        std::isnan(variable->type.kind == Kind::Double ? variable->slot.number : variable->slot.single)) {
      word = 0x7FF8000000000000;
    }
    text += " byref " + std::to_string(word);
  }
  return text;
}

ValueSource::ValueSource(const std::vector<Member>& members, const std::set<std::string>& usable) {
  for (const Member& member : members) {
    if (!member.self || !usable.contains(member.name)) continue;
    if (member.isInstance) {
      ownClasses_.push_back(member.self);
      recipes_[member.self];
      simpleRecipes_[member.self];
    } else {
      changing_[member.self].push_back(&member);
    }
  }
  constexpr std::size_t edgesEach = 3;
  for (const Class* each : ownClasses_) {
    std::vector<Recipe>& all = recipes_[each];
    std::vector<Recipe>& simple = simpleRecipes_[each];
    Recipe fed;
    for (const Member* member : changing_[each]) {
      if (hasPointer(*member)) continue;
      if (member->feeds && fed.size() < 12) fed.push_back({member, 0});
      if (!member->makes) continue;
      for (std::size_t edge = 0; edge < edgesEach; ++edge) {
        all.push_back({{member, edge * 3}});
        if (isSimple(*member)) simple.push_back({{member, edge * 3}});
      }
    }
    if (!fed.empty()) all.push_back(fed);
    all.push_back({});
    simple.push_back({});
  }
}

const std::vector<ValueSource::Recipe>& ValueSource::recipesOf(const Class& objectClass, int depth) const {
  return (depth == 0 ? recipes_ : simpleRecipes_).at(&objectClass);
}

std::size_t ValueSource::edgeCount(Type type, int depth, bool besidePointer) const {
  if (type.array) return 6;
  switch (type.kind) {
    case Kind::String:
      return texts().size();
    case Kind::Variant:
      return 16 + (depth == 0 ? ownClasses_.size() : 0);
    case Kind::Object:
      if (!type.objectClass) return 2 + (depth == 0 ? ownClasses_.size() : 0);
      return recipes_.contains(type.objectClass) ? 1 + recipesOf(*type.objectClass, depth).size() : 2;
    case Kind::Pointer:
      return 4;
    default:
      return plainEdgeCount(type, besidePointer);
  }
}

// A step's arguments are made, handed over and dropped; what it raises or gives is of no interest.
void ValueSource::apply(const Member& member, Heap* self, const Choice& choice) const {
  Given given;
  given.slots.push_back({.heap = self});
  if (member.property) given.slots.push_back({.integer = member.property->parameter});
  const Choice inner{choice.edge, choice.random, choice.depth + 1, hasPointer(member)};
  std::string text;
  for (const Passing& each : member.parameters) {
    given.slots.push_back(argument(each, inner, given));
    text += (text.empty() ? "" : ", ") + shown(given.slots.back(), each);
  }
  notePreparation("while an object is prepared by " + member.name + " with (" + text + ")");
  const Slot result = member.call.enter(given.slots);
  takePending();
  if (member.result.isReference()) release(result.heap);
  given.drop();
}

Ref<Heap> ValueSource::object(const Class& objectClass, const Recipe& recipe, int depth) const {
  notePreparation("while an instance of " + objectClass.name + " is made");
  Ref<Object> made = makeObject(objectClass);
  for (const Step& step : recipe) apply(*step.member, made.get(), {step.edge, nullptr, depth, false});
  return made;
}

Ref<Heap> ValueSource::anyObject(const Class* objectClass, const Choice& choice) const {
  if (choice.edge == 1) return nullptr;
  if (objectClass && !objectClass->defined) return nullptr;
  if (!objectClass) {
    if (choice.edge == 0 || choice.depth > 0) return makeObject(*hostClasses().exception);
    const Class& own = *ownClasses_[choice.edge - 2];
    return object(own, recipesOf(own, choice.depth)[0], choice.depth);
  }
  if (!recipes_.contains(objectClass)) {
    return objectClass->fromLibrary ? nullptr : Ref<Heap>(makeObject(*objectClass));
  }
  const std::vector<Recipe>& all = recipesOf(*objectClass, choice.depth);
  Ref<Heap> made = object(*objectClass, all[choice.edge == 0 ? 0 : choice.edge - 1], choice.depth);
  if (choice.random && choice.depth == 0) {
    const auto& changing = changing_.at(objectClass);
    for (std::size_t i = choice.random->below(4); i > 0 && !changing.empty(); --i) {
      apply(*changing[choice.random->below(changing.size())], made.get(), choice);
    }
  }
  return made;
}

Ref<Heap> ValueSource::variant(const Choice& choice, Given& given) const {
  const auto boxed = [&](Kind kind, Slot slot) { return box(slot, {kind}); };
  const auto plain = [&](Kind kind, std::size_t edge) {
    Slot slot = choice.random ? plainRandom({kind}, false, *choice.random) : plainEdge({kind}, edge, false);
    return boxed(kind, slot);
  };
  switch (choice.edge) {
    case 0:
      return plain(Kind::Int64, 0);
    case 1:
      return nullptr;
    case 2:
      return plain(Kind::Int32, 3);
    case 3:
      return plain(Kind::UInt32, 20);
    case 4:
      return plain(Kind::UInt64, 3);
    case 5:
      return plain(Kind::Double, 0);
    case 6:
      return plain(Kind::Double, 20);
    case 7:
      return plain(Kind::Single, 6);
    case 8:
      return plain(Kind::Currency, 16);
    case 9:
      return plain(Kind::Boolean, 0);
    case 10:
      return plain(Kind::Int64, 23);
    case 11:
    case 12: {
      const Ref<Text> text = makeText(choice.edge == 11 ? "12" : "");
      return boxed(Kind::String, {.heap = text.get()});
    }
    case 13:
      return makeObject(*hostClasses().date);
    case 14:
      return makeObject(*hostClasses().exception);
    case 15:
      return array({Kind::Double, true}, {0, choice.random, choice.depth + 1, false}, given);
    default: {
      const Class& own = *ownClasses_[choice.edge - 16];
      return object(own, recipesOf(own, 1)[0], 1);
    }
  }
}

Ref<Heap> ValueSource::array(Type type, const Choice& choice, Given& given) const {
  constexpr std::int64_t counts[] = {6, -1, 0, 1, 3, 40};
  const std::int64_t count = counts[choice.edge];
  if (count < 0) return nullptr;
  const Type element = type.element();
  Ref<Array> made = makeArray(element, count);
  for (std::int64_t i = 0; i < count; ++i) {
    Slot slot = {};
    // In order, as the points of a curve are, but for the short one, which has whatever there is.
    if (isPlain(element) && counts[choice.edge] != 3) {
      if (element.kind == Kind::Double) {
        slot.number = static_cast<double>(i);
      } else if (element.kind == Kind::Single) {
        slot.single = static_cast<float>(i);
      } else {
        slot = narrowed(i, element.kind);
      }
    } else {
      const std::size_t edges = edgeCount(element, choice.depth + 1, false);
      const std::size_t edge =
          choice.random ? choice.random->below(edges) : static_cast<std::size_t>(i) * 5 % edges;
      slot = value(element, {edge, choice.random, choice.depth + 1, false}, given);
    }
    made->set(i, slot);
  }
  return made;
}

Slot ValueSource::value(Type type, const Choice& choice, Given& given) const {
  if (choice.depth > deepest) return Slot{};
  if (type.array) return given.own(array(type, choice, given));
  switch (type.kind) {
    case Kind::String: {
      const Bytes& chosen = texts()[choice.edge];
      std::string bytes = chosen.bytes;
      if (choice.random && !bytes.empty() && choice.random->below(2) == 0) {
        for (std::size_t i = choice.random->below(4); i > 0; --i) {
          bytes[choice.random->below(bytes.size())] = static_cast<char>(choice.random->next());
        }
      }
      return given.own(makeText(bytes, chosen.encoding));
    }
    case Kind::Variant:
      return given.own(variant(choice, given));
    case Kind::Object:
      return given.own(anyObject(type.objectClass, choice));
    case Kind::Pointer: {
      auto& block = given.blocks_.emplace_back(new std::byte[blockSize]);
      constexpr std::byte fillings[] = {std::byte{1}, std::byte{0}, std::byte{0xFF}, std::byte{0x80}};
      std::memset(block.get(), static_cast<int>(fillings[choice.edge]), blockSize);
      return Slot{.pointer = block.get()};
    }
    default:
      return choice.random ? plainRandom(type, choice.besidePointer, *choice.random)
                           : plainEdge(type, choice.edge, choice.besidePointer);
  }
}

// Chosen within the edges that the type has.
Slot ValueSource::argument(const Passing& passing, const Choice& choice, Given& given) const {
  Choice bounded = choice;
  const std::size_t count = edgeCount(passing.type, choice.depth, choice.besidePointer);
  bounded.edge = choice.random ? choice.random->below(count) : choice.edge % count;
  if (!passing.byRef) return value(passing.type, bounded, given);
  // The variable has a reference of its own, which the function may exchange for another.
  const Slot held = value(passing.type, bounded, given);
  if (passing.type.isReference()) retain(held.heap);
  given.variables_.push_back(std::make_unique<Given::Variable>(Given::Variable{passing.type, held}));
  return Slot{.pointer = &given.variables_.back()->slot};
}

std::vector<EdgeSet> ValueSource::commonEdges(const Member& member) const {
  if (member.isInstance) return {{}};
  const bool besidePointer = hasPointer(member);
  std::vector<std::size_t> counts;
  if (member.self) counts.push_back(recipesOf(*member.self, 0).size());
  for (const Passing& each : member.parameters) counts.push_back(edgeCount(each.type, 0, besidePointer));
  const std::size_t longest = counts.empty() ? 1 : *std::max_element(counts.begin(), counts.end());
  std::vector<EdgeSet> all;
  for (std::size_t edge = 0; edge < longest; ++edge) {
    EdgeSet& set = all.emplace_back();
    for (const std::size_t count : counts) set.push_back(edge % count);
  }
  return all;
}

std::vector<EdgeSet> ValueSource::allEdges(const Member& member) const {
  std::vector<EdgeSet> all = commonEdges(member);
  const std::size_t width = all[0].size();
  if (width < 2) return all;
  const bool besidePointer = hasPointer(member);
  for (std::size_t i = 0; i < width; ++i) {
    const bool isSelf = member.self && i == 0;
    const std::size_t count =
        isSelf ? recipesOf(*member.self, 0).size()
               : edgeCount(member.parameters[i - (member.self ? 1 : 0)].type, 0, besidePointer);
    for (std::size_t edge = 1; edge < count; ++edge) {
      EdgeSet set(width, 0);
      set[i] = edge;
      all.push_back(set);
    }
  }
  return all;
}

namespace {
// An object's data and a property's number stand before what is chosen.
std::size_t leading(const Member& member) { return member.self ? member.property ? 2 : 1 : 0; }
}  // namespace

Given ValueSource::atEdges(const Member& member, const EdgeSet& edges, bool lastFirst) const {
  Given given;
  const std::size_t first = leading(member);
  const std::size_t width = edges.size();
  given.slots.resize(first + member.parameters.size());
  const bool besidePointer = hasPointer(member);
  for (std::size_t step = 0; step < width; ++step) {
    const std::size_t i = lastFirst ? width - 1 - step : step;
    if (member.self && i == 0) {
      Slot self = given.own(object(*member.self, recipesOf(*member.self, 0)[edges[0]], 0));
      given.self = static_cast<Object*>(self.heap);
      given.slots[0] = self;
    } else {
      const std::size_t parameter = i - (member.self ? 1 : 0);
      given.slots[first + parameter] =
          argument(member.parameters[parameter], {edges[i], nullptr, 0, besidePointer}, given);
    }
  }
  if (first == 2) given.slots[1].integer = member.property->parameter;
  for (std::size_t i = 0; i < member.parameters.size(); ++i) {
    given.text += (i > 0 ? ", " : "") + shown(given.slots[first + i], member.parameters[i]);
  }
  given.text = "(" + given.text + ")";
  return given;
}

Given ValueSource::atRandom(const Member& member, Random& random) const {
  Given given;
  if (member.self) {
    const std::size_t count = recipesOf(*member.self, 0).size();
    const std::size_t recipe = random.below(count);
    const Slot self = given.own(anyObject(member.self, {recipe == 0 ? 0 : recipe + 1, &random, 0, false}));
    given.self = static_cast<Object*>(self.heap);
    given.slots.push_back(self);
    if (member.property) given.slots.push_back({.integer = member.property->parameter});
  }
  const bool besidePointer = hasPointer(member);
  for (const Passing& each : member.parameters) {
    given.slots.push_back(argument(each, {0, &random, 0, besidePointer}, given));
    given.text += (given.text.empty() ? "" : ", ") + shown(given.slots.back(), each);
  }
  given.text = "(" + given.text + ")";
  return given;
}

}  // namespace host
