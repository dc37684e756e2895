// How errors become exceptions of the host's language.
#include "frame/raise.h"

#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <stdexcept>

#include "frame/debug_log.h"
#include "frame/host_operations.h"
#include "frame/string_builder.h"

namespace qtx {

void RaiseException(const char* className, const char* message, unsigned int, long long) {
  // Building the text may itself end in an exception; then the message stays empty.
  const Reference text = guard([&] {
    return buildString(message, message ? static_cast<long long>(std::strlen(message)) : 0, encoding::utf8);
  });
  Reference exception(REALnewInstance(className));
  if (!exception) exception = Reference(REALnewInstance("RuntimeException"));
  if (!exception) return;
  REALSetPropValueString(exception.borrow(), "Message", text.borrow());
  REALSetPropValueInteger(exception.borrow(), "ErrorNumber", 0);
  REALRaiseException(exception.borrow());
}

void RaiseOutOfBoundsException(long long value, long long count, const char* parameterName,
                               const char* methodName) {
  if (!parameterName) parameterName = "?";
  if (!methodName) methodName = "";
  const std::size_t size = std::strlen(parameterName) + std::strlen(methodName) + 200;
  const std::unique_ptr<char[]> text(new (std::nothrow) char[size]());
  if (!text) {
    RaiseException("OutOfBoundsException", "Out of Bounds");
    return;
  }
  // An empty method name leaves two blanks in the text. The upper bound is taken modulo 2^64, so that a count
  // of −2^63 is printed rather than undefined.
  const auto last = static_cast<long long>(static_cast<unsigned long long>(count) - 1);
  std::snprintf(text.get(), size,
                "The parameter %s %s%s is too %s. Range is %lld to %lld, but value is %lld.", parameterName,
                *methodName ? "to method " : "", methodName, value < 0 ? "small" : "big", 0LL, last, value);
  RaiseException("OutOfBoundsException", text.get());
}

namespace {

struct Report {
  const char* text;
  const char* className;
};

template <typename Exception>
bool isA(const std::exception& exception) {
  return dynamic_cast<const Exception*>(&exception) != nullptr;
}

Report reportFor(const std::exception& exception) {
  if (isA<std::bad_alloc>(exception)) return {"Failed to allocate memory", "OutOfMemoryException"};
  if (isA<std::range_error>(exception) || isA<std::out_of_range>(exception)) {
    return {"C++ reports range error", "OutOfBoundsException"};
  }
  if (isA<std::overflow_error>(exception)) return {"C++ reports overflow error", "OutOfBoundsException"};
  if (isA<std::underflow_error>(exception)) return {"C++ reports underflow error", "OutOfBoundsException"};
  return {"C++ Exception", "RuntimeException"};
}

}  // namespace

void RaiseRuntimeException(const std::exception& exception) {
  const Report report = reportFor(exception);
  const char* details = exception.what();
  if (!details) details = "";
  // Built without throwing: memory may be what has just run out.
  const std::size_t size = std::strlen(report.text) + std::strlen(details) + sizeof ": ";
  char small[256];
  const std::unique_ptr<char[]> large(size > sizeof small ? new (std::nothrow) char[size] : nullptr);
  char* text = large ? large.get() : small;
  std::snprintf(text, large ? size : sizeof small, *details ? "%s: %s" : "%s.", report.text, details);
  RaiseException(report.className, text);
}

bool refuseNil(REALobject other, const char* message) {
  if (other) return false;
  Trace("other", "is nil");
  RaiseException("NilObjectException", message);
  return true;
}

void RaiseUnnamedException() {
  Trace("Unnamed C++ Exception.");
  RaiseException("RuntimeException", "Sorry, but there was an unnamed C++ Exception.");
}

}  // namespace qtx
