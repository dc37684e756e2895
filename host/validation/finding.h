// What is wrong with a library.
#pragma once

#include <string>

namespace host {

// The names of the checks, as --check takes them.
namespace check {
inline constexpr const char* records = "records";
inline constexpr const char* versions = "versions";
inline constexpr const char* loading = "loading";
inline constexpr const char* values = "values";
inline constexpr const char* registers = "registers";
inline constexpr const char* random = "random";
inline constexpr const char* missing = "missing";
inline constexpr const char* refused = "refused";
inline constexpr const char* threads = "threads";
}  // namespace check

struct Finding {
  std::string where;  // the member or record: "AtomicQueueQTX.Push(value as Variant)"
  std::string check;
  std::string fault;    // in a word, for machines: "crash", "flags"
  std::string message;  // for people
  std::string again;    // options that make it happen again; empty: none are needed
};

}  // namespace host
