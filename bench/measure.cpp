// The measuring of one subject in this process.
#include "measure.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <sstream>

namespace bench {
namespace {

constexpr std::size_t minRounds = 7, maxRounds = 50;

// A batch is long beside the clock's resolution and short beside a time slice; but threads have to be
// started, and to meet.
double batchSeconds(const Subject& subject) { return subject.threads == 1 ? 0.001 : 0.02; }
double subjectSeconds(const Subject& subject) { return subject.threads == 1 ? 0.25 : 1; }

[[noreturn]] void fail(const Subject& subject, const Contender& contender, std::size_t input,
                       const std::string& what) {
  std::fprintf(stderr, "qtx bench: %s: %s, input %zu: %s\n", labelOf(subject).c_str(), contender.name.c_str(),
               input, what.c_str());
  std::exit(1);
}

void compare(const Subject& subject, const std::vector<Contender>& contenders) {
  const Contender& own = contenders.front();
  for (std::size_t input = 0; input < own.inputs; ++input) {
    const std::int64_t raised = raisedExceptions();
    const std::string expected = own.result(input);
    if (raisedExceptions() != raised) fail(subject, own, input, "an exception was raised");
    for (auto other = contenders.begin() + 1; other != contenders.end(); ++other) {
      if (input >= other->inputs) continue;
      const std::string found = other->result(input);
      if (!subject.same(expected, found)) fail(subject, *other, input, found + " is not own's " + expected);
    }
  }
}

// The least of three times, as other programs may have had the processor during one of them.
std::size_t callsOfABatch(const Contender& contender, double batch) {
  std::size_t calls = 1;
  for (;;) {
    double seconds = contender.time(calls);
    for (int again = 0; again < 2 && seconds < 10 * batch; ++again)
      seconds = std::min(seconds, contender.time(calls));
    if (seconds >= batch) return calls;
    const double missing = seconds > 0 ? batch / seconds : 8;
    calls = static_cast<std::size_t>(static_cast<double>(calls) * std::clamp(missing * 1.1, 1.5, 8.0)) + 1;
  }
}

// Within a process, what disturbs a single thread makes it slower, never faster: the least of the times is
// what it takes undisturbed. Threads that meet disturb each other, which belongs to what they take; there it
// is the median.
double typical(std::vector<double> times, int threads) {
  const auto at = times.begin() + (threads == 1 ? 0 : static_cast<std::ptrdiff_t>(times.size() / 2));
  std::nth_element(times.begin(), at, times.end());
  return *at;
}

}  // namespace

bool quick = false;

bool exactly(const std::string& own, const std::string& other) { return own == other; }
Same within(double tolerance) {
  return [tolerance](const std::string& own, const std::string& other) {
    std::istringstream expected(own), found(other);
    std::string a, b;
    while (expected >> a) {
      if (!(found >> b)) return false;
      const double x = std::strtod(a.c_str(), nullptr), y = std::strtod(b.c_str(), nullptr);
      if (!(std::abs(x - y) <= tolerance * std::max(1.0, std::abs(x)))) return false;
    }
    return !(found >> b);
  };
}

std::string labelOf(const Subject& subject) {
  std::string label = subject.name;
  if (subject.size) {
    label += ", " + std::to_string(subject.size) + " " + subject.unit;
    if (subject.size == 1) label.pop_back();
  }
  if (subject.threads > 1) label += ", " + std::to_string(subject.threads) + " threads";
  return label;
}

std::vector<Measured> measure(const Subject& subject) {
  const std::vector<Contender> contenders = subject.contenders();
  compare(subject, contenders);
  std::vector<std::size_t> calls(contenders.size(), 1);
  if (!quick && !subject.fewSamples) {
    std::transform(contenders.begin(), contenders.end(), calls.begin(),
                   [&](const Contender& each) { return callsOfABatch(each, batchSeconds(subject)); });
  }

  // The order rotates, so that nobody always comes after the same other.
  std::vector<std::vector<double>> times(contenders.size());
  const std::size_t rounds = quick || subject.fewSamples ? 1 : maxRounds;
  const Stopwatch watch;
  for (std::size_t round = 0;
       round < rounds && (round < minRounds || watch.seconds() < subjectSeconds(subject)); ++round) {
    for (std::size_t i = 0; i < contenders.size(); ++i) {
      const std::size_t at = (i + round) % contenders.size();
      times[at].push_back(contenders[at].time(calls[at]) / static_cast<double>(calls[at]));
    }
  }
  std::vector<Measured> all;
  for (std::size_t i = 0; i < contenders.size(); ++i) {
    all.push_back({contenders[i].name, typical(times[i], subject.threads) / subject.parts * 1e9});
  }
  return all;
}

std::string inWords(double value) {
  char text[40];
  std::snprintf(text, sizeof text, "%a", value);
  return text;
}
std::string inWords(std::int64_t value) { return std::to_string(value); }
std::string inWords(std::uint64_t value) { return std::to_string(value); }
std::string inWords(UInt128 value) {
  char text[40];
  std::snprintf(text, sizeof text, "0x%016llx%016llx", static_cast<unsigned long long>(value >> 64),
                static_cast<unsigned long long>(value));
  return text;
}
std::string inWords(REALobject object) { return inWords(read<UInt128>(object)); }
std::string inWords(REALstring string) {
  return {host.contentsOf(string), static_cast<std::size_t>(host.lengthOf(string))};
}

}  // namespace bench
