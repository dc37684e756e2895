// The functions behind those with a variable number of arguments.
#include "macho/variadic.h"

#include <unistd.h>

#include <cerrno>
#include <string>

namespace macho {

namespace {
constexpr std::uint64_t eightBitConstant = 0x7C8;  // the flags of a constant of ASCII text
}

extern "C" {

int machoVsnprintf(char* text, std::size_t size, const char* format, MacArguments arguments) {
  NativeArguments native(arguments);
  return std::vsnprintf(text, size, format, native.list);
}

int machoVfprintf(std::FILE* file, const char* format, MacArguments arguments) {
  NativeArguments native(arguments);
  return std::vfprintf(file, format, native.list);
}

// The line alone, without the time and the process that the Mac puts before it.
void machoVNSLog(const ConstantString* format, MacArguments arguments) {
  std::string line = "NSLog: a format that is no constant of ASCII text";
  if (format->flags == eightBitConstant) {
    NativeArguments once(arguments), again(arguments);
    const std::string pattern(format->bytes, format->length);
    line.resize(static_cast<std::size_t>(std::vsnprintf(nullptr, 0, pattern.c_str(), once.list)));
    std::vsnprintf(line.data(), line.size() + 1, pattern.c_str(), again.list);
  }
  if (line.empty() || line.back() != '\n') line += '\n';
  for (std::size_t done = 0; done < line.size();) {
    const ssize_t written = ::write(STDERR_FILENO, line.data() + done, line.size() - done);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return;
    done += static_cast<std::size_t>(written);
  }
}

#if !defined(__aarch64__)  // there they are in assembler, entry_aarch64.S
int machoSnprintf(char* text, std::size_t size, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const int length = machoVsnprintf(text, size, format, arguments);
  va_end(arguments);
  return length;
}

void machoNSLog(const ConstantString* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  machoVNSLog(format, arguments);
  va_end(arguments);
}
#endif

}  // extern "C"

}  // namespace macho
