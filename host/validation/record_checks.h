// Looks at the records that a library registers, and registers those that make sense.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "frame/host_interface.h"
#include "validation/finding.h"

namespace host {

// The newest version of records that a host of that version understands.
std::int32_t newestRecordVersion(double hostVersion);

// Stands for the host while a library registers itself: each fault of a record is a finding, and whatever of
// a record has none goes into the registry.
class RecordChecks {
 public:
  void takeVersion(std::int32_t version);
  void addClass(REALclassDefinition* record);
  void addModule(REALmoduleDefinition* record);
  void addFunction(REALmethodDefinition* record);
  // To be called when the library has registered everything.
  void finish();

  std::vector<Finding> findings;
  std::size_t records = 0;  // how many have been looked at

 private:
  struct Owner;
  void report(const std::string& where, const std::string& fault, const std::string& message);
  bool isName(const std::string& where, const char* name);
  void checkVersion(const std::string& where, std::int32_t version);
  void checkFlags(const std::string& where, std::uint32_t flags, std::uint32_t wanted);
  bool checkAttributes(const std::string& where, const REALattribute* attributes, std::size_t count);
  bool checkMethod(const Owner& owner, const REALmethodDefinition& record, std::set<std::string>& taken);
  bool checkProperty(const Owner& owner, const REALproperty& record, std::set<std::string>& taken);
  template <typename Record, typename Check>
  std::vector<Record> sound(const std::string& owner, const char* what, Record* records, std::size_t count,
                            Check check);

  std::optional<std::int32_t> version_;
  std::set<std::string> functions_;
};

}  // namespace host
