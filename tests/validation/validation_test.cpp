// What qtxhost validate finds: nothing in this library, and each fault of broken ones by its name.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

#include "run_qtxhost.h"

namespace {

Outcome validate(const std::vector<std::string>& options, const char* fault = nullptr) {
  std::vector<std::string> arguments = {"validate"};
  if (fault) {
    setenv("QTX_BROKEN", fault, 1);
    arguments.push_back(QTX_BROKEN_LIBRARY);
  }
  arguments.insert(arguments.end(), options.begin(), options.end());
  return runQtxhost(arguments, "", QTX_SOURCE_DIR);
}

struct Row {
  const char *fault, *where, *check, *found;
};

void PrintTo(const Row& row, std::ostream* stream) { *stream << row.fault; }

class BrokenLibrary : public testing::TestWithParam<Row> {};

// A fault is found by the check that is for it, where it is, and nowhere else.
TEST_P(BrokenLibrary, IsFoundOut) {
  const Row& row = GetParam();
  if (QTX_CHECKS_ADDRESSES && std::string(row.fault) == "another argument") {
    GTEST_SKIP() << "compiled for the address sanitizer, a call leaves nothing in the unused registers";
  }
  const Outcome outcome = validate({"--seconds", QTX_SECONDS}, row.fault);
  EXPECT_EQ(outcome.status, 1) << outcome.output << outcome.errors;
  EXPECT_EQ(outcome.errors, "");
  std::string found = row.found;
  // A sanitizer ends the process itself where it would crash.
  if (QTX_IS_SANITIZED && found == "crash" && outcome.output.find(": exit: ") != std::string::npos)
    found = "exit";
  EXPECT_NE(outcome.output.find(std::string("  ") + row.check + ": " + found + ": "), std::string::npos)
      << outcome.output;
  std::string where;
  for (std::size_t at = 0, end; (end = outcome.output.find('\n', at)) != at; at = end + 1) {
    ASSERT_NE(end, std::string::npos);
    if (outcome.output[at] != ' ') where = outcome.output.substr(at, end - at);
    EXPECT_EQ(where, row.where) << outcome.output;
  }
}

// What runs programs does not call each library in a process of its own.
TEST(LibraryThatThrows, IsRefusedWhileItIsLoaded) {
  setenv("QTX_BROKEN", "load and throw a number", 1);
  const Outcome outcome =
      runQtxhost({"run", "--library", QTX_BROKEN_LIBRARY, "-"}, "Print 1\n", QTX_SOURCE_DIR);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.errors, "qtxhost: the library lets an exception out that is none of the host's\n");
}

constexpr Row rows[] = {
    {"declaration", "Broken(x as Integer as Integer", "records", "declaration"},
    {"type", "Broken(x as integr) as Double", "records", "declaration"},
    {"no function", "Broken", "records", "function"},
    {"another argument", "Broken(a as Integer) as Integer", "registers", "declaration"},
    {"argument of another kind", "Broken(x as Integer) as Integer", "registers", "declaration"},
    {"result of another kind", "Broken(x as Integer) as Double", "registers", "declaration"},
    {"flags for no host", "Broken(x as Double) as Double", "records", "flags"},
    {"no flags", "Broken(x as Double) as Double", "records", "flags"},
    {"flags for newer hosts", "Broken(x as Double) as Double", "versions", "flags"},
    {"duplicate", "twice(y as double) as double", "records", "duplicate"},
    {"parameters of one name", "Broken(x as Integer, X as Integer) as Integer", "records", "duplicate"},
    {"class nobody registers", "Nowhere", "records", "declaration"},
    {"nil", "Broken(counter as Counter) as Integer", "values", "crash"},
    {"hang", "Broken(number as Integer)", "values", "hang"},
    {"leak", "Broken(counter as Counter)", "values", "leak"},
    {"leak of a text", "Broken(number as Integer) as String", "values", "leak"},
    {"over-release", "Broken(counter as Counter)", "values", "over-release"},
    {"borrowed result", "Broken(counter as Counter) as Counter", "values", "over-release"},
    {"lock", "Broken(counter as Counter)", "values", "lock"},
    {"lock for others", "Broken(number as Integer)", "values", "lock"},
    {"throw", "Broken(number as Integer)", "values", "throw"},
    {"missing", "Broken(text as String) as UInt32", "missing", "crash"},
    {"refused", "Broken(number as Integer) as Counter", "refused", "crash"},
    {"changed", "Broken(number as Integer) as Integer", "refused", "changed"},
    {"leak where refused", "Broken(number as Integer) as Counter", "refused", "leak"},
    {"threads", "Broken(number as Integer) as Integer", "threads", "changed"},
    {"result", "Broken(number as Integer) as Counter", "values", "result"},
    {"exit", "Broken(number as Integer)", "values", "exit"},
    {"random", "Broken(number as Integer)", "random", "crash"},
    {"offset", "Counter.Broken", "records", "offset"},
    {"odd offset", "Counter.Broken", "records", "offset"},
    {"no getter", "Counter.Broken", "records", "function"},
    {"property of one name", "Counter.count", "records", "duplicate"},
    {"name", "Counter.Bro ken", "records", "name"},
    {"initializer", "Counter (instance)", "values", "crash"},
    {"destructor", "Counter (instance)", "values", "crash"},
    {"method at nil", "Counter.Broken(other as Counter) as Integer", "values", "crash"},
    {"superclass", "Counter", "records", "name"},
    {"class of one name", "Counter", "records", "duplicate"},
    {"load", "REALPluginMain", "loading", "crash"},
    {"load and throw", "REALPluginMain", "records", "throw"},
    {"load without an operation", "REALPluginMain", "loading", "crash"},
    {"crash on old hosts", "REALPluginMain", "versions", "crash"},
    {"version", "RegisterPluginVersion", "records", "version"},
    {"version for newer hosts", "RegisterPluginVersion", "versions", "version"},
    {"version of a class", "Counter", "records", "version"},
};
INSTANTIATE_TEST_SUITE_P(Each, BrokenLibrary, testing::ValuesIn(rows), [](const auto& each) {
  std::string name = each.param.fault;
  for (char& c : name) {
    if (c == ' ' || c == '-') c = '_';
  }
  return name;
});

TEST(Validation, FindsNothingInASoundLibrary) {
  const Outcome outcome = validate({}, "nothing");
  EXPECT_EQ(outcome.status, 0) << outcome.output;
  EXPECT_EQ(outcome.errors, "");
}

class ThisLibrary : public testing::TestWithParam<const char*> {};

TEST_P(ThisLibrary, HasNoFault) {
  const Outcome outcome = validate({"--check", GetParam()});
  EXPECT_EQ(outcome.status, 0) << outcome.output;
  EXPECT_EQ(outcome.errors, "");
  EXPECT_NE(outcome.output.find(": no fault was found\n"), std::string::npos) << outcome.output;
}

INSTANTIATE_TEST_SUITE_P(Checks, ThisLibrary,
                         testing::Values("records", "values", "registers", "random", "missing", "refused",
                                         "threads", "loading", "versions"),
                         [](const auto& check) { return std::string(check.param); });

TEST(Validation, SaysTheSameInWhateverOrderProcessesEnd) {
  const Outcome first = validate({"--check", "missing", "--only", "Queue", "--jobs", "7"});
  EXPECT_EQ(first.status, 0) << first.output;
  EXPECT_EQ(validate({"--check", "missing", "--only", "Queue", "--jobs", "1"}).output, first.output);
  const Outcome faulty = validate({"--json", "--jobs", "7"}, "leak where refused");
  EXPECT_EQ(faulty.status, 1);
  EXPECT_EQ(validate({"--json", "--jobs", "1"}, "leak where refused").output, faulty.output);
}

TEST(Validation, MakesWhatItFoundHappenAgain) {
  const Outcome found = validate({"--check", "random", "--seed", "7"}, "random");
  const std::string again = "--only 'Broken(number as Integer)' --check random --seed 7 --rounds 20\n";
  ASSERT_NE(found.output.find(again), std::string::npos) << found.output;
  const Outcome same =
      validate({"--only", "Broken(number as Integer)", "--check", "random", "--seed", "7", "--rounds", "20"},
               "random");
  EXPECT_EQ(found.output.substr(0, found.output.find("\n\n")),
            same.output.substr(0, same.output.find("\n\n")));
}

TEST(Validation, ChecksWhatIsAskedFor) {
  const Outcome records = validate({"--check", "records"}, "random");
  EXPECT_EQ(records.status, 0) << records.output;
  const Outcome other = validate({"--only", "counter.plus"}, "nil");
  EXPECT_EQ(other.status, 0) << other.output;
  EXPECT_NE(other.output.find(", 1 member: "), std::string::npos) << other.output;
  const Outcome none = validate({"--only", "NoSuchMember"}, "nothing");
  EXPECT_EQ(none.status, 2);
  EXPECT_EQ(none.errors, "qtxhost: --only: no member has such a name; qtxhost list shows them\n");
  EXPECT_EQ(validate({"--check", "everything"}, "nothing").status, 2);
}

TEST(Validation, WritesJsonForMachines) {
  const Outcome outcome = validate({"--json", "--only", "Broken"}, "throw");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.output.find("\"findings\": [\n    {\"where\": \"Broken(number as Integer)\", "
                                "\"check\": \"values\", \"fault\": \"throw\", \"message\": \""),
            std::string::npos)
      << outcome.output;
  EXPECT_NE(validate({"--json"}, "nothing").output.find("\"findings\": []\n}\n"), std::string::npos);
}

TEST(Validation, SaysWhatTheDocumentationShows) {
  const std::string page = contentOf(std::filesystem::path(QTX_SOURCE_DIR) / "docs/host-programs.md");
  const std::string opening = "```sh\nqtxhost validate --only HypotQTX\n```\n```text\n";
  const std::size_t start = page.find(opening);
  ASSERT_NE(start, std::string::npos);
  std::string shown = page.substr(start + opening.size());
  shown.erase(shown.find("```"));
  std::string said = validate({"--only", "HypotQTX"}).output;
  if (const std::size_t extension = said.find("libqtx.dylib"); extension != std::string::npos) {
    said.replace(extension, 12, "libqtx.so");
  }
  EXPECT_EQ(said, shown);
}

TEST(Validation, ShowsProgressOnATerminalAlone) {
  setenv("QTX_BROKEN", "nothing", 1);
  const Outcome outcome = runQtxhostOnTerminal({"validate", QTX_BROKEN_LIBRARY}, {});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NE(outcome.output.find("\r\x1B[Kvalues "), std::string::npos) << outcome.output;
}

}  // namespace
