// Functions with a variable number of arguments. On 64-bit Arm the Mac passes those on the stack, all of
// them, and a va_list is their address; on x86-64 both systems do the same.
#pragma once

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace macho {

#if defined(__aarch64__)
using MacArguments = const void*;

class NativeArguments {
 public:
  explicit NativeArguments(MacArguments stack) {
    // The record of the procedure call standard for the Arm 64-bit architecture, section "Variable argument
    // lists": no register holds an argument.
    const struct {
      const void *stack, *generalTop, *vectorTop;
      int generalOffset, vectorOffset;
    } record = {stack, nullptr, nullptr, 0, 0};
    static_assert(sizeof record == sizeof list);
    std::memcpy(&list, &record, sizeof record);
  }
  std::va_list list;
};
#else
using MacArguments = std::va_list;

class NativeArguments {
 public:
  explicit NativeArguments(MacArguments arguments) { va_copy(list, arguments); }
  ~NativeArguments() { va_end(list); }
  std::va_list list;
};
#endif

// A constant string as compilers lay it out for Foundation.
struct ConstantString {
  const void* type;
  std::uint64_t flags;
  const char* bytes;
  std::uint64_t length;
};

extern "C" {
int machoVsnprintf(char* text, std::size_t size, const char* format, MacArguments arguments);
int machoVfprintf(std::FILE* file, const char* format, MacArguments arguments);
void machoVNSLog(const ConstantString* format, MacArguments arguments);
int machoSnprintf(char* text, std::size_t size, const char* format, ...);
void machoNSLog(const ConstantString* format, ...);
}

}  // namespace macho
