// There are no signals: what the processor cannot do ends the module, and whoever runs it is told.
#include "runtime/trap.h"

#include <emscripten.h>

#include "runtime/running_call.h"

// Asked by whoever runs the module when it has ended so. 0: no program runs.
extern "C" EMSCRIPTEN_KEEPALIVE int qtxRunningLine() {
  return host::runningCall ? host::runningCall->line : 0;
}

namespace host {

void handleSignals() {}

}  // namespace host
