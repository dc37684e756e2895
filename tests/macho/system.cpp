// The table of imports and the shims for what the Mac does otherwise: threads' objects, clocks, character
// classes, ten-byte numbers, thread-locals.
#include "macho/system.h"

#include <dlfcn.h>
#include <sys/random.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <unwind.h>

#include <array>
#include <atomic>
#include <bit>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <unordered_map>

#include "macho/variadic.h"

extern "C" {
int __xpg_strerror_r(int error, char* text, std::size_t size);
unsigned __int128 __udivti3(unsigned __int128, unsigned __int128);
int __cxa_atexit(void (*)(void*), void*, void*);
void machoThreadLocalBootstrap();  // in assembler: it keeps more registers than C++ can say
}

namespace macho {

namespace {

// The Mac's mutexes and condition variables begin with a signature, which constant initialisation sets; the
// rest is zeros and has room for the address of one of this system's, made at first use.
template <class Native>
struct Lazy {
  std::uint64_t signature;
  std::atomic<Native*> native;

  Native* get() {
    Native* found = native.load(std::memory_order_acquire);
    if (found) return found;
    auto* made = new Native{};
    if (native.compare_exchange_strong(found, made, std::memory_order_acq_rel)) return made;
    delete made;
    return found;
  }
};
using Mutex = Lazy<pthread_mutex_t>;
using Condition = Lazy<pthread_cond_t>;

int lock(Mutex* mutex) { return pthread_mutex_lock(mutex->get()); }
int unlock(Mutex* mutex) { return pthread_mutex_unlock(mutex->get()); }
int wait(Condition* condition, Mutex* mutex) { return pthread_cond_wait(condition->get(), mutex->get()); }
int broadcast(Condition* condition) { return pthread_cond_broadcast(condition->get()); }
int signal(Condition* condition) { return pthread_cond_signal(condition->get()); }
unsigned threadNumber(pthread_t) { return static_cast<unsigned>(syscall(SYS_gettid)); }

// The Mac's numbers of the clocks.
int clockGettime(int clock, timespec* time) {
  constexpr int macRealtime = 0, macMonotonic = 6;
  if (clock != macRealtime && clock != macMonotonic) {
    errno = EINVAL;
    return -1;
  }
  return clock_gettime(clock == macRealtime ? CLOCK_REALTIME : CLOCK_MONOTONIC, time);
}

std::uint32_t randomWord() {
  std::uint32_t word = 0;
  while (getrandom(&word, sizeof word, 0) != sizeof word) {
  }
  return word;
}

void fillWithPattern(void* bytes, const void* pattern, std::size_t size) {
  auto* to = static_cast<char*>(bytes);
  for (; size > 0; to += 16) {
    const std::size_t part = size < 16 ? size : 16;
    std::memcpy(to, pattern, part);
    size -= part;
  }
}

void fillWithZeros(void* bytes, std::size_t size) { std::memset(bytes, 0, size); }

// Nothing is loaded by the Mac's names, and nothing is found.
void* openNothing(const char*, int) { return nullptr; }
void* findNothing(void*, const char*) { return nullptr; }

// Everything is bound before anything runs.
void lazyBinder() {
  std::fputs("a lazy bind after loading\n", stderr);
  std::abort();
}

// The ten bytes of an 80-bit number as interchange files have them: sign and exponent first, big-endian.
// Written from the long double of C, not from the library's own conversion, which is one of the things
// tested.
void doubleToExtended(const double* from, std::uint8_t* to) {
  const double x = *from;
  const bool negative = std::signbit(x);
  int exponent = 0;
  std::uint64_t significand = 0;
  if (std::isnan(x)) {
    exponent = 0x7FFF;
    significand = std::uint64_t{3} << 62 | std::bit_cast<std::uint64_t>(x) << 11;
  } else if (std::isinf(x)) {
    exponent = 0x7FFF;
    significand = std::uint64_t{1} << 63;
  } else if (x != 0) {
    const double fraction = std::frexp(std::fabs(x), &exponent);  // from 0.5 to below 1
    significand = static_cast<std::uint64_t>(std::ldexp(fraction, 53)) << 11;
    exponent += 16382;
  }
  to[0] = static_cast<std::uint8_t>(negative << 7 | exponent >> 8);
  to[1] = static_cast<std::uint8_t>(exponent);
  for (int i = 0; i < 8; ++i) to[2 + i] = static_cast<std::uint8_t>(significand >> (56 - 8 * i));
}

double extendedToDouble(const std::uint8_t* from) {
  const int exponent = (from[0] & 0x7F) << 8 | from[1];
  std::uint64_t significand = 0;
  for (int i = 0; i < 8; ++i) significand = significand << 8 | from[2 + i];
  double x;
  if (exponent == 0x7FFF) {
    const std::uint64_t fraction = significand << 1 >> 12;
    x = significand << 1 == 0 ? HUGE_VAL : std::bit_cast<double>(std::uint64_t{0x7FF8} << 48 | fraction);
  } else {
    // Exact: a long double has 64 bits of significand or more, on both processors; the one rounding is the
    // last step.
    x = static_cast<double>(
        std::ldexp(static_cast<long double>(significand), (exponent ? exponent : 1) - 16383 - 63));
  }
  return std::copysign(x, from[0] & 0x80 ? -1.0 : 1.0);
}

// The table behind the character classes, which code for the Mac reads directly. Its layout and masks are
// those of the published header runetype.h.
struct RuneLocale {
  char magic[8], encoding[32];
  const void* functions[2];
  std::uint32_t invalidRune;
  std::uint32_t classes[256];
  std::int32_t lower[256], upper[256];
  std::uint64_t extensions[8];  // none

  RuneLocale() : magic{}, encoding{}, functions{}, invalidRune(0xFFFD), extensions{} {
    const struct {
      int (*test)(int);
      std::uint32_t mask;
    } tests[] = {{std::isalpha, 0x100},   {std::iscntrl, 0x200},  {std::isdigit, 0x400},
                 {std::isgraph, 0x800},   {std::islower, 0x1000}, {std::ispunct, 0x2000},
                 {std::isspace, 0x4000},  {std::isupper, 0x8000}, {std::isxdigit, 0x10000},
                 {std::isblank, 0x20000}, {std::isprint, 0x40000}};
    for (int c = 0; c < 256; ++c) {
      classes[c] = 0;
      for (const auto& each : tests) {
        if (c < 128 && each.test(c)) classes[c] |= each.mask;
      }
      lower[c] = c < 128 ? std::tolower(c) : c;
      upper[c] = c < 128 ? std::toupper(c) : c;
    }
  }
};
static_assert(offsetof(RuneLocale, classes) == 60);

RuneLocale& runeLocale() {
  static RuneLocale locale;
  return locale;
}

int characterClass(std::int32_t rune, unsigned long mask) {
  return rune >= 0 && rune < 256 ? static_cast<int>(runeLocale().classes[rune] & mask) : 0;
}

std::FILE* standardError = stderr;
std::array<void*, 32> constantStringType;  // only its address counts

template <class Function>
void* address(Function* function) {
  return reinterpret_cast<void*>(function);
}
using DoubleFunction = double(double);
using DoubleFunction2 = double(double, double);

const std::unordered_map<std::string, void*>& table() {
  static const std::unordered_map<std::string, void*> all = {
      // The mathematics library.
      {"_acos", address<DoubleFunction>(std::acos)},
      {"_acosh", address<DoubleFunction>(std::acosh)},
      {"_asin", address<DoubleFunction>(std::asin)},
      {"_asinh", address<DoubleFunction>(std::asinh)},
      {"_atan", address<DoubleFunction>(std::atan)},
      {"_atan2", address<DoubleFunction2>(std::atan2)},
      {"_atanh", address<DoubleFunction>(std::atanh)},
      {"_ceil", address<DoubleFunction>(std::ceil)},
      {"_cos", address<DoubleFunction>(std::cos)},
      {"_cosh", address<DoubleFunction>(std::cosh)},
      {"_erfc", address<DoubleFunction>(std::erfc)},
      {"_exp", address<DoubleFunction>(std::exp)},
      {"_exp2", address<DoubleFunction>(std::exp2)},
      {"_floor", address<DoubleFunction>(std::floor)},
      {"_frexp", address<double(double, int*)>(std::frexp)},
      {"_hypot", address<DoubleFunction2>(std::hypot)},
      {"_log", address<DoubleFunction>(std::log)},
      {"_log10", address<DoubleFunction>(std::log10)},
      {"_log2", address<DoubleFunction>(std::log2)},
      {"_pow", address<DoubleFunction2>(std::pow)},
      {"_round", address<DoubleFunction>(std::round)},
      {"_sin", address<DoubleFunction>(std::sin)},
      {"_sinh", address<DoubleFunction>(std::sinh)},
      {"_tan", address<DoubleFunction>(std::tan)},
      {"_tanh", address<DoubleFunction>(std::tanh)},
      {"_trunc", address<DoubleFunction>(std::trunc)},
      // Memory and text.
      {"_aligned_alloc", address(aligned_alloc)},
      {"_bzero", address(fillWithZeros)},
      {"___bzero", address(fillWithZeros)},
      {"_free", address(free)},
      {"_malloc", address(malloc)},
      {"_memchr", address<const void*(const void*, int, std::size_t)>(std::memchr)},
      {"_memcmp", address(memcmp)},
      {"_memcpy", address(memcpy)},
      {"_memmove", address(memmove)},
      {"_memset", address(memset)},
      {"_memset_pattern16", address(fillWithPattern)},
      {"_realloc", address(realloc)},
      {"_snprintf", address(machoSnprintf)},
      {"_strcmp", address(strcmp)},
      {"_strerror_r", address(__xpg_strerror_r)},
      {"_strlen", address(strlen)},
      {"_vsnprintf", address(machoVsnprintf)},
      {"__DefaultRuneLocale", &runeLocale()},
      {"___maskrune", address(characterClass)},
      // Files and the log.
      {"_NSLog", address(machoNSLog)},
      {"___CFConstantStringClassReference", &constantStringType},
      {"___stderrp", &standardError},
      {"_fputc", address(fputc)},
      {"_fwrite", address(fwrite)},
      {"_vfprintf", address(machoVfprintf)},
      // Threads.
      {"_pthread_cond_broadcast", address(broadcast)},
      {"_pthread_cond_signal", address(signal)},
      {"_pthread_cond_wait", address(wait)},
      {"_pthread_mach_thread_np", address(threadNumber)},
      {"_pthread_mutex_lock", address(lock)},
      {"_pthread_mutex_unlock", address(unlock)},
      {"_pthread_self", address(pthread_self)},
      {"_sched_yield", address(sched_yield)},
      {"__tlv_bootstrap", address(machoThreadLocalBootstrap)},
      // Exceptions.
      {"__Unwind_DeleteException", address(_Unwind_DeleteException)},
      {"__Unwind_GetIP", address(_Unwind_GetIP)},
      {"__Unwind_GetLanguageSpecificData", address(_Unwind_GetLanguageSpecificData)},
      {"__Unwind_GetRegionStart", address(_Unwind_GetRegionStart)},
      {"__Unwind_RaiseException", address(_Unwind_RaiseException)},
      {"__Unwind_Resume", address(_Unwind_Resume)},
      {"__Unwind_SetGR", address(_Unwind_SetGR)},
      {"__Unwind_SetIP", address(_Unwind_SetIP)},
      // The rest of the system.
      {"___cxa_atexit", address(__cxa_atexit)},
      {"___error", address(__errno_location)},
      {"___udivti3", address(__udivti3)},
      {"_abort", address(abort)},
      {"_arc4random", address(randomWord)},
      {"_clock_gettime", address(clockGettime)},
      {"_dlopen", address(openNothing)},
      {"_dlsym", address(findNothing)},
      {"_dtox80", address(doubleToExtended)},
      {"_x80tod", address(extendedToDouble)},
      {"dyld_stub_binder", address(lazyBinder)},
  };
  return all;
}

}  // namespace

void* systemSymbol(const std::string& name) {
  const auto found = table().find(name);
  return found == table().end() ? nullptr : found->second;
}

extern "C" void* machoThreadLocalAddress(const ThreadLocalVariable* variable) {
  const ThreadLocals& variables = *variable->variables;
  auto* block = static_cast<char*>(pthread_getspecific(variables.key));
  if (!block) {
    const std::size_t alignment = variables.alignment < sizeof(void*) ? sizeof(void*) : variables.alignment;
    void* fresh = nullptr;
    if (posix_memalign(&fresh, alignment, variables.bytes) != 0) std::abort();
    block = static_cast<char*>(fresh);
    std::memcpy(block, variables.initial, variables.initialBytes);
    std::memset(block + variables.initialBytes, 0, variables.bytes - variables.initialBytes);
    pthread_setspecific(variables.key, block);
  }
  return block + variable->offset;
}

}  // namespace macho
