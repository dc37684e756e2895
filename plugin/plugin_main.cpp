// REALPluginMain, the library's one exported symbol: meets the host and registers everything there is.
#include "atomic/atomic_flag.h"
#include "atomic/atomic_integer.h"
#include "atomic/atomic_queue.h"
#include "frame/host_interface.h"
#include "frame/host_state.h"
#include "frame/registration.h"
#include "int128/int128_classes.h"
#include "math/function_table.h"
#include "spline/spline_class.h"

using namespace qtx;

// Called once, on the host's main thread, before any registered function. Arguments that the host passes
// besides are ignored.
extern "C" __attribute__((visibility("default"))) void REALPluginMain(REALresolver resolver) {
  meetHost(resolver);
  if (!resolver) return;

  // Every host that is supported has this operation.
  reinterpret_cast<void (*)(std::int32_t)>(lookUp("RegisterPluginVersion"))(hostState.controlVersion);

  for (REALclassDefinition* record : {&atomicIntegerClass, &atomicFlagClass, &atomicQueueClass, &splineClass,
                                      &int128Class, &uint128Class}) {
    MyREALRegisterClass(record);
  }
  registerFunctions(mathFunctions());
}
