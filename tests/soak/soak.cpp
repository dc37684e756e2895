// Calls everything that the library registers from eight threads for a given time, and sees that nothing is
// lost: what goes in comes out, sums are right, answers are those of one thread alone, references are given
// back, and no thread waits for ever. See ./qtx soak.
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <mutex>
#include <thread>

#include "runtime/exception.h"
#include "runtime/library.h"
#include "samples.h"
#include "scenarios.h"

namespace soak {
namespace {

using Clock = std::chrono::steady_clock;
// Longer than any round takes, even where everything is slow.
constexpr std::chrono::seconds patience(300);

class Run {
 public:
  explicit Run(std::chrono::seconds duration) : duration_(duration), start_(Clock::now()) {
    for (std::size_t i = 0; i <= threadCount; ++i)
      workers_.push_back(std::make_unique<Worker>(i, std::random_device{}()));
  }

  void all() {
    const bool shown = isatty(STDERR_FILENO) != 0;
    do {
      cycle();
      if (shown) {
        std::fprintf(stderr, "\r%lld of %lld s, %llu rounds, %llu million calls ", elapsed(),
                     static_cast<long long>(duration_.count()), static_cast<unsigned long long>(rounds_),
                     static_cast<unsigned long long>(total() / 1000000));
      }
    } while (Clock::now() < start_ + duration_);
    if (shown) std::fputc('\n', stderr);
  }

  // Throws Loss for a member that was never called.
  void summary() const {
    std::printf("%-34s %8s %15s %15s\n", "", "members", "calls", "the fewest");
    struct Line {
      std::size_t members = 0;
      std::uint64_t calls = 0, fewest = UINT64_MAX;
    };
    std::vector<std::pair<std::string, Line>> lines;
    for (const Member& each : members()) {
      const std::string name = each.of ? each.of->name : each.name.substr(0, each.name.find('('));
      if (lines.empty() || lines.back().first != name) lines.emplace_back(name, Line());
      const std::uint64_t calls = callsOf(each);
      Line& line = lines.back().second;
      ++line.members;
      line.calls += calls;
      line.fewest = std::min(line.fewest, calls);
      if (calls == 0) throw Loss(each.name + " was never called");
    }
    for (const auto& [name, line] : lines) {
      std::printf("%-34s %8zu %15llu %15llu\n", name.c_str(), line.members,
                  static_cast<unsigned long long>(line.calls), static_cast<unsigned long long>(line.fewest));
    }
    std::printf("%-34s %8zu %15llu\n", "all", members().size(), static_cast<unsigned long long>(total()));
    std::printf("%zu threads, %llu rounds, %lld s: nothing was lost\n", threadCount,
                static_cast<unsigned long long>(rounds_), elapsed());
  }

 private:
  // Each scenario has its round; all share their samples.
  void cycle() {
    Worker& alone = *workers_[threadCount];
    {
      const Samples samples(alone);
      for (std::size_t i = 0; i < Scenarios::count; ++i) {
        Scenarios scenarios(i);
        round(samples, scenarios);
        scenarios.check(alone);
        ++rounds_;
      }
    }
    checkNothingLeft(alone);
  }

  // Threads of its own each time: their ends are tried out too.
  void round(const Samples& samples, Scenarios& scenarios) {
    const auto end = Clock::now() + std::chrono::milliseconds(100);
    std::atomic<std::size_t> running = threadCount;
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < threadCount; ++i) {
      threads.emplace_back([&, &worker = *workers_[i]] {
        try {
          // The threads begin with different parts: together they call all.
          std::size_t part = worker.index;
          do {
            scenarios.run(worker);
            samples.callPart(part++, worker);
          } while (Clock::now() < end && !failure_.load());
        } catch (...) {
          const std::lock_guard lock(mutex_);
          if (!failure_.exchange(true)) reason_ = std::current_exception();
        }
        running.fetch_sub(1);
      });
    }
    waitFor(running);
    for (std::thread& each : threads) each.join();
    if (reason_) std::rethrow_exception(reason_);
  }

  // Ends the process where somebody waits for ever, since a thread cannot be ended.
  void waitFor(const std::atomic<std::size_t>& running) const {
    const auto latest = Clock::now() + patience;
    while (running.load() > 0) {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
      if (Clock::now() < latest) continue;
      std::fprintf(stderr, "\nsoak: the threads do not come to an end; their last calls:\n");
      for (std::size_t i = 0; i < threadCount; ++i) {
        const Member* const last = workers_[i]->current.load();
        std::fprintf(stderr, "  %s\n", last ? last->name.c_str() : "none");
      }
      std::_Exit(1);
    }
  }

  std::uint64_t callsOf(const Member& member) const {
    std::uint64_t calls = 0;
    for (const auto& each : workers_) calls += each->calls[member.index];
    return calls;
  }
  std::uint64_t total() const {
    std::uint64_t calls = 0;
    for (const Member& each : members()) calls += callsOf(each);
    return calls;
  }
  long long elapsed() const {
    return std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - start_).count();
  }

  std::chrono::seconds duration_;
  Clock::time_point start_;
  std::vector<std::unique_ptr<Worker>> workers_;  // the last one is this thread's
  std::uint64_t rounds_ = 0;
  std::atomic<bool> failure_{false};
  std::mutex mutex_;
  std::exception_ptr reason_;
};

}  // namespace
}  // namespace soak

int main(int count, char** arguments) {
  if (count < 2) {
    std::fprintf(stderr, "usage: qtx_soak SECONDS [LIBRARY]\n");
    return 2;
  }
  try {
    host::loadLibrary(count > 2 ? arguments[2] : QTX_LIBRARY_FILE);
    soak::Run run(std::chrono::seconds(std::strtoll(arguments[1], nullptr, 10)));
    run.all();
    run.summary();
    return 0;
  } catch (const host::HostException& exception) {
    std::fprintf(stderr, "\nsoak: %s\n", host::messageOf(*exception.exception).c_str());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "\nsoak: %s\n", error.what());
  }
  return 1;
}
