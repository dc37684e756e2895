// Host programs: each compiles or is refused with a place and a reason. They are not run: they might not end.
#include "language/language.h"
#include "runtime/exception.h"
#include "runtime/library.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  host::loadLibrary(QTX_LIBRARY);
  host::registerBuiltins();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
  try {
    const host::Program program("program", {data, size});
  } catch (const host::ProgramError&) {
  } catch (const host::HostException&) {  // such as for lack of memory
  }
  return 0;
}
