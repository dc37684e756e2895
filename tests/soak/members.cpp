#include "members.h"

#include <cstdio>
#include <cstdlib>

#include "runtime/registry.h"

namespace soak {
namespace {

using namespace host;

class Collected {
 public:
  Collected() {
    for (const Class& each : registry().classes) {
      if (!each.fromLibrary) continue;
      for (const Method& method : each.methods) add(&each, method, true);
      for (const Method& method : each.sharedMethods) add(&each, method, false);
      for (const Property& property : each.properties) addAccessors(&each, property);
      for (const Property& property : each.sharedProperties) addAccessors(&each, property, true);
    }
    for (const Module& each : registry().modules) {
      if (!each.fromLibrary) continue;
      for (const Method& method : each.methods) add(nullptr, method, false);
      for (const Property& property : each.properties) addAccessors(nullptr, property, true);
    }
    for (const Method& each : registry().functions) {
      if (each.fromLibrary) add(nullptr, each, false);
    }
  }
  std::vector<Member> all;

 private:
  Member& add(const Class* of, std::string_view name, const Call& call, bool takesSelf) {
    Member& member = all.emplace_back();
    member.index = all.size() - 1;
    member.of = of;
    member.name = (of ? of->name + "." : "") + std::string(name);
    member.call = &call;
    member.takesSelf = takesSelf;
    return member;
  }
  void add(const Class* of, const Method& method, bool takesSelf) {
    Member& member = add(of, method.declaration.text, method.call, takesSelf);
    for (const Parameter& each : method.declaration.parameters) {
      member.parameters.push_back({each.type, each.byRef});
    }
    member.result = method.declaration.result;
  }
  // Those of instances have a parameter of the record's, which is here a parameter like any other.
  void addAccessors(const Class* of, const Property& property, bool isShared = false) {
    const std::vector<Passing> common(isShared ? 0 : 1, Passing{Type{Kind::Int64}});
    if (property.getter) {
      Member& getter = add(of, "get " + property.name, property.getter, !isShared);
      getter.parameters = common;
      getter.result = property.type;
      getter.isGetter = true;
      getter.isHidden = property.hidden;
    }
    if (property.setter) {
      Member& setter = add(of, "set " + property.name, property.setter, !isShared);
      setter.parameters = common;
      setter.parameters.push_back({property.type});
      setter.isHidden = property.hidden;
    }
  }
};

}  // namespace

const std::vector<Member>& members() {
  static const Collected collected;
  return collected.all;
}

const Member& member(std::string_view className, std::string_view declaration) {
  const std::string name = (className.empty() ? "" : std::string(className) + ".") + std::string(declaration);
  for (const Member& each : members()) {
    if (each.name == name) return each;
  }
  std::fprintf(stderr, "soak: there is no %s\n", name.c_str());
  std::exit(1);
}

}  // namespace soak
