// The module System: time, random numbers, and a line for whoever looks for faults.
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <iterator>
#include <string>

#include "language/words.h"
#include "runtime/output.h"
#include "runtime/random.h"

namespace host {

namespace {

using Clock = std::chrono::steady_clock;

double microseconds() {
  return std::chrono::duration<double, std::micro>(Clock::now().time_since_epoch()).count();
}
RBInteger ticks() {
  using Ticks = std::chrono::duration<RBInteger, std::ratio<1, 60>>;
  return std::chrono::duration_cast<Ticks>(Clock::now().time_since_epoch()).count();
}

// To standard error, where what the library writes to its log goes; one write for each line, behind what has
// been printed.
void debugLog(REALstring message) {
  asPending([&] {
    const std::string line = utf8Of(textOf(message)) + "\n";
    flushOutput();
    for (std::string_view rest = line; !rest.empty();) {
      const ssize_t written = ::write(STDERR_FILENO, rest.data(), rest.size());
      if (written < 0 && errno == EINTR) continue;
      if (written <= 0) return;
      rest.remove_prefix(static_cast<std::size_t>(written));
    }
  });
}

REALobject random() {
  return asPending([] { return reinterpret_cast<REALobject>(makeSharedRandom().detach()); });
}

}  // namespace

void registerSystemWords() {
  static REALmethodDefinition table[] = {
      hostMethod("Microseconds as Double", &microseconds),
      hostMethod("Ticks as Integer", &ticks),
      hostMethod("DebugLog(message as String)", &debugLog),
      hostMethod("Random as Random", &random),
  };
  static REALmoduleDefinition module = {};
  module.name = "System";
  module.methods = table;
  module.methodCount = std::size(table);
  registry().addModule(module, false);
}

}  // namespace host
