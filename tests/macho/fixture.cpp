// A library for macOS made for the loader's tests. It holds what the shipped library has, and what it could
// have: each kind of fixup, of thread-local, of frame to unwind through, and every exception that the guard
// around registered functions knows.
#include <array>
#include <cctype>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <new>
#include <stdexcept>
#include <string>

#include "frame/records.h"

extern "C" int qtxFixtureMissing() __attribute__((weak_import));  // nobody has it

namespace {

void throwOfKind(std::int64_t kind) {
  switch (kind) {
    case 0:
      throw std::bad_alloc();
    case 1:
      throw std::range_error("range");
    case 2:
      throw std::out_of_range("out of range");
    case 3:
      throw std::overflow_error("");
    case 4:
      throw std::underflow_error("underflow");
    case 5:
      throw std::logic_error("logic");
    case 6:
      throw 7;
    default:
      return;
  }
}

int initialised = 1;
[[gnu::constructor]] void initialise() { initialised = initialised * 10 + 2; }

int numbers[] = {10, 11, 12, 13};
int* const intoNumbers[] = {numbers, numbers + 3, &numbers[1]};
const char* volatile pastRuneLocale =
    reinterpret_cast<const char*>(&_DefaultRuneLocale) + 60;  // the system's, with an addend

thread_local int counter = 40;
thread_local std::array<char, 100> text = {'a', 'b'};
alignas(64) thread_local double aligned;

struct Counted {
  explicit Counted(int* count) : count_(count) {}
  ~Counted() { ++*count_; }
  int* count_;
};

// Frames of different sizes and saved registers; `bytes` of stack that only the running program knows.
template <std::size_t fixed>
[[gnu::noinline]] std::int64_t descend(int depth, int bytes, int* destroyed) {
  volatile char room[fixed];
  room[0] = static_cast<char>(depth);
  const Counted counted(destroyed);
  if (depth == 0) throw std::runtime_error("from the depth");
  auto* more = static_cast<volatile char*>(__builtin_alloca(static_cast<std::size_t>(bytes)));
  more[bytes - 1] = 1;
  return descend<fixed>(depth - 1, bytes + 16, destroyed) + room[0] + more[bytes - 1];
}

// As many values as there are registers that a call keeps, needed after the exception.
template <class Body>
[[gnu::noinline]] std::int64_t keep(std::int64_t seed, Body&& body) {
  std::int64_t a = seed * 3, b = seed ^ 0x55, c = seed + 7, d = seed * seed, e = seed - 9, f = seed << 3,
               g = ~seed, h = seed / 3;
  double x = static_cast<double>(seed) / 7, y = x * x;
  asm volatile("" : "+r"(a), "+r"(b), "+r"(c), "+r"(d), "+r"(e));
  try {
    body();
  } catch (const std::exception&) {
    asm volatile("" : "+r"(a), "+r"(b), "+r"(c), "+r"(d), "+r"(e));
    return a + b + c + d + e + f + g + h + static_cast<std::int64_t>(x * 1000 + y);
  }
  return 0;
}
std::int64_t kept(std::int64_t seed) {
  const double x = static_cast<double>(seed) / 7;
  return seed * 3 + (seed ^ 0x55) + (seed + 7) + seed * seed + (seed - 9) + (seed << 3) + ~seed + seed / 3 +
         static_cast<std::int64_t>(x * 1000 + x * x);
}

}  // namespace

// Several libraries may have it: one definition counts.
[[gnu::visibility("default")]] inline int fixtureShared = 77;

extern "C" [[gnu::visibility("default")]] void* fixtureThrower() {
  return reinterpret_cast<void*>(qtx::entryOf<&throwOfKind>());
}
extern "C" [[gnu::visibility("default")]] int fixtureInitialised() { return initialised; }
extern "C" [[gnu::visibility("default")]] int fixtureNumber(int i) { return *intoNumbers[i]; }
extern "C" [[gnu::visibility("default")]] const void* fixturePastRuneLocale() { return pastRuneLocale; }
extern "C" [[gnu::visibility("default")]] int fixtureMissing() { return qtxFixtureMissing == nullptr; }
extern "C" [[gnu::visibility("default")]] int fixtureSharedValue() { return fixtureShared; }
extern "C" [[gnu::visibility("default")]] int fixtureCount() { return ++counter; }
extern "C" [[gnu::visibility("default")]] int fixtureThreadText() {
  text[99] = 'z';
  return text[0] == 'a' && text[1] == 'b' && text[2] == 0 &&
         reinterpret_cast<std::uintptr_t>(&aligned) % 64 == 0 && aligned == 0;
}
// What a call for a thread-local must leave as it was.
extern "C" [[gnu::visibility("default")]] double fixtureThreadLocalAmong(double a, double b, double c,
                                                                         double d, std::int64_t i,
                                                                         std::int64_t j, std::int64_t k,
                                                                         std::int64_t l) {
  const int was = counter;
  return a + 2 * b + 3 * c + 4 * d + static_cast<double>(i + 5 * j + 6 * k + 7 * l) + 0 * was;
}
extern "C" [[gnu::visibility("default")]] int fixtureFormat(char* to, std::size_t size) {
  return std::snprintf(to, size, "%d %s %.3f %lld %c %u %.2f %d %d %d %g %s", 1, "two", 3.25, -4LL, '5', 6u,
                       7.5, 8, 9, 10, 11.5, "end");
}
extern "C" [[gnu::visibility("default")]] bool fixtureUnwinds(std::int64_t seed, int depth) {
  int destroyed = 0;
  const auto all = [&](auto&& body) { return keep(seed, body) == kept(seed); };
  bool well = all([&] { descend<1>(depth, 16, &destroyed); });
  well = all([&] { descend<3000>(depth, 16, &destroyed); }) && well;
  well = all([&] { descend<300000>(depth % 4, 16, &destroyed); }) && well;
  return well && destroyed == 2 * (depth + 1) + depth % 4 + 1;
}
extern "C" [[gnu::visibility("default")]] int fixtureErrorNumber() {
  errno = 34;
  return errno;
}
extern "C" [[gnu::visibility("default")]] int fixtureSpaces() {
  int count = 0;
  for (int c = 0; c < 256; ++c) count += std::isspace(c) != 0;
  return count;
}
