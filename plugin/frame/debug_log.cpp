// How lines reach the system log.
#include "frame/debug_log.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#if defined(__APPLE__)
// Declared here because the plug-in builds without the platform's frameworks at hand: NSString and CFString
// are interchangeable at the binary level.
extern "C" void NSLog(const void* format, ...);
#else
#include <unistd.h>

#include <cerrno>
#endif

namespace qtx {

namespace {

#if defined(__APPLE__)
void writeLine(char* text) { NSLog(__builtin___CFStringMakeConstantString("%s\n"), text); }
#else
// One write per line, so that lines of several threads never mix. `text` has room for the line feed in place
// of its terminating NUL.
void writeLine(char* text) {
  std::size_t length = std::strlen(text);
  text[length++] = '\n';
  for (const char* rest = text; length > 0;) {
    const ssize_t written = ::write(STDERR_FILENO, rest, length);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return;
    rest += written;
    length -= static_cast<std::size_t>(written);
  }
}
#endif

}  // namespace

bool getDebugging() { return debugging.load(std::memory_order_relaxed); }

void setDebugging(std::uint8_t value) {
  debugging.store(value != 0, std::memory_order_relaxed);
  if (value != 0) LogMessageX("%s%s", logPrefix, "QTX debug logging enabled.");
}

void LogMessageX(const char* format, ...) {
  char text[4096] = {};
  std::va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  writeLine(text);
}

namespace trace_line {
void write(const char* text) { LogMessageX("%s%s", logPrefix, text); }
void write(const char* text, const char* value) { LogMessageX("%s%s %s", logPrefix, text, value); }
void write(const char* text, double value) { LogMessageX("%s%s %f", logPrefix, text, value); }
void write(const char* text, long long value) { LogMessageX("%s%s %lld", logPrefix, text, value); }
void write(const char* text, unsigned long long value) { LogMessageX("%s%s %llu", logPrefix, text, value); }
void write(const char* text, const void* first, const void* second) {
  // Not %p, which writes nil differently from platform to platform.
  LogMessageX("%s%s 0x%llx, 0x%llx", logPrefix, text,
              static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(first)),
              static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(second)));
}
}  // namespace trace_line

}  // namespace qtx
