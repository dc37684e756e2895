// Subjects and their contenders, and how both are measured.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "host.h"

namespace bench {

// Whoever does what a subject is about. The first of a subject is the library itself; one called "limit" is
// no peer, but the least that this can cost: the same calls of the host, and the bare computation.
// One whose name ends in "(less)" need not do all that the library must, and is only shown.
struct Contender {
  std::string name;
  // Seconds that so many calls take.
  std::function<double(std::size_t calls)> time;
  // What the contender makes of each of the inputs that are compared.
  std::function<std::string(std::size_t input)> result;
  std::size_t inputs = 0;
};

using Same = std::function<bool(const std::string& own, const std::string& other)>;
bool exactly(const std::string& own, const std::string& other);
// For results that are numbers, separated by spaces: an error relative to 1 or to the number, if that is
// greater.
Same within(double tolerance);

struct Subject {
  std::string name;
  std::function<std::vector<Contender>()> contenders;
  std::int64_t size = 0;  // where costs are looked at as they grow …
  const char* unit = "";  // … with so many of these, in the plural
  int threads = 1;
  double parts = 1;  // of a call, each of which the time is given for
  Same same = &exactly;
  bool prescribed = false;  // how it is computed is fixed, and is not the fastest way
  bool fewSamples = false;  // a single call takes long, and is a process of its own
};
std::string labelOf(const Subject& subject);

// Whether to be quick about everything, because only the results matter.
extern bool quick;

// Nanoseconds of each contender. Results are compared first; a difference ends the program.
struct Measured {
  std::string contender;
  double nanoseconds;
};
std::vector<Measured> measure(const Subject& subject);

// Makes the compiler believe that a value is looked at, or that a pointer could be any.
template <typename Value>
void keep(const Value& value) {
  asm volatile("" : : "g"(&value) : "memory");
}
template <typename Function>
Function* opaque(Function* function) {
  asm volatile("" : "+r"(function));
  return function;
}

// What the host does with a result that is its own now; and a result in words, for comparison.
template <typename Value>
void dispose(const Value& value) {
  keep(value);
}
inline void dispose(REALobject object) { host.unlockObject(object); }
inline void dispose(REALstring string) { host.unlockString(string); }
std::string inWords(double value);
std::string inWords(std::int64_t value);
std::string inWords(std::uint64_t value);
std::string inWords(UInt128 value);
std::string inWords(REALobject object);  // the 16 bytes of a 128-bit integer
std::string inWords(REALstring string);
template <typename Small>
requires(std::is_integral_v<Small> && sizeof(Small) < 8) std::string inWords(Small value) {
  return inWords(static_cast<std::int64_t>(value));
}
inline std::string inWords(float value) { return inWords(static_cast<double>(value)); }

class Stopwatch {
 public:
  double seconds() const { return std::chrono::duration<double>(Clock::now() - start_).count(); }

 private:
  using Clock = std::chrono::steady_clock;
  Clock::time_point start_ = Clock::now();
};

// Arguments of one call after the other.
template <typename... Arguments>
using Inputs = std::shared_ptr<std::vector<std::tuple<Arguments...>>>;
template <typename... Arguments>
Inputs<Arguments...> inputs(std::vector<std::tuple<Arguments...>> all) {
  return std::make_shared<std::vector<std::tuple<Arguments...>>>(std::move(all));
}
template <typename Argument, typename Make>
Inputs<Argument> inputs(std::size_t count, Make make) {
  std::vector<std::tuple<Argument>> all;
  for (std::size_t i = 0; i < count; ++i) all.emplace_back(make());
  return inputs(std::move(all));
}

// A contender that is called with one input after the other. Others than those that are timed may be
// compared.
template <typename Call, typename... Arguments>
Contender contender(std::string name, Call call, Inputs<Arguments...> timed, Inputs<Arguments...> compared) {
  // A batch goes on with the inputs where the one before has ended: a few of them might all be in the caches.
  const auto time = [timed, call, position = std::make_shared<std::size_t>(0)](std::size_t calls) {
    const std::vector<std::tuple<Arguments...>>& all = *timed;
    const Call each = call;
    std::size_t next = *position;
    const Stopwatch watch;
    for (std::size_t i = 0; i < calls; ++i) {
      dispose(std::apply(each, all[next]));
      if (++next == all.size()) next = 0;
    }
    *position = next;
    return watch.seconds();
  };
  const auto result = [compared, call](std::size_t input) {
    const auto made = std::apply(call, (*compared)[input]);
    std::string words = inWords(made);
    dispose(made);
    return words;
  };
  return {std::move(name), time, result, compared->size()};
}

// Those of a function: all have its signature and are called through a pointer, as the host calls the
// library.
template <typename Signature>
struct Named {
  const char* name;
  Signature* function;
};
template <typename Result, typename... Arguments>
std::vector<Contender> contendersOf(Result (*own)(Arguments...),
                                    const std::vector<Named<Result(Arguments...)>>& others,
                                    Inputs<Arguments...> timed, Inputs<Arguments...> compared = nullptr) {
  if (!compared) compared = timed;
  std::vector<Contender> all = {contender("own", opaque(own), timed, compared)};
  for (const auto& each : others) all.push_back(contender(each.name, opaque(each.function), timed, compared));
  return all;
}

// A subject that is one global function. The inputs are made when they are wanted.
template <typename Result, typename... Arguments>
Subject functionSubject(std::string name, std::string declaration, Inputs<Arguments...> (*makeInputs)(),
                        std::vector<Named<Result(Arguments...)>> others,
                        Inputs<Arguments...> (*makeCompared)() = nullptr) {
  return {.name = std::move(name), .contenders = [=] {
            return contendersOf(function<Result(Arguments...)>(declaration), others, makeInputs(),
                                makeCompared ? makeCompared() : nullptr);
          }};
}

}  // namespace bench
