// Makes one list of classes, modules and functions.
#include "validation/members.h"

#include <utility>

namespace host {

namespace {

class Collector {
 public:
  std::vector<Member> all;

  void addMethods(const std::deque<Method>& methods, const std::string& owner, const Class* self) {
    for (const Method& method : methods) {
      if (owner.empty() && !method.fromLibrary) continue;
      Member member;
      member.name = owner + method.declaration.text;
      member.self = self;
      for (const Parameter& each : method.declaration.parameters) {
        member.parameters.push_back({each.type, each.byRef});
      }
      member.result = method.declaration.result;
      member.call = method.call;
      const bool changesSelf = self && !member.parameters.empty() && member.result == Type{};
      const std::string& name = method.declaration.name;
      member.makes = changesSelf && (sameName(name, "Constructor") || sameName(name, "Operator_Convert"));
      member.feeds = changesSelf && !member.makes;
      all.push_back(member);
      if (!method.setter) continue;
      member.name += " (set)";
      member.parameters.push_back({member.result});
      member.result = {};
      member.call = method.setter;
      member.feeds = self != nullptr;
      all.push_back(member);
    }
  }

  void addProperties(const std::deque<Property>& properties, const std::string& owner, const Class* self) {
    for (const Property& property : properties) {
      if (property.field) continue;  // the host reads and writes it itself
      Member member;
      member.name = owner + property.name + " (get)";
      member.self = self;
      member.result = property.type;
      member.call = property.getter;
      member.property = &property;
      all.push_back(member);
      if (!property.setter) continue;
      member.name = owner + property.name + " (set)";
      member.parameters = {{property.type}};
      member.result = {};
      member.call = property.setter;
      member.feeds = self != nullptr;
      all.push_back(member);
    }
  }
};

}  // namespace

std::vector<Passing> Member::passed() const {
  std::vector<Passing> all;
  if (self) all.push_back({{Kind::Object, false, self}});
  if (self && property) all.push_back({{Kind::Int64}});
  all.insert(all.end(), parameters.begin(), parameters.end());
  return all;
}

std::vector<Member> membersOf(const Registry& registry) {
  Collector collector;
  for (const Class& each : registry.classes) {
    if (!each.fromLibrary) continue;
    Member instance;
    instance.name = each.name + " (instance)";
    instance.self = &each;
    instance.isInstance = true;
    collector.all.push_back(instance);
    collector.addProperties(each.sharedProperties, each.name + ".", nullptr);
    collector.addProperties(each.properties, each.name + ".", &each);
    collector.addMethods(each.sharedMethods, each.name + ".", nullptr);
    collector.addMethods(each.methods, each.name + ".", &each);
  }
  for (const Module& module : registry.modules) {
    if (!module.fromLibrary) continue;
    collector.addProperties(module.properties, module.name + ".", nullptr);
    collector.addMethods(module.methods, module.name + ".", nullptr);
  }
  collector.addMethods(registry.functions, "", nullptr);
  return std::move(collector.all);
}

}  // namespace host
