// Makes exceptions, throws them, and keeps those that wait for a call's return.
#include "runtime/exception.h"

#include "runtime/registry.h"
#include "runtime/running_call.h"
#include "runtime/throwing.h"

namespace host {

namespace {
ExceptionData& dataOf(const Object& exception) {
  return *reinterpret_cast<ExceptionData*>(const_cast<Object&>(exception).dataOf(*hostClasses().exception));
}
}  // namespace

Trace Trace::here() {
  Trace trace;
  std::size_t depth = 0;
  for (const RunningCall* each = runningCall; each; each = each->caller) ++depth;
  if (depth > keptFirst + keptLast + 1) trace.skipped = depth - keptFirst - keptLast;
  trace.calls.reserve(depth - trace.skipped);
  std::size_t passed = 0;
  for (const RunningCall* each = runningCall; each; each = each->caller, ++passed) {
    const bool isLeftOut = passed >= keptFirst && passed < keptFirst + trace.skipped;
    if (!isLeftOut) trace.calls.push_back({each->file, each->sub, each->line});
  }
  return trace;
}

HostException::HostException(std::string_view className, std::string_view message) : trace(Trace::here()) {
  const Class* objectClass = registry().findClass(className);
  exception = makeObject(objectClass ? *objectClass : *hostClasses().exception);
  dataOf(*exception).message = makeText(message).detach();
}

void throwException(std::string_view className, std::string_view message) {
  throw HostException(className, message);
}

std::string messageOf(const Object& exception) { return utf8Of(dataOf(exception).message); }

void setPending(Ref<Object> exception) { release(std::exchange(pendingException, exception.detach())); }
Ref<Object> takePending() {
  return Ref<Object>::adopt(static_cast<Object*>(std::exchange(pendingException, nullptr)));
}
void throwPending(Heap* returned) {
  HostException thrown(takePending());
  release(returned);
  throw thrown;
}

}  // namespace host
