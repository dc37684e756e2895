// Values for calls: those at the edges of each type, and random ones.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "runtime/object.h"
#include "validation/members.h"

namespace host {

// splitmix64 (Steele, Lea and Flood, "Fast splittable pseudorandom number generators", 2014).
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}
  std::uint64_t next();
  std::size_t below(std::size_t count) { return static_cast<std::size_t>(next() % count); }

 private:
  std::uint64_t state_;
};

// What a call is found wrong with.
struct Failure {
  std::string fault, message;
};

// What one call is given, made for it alone.
class Given {
 public:
  Given() = default;
  Given(Given&&) = default;
  Given& operator=(Given&& other) noexcept;
  ~Given();  // gives back what drop() has not

  std::vector<Slot> slots;  // as the function takes them
  std::string text;         // for people: "(Int128QTX, 2, nil)"
  Object* self = nullptr;   // among the things; null: there is none

  // Gives back what was made. Throws Failure where somebody has dropped a reference that was not theirs.
  void drop();

 private:
  friend class ValueSource;
  struct Variable {
    Type type;
    Slot slot;
  };
  Slot own(Ref<Heap> thing);
  std::vector<Heap*> things_;
  std::vector<std::unique_ptr<std::byte[]>> blocks_;
  std::vector<std::unique_ptr<Variable>> variables_;  // what byref arguments point to
  friend std::string describeVariables(const Given& given);
};
// What byref arguments hold by now.
std::string describeVariables(const Given& given);

// For each parameter that is chosen, the object first, which of its edges it gets; 0 is an ordinary value.
using EdgeSet = std::vector<std::size_t>;

// What makes values throws HostException where an initializer raises an exception.
class ValueSource {
 public:
  // Objects get their values from members that are `usable`.
  ValueSource(const std::vector<Member>& members, const std::set<std::string>& usable);

  // All parameters at the same edge, from the ordinary one on; then each alone at each of its edges.
  std::vector<EdgeSet> commonEdges(const Member& member) const;
  std::vector<EdgeSet> allEdges(const Member& member) const;

  Given atEdges(const Member& member, const EdgeSet& edges, bool lastFirst = false) const;
  // Random values; the object has been through some other members.
  Given atRandom(const Member& member, Random& random) const;

 private:
  struct Step {
    const Member* member;
    std::size_t edge;
  };
  using Recipe = std::vector<Step>;
  // How a value is chosen: an edge, or at random; and within how many others it lies.
  struct Choice {
    std::size_t edge = 0;
    Random* random = nullptr;
    int depth = 0;
    bool besidePointer = false;
  };

  std::size_t edgeCount(Type type, int depth, bool besidePointer) const;
  const std::vector<Recipe>& recipesOf(const Class& objectClass, int depth) const;
  Slot value(Type type, const Choice& choice, Given& given) const;
  Ref<Heap> object(const Class& objectClass, const Recipe& recipe, int depth) const;
  Ref<Heap> anyObject(const Class* objectClass, const Choice& choice) const;
  Ref<Heap> variant(const Choice& choice, Given& given) const;
  Ref<Heap> array(Type type, const Choice& choice, Given& given) const;
  void apply(const Member& member, Heap* self, const Choice& choice) const;
  Slot argument(const Passing& passing, const Choice& choice, Given& given) const;

  std::map<const Class*, std::vector<Recipe>> recipes_, simpleRecipes_;
  std::vector<const Class*> ownClasses_;
  std::map<const Class*, std::vector<const Member*>> changing_;
};

}  // namespace host
