// Host programs are compiled, or refused with a place and a reason, and run under a limit of steps and
// memory: nothing crashes, and all that they made is gone afterwards. Each stands behind declarations that
// all inputs share, so that statements can be carried from one to another (program_mutator.h does it).
// Threads and addresses are left out: what comes of them would not be the same each time, or is memory that
// the program itself has damaged.
#include <cstdlib>
#include <set>

#include "fuzz.h"
#include "language/compiler.h"
#include "language/language.h"
#include "language/shared_reference.h"
#include "program_mutator.h"
#include "runtime/array.h"
#include "runtime/exception.h"
#include "runtime/library.h"
#include "runtime/registry.h"
#include "runtime/report.h"
#include "runtime/settings.h"

namespace {

using namespace host;

bool namesAddress(const Declaration& declaration) {
  const auto isAddress = [](Type type) { return type.kind == Kind::Pointer; };
  return isAddress(declaration.result) ||
         std::any_of(declaration.parameters.begin(), declaration.parameters.end(),
                     [&](const auto& each) { return isAddress(each.type); });
}

void withdrawMembers() {
  for (Class& each : registry().classes) {
    std::erase_if(each.methods, [&](const Method& method) {
      const std::string& name = method.declaration.name;
      // A queue that is added to itself doubles, in memory that the host does not limit.
      const bool doubles = each.name == "AtomicQueueQTX" && name == "Add";
      return namesAddress(method.declaration) || name == "Start" || name == "Join" || doubles;
    });
    std::erase_if(each.sharedMethods,
                  [](const Method& method) { return method.declaration.name == "Sleep"; });
    std::erase_if(each.properties,
                  [](const Property& property) { return property.type.kind == Kind::Pointer; });
  }
  for (Module& each : registry().modules) {
    std::erase_if(each.properties, [](const Property& property) { return property.name == "Debugging"; });
  }
}

// What holds references to anything could hold one to itself.
void emptyContainers() {
  std::vector<Ref<Heap>> containers;
  const Class* queue = registry().findClass("AtomicQueueQTX");
  forEachLive([&](const Heap& thing) {
    if (thing.objectClass == hostClasses().array || thing.objectClass == queue) {
      containers.push_back(Ref<Heap>::share(const_cast<Heap*>(&thing)));
    }
  });
  static const Method& clear = *queue->findMethods("Clear").front();
  for (const Ref<Heap>& each : containers) {
    if (each->objectClass == queue) {
      const Slot self = {.heap = each.get()};
      clear.call({&self, 1});
    } else {
      static_cast<Array&>(*each).resize(0);
    }
  }
}

// The shared declarations, compiled once and run anew for each program, which is one more piece of the same
// module and taken out of it again.
class SharedDeclarations {
 public:
  SharedDeclarations() {
    names_.file = "program";
    names_.stepsLeft = std::make_unique<StepsLeft>(0);
    declarations_ = compile(names_, fuzz::declarations);
    declared_ = names_;
    modules_ = names_.modules;
    subCount_ = names_.allSubs.size();
    globalCount_ = names_.allGlobals.size();
  }

  void run(std::string_view text) {
    names_.stepsLeft->store(100);
    runHere(declarations_);
    compiled(text, [](const Main& main) {
      try {
        runHere(main);
      } catch (const HostException& exception) {
        describe(exception);
      } catch (const ProgramEnd&) {
      }
      emptyContainers();
    });
  }
  // The line for which it is refused, or 0.
  int wrongLine(std::string_view text) {
    return compiled(text, [](const Main&) {});
  }

 private:
  template <typename Use>
  int compiled(std::string_view text, Use use) {
    int line = 0;
    try {
      use(compile(names_, text));
    } catch (const ProgramError& error) {
      line = error.position.line;
      fuzz::require(line > 0 && *error.what() != '\0', "an error without place or reason");
    } catch (const HostException&) {  // such as for lack of memory
    }
    if (line == 0) {  // what is wrong has declared nothing
      static_cast<Declarations&>(names_) = declared_;
      names_.modules = modules_;
    }
    while (names_.allSubs.size() > subCount_) names_.allSubs.pop_back();
    for (Global& each : names_.allGlobals) {
      if (each.type.isReference()) storeShared(each.slot, nullptr);
    }
    while (names_.allGlobals.size() > globalCount_) names_.allGlobals.pop_back();
    return line;
  }

  ModuleNames names_;
  Main declarations_;
  Declarations declared_;
  decltype(names_.modules) modules_;
  std::size_t subCount_, globalCount_;
};

SharedDeclarations& shared() {
  static SharedDeclarations all;
  return all;
}

std::size_t store(const std::string& text, char* data) {
  std::memcpy(data, text.data(), text.size());
  return text.size();
}
int wrongLine(const std::string& text) { return shared().wrongLine(text); }

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  settings().mostBytes = 4096;
  loadLibrary(QTX_LIBRARY);
  registerBuiltins();
  withdrawMembers();
  fuzz::require(std::freopen("/dev/null", "w", stdout) != nullptr, "nowhere to print");
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
  const std::string_view text(data, size);
  if (fuzz::usesAddresses(text)) return 0;
  shared();
  static const std::set<std::string> kept = {"Int128QTX", "UInt128QTX"};
  static const std::string own = leakReport(kept).leaks;  // what the declarations' code holds
  shared().run(text);
  const std::string leaked = leakReport(kept).leaks;
  fuzz::require(leaked == own, leaked);
  return 0;
}

extern "C" std::size_t LLVMFuzzerMutate(char* data, std::size_t size, std::size_t most);

extern "C" std::size_t LLVMFuzzerCustomMutator(char* data, std::size_t size, std::size_t most,
                                               unsigned seed) {
  fuzz::ProgramMutator mutator(seed, &wrongLine);
  if (mutator.below(20) == 0) return LLVMFuzzerMutate(data, size, most);
  return store(mutator.mutated({data, size}, most), data);
}

extern "C" std::size_t LLVMFuzzerCustomCrossOver(const char* left, std::size_t leftSize, const char* right,
                                                 std::size_t rightSize, char* out, std::size_t most,
                                                 unsigned seed) {
  fuzz::ProgramMutator mutator(seed, &wrongLine);
  return store(mutator.crossed({left, leftSize}, {right, rightSize}, most), out);
}
