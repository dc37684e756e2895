// The rules for records, one by one.
#include "validation/record_checks.h"

#include <cctype>
#include <cstring>
#include <deque>
#include <stdexcept>
#include <string_view>

#include "runtime/registry.h"
#include "runtime/settings.h"
#include "runtime/wording.h"

namespace host {

namespace {

// Bits of a flags word.
constexpr std::uint32_t forNoHost = 0x40000;
constexpr std::uint32_t newerMask = 0x708, newerValue = 0x308;
constexpr double newerSince = 2020.02;
constexpr std::uint32_t known =
    recordFlags::console | recordFlags::property | recordFlags::scopeMask | newerMask;

// Beyond these, a record is taken for one that was read at a wrong place.
constexpr std::size_t mostMembers = 100'000, mostData = std::size_t{1} << 24, longestName = 200;
// Calls have room for 32 arguments: besides these the object, and what a setter takes, or fills registers.
constexpr std::size_t mostParameters = 20;

const REALproc asField = reinterpret_cast<REALproc>(~std::uintptr_t{0});

std::string lower(std::string_view text) {
  std::string all(text);
  for (char& c : all) c = lowered(c);
  return all;
}

// Of classes that are mentioned and may be registered later, without a trace in the registry.
class Mentioned final : public ClassNames {
 public:
  const Class* findClass(std::string_view name) const override {
    if (const Class* found = registry().findClass(name)) return found;
    for (const Class& each : mentioned_) {
      if (sameName(each.name, name)) return &each;
    }
    return nullptr;
  }
  Class& expectClass(std::string_view name) override {
    if (const Class* found = findClass(name)) return const_cast<Class&>(*found);
    Class& added = mentioned_.emplace_back();
    added.name = name;
    return added;
  }

 private:
  std::deque<Class> mentioned_;
};

// What tells declarations of the same name apart.
std::string signatureOf(const Declaration& declaration) {
  std::string text = lower(declaration.name) + "(";
  for (const Parameter& each : declaration.parameters) {
    text += std::string(each.byRef ? "byref " : "") + lower(nameOf(each.type)) + ",";
  }
  return text + ")" + lower(nameOf(declaration.result));
}

std::string hex(std::uint32_t value) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%X", value);
  return text;
}

}  // namespace

std::int32_t newestRecordVersion(double hostVersion) {
  if (hostVersion >= 2013.04) return 13;
  if (hostVersion >= 2013.03) return 12;
  if (hostVersion >= 2013.0) return 11;
  return hostVersion >= 2012.0 ? 10 : 9;
}

struct RecordChecks::Owner {
  std::string name;          // empty: there is none
  bool isClass = false;      // a class's own members, not the shared ones
  std::size_t dataSize = 0;  // of an instance
  std::uint32_t scope = 0;   // what the flags of its members need besides
  std::string memberPrefix() const { return name.empty() ? "" : name + "."; }
};

void RecordChecks::report(const std::string& where, const std::string& fault, const std::string& message) {
  findings.push_back({where, check::records, fault, message, ""});
}

bool RecordChecks::isName(const std::string& where, const char* name) {
  const std::string_view text = name ? name : "";
  bool sound =
      !text.empty() && text.size() <= longestName && !std::isdigit(static_cast<unsigned char>(text[0]));
  for (const char c : text) sound = sound && (std::isalnum(static_cast<unsigned char>(c)) || c == '_');
  if (!sound) {
    report(where, "name", text.empty() ? "it has no name" : "\"" + std::string(text) + "\" cannot be a name");
  }
  return sound;
}

void RecordChecks::checkVersion(const std::string& where, std::int32_t version) {
  if (!version_) return;  // which is a fault of its own
  if (version != *version_) {
    report(where, "version",
           "its record has version " + std::to_string(version) + ", and the library has announced version " +
               std::to_string(*version_));
  }
}

void RecordChecks::checkFlags(const std::string& where, std::uint32_t flags, std::uint32_t wanted) {
  if (flags & forNoHost) {
    report(where, "flags", "its flags " + hex(flags) + " have " + hex(forNoHost) + ", which no host takes");
  } else if (flags & ~known) {
    report(where, "flags",
           "its flags " + hex(flags) + " have " + hex(flags & ~known) + ", which means nothing");
  }
  if (settings().version < newerSince && (flags & newerMask) == newerValue) {
    report(where, "flags",
           "its flags " + hex(flags) + " have " + hex(newerValue) +
               ", which hosts before 2020.02 do not understand");
  }
  if (const std::uint32_t lacking = wanted & ~flags) {
    report(where, "flags", "its flags " + hex(flags) + " lack " + hex(lacking));
  }
  const std::uint32_t scope = flags & recordFlags::scopeMask;
  if (scope & (scope - 1)) {
    report(where, "flags", "its flags " + hex(flags) + " name more than one scope");
  }
}

bool RecordChecks::checkAttributes(const std::string& where, const REALattribute* attributes,
                                   std::size_t count) {
  bool sound = count == 0 || attributes;
  for (std::size_t i = 0; sound && i < count; ++i) sound = attributes[i].name != nullptr;
  if (!sound) report(where, "attributes", "it counts attributes that are not there");
  return sound;
}

// The records without a fault.
template <typename Record, typename Check>
std::vector<Record> RecordChecks::sound(const std::string& owner, const char* what, Record* all,
                                        std::size_t count, Check check) {
  std::vector<Record> kept;
  if (count > mostMembers || (count > 0 && !all)) {
    report(owner, "count", "it counts " + std::to_string(count) + " " + what + " that are not there");
    return kept;
  }
  for (std::size_t i = 0; i < count; ++i) {
    if (check(all[i])) kept.push_back(all[i]);
  }
  return kept;
}

bool RecordChecks::checkMethod(const Owner& owner, const REALmethodDefinition& record,
                               std::set<std::string>& taken) {
  ++records;
  const std::string where =
      owner.memberPrefix() +
      (record.declaration && *record.declaration ? record.declaration : "(no declaration)");
  checkFlags(where, record.flags, recordFlags::console);
  if (owner.scope && !(record.flags & recordFlags::scopeMask)) {
    report(where, "flags",
           "its flags " + hex(record.flags) + " name no scope, which a module's members have");
  }
  bool sound = checkAttributes(where, record.attributes, record.attributeCount);
  if (!record.function) {
    report(where, "function", "it has no function");
    sound = false;
  }
  if (!record.declaration) {
    report(where, "declaration", "it has no declaration");
    return false;
  }
  Mentioned classes;
  try {
    const Declaration declaration = parseDeclaration(record.declaration, classes);
    if (declaration.parameters.size() > mostParameters) {
      report(
          where, "declaration",
          "it has more than " + std::to_string(mostParameters) + " parameters, which this host cannot pass");
      sound = false;
    }
    std::set<std::string> names;
    for (const Parameter& each : declaration.parameters) {
      if (!names.insert(lower(each.name)).second) {
        report(where, "duplicate", "it has two parameters named " + each.name);
      }
    }
    if (!taken.insert(signatureOf(declaration)).second) {
      report(where, "duplicate", "there is another one with this name, these parameters and this result");
    }
    if (declaration.parameters.empty() && taken.contains(lower(declaration.name))) {
      report(where, "duplicate", "there is a property of this name");
    }
  } catch (const std::runtime_error& error) {
    report(where, "declaration", error.what());
    sound = false;
  }
  return sound;
}

bool RecordChecks::checkProperty(const Owner& owner, const REALproperty& record,
                                 std::set<std::string>& taken) {
  ++records;
  const std::string where =
      owner.memberPrefix() + (record.name && *record.name ? record.name : "(a property without a name)");
  checkFlags(where, record.flags, recordFlags::console | recordFlags::property);
  bool sound = checkAttributes(where, record.attributes, record.attributeCount);
  if (!isName(where, record.name)) return false;
  if (!taken.insert(lower(record.name)).second) {
    report(where, "duplicate", "there is another property of this name");
  }
  Mentioned classes;
  Type type;
  try {
    type = parseDeclaration("x as " + std::string(record.type ? record.type : ""), classes).result;
  } catch (const std::runtime_error&) {
    report(where, "declaration", "its type \"" + std::string(record.type ? record.type : "") + "\" is none");
    return false;
  }
  if (!record.getter) {
    report(where, "function", "it cannot be read: it has no getter");
    return false;
  }
  if ((record.getter == asField) != (record.setter == asField) && record.setter) {
    report(where, "function", "it is a field for reading or for writing alone");
    return false;
  }
  if (record.getter == asField) {
    const std::size_t size = sizeOf(type);
    const auto offset = static_cast<std::size_t>(record.parameter);
    if (!owner.isClass) {
      report(where, "offset", "it is a field, and there is no instance that it could be a field of");
      sound = false;
    } else if (offset > owner.dataSize || size > owner.dataSize - offset) {
      report(where, "offset",
             "its field at offset " + std::to_string(record.parameter) +
                 " lies outside of the instance data of " + counted(owner.dataSize, "byte"));
      sound = false;
    } else if (offset % size != 0) {
      report(where, "offset",
             "its field at offset " + std::to_string(offset) + " does not lie on a multiple of its size");
    }
  }
  return sound;
}

void RecordChecks::takeVersion(std::int32_t version) {
  const std::string where = "RegisterPluginVersion";
  if (version_) report(where, "version", "the library calls it twice");
  if (records > 0) report(where, "version", "the library calls it after it has registered something");
  version_ = version;
  const std::int32_t newest = newestRecordVersion(settings().version);
  if (version > newest || version < 1) {
    report(where, "version",
           "the library announces records of version " + std::to_string(version) +
               ", and this host understands those from 1 to " + std::to_string(newest));
  }
}

void RecordChecks::addClass(REALclassDefinition* record) {
  ++records;
  if (!record) return report("(a class)", "name", "there is no record");
  const std::string where = record->name && *record->name ? record->name : "(a class without a name)";
  checkFlags(where, record->flags, recordFlags::console);
  checkVersion(where, record->version);
  if (!isName(where, record->name)) return;
  if (const Class* other = registry().findClass(record->name); other && other->defined) {
    return report(where, "duplicate", "there is a class of this name already");
  }
  if (registry().findModule(record->name)) report(where, "duplicate", "there is a module of this name");
  REALclassDefinition kept = *record;
  if (record->superName && *record->superName) {
    const Class* super = registry().findClass(record->superName);
    if (!super || !super->defined) {
      report(where, "name", "its superclass " + std::string(record->superName) + " is not registered");
      kept.superName = nullptr;
    }
  }
  if (record->dataSize > mostData) {
    report(where, "offset", "its instance data of " + counted(record->dataSize, "byte") + " is too large");
    kept.dataSize = 0;
    kept.constructor = kept.destructor = nullptr;
  }
  checkAttributes(where, record->attributes, record->attributeCount);
  const Owner own{where, true, kept.dataSize, 0}, shared{where, false, 0, 0};
  std::set<std::string> taken;
  const auto method = [&](const Owner& owner) {
    return [&](const REALmethodDefinition& each) { return checkMethod(owner, each, taken); };
  };
  const auto property = [&](const Owner& owner) {
    return [&](const REALproperty& each) { return checkProperty(owner, each, taken); };
  };
  auto properties = sound(where, "properties", record->properties, record->propertyCount, property(own));
  auto sharedProperties = sound(where, "shared properties", record->sharedProperties,
                                record->sharedPropertyCount, property(shared));
  auto methods = sound(where, "methods", record->methods, record->methodCount, method(own));
  auto sharedMethods =
      sound(where, "shared methods", record->sharedMethods, record->sharedMethodCount, method(shared));
  const auto put = [](auto& all, auto*& at, std::size_t& count) {
    at = all.data();
    count = all.size();
  };
  put(properties, kept.properties, kept.propertyCount);
  put(sharedProperties, kept.sharedProperties, kept.sharedPropertyCount);
  put(methods, kept.methods, kept.methodCount);
  put(sharedMethods, kept.sharedMethods, kept.sharedMethodCount);
  registry().addClass(kept, true);
  record->dataOffset = kept.dataOffset;
}

void RecordChecks::addModule(REALmoduleDefinition* record) {
  ++records;
  if (!record) return report("(a module)", "name", "there is no record");
  const std::string where = record->name && *record->name ? record->name : "(a module without a name)";
  checkFlags(where, record->flags, recordFlags::console);
  checkVersion(where, record->version);
  if (!isName(where, record->name)) return;
  if (registry().findModule(record->name)) {
    return report(where, "duplicate", "there is a module of this name already");
  }
  if (const Class* other = registry().findClass(record->name); other && other->defined) {
    report(where, "duplicate", "there is a class of this name");
  }
  const Owner owner{where, false, 0, recordFlags::scopeMask};
  auto properties = sound(where, "properties", record->properties, record->propertyCount,
                          [&](const REALproperty& each) { return checkProperty(owner, each, functions_); });
  auto methods =
      sound(where, "methods", record->methods, record->methodCount,
            [&](const REALmethodDefinition& each) { return checkMethod(owner, each, functions_); });
  REALmoduleDefinition kept = *record;
  kept.properties = properties.data();
  kept.propertyCount = properties.size();
  kept.methods = methods.data();
  kept.methodCount = methods.size();
  registry().addModule(kept, true);
}

void RecordChecks::addFunction(REALmethodDefinition* record) {
  if (!record) return report("(a function)", "name", "there is no record");
  if (checkMethod({}, *record, functions_)) registry().addFunction(*record, true);
}

void RecordChecks::finish() {
  if (!version_) {
    report("RegisterPluginVersion", "version", "the library does not call it");
  }
  if (records == 0) report("REALPluginMain", "function", "the library registers nothing");
  for (const Class& each : registry().classes) {
    if (!each.defined) {
      report(each.name, "declaration", "this class stands in a declaration, and is not registered");
    }
  }
}

}  // namespace host
