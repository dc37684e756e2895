// Every member while memory is refused, or a host operation answers nil: at each allocation and at each call
// in turn, that one alone and with all that follow. Each time the member returns or raises, nothing leaks,
// and afterwards it answers as before. What is registered is what is tested.
//
// This program's own malloc and operator new stand before the C library's, and refuse what the library asks
// for: the calls that come from its code. The host's own allocations succeed.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <link.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <set>
#include <string>
#include <vector>

#include "validation/checked_library.h"
#include "validation/exercise.h"
#include "validation/isolation.h"
#include "validation/packing.h"
#include "validation/watch.h"

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {

// Where the library's code lies.
std::uintptr_t libraryStart = 0, libraryEnd = 0;

struct Arming {
  bool isArmed;
  std::uint64_t n;
  bool onwards;
  std::uint64_t count;
};
constinit thread_local Arming arming = {};

bool refuses(const void* caller) {
  const auto address = reinterpret_cast<std::uintptr_t>(caller);
  if (!arming.isArmed || address < libraryStart || address >= libraryEnd) return false;
  ++arming.count;
  const bool refused =
      arming.n != 0 && (arming.count == arming.n || (arming.onwards && arming.count > arming.n));
  if (refused) errno = ENOMEM;
  return refused;
}

class Memory final : public host::FaultSource {
 public:
  void arm(std::uint64_t n, bool onwards) override { arming = {true, n, onwards, 0}; }
  std::uint64_t disarm() override {
    arming.isArmed = false;
    return arming.count;
  }
  const char* name() const override { return "memory is refused"; }
};

}  // namespace

#define QTX_EXPORTED __attribute__((visibility("default"), noinline))
extern "C" {
QTX_EXPORTED void* malloc(std::size_t size) {
  return refuses(__builtin_return_address(0)) ? nullptr : __libc_malloc(size);
}
QTX_EXPORTED void* calloc(std::size_t count, std::size_t size) {
  return refuses(__builtin_return_address(0)) ? nullptr : __libc_calloc(count, size);
}
QTX_EXPORTED void* realloc(void* memory, std::size_t size) {
  return refuses(__builtin_return_address(0)) ? nullptr : __libc_realloc(memory, size);
}
QTX_EXPORTED void* aligned_alloc(std::size_t alignment, std::size_t size) {
  return refuses(__builtin_return_address(0)) ? nullptr : __libc_memalign(alignment, size);
}
QTX_EXPORTED int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
  if (refuses(__builtin_return_address(0))) return ENOMEM;
  *memory = __libc_memalign(alignment, size);
  return *memory ? 0 : ENOMEM;
}
}

namespace {
void* allocated(const void* caller, std::size_t alignment, std::size_t size) {
  void* const memory = refuses(caller) ? nullptr : __libc_memalign(alignment, size);
  if (!memory) throw std::bad_alloc();
  return memory;
}
}  // namespace

// The library's, where the C++ library is not linked into it. Those for arrays, and those that give null,
// call these.
QTX_EXPORTED void* operator new(std::size_t size) {
  return allocated(__builtin_return_address(0), alignof(std::max_align_t), size);
}
QTX_EXPORTED void* operator new(std::size_t size, std::align_val_t alignment) {
  return allocated(__builtin_return_address(0), static_cast<std::size_t>(alignment), size);
}
QTX_EXPORTED void operator delete(void* memory) noexcept { std::free(memory); }
QTX_EXPORTED void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
QTX_EXPORTED void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
QTX_EXPORTED void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }

namespace {

using namespace host;

constexpr double seconds = 10;
constexpr std::size_t mostSets = 40;

void findCode(const char* file) {
  libraryStart = UINTPTR_MAX;
  char path[PATH_MAX];
  const std::string wanted = realpath(file, path) ? path : file;
  const auto visit = [&](const dl_phdr_info& object) {
    char found[PATH_MAX];
    if (!realpath(object.dlpi_name, found) || found != wanted) return;
    for (int i = 0; i < object.dlpi_phnum; ++i) {
      const auto& segment = object.dlpi_phdr[i];
      if (segment.p_type != PT_LOAD || !(segment.p_flags & PF_X)) continue;
      const std::uintptr_t start = object.dlpi_addr + segment.p_vaddr;
      libraryStart = std::min(libraryStart, start);
      libraryEnd = std::max(libraryEnd, start + segment.p_memsz);
    }
  };
  dl_iterate_phdr(
      [](dl_phdr_info* object, std::size_t, void* visitor) {
        (*static_cast<decltype(visit)*>(visitor))(*object);
        return 0;
      },
      const_cast<void*>(static_cast<const void*>(&visit)));
}

std::string describe(const Member& member, const Ending& ending) {
  std::string text = member.name + ": " + ending.doing + ": ";
  if (ending.how == Ending::How::bySignal) return text + nameOfSignal(ending.number) + "\n";
  if (ending.how == Ending::How::byItself) return text + "status " + std::to_string(ending.number) + "\n";
  return text + (ending.isBusy ? "it computes" : "it waits") + " and does not return\n";
}

struct Outcome {
  std::uint64_t failed = 0;  // events
  std::string findings;      // a line each
};

// Runs what may fail, each member in a process of its own, which is one of the process that loads the
// library.
Outcome underFaults(const char* file, FaultSource& source) {
  const Ending ending = inProcess(2000, true, [&] {
    const std::vector<Member> members = loadChecked(file).members;
    findCode(file);
    std::set<std::string> all;
    for (const Member& each : members) all.insert(each.name);
    const ValueSource values(members, all);
    std::uint64_t failed = 0;
    std::string findings;
    for (const Member& member : members) {
      const Exercise exercise(values, member);
      std::vector<EdgeSet> sets = values.commonEdges(member);
      if (sets.size() > mostSets) sets.resize(mostSets);
      const auto run = [&](const auto& body) {
        const Ending own = inProcess(seconds, false, [&] {
          try {
            return body();
          } catch (const Failure& failure) {
            std::string text;
            pack(text, failure.fault + ": " + failure.message);
            return text;
          }
        });
        if (own.how != Ending::How::normally) findings += describe(member, own);
        return own.how == Ending::How::normally ? own.text : std::string();
      };
      // What it answers where nothing fails, unless that is never the same.
      const std::string sound = run([&] {
        const std::vector<std::string> answers = exercise.answers(sets);
        const bool varies = answers != exercise.answers(sets, true) || answers != exercise.answers(sets);
        std::string text;
        pack(text, "");
        packAll(text, varies ? std::vector<std::string>() : answers);
        return text;
      });
      if (sound.empty()) continue;
      Unpacking from(sound);
      if (const std::string failure = from.next(); !failure.empty()) {
        findings += member.name + ": " + failure + "\n";
        continue;
      }
      const std::vector<std::string> expected = from.all();
      const std::string faulty = run([&] {
        const std::uint64_t count = exercise.underFaults(source, sets, expected);
        std::string text;
        pack(text, "");
        pack(text, std::to_string(count));
        return text;
      });
      if (faulty.empty()) continue;
      Unpacking found(faulty);
      const std::string failure = found.next();
      if (failure.empty()) {
        failed += std::stoull(found.next());
      } else {
        findings += member.name + ": " + failure + "\n";
      }
    }
    std::string text;
    pack(text, std::to_string(failed));
    pack(text, findings);
    return text;
  });
  if (ending.how != Ending::How::normally) return {0, "the library could not be loaded: " + ending.doing};
  Unpacking from(ending.text);
  Outcome outcome;
  outcome.failed = std::stoull(from.next());
  outcome.findings = from.next();
  return outcome;
}

TEST(Faults, OfMemoryAreSurvivedByEveryMember) {
  Memory memory;
  const Outcome outcome = underFaults(QTX_LIBRARY_FILE, memory);
  EXPECT_EQ(outcome.findings, "");
  EXPECT_GT(outcome.failed, 100u);
  RecordProperty("refused", std::to_string(outcome.failed));
}

TEST(Faults, OfTheHostAreSurvivedByEveryMember) {
  watch().choose("");
  const Outcome outcome = underFaults(QTX_LIBRARY_FILE, watch());
  EXPECT_EQ(outcome.findings, "");
  EXPECT_GT(outcome.failed, 1000u);
  RecordProperty("refused", std::to_string(outcome.failed));
}

// That these would be found, if there were any.
TEST(Faults, OfMemoryAreFoundInABrokenLibrary) {
  const struct {
    const char *broken, *found;
  } rows[] = {
      {"memory", "signal "},         {"memory and lock", "it waits and does not return"},
      {"memory and leak", "leak: "}, {"memory and change", "changed: "},
      {"nothing", nullptr},
  };
  for (const auto& row : rows) {
    setenv("QTX_BROKEN", row.broken, 1);
    Memory memory;
    const Outcome outcome = underFaults(QTX_BROKEN_LIBRARY, memory);
    if (row.found) {
      EXPECT_EQ(outcome.findings.find("Broken("), 0u) << row.broken << ": " << outcome.findings;
      EXPECT_NE(outcome.findings.find(row.found), std::string::npos)
          << row.broken << ": " << outcome.findings;
    } else {
      EXPECT_EQ(outcome.findings, "") << row.broken;
    }
  }
}

}  // namespace
