#include "runtime/exception.h"

#include "runtime/host_classes.h"
#include "runtime/text.h"

namespace host {

namespace {
thread_local Ref<Object> pending;

ExceptionData& dataOf(const Object& exception) {
  return *reinterpret_cast<ExceptionData*>(const_cast<Object&>(exception).dataOf(*hostClasses().exception));
}
}  // namespace

HostException::HostException(std::string_view className, std::string_view message) {
  const Class* objectClass = registry().findClass(className);
  exception = makeObject(objectClass ? *objectClass : *hostClasses().exception);
  dataOf(*exception).message = makeText(message).detach();
}

std::string messageOf(const Object& exception) { return utf8Of(dataOf(exception).message); }
std::int64_t errorNumberOf(const Object& exception) { return dataOf(exception).errorNumber; }

void setPending(Ref<Object> exception) { pending = std::move(exception); }
Ref<Object> takePending() { return std::move(pending); }

}  // namespace host
